// SPDX-License-Identifier: MIT
//
// Numbers that do not fit the status line.
#import "NumberField.h"
#import "console_fixture.h"

#import <objc/runtime.h>

namespace {

const std::string ELLIPSIS = "\u2026";

class NumberInStatusLine : public ConsoleTest {
protected:
    NumberField* Field() const {
        Ivar const variable = class_getInstanceVariable([MainConsole class], "answerStatus");
        return object_getIvar(console, variable);
    }

    std::string Seen() const { return [[Field() shownText] UTF8String]; }

    CGFloat WidthOf(const std::string& text) const {
        NSDictionary* const font = [NSDictionary dictionaryWithObject:[Field() font]
                                                               forKey:NSFontAttributeName];
        return [[NSString stringWithUTF8String:text.c_str()] sizeWithAttributes:font].width;
    }

    static bool EndsWith(const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
    }

    void Resize(CGFloat width) {
        NSRect frame = [window frame];
        frame.size.width = width;
        [window setFrame:frame display:YES];
    }
};

TEST_F(NumberInStatusLine, ShowsAllOfWhatFits) {
    Type("2+3");
    EXPECT_EQ(Seen(), "ans = 5");
}

TEST_F(NumberInStatusLine, MarksWhereDigitsAreLeftOut) {
    Enter("sigfigs 100");
    Type("1/3");
    EXPECT_EQ(StatusLine(), "ans = 0." + std::string(100, '3'));
    const std::string cut = Seen();
    EXPECT_TRUE(EndsWith(cut, "3" + ELLIPSIS)) << cut;
    EXPECT_EQ(StatusLine().find(cut.substr(0, cut.size() - ELLIPSIS.size())), 0U);
    EXPECT_LE(WidthOf(cut), [Field() bounds].size.width);
    EXPECT_GT(WidthOf(cut), [Field() bounds].size.width * 0.8);
}

TEST_F(NumberInStatusLine, KeepsTheScaleOfANumber) {
    const struct {
        const char* mode;
        const char* entry;
        const char* end;
    } cases[] = {{"scimode always", "1/3e45", "3\u2026e-46"},
                 {"scimode always", "10^400/3", "3\u2026e399"},
                 {"scimode prefix", "10^5/3", "3\u2026k"},
                 {"european on", "10^400/3", "3\u2026e399"},
                 {"display hex", "0x123456789^40-1", "\u2026"}};
    Enter("sigfigs 100");
    for (const auto& one : cases) {
        Enter(one.mode);
        Type(one.entry);
        EXPECT_TRUE(EndsWith(Seen(), one.end)) << Seen();
        EXPECT_LE(WidthOf(Seen()), [Field() bounds].size.width);
        [console clearPrompt];
    }
}

TEST_F(NumberInStatusLine, FollowsTheSizeOfTheWindow) {
    Enter("sigfigs 80");
    Type("1/3");
    Resize(450);
    const std::string whole = Seen();
    Resize(400);
    const size_t narrow = Seen().size();
    Resize(1200);
    EXPECT_EQ(Seen(), StatusLine());
    EXPECT_LT(narrow, StatusLine().size());
    Resize(450);
    EXPECT_EQ(Seen(), whole);
}

// There the person types.
TEST_F(NumberInStatusLine, ShowsTheEndOfALongSearch) {
    Enter("1+2");
    [console beginSearch:Search::In::Transcript];
    Type("1+2");
    EXPECT_EQ(Seen(), "Find: 1+2");
    for (int i = 0; i < 30; ++i) Type("abcdefg");
    Type("xyz");
    const std::string seen = Seen();
    EXPECT_EQ(seen.find(ELLIPSIS), 0U) << seen;
    EXPECT_TRUE(EndsWith(seen, "abcdefgxyz  (not found)")) << seen;
    EXPECT_LE(WidthOf(seen), [Field() bounds].size.width);
    EXPECT_GT(WidthOf(seen), [Field() bounds].size.width * 0.8);
    Press(KEY_ESCAPE);
    Enter("sigfigs 100");
    Type("1/3");
    EXPECT_EQ(Seen().find("ans = 0.3"), 0U) << "of a number the start";
}

TEST_F(NumberInStatusLine, KeepsTheScaleWhereNothingElseFits) {
    NumberField* const narrow = [[[NumberField alloc] initWithFrame:NSMakeRect(0, 0, 12, 20)] autorelease];
    [narrow setStringValue:@"ans = 1.234e56"];
    EXPECT_EQ(std::string([[narrow shownText] UTF8String]), ELLIPSIS + "e56");
    [narrow setStringValue:@""];
    EXPECT_EQ(std::string([[narrow shownText] UTF8String]), "");
}

} // namespace
