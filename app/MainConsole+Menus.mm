// SPDX-License-Identifier: MIT
//
// Display base, angle mode, the size of the text, and the lists of variables and functions.
#import "MainConsole.h"

#import "NameListPanel.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

// Longer definitions show as their heads in the list of functions.
static const NSUInteger LONGEST_ITEM = 32;

static const int BASES[] = {2, 10, 16}; // of the tags and the segments 0, 1, 2

static NSInteger segmentOf(int base) {
    if (base == 2) return 0;
    return base == 10 ? 1 : 2;
}

@implementation MainConsole (Menus)

// Typing goes on in the entry after a click on a control.
- (void)takeKeys {
    [[self window] makeFirstResponder:self];
}

- (void)menuChangeBase:(id)sender {
    [self endSearch];
    const NSInteger tag = [sender tag];
    if (tag >= 0 && tag <= 2) [self setDisplayBase:BASES[tag]:NO];
}

- (void)clickedChangeBase:(id)sender {
    [self endSearch];
    const NSInteger segment = [sender selectedSegment];
    const bool isShifted = ([[NSApp currentEvent] modifierFlags] & NSShiftKeyMask) != 0;
    if (segment >= 0 && segment <= 2) [self setDisplayBase:BASES[segment]:isShifted];
    [self takeKeys];
}

- (BOOL)showsAgainIn:(int)base {
    if (calc.answer.shown.empty() || g_linestart < 3) return NO;
    return g_linestart == prevgis ? base != prevbase : base != [self setting:@"dispbase"];
}

- (void)showAnswerIn:(int)base {
    // The entry is as it was typed, in the user's notation already.
    const std::string line = calc.answer.entry + " = " + calc.AnswerIn(base) + "\n";
    [self insertPrePrompt:line.c_str():3];
}

- (void)setDisplayBase:(int)base:(BOOL)oneOff {
    const int stored = [self setting:@"dispbase"];
    if ([self showsAgainIn:base]) [self showAnswerIn:base];
    prevgis = g_linestart;
    prevbase = base;
    if (oneOff) {
        [ctrlBase setSelectedSegment:segmentOf(stored)];
        return;
    }
    [self setSetting:@"dispbase" to:base];
    [menuDispBin setState:base == 2 ? NSOnState : NSOffState];
    [menuDispDec setState:base == 10 ? NSOnState : NSOffState];
    [menuDispHex setState:base == 16 ? NSOnState : NSOffState];
    [ctrlBase setSelectedSegment:segmentOf(base)];
    [self saveShown];
}

// While a script runs its changes are written a second later, all together.
- (void)saveShown {
    if (![self isReplaying]) [self saveSettings];
    [self ProcessResult:nullptr:YES];
}

- (void)clickedChangeMode:(id)sender {
    const NSInteger segment = [sender selectedSegment];
    if (segment == 0 || segment == 1) [self setDegreeMode:segment == 0];
    [self takeKeys];
}

- (void)setDegreeMode:(int)degrees {
    [self setSetting:@"degmode" to:degrees];
    [ctrlDegMode setSelectedSegment:degrees == 1 ? 0 : 1];
    [self saveShown];
}

// --- The size of the text ---

static const CGFloat TEXT_SIZES[] = {6, 8, 9, 10, 11, 12, 13, 14, 16, 18, 20, 24, 28, 32, 40, 48, 64, 80, 96};

- (void)setTextSize:(CGFloat)points {
    [self useFont:[NSFont fontWithName:[[self font] fontName] size:points]];
}

// What the font panel says.
- (void)changeConsoleFont:(id)manager {
    [self useFont:[manager convertFont:[self font]]];
}

- (void)useFont:(NSFont*)font {
    if (!font) return;
    [self setFont:font];
    [self fitToScrollView];
    [self scrollRangeToVisible:[self selectedRange]];
    [self saveSettings];
}

- (void)makeTextBigger:(id)sender {
    const CGFloat now = [[self font] pointSize];
    const CGFloat* const next = std::upper_bound(std::begin(TEXT_SIZES), std::end(TEXT_SIZES), now);
    if (next != std::end(TEXT_SIZES)) [self setTextSize:*next];
}

- (void)makeTextSmaller:(id)sender {
    const CGFloat now = [[self font] pointSize];
    const CGFloat* const here = std::lower_bound(std::begin(TEXT_SIZES), std::end(TEXT_SIZES), now);
    if (here != std::begin(TEXT_SIZES)) [self setTextSize:here[-1]];
}

- (void)resetTextSize:(id)sender {
    [self setTextSize:USUAL_TEXT_SIZE];
}

// Gives the pop-up button these titles, an empty one being a separator. What stays is left alone: a list of
// thousands is refreshed after every entry.
static void setTitles(NSPopUpButton* button, NSArray* titles) {
    NSMenu* const menu = [button menu];
    [menu setMenuChangedMessagesEnabled:NO];
    for (NSUInteger i = 0; i < [titles count]; ++i) {
        NSString* const title = [titles objectAtIndex:i];
        const NSInteger index = static_cast<NSInteger>(i);
        const bool isNew = index >= [menu numberOfItems];
        NSMenuItem* const present = isNew ? nil : [menu itemAtIndex:index];
        const bool isSeparator = [title length] == 0;
        if (present && isSeparator == [present isSeparatorItem]) {
            if (!isSeparator && ![[present title] isEqualToString:title]) [present setTitle:title];
            continue;
        }
        if (present) [menu removeItemAtIndex:index];
        if (isSeparator)
            [menu insertItem:[NSMenuItem separatorItem] atIndex:index];
        else
            [menu insertItemWithTitle:title action:NULL keyEquivalent:@"" atIndex:index];
    }
    for (NSInteger i = [menu numberOfItems]; i > static_cast<NSInteger>([titles count]); --i) {
        [menu removeItemAtIndex:i - 1];
    }
    [menu setMenuChangedMessagesEnabled:YES];
    [button selectItemAtIndex:0];
}

- (void)populateVarsMenu {
    char value[FORMAT_SIZE];
    NSMutableArray* const titles = [NSMutableArray arrayWithObject:@"Vars"];
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        qtoascii(*variable->value, value, 10, calc.sciMode, '\0');
        calc.ProcessStringEuropean(value);
        [titles addObject:[NSString stringWithFormat:@"%s\t%s", variable->text, value]];
    }
    setTitles(menuVars, titles);
}

- (void)populateFuncMenu {
    char text[TEXT_SIZE];
    NSMutableArray* const titles = [NSMutableArray array]; // the last one first, the separator empty
    bool isSeparated = false;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        function->FuncToStr(text);
        NSString* title = textFromBytes(text);
        const NSRange equals = [title rangeOfString:@"="];
        if ([title length] > LONGEST_ITEM && equals.location != NSNotFound) {
            title = [[title substringToIndex:NSMaxRange(equals)] stringByAppendingString:@" ..."];
        }
        if (equals.location != NSNotFound && !isSeparated) {
            [titles addObject:@""];
            isSeparated = true;
        }
        [titles addObject:title];
    }
    [titles addObject:@"Func"];
    setTitles(menuFuncs, [[titles reverseObjectEnumerator] allObjects]);
}

// In place of the selection, or at the end when the cursor is in the transcript. As if typed: it can be
// undone.
- (void)typeName:(NSString*)text {
    [self endSearch];
    if ([self selectedRange].location < static_cast<NSUInteger>(g_linestart)) [self gotoEnd];
    [self insertText:text];
    [self ProcessResult:nullptr:YES];
    [self takeKeys];
}

- (void)clickedVarsMenu:(id)sender {
    NSString* const title = [sender titleOfSelectedItem];
    if (title) [self typeName:[[title componentsSeparatedByString:@"\t"] objectAtIndex:0]];
}

- (void)clickedFuncMenu:(id)sender {
    NSString* const title = [sender titleOfSelectedItem];
    if (!title) return;
    NSString* const call = [[title componentsSeparatedByString:@"="] objectAtIndex:0];
    const NSUInteger open = [call rangeOfString:@"("].location;
    NSCharacterSet* const ends = [NSCharacterSet characterSetWithCharactersInString:@",)"];
    const NSUInteger end = [call rangeOfCharacterFromSet:ends].location;
    // As it has to be typed: with a decimal comma a point stands between arguments.
    std::string typed = [call UTF8String];
    calc.ProcessStringEuropean(typed.data());
    [self typeName:textFromBytes(typed.c_str())];
    if (open == NSNotFound || end == NSNotFound || end <= open) return;
    // Counted from the start of the entry, wherever the call went in: the parameter is selected in an entry
    // that the call begins.
    [self setSelectedRange:NSMakeRange(static_cast<NSUInteger>(g_linestart) + open + 1, end - open - 1)];
}

// --- Help ---

- (void)listNames:(const std::vector<NameRow>&)rows title:(NSString*)title {
    [nameList close];
    [nameList release];
    nameList = [NameListPanel newPanel:title rows:rows console:self];
    [nameList makeKeyAndOrderFront:nil];
}

- (void)showFunctions:(id)sender {
    [self listNames:functionRows() title:@"Functions"];
}

- (void)showUnits:(id)sender {
    [self listNames:unitRows() title:@"Units"];
}

@end
