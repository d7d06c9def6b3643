// SPDX-License-Identifier: MIT
//
// Entries to the engine, its answers and commands back.
#import "console_fixture.h"

#import <objc/runtime.h>

#include <cstring>

namespace {

int checksLeft = 0;

bool interruptLater() {
    return --checksLeft <= 0;
}

class Runner : public ConsoleTest {
protected:
    void Give(const char* line) { [console ProcessResult:line:NO]; }
    void Preview(const char* line) { [console ProcessResult:line:YES]; }
    int Setting(NSString* key) const { return [console setting:key]; }
    void Set(NSString* key, int value) { [console setSetting:key to:value]; }

    std::string Quick(const char* line, int base) { return [[console QuickResult:line:base] UTF8String]; }

    // The transcript after an entry at an empty console.
    std::string Answered(const char* line) {
        [console clearConsole];
        Enter(line);
        return Text();
    }

    std::string Titles(const char* menu) const {
        Ivar const button = class_getInstanceVariable([MainConsole class], menu);
        return [[[object_getIvar(console, button) itemTitles] componentsJoinedByString:@"|"] UTF8String];
    }

    void PressText(const char* characters) { Press([NSString stringWithUTF8String:characters]); }
};

// --- Entries at the prompt ---

TEST_F(Runner, AResultIsWrittenBelowItsEntryWithANewPrompt) {
    Enter("2+3*4");
    EXPECT_EQ(Text(), "> 2+3*4\nans = 14\n\n> ");
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(CursorInEntry(), 0u);
    Enter("ans/7");
    EXPECT_EQ(Text(), "> 2+3*4\nans = 14\n\n> ans/7\nans = 2\n\n> ");
}

TEST_F(Runner, ErrorsAndMessagesAreWrittenLikeResults) {
    EXPECT_EQ(Answered("1/0"), "> 1/0\n** ERROR: divide by zero **\n\n> ");
    EXPECT_EQ(Answered("mode deg"), "> mode deg\n** DEGREE MODE **\n\n> ");
}

TEST_F(Runner, TextsAreShownWithoutControlCharacters) {
    Give("echo a\x1B[2J\x07\x9Bz; echo b");
    EXPECT_EQ(Text(), "> a?[2J??z\nb\n");
}

TEST_F(Runner, TheEchoedTextComesFirst) {
    EXPECT_EQ(Answered("echo first; 2"), "> echo first; 2\nfirst\nans = 2\n\n> ");
    EXPECT_EQ(Answered("echo first; 1/0"), "> echo first; 1/0\nfirst\n** ERROR: divide by zero **\n\n> ");
    EXPECT_EQ(Answered("echo first; mode rad"), "> echo first; mode rad\nfirst\n** RADIAN MODE **\n\n> ");
}

TEST_F(Runner, ACommandShowsNothingOfWhatCameBeforeIt) {
    Enter("echo first; 2; clear");
    EXPECT_EQ(Text(), "> ");
}

TEST_F(Runner, AnEmptyEntryShowsItsAnswerAboveThePrompt) {
    Enter("ans+1");
    Press(KEY_RETURN);
    EXPECT_EQ(Text(), "> ans+1\nans = 1\nans = 2\n\n> ");
    EXPECT_EQ(Entry(), "");
    Press(KEY_RETURN);
    EXPECT_EQ(Text(), "> ans+1\nans = 1\nans = 2\nans = 3\n\n> ");
    EXPECT_EQ(calc.answer.entry, "ans+1");
}

TEST_F(Runner, AnEmptyEntryThatRepeatsNothingGetsANewPrompt) {
    Press(KEY_RETURN);
    EXPECT_EQ(Text(), "> \n\n> ");
}

TEST_F(Runner, WhatIsNoLatin1IsRefused) {
    PressText("2+\u20ac");
    EXPECT_EQ(StatusLine(), "");
    Enter("");
    EXPECT_EQ(Text(), "> 2+\u20ac\n** Invalid character/encoding used. **\n\n> ");
    EXPECT_STREQ(prompt, "err");
    EXPECT_STREQ(calc.message, "** Invalid character/encoding used. **\n");
    EXPECT_EQ(calc.status, STATUS_ERROR);
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
    Enter("1+1");
    EXPECT_NE(Text().find("ans = 2\n"), std::string::npos);
}

TEST_F(Runner, WhatIsNoLatin1ShowsNothingOfTheEntryBefore) {
    Enter("echo before; 7");
    [console clearConsole];
    PressText("\u20ac");
    Press(KEY_RETURN);
    EXPECT_EQ(Text(), "> \u20ac\n** Invalid character/encoding used. **\n\n> ");
}

TEST_F(Runner, Latin1TextIsShownAsItWasTyped) {
    Type("echo caf");
    PressText("\u00e9");
    Press(KEY_RETURN);
    EXPECT_EQ(Text(), "> echo caf\u00e9\ncaf\u00e9\n\n> ");
}

TEST_F(Runner, AnEntryLongerThanTheBufferIsRefusedWhole) {
    [console replacePrompt:(std::string(PROMPT_SIZE - 2, '1') + "+1").c_str()];
    Press(KEY_RETURN);
    EXPECT_NE(Text().find("** Invalid character/encoding used. **\n"), std::string::npos);
    EXPECT_EQ(Text().find("ans"), std::string::npos);
}

TEST_F(Runner, TheAnswerIsKeptWithItsEntry) {
    qfloat five;
    asctoq("5", five);
    Enter("2+3");
    Type("9*9"); // a preview
    Press(KEY_ESCAPE);
    Enter("1/0");
    Enter("mode deg");
    EXPECT_EQ(calc.answer.entry, "2+3");
    EXPECT_EQ(qcmp(calc.answer.value, five), 0);
}

// --- Lines of scripts and menus ---

TEST_F(Runner, AGivenLineIsAnsweredAtTheEndWithoutANewPrompt) {
    Type("7");
    Give("1+1");
    EXPECT_EQ(Text(), "> 7ans = 2\n");
    EXPECT_EQ(g_linestart, 2);
    EXPECT_EQ(Cursor(), 11u);
    EXPECT_STREQ(prompt, "1+1");
    Give("echo and; 1/0");
    EXPECT_EQ(Text(), "> 7ans = 2\nand\n** ERROR: divide by zero **\n");
}

TEST_F(Runner, AnEmptyGivenLineShowsNothing) {
    Enter("ans+1");
    const std::string before = Text();
    Give("");
    EXPECT_EQ(Text(), before);
    EXPECT_STREQ(calc.resultLine, "ans = 2\n"); // although it repeats
}

TEST_F(Runner, AGivenLineLongerThanTheBufferIsRefusedWhole) {
    Give((std::string(PROMPT_SIZE, '1') + "+1").c_str());
    EXPECT_EQ(Text(), "> ** ERROR: 10000 max characters **\n");
    EXPECT_EQ(strlen(prompt), PROMPT_SIZE - 1);
}

TEST_F(Runner, BlankLinesOfAScriptAreSkipped) {
    const std::string path = home + "/lines.txt";
    Write(path, "ans+1\n\n   \t\n\r\nans+1\n");
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    EXPECT_EQ(Text(), "> \nans = 1\nans = 2\n\n> ");
}

TEST_F(Runner, AnInterruptedEntryStopsAScript) {
    const std::string path = home + "/lines.txt";
    Write(path, "1\n2;3\n4\n");
    calc.interruptCheck = interruptLater;
    checksLeft = 3; // the second statement of the second line
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    EXPECT_EQ(Text(), "> \nans = 1\n** ERROR: interrupted **\n\n> ");
    EXPECT_TRUE(calc.interrupted);
    EXPECT_FALSE(scriptInterrupted);
}

// --- Previews ---

TEST_F(Runner, APreviewShowsTheResultInTheStatusLineAlone) {
    Type("2+3");
    EXPECT_EQ(StatusLine(), "ans = 5"); // without its line feed
    EXPECT_EQ(Text(), "> 2+3");
    Type("*4");
    EXPECT_EQ(StatusLine(), "ans = 14");
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
}

TEST_F(Runner, APreviewOfAnErroneousLineShowsNothing) {
    Type("2");
    EXPECT_EQ(StatusLine(), "ans = 2");
    Type("/");
    EXPECT_EQ(StatusLine(), "");
    Type("0");
    EXPECT_EQ(StatusLine(), "");
    EXPECT_EQ(Text(), "> 2/0");
    Type(".5");
    EXPECT_EQ(StatusLine(), "ans = 4");
}

TEST_F(Runner, APreviewOfWhatCannotBeReadShowsNothing) {
    Type("2");
    PressText("\u20ac");
    EXPECT_EQ(StatusLine(), "");
    EXPECT_EQ(Text(), "> 2\u20ac");
}

TEST_F(Runner, APreviewOfADefinitionOrOfNothingShowsNothing) {
    Type("1");
    Type("+f");
    EXPECT_EQ(StatusLine(), "");
    Press(KEY_ESCAPE);
    Type("1");
    EXPECT_EQ(StatusLine(), "ans = 1");
    Press(KEY_BACKSPACE);
    EXPECT_EQ(StatusLine(), "");
    Preview("f(x)=x");
    EXPECT_EQ(StatusLine(), "");
    Enter("f(1)");
    EXPECT_EQ(Text().find("ans"), std::string::npos); // it was not defined
}

TEST_F(Runner, APreviewStoresNothingAndRunsNoCommand) {
    Type("x=5");
    EXPECT_EQ(StatusLine(), "ans = 5");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    for (const char* line :
         {"mode deg", "display hex", "european on", "sigfigs 7", "clear", "exit", "echo 1"}) {
        Preview(line);
    }
    EXPECT_EQ(Text(), "> x=5");
    EXPECT_TRUE([window isVisible]);
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 10);
    EXPECT_FALSE(calc.european);
    EXPECT_EQ(calc.sigFigs, Setting(@"sigfigs"));
    EXPECT_NE(Setting(@"sigfigs"), 7);
}

TEST_F(Runner, APreviewDoesNotRepeatTheEchoedText) {
    Enter("echo shown once; 1");
    Type("2");
    EXPECT_EQ(StatusLine(), "ans = 2");
    EXPECT_EQ(Text(), "> echo shown once; 1\nshown once\nans = 1\n\n> 2");
}

TEST_F(Runner, APreviewOfAGivenLineLeavesTheEntryAlone) {
    Type("7");
    Preview("1+1");
    EXPECT_EQ(StatusLine(), "ans = 2");
    EXPECT_EQ(Text(), "> 7");
}

TEST_F(Runner, AnEntryEmptiesTheStatusLine) {
    for (const char* line : {"2+3", "1/0", "mode deg", "echo 5", "2;cls"}) {
        Type("2");
        EXPECT_EQ(StatusLine(), "ans = 2");
        Press(KEY_BACKSPACE);
        Preview("2");
        EXPECT_EQ(StatusLine(), "ans = 2");
        Give(line);
        EXPECT_EQ(StatusLine(), "") << line;
        [console clearConsole];
    }
}

// --- Settings ---

TEST_F(Runner, TheSettingsAreCopiedIntoTheEngine) {
    Set(@"degmode", 2); // anything but zero
    Set(@"dispbase", 16);
    Set(@"european", 1);
    Set(@"sigfigs", 7);
    Set(@"scimode", SCI_ENGINEERING);
    Set(@"schar", '\'');
    Set(@"separator", 1);
    Set(@"twoscomp", 1);
    Preview("1");
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_TRUE(calc.european);
    EXPECT_EQ(calc.sigFigs, 7);
    EXPECT_EQ(calc.sciMode, SCI_ENGINEERING);
    EXPECT_EQ(calc.separatorChar, '\'');
    EXPECT_TRUE(calc.useSeparator);
    EXPECT_TRUE(calc.twosComp);
    for (NSString* key : {@"degmode", @"european", @"scimode", @"separator", @"twoscomp"}) Set(key, 0);
    Set(@"dispbase", 2);
    Preview("1");
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 2);
    EXPECT_FALSE(calc.european);
    EXPECT_EQ(calc.sciMode, SCI_AUTO);
    EXPECT_FALSE(calc.useSeparator);
    EXPECT_FALSE(calc.twosComp);
}

// A point as the grouping mark is how a decimal comma is set up. The engine exchanges the two itself.
TEST_F(Runner, APointAsGroupingMarkIsTheCommaOfTheEngine) {
    Set(@"separator", 1);
    Set(@"schar", '.');
    Set(@"european", 1);
    Preview("1234567,5");
    EXPECT_EQ(StatusLine(), "ans = 1.234.567,5");
    EXPECT_EQ(calc.separatorChar, ',');
    Set(@"schar", ',');
    Preview("1234567,5");
    EXPECT_EQ(StatusLine(), "ans = 1.234.567,5");
    Set(@"european", 0);
    Preview("1234567.5");
    EXPECT_EQ(StatusLine(), "ans = 1,234,567.5");
}

TEST_F(Runner, WhatAnEntryChangedIsStored) {
    EXPECT_EQ(Setting(@"degmode"), 1);
    Enter("mode rad; display hex; european on; sigfigs 7; scimode eng");
    EXPECT_EQ(Setting(@"degmode"), 0);
    EXPECT_EQ(Setting(@"dispbase"), 16);
    EXPECT_EQ(Setting(@"european"), 1);
    EXPECT_EQ(Setting(@"sigfigs"), 7);
    EXPECT_EQ(Setting(@"scimode"), SCI_ENGINEERING);
    for (NSString* key : {@"european", @"sigfigs", @"scimode", @"degmode", @"dispbase"}) {
        EXPECT_TRUE([[[console settings] objectForKey:key] isKindOfClass:[NSNumber class]]);
    }
    Enter("255");
    EXPECT_NE(Text().find("ans = 0x00FF\n"), std::string::npos);
    Give("mode deg; display bin; european off");
    EXPECT_EQ(Setting(@"degmode"), 1);
    EXPECT_EQ(Setting(@"dispbase"), 2);
    EXPECT_EQ(Setting(@"european"), 0);
}

TEST_F(Runner, AChangedModeShowsInTheControls) {
    const auto selected = [this](const char* name) {
        Ivar const control = class_getInstanceVariable([MainConsole class], name);
        return [object_getIvar(console, control) selectedSegment];
    };
    EXPECT_EQ(selected("ctrlDegMode"), 0);
    EXPECT_EQ(selected("ctrlBase"), 1);
    Enter("mode rad; display hex");
    EXPECT_EQ(selected("ctrlDegMode"), 1);
    EXPECT_EQ(selected("ctrlBase"), 2);
    Enter("display bin");
    EXPECT_EQ(selected("ctrlBase"), 0);
}

TEST_F(Runner, AnUnchangedModeIsNotStoredAnew) {
    Set(@"degmode", 2);
    Enter("1");
    EXPECT_EQ(Setting(@"degmode"), 2);
}

TEST_F(Runner, TheMenusFollowAnEntry) {
    Enter("width=5");
    EXPECT_NE(Titles("menuVars").find("width\t5"), std::string::npos);
    Enter("twice(x)=2*x");
    EXPECT_NE(Titles("menuFuncs").find("twice(x)=2*x"), std::string::npos);
    Give("del width; del twice");
    EXPECT_EQ(Titles("menuVars").find("width"), std::string::npos);
    EXPECT_EQ(Titles("menuFuncs").find("twice"), std::string::npos);
}

// --- Quick results ---

TEST_F(Runner, AQuickResultIsTheValueInItsBaseWithALineFeed) {
    EXPECT_EQ(Quick("255", 10), "255\n");
    EXPECT_EQ(Quick("255", 16), "0x00FF\n");
    EXPECT_EQ(Quick("5", 2), "0b 0101\n");
    EXPECT_EQ(Quick("x=1/4", 10), "0.25\n");
    EXPECT_EQ(Quick("1;2;3", 10), "3\n");
    EXPECT_STREQ(prompt, "1;2;3");
}

TEST_F(Runner, AQuickResultWithoutAValueIsError) {
    for (const char* line : {"1/0", "1+", "", "# note", "f(x)=x", "nothing"}) {
        EXPECT_EQ(Quick(line, 10), "error") << line;
    }
}

TEST_F(Runner, AQuickResultLeavesEverythingAsItWas) {
    Type("7");
    calc.displayBase = 16;
    Quick("x=255", 2);
    EXPECT_EQ(calc.displayBase, 16);
    Quick("1/0", 2);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_EQ(Setting(@"dispbase"), 10);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
    EXPECT_EQ(Text(), "> 7");
    EXPECT_EQ(StatusLine(), "ans = 7");
}

TEST_F(Runner, AQuickResultFollowsTheSettings) {
    Set(@"degmode", 1);
    EXPECT_EQ(Quick("sin(30)", 10), "0.5\n");
    Set(@"sigfigs", 3);
    EXPECT_EQ(Quick("2/3", 10), "0.667\n");
    Set(@"european", 1);
    EXPECT_EQ(Quick("2,5*2", 10), "5\n");
    EXPECT_EQ(Quick("2,5", 10), "2,5\n");
    Set(@"european", 0);
    Set(@"scimode", SCI_ALWAYS);
    EXPECT_EQ(Quick("1200", 10), "1.20e3\n");
    Set(@"scimode", SCI_AUTO);
    Set(@"separator", 1);
    Set(@"schar", '\'');
    EXPECT_EQ(Quick("1234", 10), "1'234\n");
    Set(@"twoscomp", 1);
    EXPECT_EQ(Quick("-1", 16), "0xFFFFFFFF\n");
    EXPECT_EQ(calc.sigFigs, 3);
}

TEST_F(Runner, AQuickResultOfALineLongerThanTheBufferIsError) {
    EXPECT_EQ(Quick((std::string(PROMPT_SIZE, '1') + "+1").c_str(), 10), "error");
}

} // namespace
