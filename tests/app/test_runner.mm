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
    void give(const char* line) { [console ProcessResult:line:NO]; }
    void preview(const char* line) { [console ProcessResult:line:YES]; }
    int setting(NSString* key) const { return [console setting:key]; }
    void set(NSString* key, int value) { [console setSetting:key to:value]; }

    std::string quick(const char* line, int base) { return [[console QuickResult:line:base] UTF8String]; }

    // The transcript after an entry at an empty console.
    std::string answered(const char* line) {
        [console clearConsole];
        enter(line);
        return text();
    }

    std::string titles(const char* menu) const {
        Ivar const button = class_getInstanceVariable([MainConsole class], menu);
        return [[[object_getIvar(console, button) itemTitles] componentsJoinedByString:@"|"] UTF8String];
    }

    void pressText(const char* characters) { press([NSString stringWithUTF8String:characters]); }
};

// --- Entries at the prompt ---

TEST_F(Runner, aResultIsWrittenBelowItsEntryWithANewPrompt) {
    enter("2+3*4");
    EXPECT_EQ(text(), "> 2+3*4\nans = 14\n\n> ");
    EXPECT_EQ(entry(), "");
    EXPECT_EQ(cursorInEntry(), 0u);
    enter("ans/7");
    EXPECT_EQ(text(), "> 2+3*4\nans = 14\n\n> ans/7\nans = 2\n\n> ");
}

TEST_F(Runner, errorsAndMessagesAreWrittenLikeResults) {
    EXPECT_EQ(answered("1/0"), "> 1/0\n** ERROR: divide by zero **\n\n> ");
    EXPECT_EQ(answered("mode deg"), "> mode deg\n** DEGREE MODE **\n\n> ");
}

TEST_F(Runner, textsAreShownWithoutControlCharacters) {
    give("echo a\x1B[2J\x07\x9Bz; echo b");
    EXPECT_EQ(text(), "> a?[2J??z\nb\n");
}

TEST_F(Runner, theEchoedTextComesFirst) {
    EXPECT_EQ(answered("echo first; 2"), "> echo first; 2\nfirst\nans = 2\n\n> ");
    EXPECT_EQ(answered("echo first; 1/0"), "> echo first; 1/0\nfirst\n** ERROR: divide by zero **\n\n> ");
    EXPECT_EQ(answered("echo first; mode rad"), "> echo first; mode rad\nfirst\n** RADIAN MODE **\n\n> ");
}

TEST_F(Runner, aCommandShowsNothingOfWhatCameBeforeIt) {
    enter("echo first; 2; clear");
    EXPECT_EQ(text(), "> ");
}

TEST_F(Runner, anEmptyEntryShowsItsAnswerAboveThePrompt) {
    enter("ans+1");
    press(KEY_RETURN);
    EXPECT_EQ(text(), "> ans+1\nans = 1\nans = 2\n\n> ");
    EXPECT_EQ(entry(), "");
    press(KEY_RETURN);
    EXPECT_EQ(text(), "> ans+1\nans = 1\nans = 2\nans = 3\n\n> ");
    EXPECT_EQ(calc.answer.entry, "ans+1");
}

TEST_F(Runner, anEmptyEntryThatRepeatsNothingGetsANewPrompt) {
    press(KEY_RETURN);
    EXPECT_EQ(text(), "> \n\n> ");
}

TEST_F(Runner, whatIsNoLatin1IsRefused) {
    pressText("2+\u20ac");
    EXPECT_EQ(status(), "");
    enter("");
    EXPECT_EQ(text(), "> 2+\u20ac\n** Invalid character/encoding used. **\n\n> ");
    EXPECT_STREQ(prompt, "err");
    EXPECT_STREQ(calc.message, "** Invalid character/encoding used. **\n");
    EXPECT_EQ(calc.status, STATUS_ERROR);
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
    enter("1+1");
    EXPECT_NE(text().find("ans = 2\n"), std::string::npos);
}

TEST_F(Runner, whatIsNoLatin1ShowsNothingOfTheEntryBefore) {
    enter("echo before; 7");
    [console clearConsole];
    pressText("\u20ac");
    press(KEY_RETURN);
    EXPECT_EQ(text(), "> \u20ac\n** Invalid character/encoding used. **\n\n> ");
}

TEST_F(Runner, latin1TextIsShownAsItWasTyped) {
    type("echo caf");
    pressText("\u00e9");
    press(KEY_RETURN);
    EXPECT_EQ(text(), "> echo caf\u00e9\ncaf\u00e9\n\n> ");
}

TEST_F(Runner, anEntryLongerThanTheBufferIsRefusedWhole) {
    [console replacePrompt:(std::string(PROMPT_SIZE - 2, '1') + "+1").c_str()];
    press(KEY_RETURN);
    EXPECT_NE(text().find("** Invalid character/encoding used. **\n"), std::string::npos);
    EXPECT_EQ(text().find("ans"), std::string::npos);
}

TEST_F(Runner, theAnswerIsKeptWithItsEntry) {
    qfloat five;
    asctoq("5", five);
    enter("2+3");
    type("9*9"); // a preview
    press(KEY_ESCAPE);
    enter("1/0");
    enter("mode deg");
    EXPECT_EQ(calc.answer.entry, "2+3");
    EXPECT_EQ(qcmp(calc.answer.value, five), 0);
}

// --- Lines of scripts and menus ---

TEST_F(Runner, aGivenLineIsAnsweredAtTheEndWithoutANewPrompt) {
    type("7");
    give("1+1");
    EXPECT_EQ(text(), "> 7ans = 2\n");
    EXPECT_EQ(g_linestart, 2);
    EXPECT_EQ(cursor(), 11u);
    EXPECT_STREQ(prompt, "1+1");
    give("echo and; 1/0");
    EXPECT_EQ(text(), "> 7ans = 2\nand\n** ERROR: divide by zero **\n");
}

TEST_F(Runner, anEmptyGivenLineShowsNothing) {
    enter("ans+1");
    const std::string before = text();
    give("");
    EXPECT_EQ(text(), before);
    EXPECT_STREQ(calc.resultLine, "ans = 2\n"); // although it repeats
}

TEST_F(Runner, aGivenLineLongerThanTheBufferIsRefusedWhole) {
    give((std::string(PROMPT_SIZE, '1') + "+1").c_str());
    EXPECT_EQ(text(), "> ** ERROR: 10000 max characters **\n");
    EXPECT_EQ(strlen(prompt), PROMPT_SIZE - 1);
}

TEST_F(Runner, blankLinesOfAScriptAreSkipped) {
    const std::string path = home + "/lines.txt";
    write(path, "ans+1\n\n   \t\n\r\nans+1\n");
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    EXPECT_EQ(text(), "> \nans = 1\nans = 2\n\n> ");
}

TEST_F(Runner, anInterruptedEntryStopsAScript) {
    const std::string path = home + "/lines.txt";
    write(path, "1\n2;3\n4\n");
    calc.interruptCheck = interruptLater;
    checksLeft = 3; // the second statement of the second line
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    EXPECT_EQ(text(), "> \nans = 1\n** ERROR: interrupted **\n\n> ");
    EXPECT_TRUE(calc.interrupted);
    EXPECT_FALSE(scriptInterrupted);
}

// --- Previews ---

TEST_F(Runner, aPreviewShowsTheResultInTheStatusLineAlone) {
    type("2+3");
    EXPECT_EQ(status(), "ans = 5"); // without its line feed
    EXPECT_EQ(text(), "> 2+3");
    type("*4");
    EXPECT_EQ(status(), "ans = 14");
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
}

TEST_F(Runner, aPreviewOfAnErroneousLineShowsNothing) {
    type("2");
    EXPECT_EQ(status(), "ans = 2");
    type("/");
    EXPECT_EQ(status(), "");
    type("0");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(text(), "> 2/0");
    type(".5");
    EXPECT_EQ(status(), "ans = 4");
}

TEST_F(Runner, aPreviewOfWhatCannotBeReadShowsNothing) {
    type("2");
    pressText("\u20ac");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(text(), "> 2\u20ac");
}

TEST_F(Runner, aPreviewOfADefinitionOrOfNothingShowsNothing) {
    type("1");
    type("+f");
    EXPECT_EQ(status(), "");
    press(KEY_ESCAPE);
    type("1");
    EXPECT_EQ(status(), "ans = 1");
    press(KEY_BACKSPACE);
    EXPECT_EQ(status(), "");
    preview("f(x)=x");
    EXPECT_EQ(status(), "");
    enter("f(1)");
    EXPECT_EQ(text().find("ans"), std::string::npos); // it was not defined
}

TEST_F(Runner, aPreviewStoresNothingAndRunsNoCommand) {
    type("x=5");
    EXPECT_EQ(status(), "ans = 5");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    for (const char* line :
         {"mode deg", "display hex", "european on", "sigfigs 7", "clear", "exit", "echo 1"}) {
        preview(line);
    }
    EXPECT_EQ(text(), "> x=5");
    EXPECT_TRUE([window isVisible]);
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 10);
    EXPECT_FALSE(calc.european);
    EXPECT_EQ(calc.sigFigs, setting(@"sigfigs"));
    EXPECT_NE(setting(@"sigfigs"), 7);
}

TEST_F(Runner, aPreviewDoesNotRepeatTheEchoedText) {
    enter("echo shown once; 1");
    type("2");
    EXPECT_EQ(status(), "ans = 2");
    EXPECT_EQ(text(), "> echo shown once; 1\nshown once\nans = 1\n\n> 2");
}

TEST_F(Runner, aPreviewOfAGivenLineLeavesTheEntryAlone) {
    type("7");
    preview("1+1");
    EXPECT_EQ(status(), "ans = 2");
    EXPECT_EQ(text(), "> 7");
}

TEST_F(Runner, anEntryEmptiesTheStatusLine) {
    for (const char* line : {"2+3", "1/0", "mode deg", "echo 5", "2;cls"}) {
        type("2");
        EXPECT_EQ(status(), "ans = 2");
        press(KEY_BACKSPACE);
        preview("2");
        EXPECT_EQ(status(), "ans = 2");
        give(line);
        EXPECT_EQ(status(), "") << line;
        [console clearConsole];
    }
}

// --- Settings ---

TEST_F(Runner, theSettingsAreCopiedIntoTheEngine) {
    set(@"degmode", 2); // anything but zero
    set(@"dispbase", 16);
    set(@"european", 1);
    set(@"sigfigs", 7);
    set(@"scimode", SCI_ENGINEERING);
    set(@"schar", '\'');
    set(@"separator", 1);
    set(@"twoscomp", 1);
    preview("1");
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_TRUE(calc.european);
    EXPECT_EQ(calc.sigFigs, 7);
    EXPECT_EQ(calc.sciMode, SCI_ENGINEERING);
    EXPECT_EQ(calc.separatorChar, '\'');
    EXPECT_TRUE(calc.useSeparator);
    EXPECT_TRUE(calc.twosComp);
    for (NSString* key : {@"degmode", @"european", @"scimode", @"separator", @"twoscomp"}) set(key, 0);
    set(@"dispbase", 2);
    preview("1");
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_EQ(calc.displayBase, 2);
    EXPECT_FALSE(calc.european);
    EXPECT_EQ(calc.sciMode, SCI_AUTO);
    EXPECT_FALSE(calc.useSeparator);
    EXPECT_FALSE(calc.twosComp);
}

// A point as the grouping mark is how a decimal comma is set up. The engine exchanges the two itself.
TEST_F(Runner, aPointAsGroupingMarkIsTheCommaOfTheEngine) {
    set(@"separator", 1);
    set(@"schar", '.');
    set(@"european", 1);
    preview("1234567,5");
    EXPECT_EQ(status(), "ans = 1.234.567,5");
    EXPECT_EQ(calc.separatorChar, ',');
    set(@"schar", ',');
    preview("1234567,5");
    EXPECT_EQ(status(), "ans = 1.234.567,5");
    set(@"european", 0);
    preview("1234567.5");
    EXPECT_EQ(status(), "ans = 1,234,567.5");
}

TEST_F(Runner, whatAnEntryChangedIsStored) {
    EXPECT_EQ(setting(@"degmode"), 1);
    enter("mode rad; display hex; european on; sigfigs 7; scimode eng");
    EXPECT_EQ(setting(@"degmode"), 0);
    EXPECT_EQ(setting(@"dispbase"), 16);
    EXPECT_EQ(setting(@"european"), 1);
    EXPECT_EQ(setting(@"sigfigs"), 7);
    EXPECT_EQ(setting(@"scimode"), SCI_ENGINEERING);
    for (NSString* key : {@"european", @"sigfigs", @"scimode", @"degmode", @"dispbase"}) {
        EXPECT_TRUE([[[console settings] objectForKey:key] isKindOfClass:[NSNumber class]]);
    }
    enter("255");
    EXPECT_NE(text().find("ans = 0x00FF\n"), std::string::npos);
    give("mode deg; display bin; european off");
    EXPECT_EQ(setting(@"degmode"), 1);
    EXPECT_EQ(setting(@"dispbase"), 2);
    EXPECT_EQ(setting(@"european"), 0);
}

TEST_F(Runner, aChangedModeShowsInTheControls) {
    const auto selected = [this](const char* name) {
        Ivar const control = class_getInstanceVariable([MainConsole class], name);
        return [object_getIvar(console, control) selectedSegment];
    };
    EXPECT_EQ(selected("ctrlDegMode"), 0);
    EXPECT_EQ(selected("ctrlBase"), 1);
    enter("mode rad; display hex");
    EXPECT_EQ(selected("ctrlDegMode"), 1);
    EXPECT_EQ(selected("ctrlBase"), 2);
    enter("display bin");
    EXPECT_EQ(selected("ctrlBase"), 0);
}

TEST_F(Runner, anUnchangedModeIsNotStoredAnew) {
    set(@"degmode", 2);
    enter("1");
    EXPECT_EQ(setting(@"degmode"), 2);
}

TEST_F(Runner, theMenusFollowAnEntry) {
    enter("width=5");
    EXPECT_NE(titles("menuVars").find("width\t5"), std::string::npos);
    enter("twice(x)=2*x");
    EXPECT_NE(titles("menuFuncs").find("twice(x)=2*x"), std::string::npos);
    give("del width; del twice");
    EXPECT_EQ(titles("menuVars").find("width"), std::string::npos);
    EXPECT_EQ(titles("menuFuncs").find("twice"), std::string::npos);
}

// --- Quick results ---

TEST_F(Runner, aQuickResultIsTheValueInItsBaseWithALineFeed) {
    EXPECT_EQ(quick("255", 10), "255\n");
    EXPECT_EQ(quick("255", 16), "0x00FF\n");
    EXPECT_EQ(quick("5", 2), "0b 0101\n");
    EXPECT_EQ(quick("x=1/4", 10), "0.25\n");
    EXPECT_EQ(quick("1;2;3", 10), "3\n");
    EXPECT_STREQ(prompt, "1;2;3");
}

TEST_F(Runner, aQuickResultWithoutAValueIsError) {
    for (const char* line : {"1/0", "1+", "", "# note", "f(x)=x", "nothing"}) {
        EXPECT_EQ(quick(line, 10), "error") << line;
    }
}

TEST_F(Runner, aQuickResultLeavesEverythingAsItWas) {
    type("7");
    calc.displayBase = 16;
    quick("x=255", 2);
    EXPECT_EQ(calc.displayBase, 16);
    quick("1/0", 2);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_EQ(setting(@"dispbase"), 10);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(calc.history.GetHistoryStr(1), nullptr);
    EXPECT_EQ(text(), "> 7");
    EXPECT_EQ(status(), "ans = 7");
}

TEST_F(Runner, aQuickResultFollowsTheSettings) {
    set(@"degmode", 1);
    EXPECT_EQ(quick("sin(30)", 10), "0.5\n");
    set(@"sigfigs", 3);
    EXPECT_EQ(quick("2/3", 10), "0.667\n");
    set(@"european", 1);
    EXPECT_EQ(quick("2,5*2", 10), "5\n");
    EXPECT_EQ(quick("2,5", 10), "2,5\n");
    set(@"european", 0);
    set(@"scimode", SCI_ALWAYS);
    EXPECT_EQ(quick("1200", 10), "1.20e3\n");
    set(@"scimode", SCI_AUTO);
    set(@"separator", 1);
    set(@"schar", '\'');
    EXPECT_EQ(quick("1234", 10), "1'234\n");
    set(@"twoscomp", 1);
    EXPECT_EQ(quick("-1", 16), "0xFFFFFFFF\n");
    EXPECT_EQ(calc.sigFigs, 3);
}

TEST_F(Runner, aQuickResultOfALineLongerThanTheBufferIsError) {
    EXPECT_EQ(quick((std::string(PROMPT_SIZE, '1') + "+1").c_str(), 10), "error");
}

} // namespace
