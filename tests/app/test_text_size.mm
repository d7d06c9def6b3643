// SPDX-License-Identifier: MIT
//
// The size of the console's text.
#import "shell_fixture.h"

namespace {

class TextSize : public ShellTest {
protected:
    CGFloat Points() const { return [[console font] pointSize]; }

    void Times(int times, SEL action) {
        for (int i = 0; i < times; ++i) [console performSelector:action withObject:nil];
    }
};

TEST_F(TextSize, GrowsShrinksAndComesBack) {
    EXPECT_EQ(Points(), 13);
    [console makeTextBigger:nil];
    EXPECT_EQ(Points(), 14);
    Times(2, @selector(makeTextSmaller:));
    EXPECT_EQ(Points(), 12);
    [console resetTextSize:nil];
    EXPECT_EQ(Points(), 13);
}

TEST_F(TextSize, StaysWithinWhatCanBeRead) {
    Times(30, @selector(makeTextSmaller:));
    EXPECT_EQ(Points(), 6);
    Times(30, @selector(makeTextBigger:));
    EXPECT_EQ(Points(), 96);
}

TEST_F(TextSize, GoesToTheNextStepFromASizeBetweenTwo) {
    [console setFont:[NSFont fontWithName:[[console font] fontName] size:15]];
    [console makeTextBigger:nil];
    EXPECT_EQ(Points(), 16);
    [console setFont:[NSFont fontWithName:[[console font] fontName] size:15]];
    [console makeTextSmaller:nil];
    EXPECT_EQ(Points(), 14);
}

TEST_F(TextSize, LeavesTextAndFontAlone) {
    Enter("6*7");
    Type("12");
    NSString* const name = [[console font] fontName];
    [console makeTextBigger:nil];
    EXPECT_EQ(Text(), "> 6*7\nans = 42\n\n> 12");
    EXPECT_TRUE([[[console font] fontName] isEqualToString:name]);
    EXPECT_EQ(CursorInEntry(), 2U);
}

TEST_F(TextSize, IsThereAgainAtTheNextStart) {
    Times(3, @selector(makeTextBigger:));
    EXPECT_EQ(Points(), 18);
    StartAgain();
    EXPECT_EQ(Points(), 18);
}

} // namespace
