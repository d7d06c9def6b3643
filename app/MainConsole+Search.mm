// SPDX-License-Identifier: MIT
//
// Finding a text while it is typed. The search knows what keys mean; what it finds is shown here.
#import "MainConsole.h"

#import "NumberField.h"

static NSString* stringOf(const std::u16string& text) {
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.data()) length:text.size()];
}

@implementation MainConsole (Search)

- (void)beginSearch:(Search::In)where {
    const NSRange selection = [self selectedRange];
    NSString* const entry = [[self string] substringFromIndex:static_cast<NSUInteger>(g_linestart)];
    search.Begin(where, bytesOf(entry), {selection.location, selection.length});
    [self tellSearch];
}

- (void)tellSearch {
    [static_cast<NumberField*>(answerStatus) setShowsEnd:YES];
    [answerStatus setStringValue:stringOf(search.Text())];
}

- (void)showFound {
    if (search.Where() == Search::In::History) {
        const int line = search.FindIn(calc.history);
        if (line > 0) [self recallHistory:line];
    } else {
        std::u16string text([[self string] length], u'\0');
        [[self string] getCharacters:reinterpret_cast<unichar*>(text.data())];
        if (const auto found = search.FindIn(text)) {
            [self setSelectedRange:NSMakeRange(found->location, found->length)];
            [self scrollRangeToVisible:[self selectedRange]];
        }
    }
    [self tellSearch];
}

- (BOOL)searchTakes:(NSEvent*)event {
    if (search.Where() == Search::In::Nothing) return NO;
    const Search::Step step = search.Press(keyPress(event));
    if (step == Search::Step::Look) {
        [self showFound];
        return YES;
    }
    if (step == Search::Step::GiveUp) [self giveUpSearch];
    [self endSearch];
    return step != Search::Step::Leave;
}

- (void)giveUpSearch {
    const EntryRange selection = search.Selection();
    if (search.Where() == Search::In::History) {
        [self clearPrompt];
        if (!search.Draft().empty()) [self insertText:@(search.Draft().c_str())];
    }
    [self setSelectedRange:NSMakeRange(selection.location, selection.length)];
    [self scrollRangeToVisible:[self selectedRange]];
}

- (void)endSearch {
    if (search.Where() == Search::In::Nothing) return;
    search.End();
    [static_cast<NumberField*>(answerStatus) setShowsEnd:NO];
    [self ProcessResult:nullptr:YES];
}

@end
