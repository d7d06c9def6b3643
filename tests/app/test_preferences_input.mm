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
    std::string Reason() const { return Shown(controls.prefSepReason); }
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
        Open();
        EnterInto(controls.prefSigFigs, string(one.typed));
        Close();
        EXPECT_EQ(SettingOf("sigfigs"), one.stored) << one.typed;
        EXPECT_EQ(Shown(controls.prefSigFigs), one.stored == 12 ? "12abc" : std::to_string(one.stored));
    }
}

TEST_F(PreferencesInput, LettersOrNothingKeepTheFigures) {
    Set("sigfigs", 8);
    for (const char* const typed : {"", " ", "abc", "-", "\u00e4", "nan"}) {
        Open();
        EnterInto(controls.prefSigFigs, string(typed));
        EXPECT_EQ(SettingOf("sigfigs"), 8) << typed;
        Close();
        EXPECT_EQ(SettingOf("sigfigs"), 8) << typed;
        EXPECT_EQ(Shown(controls.prefSigFigs), "8") << typed;
    }
}

// The file is written while the panel is open, too: an entry has it written.
TEST_F(PreferencesInput, WhileThePanelIsOpenOnlyPossibleFiguresAreStored) {
    Set("sigfigs", 8);
    Open();
    for (const char* const typed : NO_NUMBERS) {
        EnterInto(controls.prefSigFigs, string(typed));
        EXPECT_EQ(SettingOf("sigfigs"), 8) << typed;
        Enter("1/3");
        EXPECT_NE(Text().rfind("ans = 0.33333333\n"), std::string::npos) << typed;
        [console saveSettings];
        EXPECT_NE(Read(SettingsPath()).find("<key>sigfigs</key>\n\t<integer>8</integer>"), std::string::npos);
    }
    EnterInto(controls.prefSigFigs, @"3");
    EXPECT_EQ(SettingOf("sigfigs"), 3);
}

TEST_F(PreferencesInput, LinesOfHistoryFromOneToNineHundredNinetyNineAreKeptOthersBecomeNinetyNine) {
    const struct {
        const char* typed;
        int stored;
    } cases[] = {{"1", 1}, {"999", 999}, {"0", 99}, {"1000", 99}, {"-5", 99}, {"abc", 99}, {"", 99}};
    for (const auto& one : cases) {
        Open();
        EnterInto(controls.prefHistSize, string(one.typed));
        Close();
        EXPECT_EQ(SettingOf("histsz"), one.stored) << one.typed;
    }
}

TEST_F(PreferencesInput, NoTextInANumberFieldGetsIntoTheSettings) {
    for (const char* const text : NO_NUMBERS) {
        Open();
        EnterInto(controls.prefSigFigs, string(text));
        EnterInto(controls.prefHistSize, string(text));
        EXPECT_FALSE(Shown(controls.prefNumPreview).empty()) << text;
        Close();
        EXPECT_TRUE(SettingOf("sigfigs") == 6 || SettingOf("sigfigs") == 10) << text;
        EXPECT_EQ(SettingOf("histsz"), 99) << text;
        Enter("1/4");
        EXPECT_NE(this->Text().find("0.25"), std::string::npos) << text;
    }
}

TEST_F(PreferencesInput, AHugeNumberIsNotTakenForItsLastBits) {
    Open();
    EnterInto(controls.prefSigFigs, @"4294967306");            // 2^32 + 10
    EnterInto(controls.prefHistSize, @"18446744073709551626"); // 2^64 + 10
    Close();
    EXPECT_EQ(SettingOf("sigfigs"), 6);
    EXPECT_EQ(SettingOf("histsz"), 99);
}

TEST_F(PreferencesInput, ALongTextInANumberFieldIsSurvived) {
    Open();
    [controls.prefSigFigs setStringValue:string(std::string(100000, '9'))];
    [controller prefCallback:controls.prefSigFigs];
    [controls.prefHistSize setStringValue:string(std::string(100000, 'x'))];
    Close();
    EXPECT_EQ(SettingOf("sigfigs"), 6);
    EXPECT_EQ(SettingOf("histsz"), 99);
}

// The console works with what is stored while the panel is open.
TEST_F(PreferencesInput, EntriesWorkWhileAFieldHoldsNoPossibleNumber) {
    for (const char* const typed : {"0", "-1", "2147483647"}) {
        Open();
        EnterInto(controls.prefSigFigs, string(typed));
        Enter("3/4");
        EXPECT_EQ(Text().find("rror"), std::string::npos) << Text();
        Close();
        Enter("3/4");
        EXPECT_NE(Text().rfind("0.75"), std::string::npos);
        EXPECT_EQ(SettingOf("sigfigs"), 6);
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
    Set("separator", 1);
    Set("schar", '\'');
    for (const auto& one : cases) {
        Open();
        EnterInto(controls.prefSepChar, string(one.typed));
        EXPECT_EQ(SettingOf("schar"), '\'') << one.typed;
        EXPECT_EQ(Shown(controls.prefSepChar), "'") << one.typed; // what counts is what is seen
        EXPECT_EQ(Reason(), one.reason);
        EnterInto(controls.prefSepChar, @" ");
        EXPECT_EQ(Reason(), "") << "a mark that is taken";
        EnterInto(controls.prefSepChar, @"'");
        Close();
        EXPECT_EQ(SettingOf("schar"), '\'') << one.typed;
    }
}

TEST_F(PreferencesInput, ARefusedMarkIsNotStoredWhenThePanelClosesEither) {
    Set("schar", '\'');
    Open();
    [controls.prefSepChar setStringValue:@"+"];
    Close();
    EXPECT_EQ(SettingOf("schar"), '\'');
    Open();
    EXPECT_EQ(Reason(), "") << "of the time before";
}

TEST_F(PreferencesInput, TheDecimalMarkGivesWayToTheOtherOne) {
    Set("schar", '\'');
    Open();
    EnterInto(controls.prefSepChar, @".");
    EXPECT_EQ(SettingOf("schar"), ',');
    EXPECT_EQ(Shown(controls.prefSepChar), ",");
    EXPECT_EQ(Reason(), ". is the decimal mark.");
    Tick(controls.prefEuropean, true);
    EnterInto(controls.prefSepChar, @",");
    EXPECT_EQ(Shown(controls.prefSepChar), ".");
    EXPECT_EQ(Reason(), ", is the decimal mark.");
}

TEST_F(PreferencesInput, NoMarkIsTheUsualOne) {
    Open();
    EnterInto(controls.prefSepChar, @"");
    EXPECT_EQ(SettingOf("schar"), ',');
    EXPECT_EQ(Shown(controls.prefSepChar), ",");
}

// However a mark came to be: what it groups is read as the same number or not at all, never as another one.
TEST_F(PreferencesInput, NoMarkMakesAnotherNumber) {
    for (int code = 32; code < 256; ++code) {
        if (code == ';') continue; // separates statements, and has always been allowed
        const unichar character = static_cast<unichar>(code);
        Open();
        [controls.prefSepChar setStringValue:[NSString stringWithCharacters:&character length:1]];
        Tick(controls.prefSeparator, true);
        Close();
        Enter("7");
        Enter("1234567");
        const std::string shownAnswer = calc.answer.shown;
        if (calc.ProcessEntry(shownAnswer.c_str(), true) != STATUS_RESULT) continue;
        double read = 0;
        qtoe(calc.result, &read);
        EXPECT_EQ(read, 1234567) << code << ": " << shownAnswer;
    }
}

TEST_F(PreferencesInput, ASeparatorThatTheConsoleCannotShowIsTakenForTheUsualOne) {
    for (const char* const typed : {"\U0001F600", "\u20ac", "\u4e2d", "\n", "\t"}) {
        Open();
        [controls.prefSepChar setStringValue:string(typed)];
        [controller prefCallback:controls.prefSepChar];
        EXPECT_EQ(SettingOf("schar"), ',') << typed;
        Close();
        EXPECT_EQ(SettingOf("schar"), ',') << typed;
        EXPECT_TRUE([[console string] canBeConvertedToEncoding:NSISOLatin1StringEncoding]);
    }
}

TEST_F(PreferencesInput, TheUsualMarkThatReplacesAnotherFollowsTheDecimalMark) {
    Set("european", 1);
    Open();
    EnterInto(controls.prefSepChar, @"");
    EXPECT_EQ(Shown(controls.prefSepChar), ".");
    EXPECT_EQ(SettingOf("schar"), ',');
}

TEST_F(PreferencesInput, TheSeparatorFieldHoldsOneCharacter) {
    Open();
    EnterInto(controls.prefSepChar, @";'");
    EXPECT_EQ(Shown(controls.prefSepChar), ";");
    EXPECT_EQ(SettingOf("schar"), ';');
}

TEST_F(PreferencesInput, OfTwoCharactersTheFirstCounts) {
    Open();
    [controls.prefSepChar setStringValue:@"'_"];
    Close();
    EXPECT_EQ(SettingOf("schar"), '\'');
}

TEST_F(PreferencesInput, EverySeparatorThatIsTakenShowsItselfAgain) {
    Set("separator", 1);
    int before = ',';
    for (int code = 33; code < 256; ++code) {
        const unichar character = static_cast<unichar>(code);
        NSString* const typed = [NSString stringWithCharacters:&character length:1];
        Open();
        [controls.prefSepChar setStringValue:typed];
        [controller prefCallback:controls.prefSepChar];
        Close();
        const int taken = SettingOf("schar");
        const bool isPoint = code == '.' && taken == ',';
        EXPECT_TRUE(taken == code || taken == before || isPoint) << code;
        before = taken;
        Open();
        EXPECT_EQ([[controls.prefSepChar stringValue] characterAtIndex:0], static_cast<unichar>(taken));
        Close();
        EXPECT_EQ(SettingOf("schar"), taken) << code;
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
        Open();
        EXPECT_GE([controls.prefSciMode indexOfSelectedItem], 0);
        EXPECT_EQ(Shown(controls.prefSepChar), ",");
        EXPECT_EQ(Shown(controls.prefSigFigs), "10");
        EXPECT_EQ(Shown(controls.prefHistSize), "30");
        EXPECT_EQ(Shown(controls.prefNumPreview), "12345.6");
        Close();
        EXPECT_EQ(SettingOf("sigfigs"), 10);
        EXPECT_EQ(SettingOf("histsz"), 30);
        EXPECT_EQ(SettingOf("schar"), ',');
    }
}

TEST_F(PreferencesInput, NumbersThatNoSettingCanHaveOpenAndCloseAPanelThatIsSound) {
    for (const int value : {-1, 6, 1000000, INT32_MIN, INT32_MAX}) {
        for (const char* const key : {"scimode", "sigfigs", "histsz", "snaptoscreen", "separator", "trans"}) {
            Set(key, value);
        }
        Open();
        Close();
        EXPECT_GE(SettingOf("scimode"), 0) << value;
        EXPECT_LE(SettingOf("scimode"), 5) << value;
        EXPECT_GE(SettingOf("sigfigs"), 1) << value;
        EXPECT_LE(SettingOf("sigfigs"), 100) << value;
        EXPECT_GE(SettingOf("histsz"), 1) << value;
        EXPECT_LE(SettingOf("histsz"), 999) << value;
        EXPECT_GE(SettingOf("trans"), 0) << value;
        EXPECT_LE(SettingOf("trans"), 100) << value;
        EXPECT_TRUE(SettingOf("separator") == 0 || SettingOf("separator") == 1) << value;
    }
}

TEST_F(PreferencesInput, AFileWithWrongKindsForEveryKeyStartsWithTheDefaults) {
    Terminate();
    std::string file = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    for (const char* const key : {"scimode", "sigfigs", "histsz", "snaptoscreen", "transback", "separator",
                                  "twoscomp", "european", "statusicon", "trans", "schar", "fgcolor",
                                  "bgcolor", "nsfont", "firstrun", "degmode", "dispbase"}) {
        file += std::string("<key>") + key + "</key><string>wrong</string>\n";
    }
    Write(SettingsPath(), file + "</dict>\n</plist>\n");
    RestartAll();
    Open();
    EXPECT_EQ([controls.prefSciMode indexOfSelectedItem], 0);
    EXPECT_EQ(Shown(controls.prefSigFigs), "10");
    EXPECT_EQ(Shown(controls.prefHistSize), "30");
    EXPECT_EQ(Shown(controls.prefSepChar), ",");
    EXPECT_EQ([controls.prefSlider intValue], 25);
    EXPECT_TRUE(IsTicked(controls.prefSnapTo));
    EXPECT_TRUE(IsTicked(controls.prefTransBGOnly));
    EXPECT_TRUE(IsTicked(controls.prefStatusIcon));
    EXPECT_FALSE(IsTicked(controls.prefSeparator));
    EXPECT_FALSE(IsTicked(controls.prefTwosComp));
    EXPECT_FALSE(IsTicked(controls.prefEuropean));
    ExpectColor([controls.prefFGColor color], 0.1, 0.9, 0.9);
    ExpectColor([controls.prefBGColor color], 0.1, 0.1, 0.1);
}

} // namespace
