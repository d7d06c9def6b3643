// SPDX-License-Identifier: MIT
//
// Writing into the transcript and into the entry.
#import "MainConsole.h"

#import "LackOfMemory.h"
#import "Platform.h"
#import "Termination.h"

#include <algorithm>

static NSString* const PROMPT = @"> ";

// Characters of the transcript: so that the memory of a day's scripts has an end, what is more is shortened
// to the second number. A script that is saved has the older entries, too.
static const NSUInteger MOST_TEXT = 500000;
static const NSUInteger KEPT_TEXT = 400000;

@implementation MainConsole (View)

- (NSRange)entryRange {
    const NSUInteger length = [[self string] length];
    const NSUInteger start = std::min(static_cast<NSUInteger>(std::max(g_linestart, 0)), length);
    return NSMakeRange(start, length - start);
}

- (void)gotoEnd {
    const NSRange end = NSMakeRange([[self string] length], 0);
    [self setSelectedRange:end];
    [self scrollRangeToVisible:end];
}

// Asking first makes the change one that undo knows, and keeps it out of the transcript.
- (void)replaceSelection:(NSString*)text {
    const NSRange place = [self selectedRange];
    [self breakUndoCoalescing];
    if (![self shouldChangeTextInRange:place replacementString:text]) return;
    [self replaceCharactersInRange:place withString:text];
    [self didChangeText];
}

// What was typed before cannot be undone any more: the places it stood at have moved or are read only.
- (void)forgetUndo {
    [[self undoManager] removeAllActions];
}

- (BOOL)isClear {
    return [[self string] isEqualToString:PROMPT];
}

- (void)clearConsole {
    [self setString:PROMPT];
    record.Clear();
    [self forgetUndo];
    g_linestart = static_cast<int32_t>([PROMPT length]);
    [self setSelectedRange:NSMakeRange([PROMPT length], 0)];
}

- (void)clearPrompt {
    [self setSelectedRange:[self entryRange]];
    if ([self selectedRange].length > 0) [self delete:nil];
}

- (void)replacePrompt:(const char*)text {
    [self setSelectedRange:[self entryRange]];
    [self insertText:textFromBytes(text)];
    [self gotoEnd];
}

- (void)append:(NSAttributedString*)text {
    endWhenMemoryIsLow();
    const NSRange end = NSMakeRange([[self string] length], 0);
    [self breakUndoCoalescing];
    if (![self shouldChangeTextInRange:end replacementString:[text string]]) return;
    [[self textStorage] replaceCharactersInRange:end withAttributedString:text];
    [self didChangeText];
    [self forgetUndo];
    [self shortenTranscript];
    [self gotoEnd];
}

// The new first line is an entry, or at least a whole line.
- (void)shortenTranscript {
    NSString* const text = [self string];
    if ([text length] <= MOST_TEXT) return;
    const NSRange kept = NSMakeRange([text length] - KEPT_TEXT, KEPT_TEXT);
    NSRange end = [text rangeOfString:[@"\n" stringByAppendingString:PROMPT] options:0 range:kept];
    if (end.location == NSNotFound) end = [text rangeOfString:@"\n" options:0 range:kept];
    if (end.location == NSNotFound) return;
    const NSUInteger surplus = end.location + 1;
    [[self textStorage] deleteCharactersInRange:NSMakeRange(0, surplus)];
    g_linestart = std::max(g_linestart - static_cast<int32_t>(surplus), 0);
}

- (void)append:(NSString*)text as:(TextKind)kind {
    [self append:[self text:text as:kind]];
}

- (void)addScriptOutput:(const std::string&)text as:(TextKind)kind {
    if (!scriptOutput) scriptOutput = [[NSMutableAttributedString alloc] init];
    [scriptOutput appendAttributedString:[self text:textFromBytes(text.c_str()) as:kind]];
}

- (void)showScriptOutput {
    if ([scriptOutput length] == 0) return;
    NSAttributedString* const text = [scriptOutput autorelease];
    scriptOutput = nil;
    [self append:text];
}

- (void)insertPrompt {
    [self append:[@"\n" stringByAppendingString:PROMPT] as:TextKind::Typed];
    g_linestart = static_cast<int32_t>([[self string] length]);
}

- (void)insertWithNewPrompt:(const char*)text {
    [self append:[@"\n" stringByAppendingString:textFromBytes(text)] as:TextKind::Output];
    [self insertPrompt];
}

- (void)insertWithoutPrompt:(const char*)text {
    [self append:textFromBytes(text) as:TextKind::Output];
}

- (void)leaveEmptyPrompt {
    if ([scriptOutput length] > 0) return;
    const NSUInteger length = [[self string] length];
    if (length == static_cast<NSUInteger>(g_linestart) && [[self string] hasSuffix:PROMPT])
        [self insertWithoutPrompt:"\n"];
}

- (void)insertPrePrompt:(const char*)text:(int32_t)backCount {
    [self insertTextPrePrompt:textFromBytes(text):backCount];
}

- (void)insertTextPrePrompt:(NSString*)text:(int32_t)backCount {
    [self showScriptOutput];
    const auto place = static_cast<NSUInteger>(std::max(g_linestart - backCount, 0));
    [self replaceCharactersInRange:NSMakeRange(place, 0) withString:text];
    [self show:NSMakeRange(place, [text length]) as:TextKind::Output];
    [self forgetUndo];
    g_linestart += static_cast<int32_t>([text length]);
    [self gotoEnd];
}

- (NSString*)typedEntry {
    NSString* const entry = [[self string] substringWithRange:[self entryRange]];
    NSCharacterSet* const lineEnds = [NSCharacterSet newlineCharacterSet];
    return [[entry stringByTrimmingCharactersInSet:lineEnds] stringByReplacingOccurrencesOfString:@"\n"
                                                                                       withString:@" "];
}

- (Transcript)transcript {
    const NSRange entry = [self entryRange];
    std::u16string text(entry.length, u'\0');
    [[self string] getCharacters:reinterpret_cast<unichar*>(text.data()) range:entry];
    return {text, {[self selectedRange].location, [self selectedRange].length}};
}

- (BOOL)getPromptText {
    return [self transcript].FetchPrompt();
}

- (void)recallHistory:(int)index {
    const char* const line = calc.history.GetHistoryStr(index);
    if (!line)
        [self clearPrompt];
    else if (line[0] != '\0')
        [self replacePrompt:line];
}

- (void)recallHistory {
    [self recallHistory:-1];
}

// Whoever waits asks some thousand times, and nobody else releases what the events leave.
- (int)checkInterruptEvent {
    @autoreleasepool {
        return [self findInterruptEvent];
    }
}

- (int)findInterruptEvent {
    if (terminationRequest.isAsked) return 1;
    if (platformCloseIsWaiting([self window])) return 1; // the window closes when what runs has ended
    NSEvent* const event = [NSApp nextEventMatchingMask:NSKeyDownMask
                                              untilDate:[NSDate date]
                                                 inMode:NSDefaultRunLoopMode
                                                dequeue:YES];
    return event && isInterrupt(keyPress(event)) ? 1 : 0;
}

- (void)updateStatusbar:(const char*)text {
    shownNews.clear();
    NSString* const line = textFromBytes(text);
    const NSRange end = [line rangeOfString:@"\n" options:NSBackwardsSearch | NSAnchoredSearch];
    [answerStatus setStringValue:end.location == NSNotFound ? line : [line substringToIndex:end.location]];
    [self showHint:@""];
}

- (void)showHint:(NSString*)hint {
    [[answerStatus cell] setPlaceholderString:hint];
    [answerStatus setNeedsDisplay:YES];
}

@end
