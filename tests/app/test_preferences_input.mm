// SPDX-License-Identifier: MIT
//
// The preferences panel with input that it cannot take.
#import "panel_fixture.h"

#include <string>
#include <vector>

namespace {

class PreferencesInput : public PanelTest {
protected:
    // What is said beside the grouping mark.
    std::string reason() const { return shown(controls.prefSepReason); }
};

NSString* string(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

const char* const NO_NUMBERS[] = {"",
                                  " ",
                                  "abc",
                                  "-",
                                  "-1",
                                  "-2147483648",
                                  "0",
                                  "0.5",
                                  "2147483647",
                                  "2147483648",
                                  "4294967297",
                                  "99999999999999999999999999",
                                  "-99999999999999999999",
                                  "\u00e4",
                                  "\U0001F600",
                                  "nan",
                                  "inf"};

TEST_F(PreferencesInput, FiguresFromOneToHundredAreKeptOthersBecomeSix) {
    const struct {
        const char* typed;
        int stored;
    } cases[] = {{"1", 1}, {"100", 100}, {"0", 6}, {"101", 6}, {"-5", 6}, {"12abc", 12}};
    for (const auto& one : cases) {
        open();
        enterInto(controls.prefSigFigs, string(one.typed));
        close();
        EXPECT_EQ(setting("sigfigs"), one.stored) << one.typed;
        EXPECT_EQ(shown(controls.prefSigFigs), one.stored == 12 ? "12abc" : std::to_string(one.stored));
    }
}

TEST_F(PreferencesInput, LettersOrNothingKeepTheFigures) {
    set("sigfigs", 8);
    for (const char* const typed : {"", " ", "abc", "-", "\u00e4", "nan"}) {
        open();
        enterInto(controls.prefSigFigs, string(typed));
        EXPECT_EQ(setting("sigfigs"), 8) << typed;
        close();
        EXPECT_EQ(setting("sigfigs"), 8) << typed;
        EXPECT_EQ(shown(controls.prefSigFigs), "8") << typed;
    }
}

// The file is written while the panel is open, too: an entry has it written.
TEST_F(PreferencesInput, WhileThePanelIsOpenOnlyPossibleFiguresAreStored) {
    set("sigfigs", 8);
    open();
    for (const char* const typed : NO_NUMBERS) {
        enterInto(controls.prefSigFigs, string(typed));
        EXPECT_EQ(setting("sigfigs"), 8) << typed;
        enter("1/3");
        EXPECT_NE(text().rfind("ans = 0.33333333\n"), std::string::npos) << typed;
        [console saveSettings];
        EXPECT_NE(read(settingsPath()).find("<key>sigfigs</key>\n\t<integer>8</integer>"), std::string::npos);
    }
    enterInto(controls.prefSigFigs, @"3");
    EXPECT_EQ(setting("sigfigs"), 3);
}

TEST_F(PreferencesInput, LinesOfHistoryFromOneToNineHundredNinetyNineAreKeptOthersBecomeNinetyNine) {
    const struct {
        const char* typed;
        int stored;
    } cases[] = {{"1", 1}, {"999", 999}, {"0", 99}, {"1000", 99}, {"-5", 99}, {"abc", 99}, {"", 99}};
    for (const auto& one : cases) {
        open();
        enterInto(controls.prefHistSize, string(one.typed));
        close();
        EXPECT_EQ(setting("histsz"), one.stored) << one.typed;
    }
}

TEST_F(PreferencesInput, NoTextInANumberFieldGetsIntoTheSettings) {
    for (const char* const text : NO_NUMBERS) {
        open();
        enterInto(controls.prefSigFigs, string(text));
        enterInto(controls.prefHistSize, string(text));
        EXPECT_FALSE(shown(controls.prefNumPreview).empty()) << text;
        close();
        EXPECT_TRUE(setting("sigfigs") == 6 || setting("sigfigs") == 10) << text;
        EXPECT_EQ(setting("histsz"), 99) << text;
        enter("1/4");
        EXPECT_NE(this->text().find("0.25"), std::string::npos) << text;
    }
}

TEST_F(PreferencesInput, AHugeNumberIsNotTakenForItsLastBits) {
    open();
    enterInto(controls.prefSigFigs, @"4294967306");            // 2^32 + 10
    enterInto(controls.prefHistSize, @"18446744073709551626"); // 2^64 + 10
    close();
    EXPECT_EQ(setting("sigfigs"), 6);
    EXPECT_EQ(setting("histsz"), 99);
}

TEST_F(PreferencesInput, ALongTextInANumberFieldIsSurvived) {
    open();
    [controls.prefSigFigs setStringValue:string(std::string(100000, '9'))];
    [controller prefCallback:controls.prefSigFigs];
    [controls.prefHistSize setStringValue:string(std::string(100000, 'x'))];
    close();
    EXPECT_EQ(setting("sigfigs"), 6);
    EXPECT_EQ(setting("histsz"), 99);
}

// The console works with what is stored while the panel is open.
TEST_F(PreferencesInput, EntriesWorkWhileAFieldHoldsNoPossibleNumber) {
    for (const char* const typed : {"0", "-1", "2147483647"}) {
        open();
        enterInto(controls.prefSigFigs, string(typed));
        enter("3/4");
        EXPECT_EQ(text().find("rror"), std::string::npos) << text();
        close();
        enter("3/4");
        EXPECT_NE(text().rfind("0.75"), std::string::npos);
        EXPECT_EQ(setting("sigfigs"), 6);
    }
}

// --- The separator ---

TEST_F(PreferencesInput, AMarkThatTheEngineReadsOtherwiseIsRefusedWithTheReason) {
    const struct {
        const char* typed;
        const char* reason;
    } cases[] = {{"0", "0 is a digit."},       {"7", "7 is a digit."},     {"a", "A is a letter."},
                 {"Z", "Z is a letter."},

                 {"_", "_ is part of names."}, {"(", "( is a bracket."},   {")", ") is a bracket."},
                 {"[", "[ is a bracket."},     {"}", "} is a bracket."},   {"+", "+ is an operator."},
                 {"-", "- is an operator."},   {"*", "* is an operator."}, {"/", "/ is an operator."},
                 {"%", "% is an operator."},   {"^", "^ is an operator."}, {"!", "! is an operator."},
                 {"<", "< is an operator."},   {">", "> is an operator."}, {"&", "& is an operator."},
                 {"|", "| is an operator."},   {"@", "@ is an operator."}, {"=", "= assigns and compares."},
                 {"#", "# begins a comment."}};
    set("separator", 1);
    set("schar", '\'');
    for (const auto& one : cases) {
        open();
        enterInto(controls.prefSepChar, string(one.typed));
        EXPECT_EQ(setting("schar"), '\'') << one.typed;
        EXPECT_EQ(shown(controls.prefSepChar), "'") << one.typed; // what counts is what is seen
        EXPECT_EQ(reason(), one.reason);
        enterInto(controls.prefSepChar, @" ");
        EXPECT_EQ(reason(), "") << "a mark that is taken";
        enterInto(controls.prefSepChar, @"'");
        close();
        EXPECT_EQ(setting("schar"), '\'') << one.typed;
    }
}

TEST_F(PreferencesInput, ARefusedMarkIsNotStoredWhenThePanelClosesEither) {
    set("schar", '\'');
    open();
    [controls.prefSepChar setStringValue:@"+"];
    close();
    EXPECT_EQ(setting("schar"), '\'');
    open();
    EXPECT_EQ(reason(), "") << "of the time before";
}

TEST_F(PreferencesInput, TheDecimalMarkGivesWayToTheOtherOne) {
    set("schar", '\'');
    open();
    enterInto(controls.prefSepChar, @".");
    EXPECT_EQ(setting("schar"), ',');
    EXPECT_EQ(shown(controls.prefSepChar), ",");
    EXPECT_EQ(reason(), ". is the decimal mark.");
    tick(controls.prefEuropean, true);
    enterInto(controls.prefSepChar, @",");
    EXPECT_EQ(shown(controls.prefSepChar), ".");
    EXPECT_EQ(reason(), ", is the decimal mark.");
}

TEST_F(PreferencesInput, NoMarkIsTheUsualOne) {
    open();
    enterInto(controls.prefSepChar, @"");
    EXPECT_EQ(setting("schar"), ',');
    EXPECT_EQ(shown(controls.prefSepChar), ",");
}

// However a mark came to be: what it groups is read as the same number or not at all, never as another one.
TEST_F(PreferencesInput, NoMarkMakesAnotherNumber) {
    for (int code = 32; code < 256; code++) {
        if (code == ';') continue; // separates statements, and has always been allowed
        const unichar character = static_cast<unichar>(code);
        open();
        [controls.prefSepChar setStringValue:[NSString stringWithCharacters:&character length:1]];
        tick(controls.prefSeparator, true);
        close();
        enter("7");
        enter("1234567");
        const std::string shownAnswer = calc.answer.shown;
        if (calc.ProcessEntry(shownAnswer.c_str(), true) != STATUS_RESULT) continue;
        double read = 0;
        qtoe(calc.result, &read);
        EXPECT_EQ(read, 1234567) << code << ": " << shownAnswer;
    }
}

TEST_F(PreferencesInput, ASeparatorThatTheConsoleCannotShowIsTakenForTheUsualOne) {
    for (const char* const typed : {"\U0001F600", "\u20ac", "\u4e2d", "\n", "\t"}) {
        open();
        [controls.prefSepChar setStringValue:string(typed)];
        [controller prefCallback:controls.prefSepChar];
        EXPECT_EQ(setting("schar"), ',') << typed;
        close();
        EXPECT_EQ(setting("schar"), ',') << typed;
        EXPECT_TRUE([[console string] canBeConvertedToEncoding:NSISOLatin1StringEncoding]);
    }
}

TEST_F(PreferencesInput, TheUsualMarkThatReplacesAnotherFollowsTheDecimalMark) {
    set("european", 1);
    open();
    enterInto(controls.prefSepChar, @"");
    EXPECT_EQ(shown(controls.prefSepChar), ".");
    EXPECT_EQ(setting("schar"), ',');
}

TEST_F(PreferencesInput, TheSeparatorFieldHoldsOneCharacter) {
    open();
    enterInto(controls.prefSepChar, @";'");
    EXPECT_EQ(shown(controls.prefSepChar), ";");
    EXPECT_EQ(setting("schar"), ';');
}

TEST_F(PreferencesInput, OfTwoCharactersTheFirstCounts) {
    open();
    [controls.prefSepChar setStringValue:@"'_"];
    close();
    EXPECT_EQ(setting("schar"), '\'');
}

TEST_F(PreferencesInput, EverySeparatorThatIsTakenShowsItselfAgain) {
    set("separator", 1);
    int before = ',';
    for (int code = 33; code < 256; code++) {
        const unichar character = static_cast<unichar>(code);
        NSString* const typed = [NSString stringWithCharacters:&character length:1];
        open();
        [controls.prefSepChar setStringValue:typed];
        [controller prefCallback:controls.prefSepChar];
        close();
        const int taken = setting("schar");
        const bool isPoint = code == '.' && taken == ',';
        EXPECT_TRUE(taken == code || taken == before || isPoint) << code;
        before = taken;
        open();
        EXPECT_EQ([[controls.prefSepChar stringValue] characterAtIndex:0], static_cast<unichar>(taken));
        close();
        EXPECT_EQ(setting("schar"), taken) << code;
    }
}

// --- Settings of wrong kinds ---

TEST_F(PreferencesInput, SettingsOfWrongKindsOpenAndCloseAPanelThatIsSound) {
    const id wrong[] = {@"text", [NSData data], [NSArray array], [NSDictionary dictionary], [NSDate date]};
    const char* const keys[] = {"scimode",    "sigfigs",   "histsz",   "snaptoscreen",
                                "transback",  "separator", "twoscomp", "european",
                                "statusicon", "trans",     "schar"};
    for (const id value : wrong) {
        for (const char* const key : keys) [[console settings] setObject:value forKey:string(key)];
        open();
        EXPECT_GE([controls.prefSciMode indexOfSelectedItem], 0);
        EXPECT_EQ(shown(controls.prefSepChar), ",");
        EXPECT_EQ(shown(controls.prefSigFigs), "10");
        EXPECT_EQ(shown(controls.prefHistSize), "30");
        EXPECT_EQ(shown(controls.prefNumPreview), "12345.6");
        close();
        EXPECT_EQ(setting("sigfigs"), 10);
        EXPECT_EQ(setting("histsz"), 30);
        EXPECT_EQ(setting("schar"), ',');
    }
}

TEST_F(PreferencesInput, NumbersThatNoSettingCanHaveOpenAndCloseAPanelThatIsSound) {
    for (const int value : {-1, 6, 1000000, INT32_MIN, INT32_MAX}) {
        for (const char* const key : {"scimode", "sigfigs", "histsz", "snaptoscreen", "separator", "trans"}) {
            set(key, value);
        }
        open();
        close();
        EXPECT_GE(setting("scimode"), 0) << value;
        EXPECT_LE(setting("scimode"), 5) << value;
        EXPECT_GE(setting("sigfigs"), 1) << value;
        EXPECT_LE(setting("sigfigs"), 100) << value;
        EXPECT_GE(setting("histsz"), 1) << value;
        EXPECT_LE(setting("histsz"), 999) << value;
        EXPECT_GE(setting("trans"), 0) << value;
        EXPECT_LE(setting("trans"), 100) << value;
        EXPECT_TRUE(setting("separator") == 0 || setting("separator") == 1) << value;
    }
}

TEST_F(PreferencesInput, AFileWithWrongKindsForEveryKeyStartsWithTheDefaults) {
    terminate();
    std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    for (const char* const key : {"scimode", "sigfigs", "histsz", "snaptoscreen", "transback", "separator",
                                  "twoscomp", "european", "statusicon", "trans", "schar", "fgcolor",
                                  "bgcolor", "nsfont", "firstrun", "degmode", "dispbase"}) {
        file += std::string("<key>") + key + "</key><string>wrong</string>\n";
    }
    write(settingsPath(), file + "</dict>\n</plist>\n");
    restartAll();
    open();
    EXPECT_EQ([controls.prefSciMode indexOfSelectedItem], 0);
    EXPECT_EQ(shown(controls.prefSigFigs), "10");
    EXPECT_EQ(shown(controls.prefHistSize), "30");
    EXPECT_EQ(shown(controls.prefSepChar), ",");
    EXPECT_EQ([controls.prefSlider intValue], 25);
    EXPECT_TRUE(isTicked(controls.prefSnapTo));
    EXPECT_TRUE(isTicked(controls.prefTransBGOnly));
    EXPECT_TRUE(isTicked(controls.prefStatusIcon));
    EXPECT_FALSE(isTicked(controls.prefSeparator));
    EXPECT_FALSE(isTicked(controls.prefTwosComp));
    EXPECT_FALSE(isTicked(controls.prefEuropean));
    expectColor([controls.prefFGColor color], 0.1, 0.9, 0.9);
    expectColor([controls.prefBGColor color], 0.1, 0.1, 0.1);
}

} // namespace
