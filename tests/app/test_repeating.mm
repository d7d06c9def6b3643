// SPDX-License-Identifier: MIT
//
// Return on an empty prompt repeats the last assignment, whatever was previewed since.
#import "panel_fixture.h"

namespace {

class Repeating : public PanelTest {
protected:
    void SetUp() override {
        PanelTest::SetUp();
        enter("x=1");
        enter("x=x*2");
    }

    void expectRepeats(const char* answer = "x = 4\n") {
        ASSERT_EQ("", entry());
        press(KEY_RETURN);
        EXPECT_NE(text().find(answer), std::string::npos) << text();
    }

    NSSegmentedControl* control(NSInteger segment) {
        NSSegmentedControl* const made = [[[NSSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
        [made setSegmentCount:3];
        [made setSelectedSegment:segment];
        return made;
    }
};

TEST_F(Repeating, afterWhatWasTypedIsDeleted) {
    type("3");
    press(KEY_BACKSPACE);
    expectRepeats();
}

TEST_F(Repeating, afterEscape) {
    type("3");
    press(KEY_ESCAPE);
    expectRepeats();
}

TEST_F(Repeating, afterAClickOnABase) {
    [console clickedChangeBase:control(2)];
    expectRepeats("x = 0x0004\n");
}

TEST_F(Repeating, afterAClickOnAnAngleMode) {
    for (const NSInteger segment : {1, 0}) {
        [console clickedChangeMode:control(segment)];
        expectRepeats(segment == 1 ? "x = 4\n" : "x = 8\n");
    }
}

TEST_F(Repeating, afterThePreferencesAreClosed) {
    open();
    close();
    expectRepeats();
}

TEST_F(Repeating, afterAPreviewThatFailsOrIsNoText) {
    for (const char* const typed : {"1/0", "mode deg", "nothing("}) {
        type(typed);
        [console clearPrompt];
        [console ProcessResult:nullptr:YES];
    }
    setPasteboard("\u20ac");
    [console paste:nil];
    press(KEY_BACKSPACE);
    expectRepeats();
}

} // namespace
