// SPDX-License-Identifier: MIT
//
// Return on an empty prompt repeats the last assignment, whatever was previewed since.
#import "panel_fixture.h"

namespace {

class Repeating : public PanelTest {
protected:
    void SetUp() override {
        PanelTest::SetUp();
        Enter("x=1");
        Enter("x=x*2");
    }

    void ExpectRepeats(const char* answer = "x = 4\n") {
        ASSERT_EQ("", Entry());
        Press(KEY_RETURN);
        EXPECT_NE(Text().find(answer), std::string::npos) << Text();
    }

    NSSegmentedControl* Control(NSInteger segment) {
        NSSegmentedControl* const made = [[[NSSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
        [made setSegmentCount:3];
        [made setSelectedSegment:segment];
        return made;
    }
};

TEST_F(Repeating, AfterWhatWasTypedIsDeleted) {
    Type("3");
    Press(KEY_BACKSPACE);
    ExpectRepeats();
}

TEST_F(Repeating, AnEscapeBeforeItChangesNothing) {
    Type("3");
    Press(KEY_ESCAPE);
    ExpectRepeats();
}

TEST_F(Repeating, AfterAClickOnABase) {
    [console clickedChangeBase:Control(2)];
    ExpectRepeats("x = 0x0004\n");
}

TEST_F(Repeating, AfterAClickOnAnAngleMode) {
    for (const NSInteger segment : {1, 0}) {
        [console clickedChangeMode:Control(segment)];
        ExpectRepeats(segment == 1 ? "x = 4\n" : "x = 8\n");
    }
}

TEST_F(Repeating, AfterThePreferencesAreClosed) {
    Open();
    Close();
    ExpectRepeats();
}

TEST_F(Repeating, AfterAPreviewThatFailsOrIsNoText) {
    for (const char* const typed : {"1/0", "mode deg", "nothing("}) {
        Type(typed);
        [console clearPrompt];
        [console ProcessResult:nullptr:YES];
    }
    SetPasteboard("\u20ac");
    [console paste:nil];
    Press(KEY_BACKSPACE);
    ExpectRepeats();
}

} // namespace
