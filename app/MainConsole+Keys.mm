// SPDX-License-Identifier: MIT
//
// What the keys do. Passing a key on means: the text view does with it what text views do.
#import "MainConsole.h"

#import "PelmoAppDelegate.h"
#import "Platform.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

// With one of these a key press edits or moves instead of typing; so does a function key.
static const NSUInteger EDITING_FLAGS = NSCommandKeyMask | NSControlKeyMask;

static_assert(SHIFT_KEY == NSShiftKeyMask && CONTROL_KEY == NSControlKeyMask &&
                  COMMAND_KEY == NSCommandKeyMask && FUNCTION_KEY == NSFunctionKeyMask,
              "the flags are AppKit's");

KeyPress keyPress(NSEvent* event) {
    NSString* const plain = [event charactersIgnoringModifiers];
    NSString* const typed = [event characters];
    return {platformKeyCode(event),
            [plain length] == 1 ? [plain characterAtIndex:0] : static_cast<unichar>(0),
            [typed length] > 0 ? [typed characterAtIndex:0] : static_cast<unichar>(0), [event modifierFlags]};
}

@implementation MainConsole (Keys)

// The result of the entry as it now is, in the status line.
- (void)live {
    [self ProcessResult:nullptr:YES];
}

- (void)pass:(NSEvent*)event {
    [self superKeyDown:event];
    [self live];
}

- (NSUInteger)lineStart {
    return static_cast<NSUInteger>(std::max(g_linestart, 0));
}

- (void)keyDown:(NSEvent*)event {
    const KeyPress press = keyPress(event);
    prevKey = keyCode;
    keyCode = press.code & 0xffffU;
    // Control-A goes to the start of the entry, as Control with the left arrow does.
    if (keyCode == KEY_A && (press.held & CONTROL_KEY)) keyCode = KEY_LEFT;
    const KeyAction action = actionOf(press);
    switch (action) {
    case KeyAction::Commit:
        update_match_str = 0;
        [self ProcessResult:nullptr:NO];
        break;
    case KeyAction::Complete: [self completeName]; break;
    case KeyAction::Escape: [self escape]; break;
    case KeyAction::Backspace: [self guardedDelete:event passing:false]; break;
    case KeyAction::Delete: [self forwardDelete:event]; break;
    case KeyAction::Home: [self goHome:event]; break;
    case KeyAction::End: [self goToLineEnd:event]; break;
    case KeyAction::Left: [self goLeft:event]; break;
    case KeyAction::Right: [self pass:event]; break;
    case KeyAction::Up:
    case KeyAction::Down: [self walkHistory:action == KeyAction::Up]; break;
    default: [self type:event];
    }
}

// --- Completion ---

// The partial word runs back over letters, digits and '_': "1+si" completes "si".
- (NSRange)rangeForUserCompletion {
    NSString* const text = [self string];
    const NSUInteger end = [self selectedRange].location;
    NSUInteger start = end;
    while (start > [self lineStart]) {
        const unichar c = [text characterAtIndex:start - 1];
        if (!(c < 0x80 && (isalnum(c) || c == '_'))) break;
        start--;
    }
    return NSMakeRange(start, end - start);
}

// Puts the rest of the next name in place of the selection and selects it, so that the next Tab replaces it.
- (void)completeName {
    const NSUInteger place = [self selectedRange].location;
    if (place > [self lineStart]) {
        if (prevKey != KEY_TAB) funcs.TabCompleteReset();
        NSString* const word = [[self string] substringWithRange:[self rangeForUserCompletion]];
        snprintf(prompt, sizeof prompt, "%s", [word UTF8String]);
        const Function* const candidate = funcs.FindTabComplete(prompt);
        NSString* proposal = @"";
        if (candidate) {
            const size_t known = std::min(strlen(prompt), strlen(candidate->name));
            proposal = [textFromBytes(candidate->name + known) stringByAppendingString:@"()"];
        }
        [self replaceSelection:proposal];
        [self setSelectedRange:NSMakeRange(place, [proposal length])];
    }
    [self live];
}

// --- Escape and deleting ---

- (void)escape {
    [self getPromptText];
    const NSRange entry = NSMakeRange([self lineStart], [[self string] length] - [self lineStart]);
    if (entry.length == 0 && [self selectedRange].length == 0) {
        [myAppDelegate clickedAppStatusItem:self];
        [self live];
        return;
    }
    [self clearPrompt];
    calc.history.HistLocReset();
    update_match_str = 0;
    [self live];
}

- (void)guardedDelete:(NSEvent*)event passing:(bool)mayPass {
    const NSRange selection = [self selectedRange];
    const NSUInteger start = [self lineStart];
    bool passes = true;
    if (selection.location <= start && !(selection.location == start && selection.length > 0)) {
        if (NSMaxRange(selection) > start) {
            [self setSelectedRange:NSMakeRange(start, NSMaxRange(selection) - start)];
        } else {
            if (selection.location != start) [self gotoEnd];
            passes = mayPass;
        }
    }
    if (passes)
        [self pass:event];
    else
        [self live];
}

- (void)forwardDelete:(NSEvent*)event {
    const NSRange selection = [self selectedRange];
    const NSUInteger start = [self lineStart];
    bool mayPass = true;
    if (selection.location < start) {
        if (NSMaxRange(selection) <= start) {
            [self gotoEnd];
            mayPass = false;
        } else {
            [self setSelectedRange:NSMakeRange(start, NSMaxRange(selection) - start)];
        }
    }
    [self guardedDelete:event passing:mayPass];
}

// --- Moving ---

- (void)goHome:(NSEvent*)event {
    const NSUInteger start = [self lineStart];
    const NSUInteger end = NSMaxRange([self selectedRange]);
    const bool extends = ([event modifierFlags] & NSShiftKeyMask) && end > start;
    [self setSelectedRange:NSMakeRange(start, extends ? end - start : 0)];
}

- (void)goToLineEnd:(NSEvent*)event {
    const NSUInteger from = [self selectedRange].location;
    if ([event modifierFlags] & NSShiftKeyMask)
        [self setSelectedRange:NSMakeRange(from, [[self string] length] - from)];
    else
        [self gotoEnd];
}

// The cursor does not enter the prompt.
- (void)goLeft:(NSEvent*)event {
    const NSUInteger place = [self selectedRange].location;
    if (place + 2 >= [self lineStart] && place <= [self lineStart])
        [self live];
    else
        [self pass:event];
}

// --- History ---

// With the cursor at the start of the entry the arrows walk through the whole history, behind it through the lines
// that begin with what was typed.
- (void)walkHistory:(bool)up {
    if ([self selectedRange].location <= [self lineStart]) {
        matching_enable = 0;
    } else if (matching_enable && !update_match_str) {
        [self getPromptText];
        snprintf(matchstr, sizeof matchstr, "%s", prompt);
        calc.history.HistLocReset();
        update_match_str = 1;
    }
    if (up)
        [self walkUp];
    else
        [self walkDown];
    [self live];
}

- (void)walkUp {
    const bool found = matching_enable ? calc.history.HistLocUpWithMatch(matchstr) : calc.history.HistLocUp();
    if (found) [self recallHistory];
}

- (void)walkDown {
    if (matching_enable) {
        if (calc.history.HistLocDownWithMatch(matchstr)) [self recallHistory];
    } else if (calc.history.HistLocDown()) {
        [self recallHistory];
    } else {
        [self recallHistory:0]; // past the newest: there is no such line, so the entry is emptied
    }
}

// --- Typing ---

- (void)type:(NSEvent*)event {
    update_match_str = 0;
    matching_enable = 1;
    NSString* const key = [event charactersIgnoringModifiers];
    const NSUInteger flags = [event modifierFlags];
    if ((flags & NSCommandKeyMask) && [key isEqualToString:@"c"] && [self selectedRange].length == 0) {
        [self copy:self];
        return;
    }
    if ((flags & NSCommandKeyMask) && !(flags & NSFunctionKeyMask)) {
        [self live]; // no menu item has the key, and GNUstep would type its character
        return;
    }
    if ([self selectedRange].location < [self lineStart] && !(flags & (EDITING_FLAGS | NSFunctionKeyMask)))
        [self gotoEnd];
    NSString* const typed = [event characters];
    const bool isTyped = [typed length] > 0 && !(flags & EDITING_FLAGS);
    if (isTyped) [self applyAnsRules:[typed characterAtIndex:0]];
    [self pass:event];
}

// An entry is one line: Control-O and its like open no other.
- (void)insertNewline:(id)sender {
    (void)sender;
}

- (void)insertNewlineIgnoringFieldEditor:(id)sender {
    (void)sender;
}

- (void)insertLineBreak:(id)sender {
    (void)sender;
}

// An operator typed first applies to the previous answer. A minus can also be a sign: a second one changes over
// between "-" and "ans-", and which comes first is a setting.
- (void)applyAnsRules:(unichar)c {
    const NSRange selection = [self selectedRange];
    const NSUInteger start = [self lineStart];
    if (selection.length > 0) return;
    if (selection.location == start) {
        const bool isMinus = c == '-' && [self setting:@"doublenegans"] == 0;
        if (c == '+' || c == '*' || c == '/' || isMinus) [self insertText:@"ans"];
    } else if (c == '-' && selection.location == start + 1) {
        [self getPromptText];
        if (prompt[0] == '-') [self replaceHead:1 with:@"ans"];
    } else if (c == '-' && selection.location == start + 4) {
        [self getPromptText];
        if (strncmp(prompt, "ans-", 4) == 0) [self replaceHead:4 with:@""];
    }
}

- (void)replaceHead:(NSUInteger)length with:(NSString*)text {
    [self setSelectedRange:NSMakeRange([self lineStart], length)];
    [self replaceSelection:text];
    [self setSelectedRange:NSMakeRange([self lineStart] + [text length], 0)];
}

@end
