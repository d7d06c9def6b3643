// SPDX-License-Identifier: MIT
//
// Clicks, copy, cut, paste and undo, and the guard of the transcript.
#import "MainConsole.h"

#import "Controls.h"
#import "Platform.h"

#include "TypedSigns.h"
#include "WordAt.h"

#import <objc/runtime.h>

#include <algorithm>
#include <cmath>
#include <unistd.h>

static const useconds_t FLASH = 80000;  // microseconds
static const CGFloat DRAG_DISTANCE = 4; // points: less is a click

static const char NOT_FETCHED[] = "The text could not be fetched.";

@implementation MainConsole (Edit)

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    // Copy works without a selection, and the others decide for themselves.
    SEL action = [item action];
    if (sel_isEqual(action, @selector(copyAnswer:))) return !calc.answer.shown.empty();
    if ([@[ @"copy:", @"cut:", @"cutSelection:", @"paste:", @"undo:" ]
            containsObject:NSStringFromSelector(action)])
        return YES;
    if (sel_isEqual(action, @selector(undoChange:))) return [[self undoManager] canUndo];
    if (sel_isEqual(action, @selector(redo:))) return [[self undoManager] canRedo];
    return [super validateMenuItem:item];
}

// However a change comes about, by a key, a drag or a service: the transcript is read only. What the console
// itself writes does not ask.
- (BOOL)shouldChangeTextInRange:(NSRange)range replacementString:(NSString*)text {
    if (text && range.location < static_cast<NSUInteger>(g_linestart)) return NO;
    return [super shouldChangeTextInRange:range replacementString:text];
}

// --- Copy ---

- (void)copy:(id)sender {
    const NSRange selection = [self selectedRange];
    if (selection.length == 0) {
        [self copyAnswer:sender];
        return;
    }
    copiedAt = std::chrono::steady_clock::now();
    [super copy:nil];
    const bool isInTranscript = selection.location + 4 < static_cast<NSUInteger>(g_linestart);
    if (isInTranscript && !([self setting:@"tipscode"] & 1)) [self showCopyTip];
}

- (void)showCopyTip {
    // Stored first: a sheet may not return before it is answered.
    [self setSetting:@"tipscode" to:[self setting:@"tipscode"] | 1];
    [self showSheet:
              @"Tip:  You can copy the previous answer anytime using CMD-c with no text selected.  Give it a "
              @"try!"
                yes:@"Thanks, but don't tell me again!"
                 no:nil
             didEnd:NULL];
}

- (void)copyAnswer:(id)sender {
    [self copySettingsToEngine];
    const std::string answer = calc.PlainAnswer();
    if (answer.empty()) return; // what the pasteboard holds is better than nothing
    copiedAt = std::chrono::steady_clock::now();
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:@[ NSStringPboardType ] owner:nil];
    [board setString:textFromBytes(answer.c_str()) forType:NSStringPboardType];
    NSString* const shown = [@"= " stringByAppendingString:textFromBytes(calc.answer.shown.c_str())];
    const NSRange found = [[self string] rangeOfString:shown options:NSBackwardsSearch];
    if (found.location != NSNotFound) [self flash:NSMakeRange(found.location + 2, found.length - 2)];
}

- (void)show:(NSRange)selection {
    [self setSelectedRange:selection];
    [self display];
    [[self window] flushWindowIfNeeded];
    usleep(FLASH);
}

- (void)flash:(NSRange)answer {
    const NSRange cursor = NSMakeRange([self selectedRange].location, 0);
    for (int i = 0; i < 2; ++i) {
        [self show:answer];
        [self show:cursor];
    }
    [self show:answer];
    [self setSelectedRange:cursor];
}

// --- Clicks ---

// In place of the text view's own menu, which is about spelling.
- (NSMenu*)menuForEvent:(NSEvent*)event {
    const struct {
        NSString* title;
        SEL action;
    } items[] = {{@"Cut", @selector(cutSelection:)},
                 {@"Copy", @selector(copy:)},
                 {@"Copy Answer", @selector(copyAnswer:)},
                 {@"Paste", @selector(paste:)},
                 {@"Select All", @selector(selectAll:)}};
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    for (const auto& item : items) {
        [[menu addItemWithTitle:item.title action:item.action keyEquivalent:@""] setTarget:self];
    }
    return menu;
}

- (void)rightMouseDown:(NSEvent*)event {
    platformPopUpMenu([self menuForEvent:event], event, self);
}

- (void)mouseDown:(NSEvent*)event {
    [self endSearch];
    if (platformTakeEarlyRelease()) {
        [self click:event];
        return;
    }
    NSTimer* const watch = platformWatchForRelease(event);
    if ([event clickCount] == 1 && [self isSelectedAt:event])
        [self clickOrDrag:event];
    else
        [super mouseDown:event];
    [watch invalidate];
}

- (BOOL)isSelectedAt:(NSEvent*)event {
    const CharacterPlace place = characterAt(self, [self convertPoint:[event locationInWindow] fromView:nil]);
    return NSLocationInRange(place.character, [self selectedRange]);
}

// A press on what is selected may begin to drag it, into the entry or to another program.
- (void)clickOrDrag:(NSEvent*)event {
    const NSPoint start = [event locationInWindow];
    for (;;) {
        NSEvent* const next =
            [[self window] nextEventMatchingMask:NSLeftMouseUpMask | NSLeftMouseDraggedMask];
        const NSPoint now = [next locationInWindow];
        if ([next type] == NSLeftMouseUp) {
            [self click:event];
            return;
        }
        if (std::hypot(now.x - start.x, now.y - start.y) <= DRAG_DISTANCE) continue;
        [self dragSelectionWithEvent:event offset:NSZeroSize slideBack:YES];
        return;
    }
}

// --- The selection of the desktop ---

- (void)setSelectedRange:(NSRange)range
                affinity:(NSSelectionAffinity)affinity
          stillSelecting:(BOOL)isSelecting {
    [super setSelectedRange:range affinity:affinity stillSelecting:isSelecting];
    [self markBracket];
    SEL offer = @selector(offerSelection);
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:offer object:nil];
    // When it rests: the answer that blinks when it is copied is no selection.
    if (!isSelecting && range.length > 0) [self performSelector:offer withObject:nil afterDelay:0];
}

- (void)offerSelection {
    const NSRange selection = [self selectedRange];
    if (selection.length > 0) platformOfferSelection([[self string] substringWithRange:selection]);
}

- (NumberMarks)marks {
    const bool hasComma = [self setting:@"european"] != 0;
    const auto mark = static_cast<char16_t>([self setting:@"schar"]);
    const char16_t usual = hasComma ? u'.' : u',';
    const bool isUsual = mark == u',' || mark == u'.';
    NumberMarks marks;
    marks.decimal = hasComma ? u',' : u'.';
    if ([self setting:@"separator"]) marks.grouping = isUsual ? usual : mark;
    return marks;
}

- (NSRange)wordAt:(NSUInteger)place {
    const NSRange paragraph = [[self string] lineRangeForRange:NSMakeRange(place, 0)];
    std::u16string line(paragraph.length, u'\0');
    [[self string] getCharacters:reinterpret_cast<unichar*>(line.data()) range:paragraph];
    const EntryRange word = wordAt(line, place - paragraph.location, [self marks]);
    return NSMakeRange(paragraph.location + word.location, word.length);
}

// Without the prompt and the line's end, which nobody wants to paste.
- (NSRange)lineAt:(NSRange)range {
    NSUInteger start = 0;
    NSUInteger end = 0;
    [[self string] getLineStart:&start end:NULL contentsEnd:&end forRange:range];
    if ([[self string] compare:@"> "
                       options:NSLiteralSearch
                         range:NSMakeRange(start, MIN(2U, end - start))] == NSOrderedSame)
        start += 2;
    return NSMakeRange(start, end - start);
}

// Twice a whole number or name, three times the line; a drag goes on in such steps.
- (NSRange)selectionRangeForProposedRange:(NSRange)range granularity:(NSSelectionGranularity)granularity {
    if (granularity == NSSelectByParagraph) return [self lineAt:range];
    if (granularity != NSSelectByWord || [[self string] length] == 0)
        return [super selectionRangeForProposedRange:range granularity:granularity];
    const NSRange first = [self wordAt:range.location];
    return range.length < 2 ? first : NSUnionRange(first, [self wordAt:NSMaxRange(range) - 1]);
}

// Between which characters a point of the window lies.
- (NSUInteger)insertionPointAt:(NSPoint)point {
    const CharacterPlace place = characterAt(self, [self convertPoint:point fromView:nil]);
    return std::min(place.character + (place.fraction > 0.5 ? 1 : 0), [[self string] length]);
}

// What a click does whose button is up again already: the cursor, a word or a line, as often as it was
// clicked.
- (void)click:(NSEvent*)event {
    const NSUInteger character = [self insertionPointAt:[event locationInWindow]];
    const NSSelectionGranularity units[] = {NSSelectByCharacter, NSSelectByWord, NSSelectByParagraph};
    const NSInteger clicks = std::max<NSInteger>(1, std::min<NSInteger>([event clickCount], 3));
    [[self window] makeFirstResponder:self];
    [self setSelectedRange:[self selectionRangeForProposedRange:NSMakeRange(character, 0)
                                                    granularity:units[clicks - 1]]];
}

// --- Cut, paste, undo ---

// Of what lies in the transcript nothing is removed: it is copied. A selection inside the entry stays as it
// is.
- (void)cut:(id)sender {
    [self endSearch];
    const NSRange selection = [self selectedRange];
    const EntryRange inEntry = [self transcript].SelectedInEntry();
    if (selection.location < static_cast<NSUInteger>(g_linestart)) {
        if (inEntry.length > 0) {
            [self setSelectedRange:NSMakeRange(inEntry.location, inEntry.length)];
            [super cut:nil];
        } else if (selection.length > 0) {
            [super copy:nil];
        }
    }
    [self ProcessResult:nullptr:YES];
}

// As other programs cut. The transcript is read only: of what lies there nothing is removed.
- (void)cutSelection:(id)sender {
    [self endSearch];
    if ([self selectedRange].location < static_cast<NSUInteger>(g_linestart)) {
        [self cut:sender];
        return;
    }
    [super cut:nil];
    [self ProcessResult:nullptr:YES];
}

// An entry is one line, in the history and in scripts: line ends between the lines of a text separate
// statements, and those around them are left out.
static NSString* asOneLine(NSString* text) {
    NSMutableCharacterSet* const lineEnds = [[[NSCharacterSet newlineCharacterSet] mutableCopy] autorelease];
    [lineEnds addCharactersInString:@"\u2028\u2029"]; // GNUstep's set has them not
    if ([text rangeOfCharacterFromSet:lineEnds].location == NSNotFound) return text;
    NSMutableArray* const lines = [NSMutableArray array];
    for (NSString* const piece in [text componentsSeparatedByCharactersInSet:lineEnds]) {
        NSString* const line =
            [piece stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
        if ([line length] > 0) [lines addObject:line];
    }
    return [lines componentsJoinedByString:@"; "];
}

// Text from another place, in place of the selection or, when that is read only, at the end of the entry. NO
// when the entry has no room for all of it.
- (BOOL)insertForeignText:(NSString*)text {
    [self endSearch];
    TypedSigns signs; // of pages and letters
    const std::string read = signs.Read(bytesOf(asOneLine(text)));
    NSString* const line = [[[NSString alloc] initWithBytes:read.data()
                                                     length:read.size()
                                                   encoding:NSUTF8StringEncoding] autorelease];
    if ([self selectedRange].location < static_cast<NSUInteger>(g_linestart)) [self gotoEnd];
    // Part of a text would be another calculation.
    if (![self transcript].HasRoomFor([line length])) {
        [self updateStatusbar:"The text is too long for an entry."];
        return NO;
    }
    [self insertText:line];
    [self ProcessResult:nullptr:YES];
    return YES;
}

// Whatever brings text in, a paste, a drop, a service or the middle button of the mouse: it comes in plain.
- (BOOL)readSelectionFromPasteboard:(NSPasteboard*)board type:(NSString*)type {
    NSString* const text = [board stringForType:NSStringPboardType];
    if (!text && [board availableTypeFromArray:@[ NSStringPboardType ]]) {
        [self updateStatusbar:NOT_FETCHED]; // so much of it, say, that its owner gave up
    }
    return text && [self insertForeignText:text];
}

// What is dragged out of the transcript is copied. GNUstep would move it, which the transcript does not
// allow.
- (BOOL)performDragOperation:(id<NSDraggingInfo>)sender {
    const NSRange dragged = [self selectedRange];
    if ([sender draggingSource] != self || dragged.location >= static_cast<NSUInteger>(g_linestart))
        return [super performDragOperation:sender];
    NSString* const text = [[self string] substringWithRange:dragged];
    [self setSelectedRange:NSMakeRange([self insertionPointAt:[sender draggingLocation]], 0)];
    return [self insertForeignText:text];
}

// The middle button, where it was clicked. GNUstep's own pastes what was selected here, at the release, which
// it loses when that comes at once.
- (void)otherMouseUp:(NSEvent*)event {
}

- (void)otherMouseDown:(NSEvent*)event {
    NSString* const text = platformSelection();
    if (!text) [self updateStatusbar:NOT_FETCHED];
    if ([text length] == 0) return;
    [self setSelectedRange:NSMakeRange([self insertionPointAt:[event locationInWindow]], 0)];
    [self insertForeignText:text];
}

- (void)paste:(id)sender {
    [self readSelectionFromPasteboard:[NSPasteboard generalPasteboard] type:NSStringPboardType];
}

- (void)undo:(id)sender {
    [self endSearch];
    const NSUInteger place = [self selectedRange].location;
    const bool isEmpty = place == static_cast<NSUInteger>(g_linestart) && place == [[self string] length];
    if (isEmpty) return;
    if ([[self undoManager] canUndo]) [[self undoManager] undo];
    [self ProcessResult:nullptr:YES];
}

// Also of an entry that Escape, a walk through the history or New left empty.
- (void)undoChange:(id)sender {
    [self endSearch];
    if ([[self undoManager] canUndo]) [[self undoManager] undo];
    [self ProcessResult:nullptr:YES];
}

// Nothing can be redone once something was written above the entry.
- (void)redo:(id)sender {
    [self endSearch];
    if ([[self undoManager] canRedo]) [[self undoManager] redo];
    [self ProcessResult:nullptr:YES];
}

@end
