// SPDX-License-Identifier: MIT
//
// The keys: Transcript decides what they do, which is carried out here.
#import "MainConsole.h"

#import "LackOfMemory.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

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

static NSRange rangeOf(const EntryRange& range) {
    return NSMakeRange(range.location, range.length);
}

@implementation MainConsole (Keys)

// The result of the entry as it now is, in the status line.
- (void)live {
    [self ProcessResult:nullptr:YES];
}

- (void)keyDown:(NSEvent*)event {
    endWhenMemoryIsLow();
    if ([self searchTakes:event]) return;
    const bool minusIsSign = [self setting:@"doublenegans"] != 0;
    const KeyEffect effect = [self transcript].Press(keyPress(event), minusIsSign);
    if (effect.goesToEnd) [self gotoEnd];
    if (effect.select) [self setSelectedRange:rangeOf(*effect.select)];
    [self edit:effect];
    if (effect.selectAfter) [self setSelectedRange:rangeOf(*effect.selectAfter)];
    [self finish:effect with:event];
}

- (void)edit:(const KeyEffect&)effect {
    NSString* const text = textFromBytes(effect.text.c_str());
    switch (effect.edit) {
    case KeyEffect::Edit::None: break;
    case KeyEffect::Edit::Type: [self insertText:text]; break;
    case KeyEffect::Edit::Replace: [self replaceSelection:text]; break;
    case KeyEffect::Edit::Clear: [self clearPrompt]; break;
    case KeyEffect::Edit::Recall: [self recallHistory]; break;
    }
}

- (void)finish:(const KeyEffect&)effect with:(NSEvent*)event {
    switch (effect.then) {
    case KeyEffect::Then::Nothing: return;
    case KeyEffect::Then::Commit: [self ProcessResult:nullptr:NO]; return;
    case KeyEffect::Then::Copy: [self copy:self]; return;
    case KeyEffect::Then::Find: [self beginSearch:Search::In::Transcript]; return;
    case KeyEffect::Then::FindEarlier: [self beginSearch:Search::In::History]; return;
    case KeyEffect::Then::Controls: [[self window] makeFirstResponder:ctrlBase]; return;
    case KeyEffect::Then::MenuBar: platformOpenMenuBar([self window]); return;
    case KeyEffect::Then::Hide: [myAppDelegate clickedAppStatusItem:self]; break;
    case KeyEffect::Then::Pass: [super keyDown:event]; break;
    case KeyEffect::Then::Preview: break;
    }
    [self live];
}

- (NSRange)rangeForUserCompletion {
    return rangeOf([self transcript].PartialWord());
}

// An entry is one line: Control-O and its like open no other.
- (void)insertNewline:(id)sender {
}

- (void)insertNewlineIgnoringFieldEditor:(id)sender {
}

- (void)insertLineBreak:(id)sender {
}

@end
