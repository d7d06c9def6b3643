// SPDX-License-Identifier: MIT
//
// The end of the transcript is there again at the next start.
#import "shell_fixture.h"

#import "PrefController.h"

namespace {

class ComingBack : public ShellTest {
protected:
    std::string TranscriptPath() const { return Folder() + "/transcript.txt"; }
};

} // namespace

TEST_F(ComingBack, TheTranscriptStandsInFrontOfANewPrompt) {
    Enter("1+1");
    Enter("x=1/0");
    const std::string before = Text();
    Type("12");
    StartAgain();
    EXPECT_EQ(Text(), before);
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(Cursor(), before.size());
    Enter("ans+3");
    EXPECT_EQ(Text(), before + "ans+3\nans = 5\n\n> ");
}

TEST_F(ComingBack, AScriptSavedThenHasWhatRanSince) {
    Enter("1+1");
    StartAgain();
    Enter("2+2");
    const std::string script = [[console scriptText] UTF8String];
    EXPECT_EQ(script.find("1+1"), std::string::npos);
    EXPECT_NE(script.find("\n2+2\n"), std::string::npos);
}

TEST_F(ComingBack, ItCannotBeUndoneOrEdited) {
    Enter("1+1");
    StartAgain();
    const std::string before = Text();
    [console undoChange:nil];
    Press(KEY_BACKSPACE);
    EXPECT_EQ(Text(), before);
    EXPECT_FALSE([console shouldChangeTextInRange:NSMakeRange(2, 1) replacementString:@"9"]);
}

TEST_F(ComingBack, ClearLeavesNothingAndNoFile) {
    Enter("1+1");
    Terminate();
    EXPECT_TRUE(Exists(TranscriptPath()));
    Restart();
    Enter("clear");
    StartAgain();
    EXPECT_EQ(Text(), "> ");
    EXPECT_FALSE(Exists(TranscriptPath()));
}

TEST_F(ComingBack, WhoeverDoesNotWantItHasNoFile) {
    Enter("1+1");
    WriteWhatIsDue();
    ASSERT_TRUE(Exists(TranscriptPath()));
    SetSetting("startclear", 1);
    [console saveSettings];
    EXPECT_FALSE(Exists(TranscriptPath()));
    Enter("2+2");
    StartAgain();
    EXPECT_EQ(Text(), "> ");
    EXPECT_FALSE(Exists(TranscriptPath()));
}

TEST_F(ComingBack, ItIsWrittenSoonAfterAnEntry) {
    Enter("1+1");
    WriteWhatIsDue();
    EXPECT_EQ(Read(TranscriptPath()), "> 1+1\nans = 2\n\n");
}

TEST_F(ComingBack, ADamagedFileDoesNoHarm) {
    Terminate();
    std::string damaged(200000, '\n');
    damaged += "a\x1b[2J\xff";
    damaged.push_back('\0');
    damaged += "b";
    Write(TranscriptPath(), damaged);
    Restart();
    EXPECT_EQ(Text(), std::string(299, '\n') + "a?[2J??b\n> ");
    Enter("1+1");
    EXPECT_EQ(Entry(), "");
}

TEST_F(ComingBack, ABoxInThePreferencesSwitchesItOff) {
    [Preferences() menuPreferences:nil];
    PrefControls controls = [Preferences() controls];
    NSControl* const box = controls.Of(*findSetting("startclear"));
    ASSERT_NE(box, nil);
    EXPECT_EQ([box intValue], 0);
    [box setIntValue:1];
    [Preferences() closePanel];
    EXPECT_EQ(SettingOf("startclear"), 1);
}
