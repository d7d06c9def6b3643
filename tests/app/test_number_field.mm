// SPDX-License-Identifier: MIT
//
// Numbers that do not fit the status line.
#import "NumberField.h"
#import "console_fixture.h"

#import <objc/runtime.h>

namespace {

const std::string ELLIPSIS = "\u2026";

class StatusLine : public ConsoleTest {
protected:
    NumberField* field() const {
        Ivar const variable = class_getInstanceVariable([MainConsole class], "answerStatus");
        return object_getIvar(console, variable);
    }

    std::string seen() const { return [[field() shownText] UTF8String]; }

    CGFloat widthOf(const std::string& text) const {
        NSDictionary* const font = [NSDictionary dictionaryWithObject:[field() font]
                                                               forKey:NSFontAttributeName];
        return [[NSString stringWithUTF8String:text.c_str()] sizeWithAttributes:font].width;
    }

    static bool endsWith(const std::string& text, const std::string& end) {
        return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
    }

    void resize(CGFloat width) {
        NSRect frame = [window frame];
        frame.size.width = width;
        [window setFrame:frame display:YES];
    }
};

TEST_F(StatusLine, showsAllOfWhatFits) {
    type("2+3");
    EXPECT_EQ(seen(), "ans = 5");
}

TEST_F(StatusLine, marksWhereDigitsAreLeftOut) {
    enter("sigfigs 100");
    type("1/3");
    EXPECT_EQ(status(), "ans = 0." + std::string(100, '3'));
    const std::string cut = seen();
    EXPECT_TRUE(endsWith(cut, "3" + ELLIPSIS)) << cut;
    EXPECT_EQ(status().find(cut.substr(0, cut.size() - ELLIPSIS.size())), 0U);
    EXPECT_LE(widthOf(cut), [field() bounds].size.width);
    EXPECT_GT(widthOf(cut), [field() bounds].size.width * 0.8);
}

TEST_F(StatusLine, keepsTheScaleOfANumber) {
    const struct {
        const char* mode;
        const char* entry;
        const char* end;
    } cases[] = {{"scimode always", "1/3e45", "3\u2026e-46"},
                 {"scimode always", "10^400/3", "3\u2026e399"},
                 {"scimode prefix", "10^5/3", "3\u2026k"},
                 {"european on", "10^400/3", "3\u2026e399"},
                 {"display hex", "0x123456789^40-1", "\u2026"}};
    enter("sigfigs 100");
    for (const auto& one : cases) {
        enter(one.mode);
        type(one.entry);
        EXPECT_TRUE(endsWith(seen(), one.end)) << seen();
        EXPECT_LE(widthOf(seen()), [field() bounds].size.width);
        [console clearPrompt];
    }
}

TEST_F(StatusLine, followsTheSizeOfTheWindow) {
    enter("sigfigs 80");
    type("1/3");
    resize(450);
    const std::string whole = seen();
    resize(400);
    const size_t narrow = seen().size();
    resize(1200);
    EXPECT_EQ(seen(), status());
    EXPECT_LT(narrow, status().size());
    resize(450);
    EXPECT_EQ(seen(), whole);
}

TEST_F(StatusLine, keepsTheScaleWhereNothingElseFits) {
    NumberField* const narrow = [[[NumberField alloc] initWithFrame:NSMakeRect(0, 0, 12, 20)] autorelease];
    [narrow setStringValue:@"ans = 1.234e56"];
    EXPECT_EQ(std::string([[narrow shownText] UTF8String]), ELLIPSIS + "e56");
    [narrow setStringValue:@""];
    EXPECT_EQ(std::string([[narrow shownText] UTF8String]), "");
}

} // namespace
