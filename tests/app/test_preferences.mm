// SPDX-License-Identifier: MIT
#import "panel_fixture.h"

#import "Platform.h"
#import "SettingsDictionary.h"

namespace {

class Preferences : public PanelTest {
protected:
    // The settings as the file holds them.
    NSDictionary* stored() const {
        KeptSettings kept;
        EXPECT_TRUE(readSettings(read(settingsPath()), kept));
        return settingsDictionary(kept, nil);
    }

    int inFile(const char* key) const {
        return [[stored() objectForKey:[NSString stringWithUTF8String:key]] intValue];
    }
};

// --- Opening ---

TEST_F(Preferences, OpeningLoadsNumbers) {
    set("scimode", 3);
    set("sigfigs", 17);
    set("histsz", 250);
    set("trans", 60);
    open();
    EXPECT_EQ([controls.prefSciMode indexOfSelectedItem], 3);
    EXPECT_EQ(shown(controls.prefSigFigs), "17");
    EXPECT_EQ(shown(controls.prefHistSize), "250");
    EXPECT_EQ([controls.prefSlider intValue], 60);
    EXPECT_EQ([controls.prefSlider minValue], 0);
    EXPECT_EQ([controls.prefSlider maxValue], 100);
}

TEST_F(Preferences, OpeningLoadsEachBoxFromItsOwnSetting) {
    const struct {
        const char* key;
        NSButton* box;
    } boxes[] = {{"snaptoscreen", controls.prefSnapTo}, {"transback", controls.prefTransBGOnly},
                 {"separator", controls.prefSeparator}, {"twoscomp", controls.prefTwosComp},
                 {"european", controls.prefEuropean},   {"statusicon", controls.prefStatusIcon}};
    for (const auto& on : boxes) {
        for (const auto& box : boxes) set(box.key, 0);
        set(on.key, 1);
        open();
        for (const auto& box : boxes) {
            EXPECT_EQ(isTicked(box.box), box.key == on.key) << box.key << " with " << on.key;
        }
    }
}

TEST_F(Preferences, OpeningLoadsTheColorsOfTheConsoleNotOfTheSettings) {
    [console showTextColor:[NSColor colorWithCalibratedRed:0.9 green:0.8 blue:0.1 alpha:1]
                background:[NSColor colorWithCalibratedRed:0.2 green:0.1 blue:0.3 alpha:1]];
    open();
    expectColor([controls.prefFGColor color], 0.9, 0.8, 0.1);
    expectColor([controls.prefBGColor color], 0.2, 0.1, 0.3);
}

TEST_F(Preferences, TheSliderReportsWhileItIsMoved) {
    [controls.prefSlider setContinuous:NO];
    open();
    EXPECT_TRUE([controls.prefSlider isContinuous]);
}

TEST_F(Preferences, AMarkOfNumbersIsShownAsTheOneThatGoesWithTheDecimalMark) {
    const struct {
        int separator, european;
        const char* shown;
    } cases[] = {{',', 0, ","}, {'.', 0, ","}, {',', 1, "."}, {'.', 1, "."}};
    for (const auto& one : cases) {
        set("schar", one.separator);
        set("european", one.european);
        open();
        EXPECT_EQ(shown(controls.prefSepChar), one.shown) << one.separator << " " << one.european;
    }
}

TEST_F(Preferences, AnotherSeparatorIsShownAsItIs) {
    const struct {
        int separator;
        const char* shown;
    } cases[] = {{';', ";"}, {'\'', "'"}, {' ', " "}, {'_', "_"}, {0xB7, "\u00B7"}};
    for (const auto& one : cases) {
        set("schar", one.separator);
        open();
        EXPECT_EQ(shown(controls.prefSepChar), one.shown) << one.separator;
    }
}

TEST_F(Preferences, OpeningShowsTheSampleInTheSettings) {
    open();
    EXPECT_EQ(shown(controls.prefNumPreview), "12345.6");
    set("separator", 1);
    open();
    EXPECT_EQ(shown(controls.prefNumPreview), "12,345.6");
    set("european", 1);
    open();
    EXPECT_EQ(shown(controls.prefNumPreview), "12.345,6");
}

TEST_F(Preferences, TheSampleIsDecimalWhateverTheDisplayBase) {
    [console setDisplayBase:16:NO];
    open();
    EXPECT_EQ(shown(controls.prefNumPreview), "12345.6");
    EXPECT_EQ(setting("dispbase"), 16);
}

TEST_F(Preferences, TheSampleLeavesTheEntryAndTheAnswerAlone) {
    enter("7*6");
    type("1+1");
    open();
    close();
    EXPECT_EQ(entry(), "1+1");
    EXPECT_EQ(status().substr(status().size() - 1), "2");
    enter("");
    type("ans");
    EXPECT_EQ(status().substr(status().size() - 1), "2");
}

TEST_F(Preferences, OpeningShowsThePanelAndSetsTheFlag) {
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_FALSE([panel isVisible]);
    open();
    EXPECT_EQ(prefWinIsOpen, 1);
    EXPECT_TRUE([panel isVisible]);
    EXPECT_TRUE([panel canBecomeKeyWindow]);
}

TEST_F(Preferences, OpeningAnOpenPanelLoadsItAnew) {
    open();
    set("histsz", 77);
    open();
    EXPECT_EQ(shown(controls.prefHistSize), "77");
    EXPECT_EQ(prefWinIsOpen, 1);
    close();
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(setting("histsz"), 77);
}

// --- Effects at once ---

TEST_F(Preferences, TheModesOfThePopUpAreInTheOrderOfTheirCodes) {
    // Auto, never, always, engineering, metric prefixes, fixed; with six figures or six decimals.
    const char* const expected[] = {"12345.6",   "12345.6",  "1.23456e4",
                                    "12.3456e3", "12.3456k", "12345.600000"};
    ASSERT_EQ([controls.prefSciMode numberOfItems], 6);
    set("sigfigs", 6);
    for (int mode = 0; mode < 6; mode++) {
        open();
        choose(mode);
        EXPECT_EQ(setting("scimode"), mode);
        EXPECT_EQ(shown(controls.prefNumPreview), expected[mode]) << mode;
    }
}

TEST_F(Preferences, FiguresActWhenTheFieldIsLeft) {
    open();
    enterInto(controls.prefSigFigs, @"5");
    EXPECT_EQ(setting("sigfigs"), 5);
    EXPECT_EQ(shown(controls.prefNumPreview), "12346"); // rounded to five figures
}

TEST_F(Preferences, GroupingActsAtOnce) {
    open();
    tick(controls.prefSeparator, true);
    EXPECT_EQ(setting("separator"), 1);
    EXPECT_EQ(shown(controls.prefNumPreview), "12,345.6");
    tick(controls.prefSeparator, false);
    EXPECT_EQ(setting("separator"), 0);
    EXPECT_EQ(shown(controls.prefNumPreview), "12345.6");
}

TEST_F(Preferences, AnotherSeparatorIsStoredButTheSampleWaitsForTheNextOpening) {
    set("separator", 1);
    open();
    enterInto(controls.prefSepChar, @";");
    EXPECT_EQ(setting("schar"), ';');
    EXPECT_EQ(shown(controls.prefNumPreview), "12,345.6");
    close();
    EXPECT_EQ(setting("schar"), ';');
    open();
    EXPECT_EQ(shown(controls.prefSepChar), ";");
    EXPECT_EQ(shown(controls.prefNumPreview), "12;345.6");
}

TEST_F(Preferences, WithAnotherSeparatorTheDecimalMarkWaitsForTheClosing) {
    set("schar", ';');
    open();
    tick(controls.prefEuropean, true);
    EXPECT_EQ(setting("european"), 0);
    EXPECT_EQ(shown(controls.prefSepChar), ";");
    EXPECT_EQ(shown(controls.prefNumPreview), "12345.6");
    close();
    EXPECT_EQ(setting("european"), 1);
    EXPECT_EQ(setting("schar"), ';');
}

TEST_F(Preferences, APointAsSeparatorIsStoredAsAComma) {
    open();
    enterInto(controls.prefSepChar, @".");
    EXPECT_EQ(setting("schar"), ',');
    close();
    EXPECT_EQ(setting("schar"), ',');
    EXPECT_EQ(inFile("schar"), ',');
}

TEST_F(Preferences, TheGroupingMarkFollowsTheDecimalMark) {
    set("separator", 1);
    open();
    tick(controls.prefEuropean, true);
    EXPECT_EQ(shown(controls.prefSepChar), ".");
    EXPECT_EQ(setting("european"), 1);
    EXPECT_EQ(setting("schar"), ',');
    EXPECT_EQ(shown(controls.prefNumPreview), "12.345,6");
    tick(controls.prefEuropean, false);
    EXPECT_EQ(shown(controls.prefSepChar), ",");
    EXPECT_EQ(setting("european"), 0);
    EXPECT_EQ(shown(controls.prefNumPreview), "12,345.6");
}

TEST_F(Preferences, FadingActsAtOnceAndRedraws) {
    open();
    [window displayIfNeeded];
    tick(controls.prefTransBGOnly, false);
    EXPECT_EQ(setting("transback"), 0);
    EXPECT_TRUE([[window contentView] needsDisplay]);
}

TEST_F(Preferences, TheSliderIsStoredWithoutItsFractionAndRedraws) {
    open();
    [window displayIfNeeded];
    slide(33.9);
    EXPECT_EQ(setting("trans"), 33);
    EXPECT_TRUE([[window contentView] needsDisplay]);
}

TEST_F(Preferences, ColorsActAtOnce) {
    open();
    pick(controls.prefFGColor, 0.9, 0.8, 0.7);
    expectColor([console textColor], 0.9, 0.8, 0.7);
    expectColor([console insertionPointColor], 0.9, 0.8, 0.7);
    [window displayIfNeeded];
    pick(controls.prefBGColor, 0.3, 0.2, 0.1);
    expectColor([console backgroundColor], 0.3, 0.2, 0.1);
    EXPECT_TRUE([[window contentView] needsDisplay]);
    // They are stored when the panel closes.
    expectColor([[console settings] objectForKey:@"bgcolor"], 0.1, 0.1, 0.1);
}

TEST_F(Preferences, ResetBringsBackColorsAndTransparencyAtOnce) {
    open();
    pick(controls.prefFGColor, 1, 0, 0);
    pick(controls.prefBGColor, 0, 0, 1);
    slide(80);
    [controls.prefResetColors performClick:nil];
    expectColor([controls.prefFGColor color], 0.1, 0.9, 0.9);
    expectColor([controls.prefBGColor color], 0.1, 0.1, 0.1);
    expectColor([console textColor], 0.1, 0.9, 0.9);
    expectColor([console insertionPointColor], 0.1, 0.9, 0.9);
    expectColor([console backgroundColor], 0.1, 0.1, 0.1);
    expectColor([[console settings] objectForKey:@"fgcolor"], 0.1, 0.9, 0.9);
    expectColor([[console settings] objectForKey:@"bgcolor"], 0.1, 0.1, 0.1);
    EXPECT_EQ([controls.prefSlider intValue], 25);
    EXPECT_EQ(setting("trans"), 25);
}

TEST_F(Preferences, AlwaysOnTopIsOfThisRunAlone) {
    open();
    EXPECT_EQ([window level], NSNormalWindowLevel);
    [window setExcludedFromWindowsMenu:YES];
    tick(controls.prefAlwaysTop, true);
    EXPECT_EQ([window level], NSFloatingWindowLevel);
    EXPECT_FALSE([window isExcludedFromWindowsMenu]);
    close();
    EXPECT_EQ([window level], NSFloatingWindowLevel);
    EXPECT_EQ(setting("alwaystop"), 0);
    EXPECT_EQ(inFile("alwaystop"), 0);
    open();
    EXPECT_TRUE(isTicked(controls.prefAlwaysTop));
    tick(controls.prefAlwaysTop, false);
    EXPECT_EQ([window level], NSNormalWindowLevel);
}

TEST_F(Preferences, AStoredAlwaysOnTopIsLeftAlone) {
    set("alwaystop", 1);
    open();
    EXPECT_EQ([window level], NSNormalWindowLevel);
    tick(controls.prefAlwaysTop, false);
    close();
    EXPECT_EQ(inFile("alwaystop"), 1);
}

TEST_F(Preferences, WhatWaitsForTheClosing) {
    open();
    tick(controls.prefSnapTo, false);
    tick(controls.prefTwosComp, true);
    tick(controls.prefStatusIcon, false);
    enterInto(controls.prefHistSize, @"44");
    EXPECT_EQ(setting("snaptoscreen"), 1);
    EXPECT_EQ(setting("twoscomp"), 0);
    EXPECT_EQ(setting("statusicon"), 1);
    EXPECT_EQ(setting("histsz"), 30);
    close();
    EXPECT_EQ(setting("snaptoscreen"), 0);
    EXPECT_EQ(setting("twoscomp"), 1);
    EXPECT_EQ(setting("statusicon"), 0);
    EXPECT_EQ(setting("histsz"), 44);
}

TEST_F(Preferences, TheStatusItemIsOfferedWhereThereIsAStatusBar) {
    EXPECT_EQ([controls.prefStatusIcon isEnabled], platformStatusBar() != nil);
    if (!platformStatusBar()) {
        EXPECT_NE([controls.prefStatusIcon toolTip], nil);
    }
}

// --- Closing ---

TEST_F(Preferences, ClosingStoresAndSavesEverything) {
    open();
    choose(2);
    enterInto(controls.prefSigFigs, @"12");
    enterInto(controls.prefSepChar, @"'");
    enterInto(controls.prefHistSize, @"123");
    tick(controls.prefSeparator, true);
    tick(controls.prefEuropean, true);
    tick(controls.prefTwosComp, true);
    tick(controls.prefSnapTo, false);
    tick(controls.prefTransBGOnly, false);
    tick(controls.prefStatusIcon, false);
    slide(41.7);
    pick(controls.prefFGColor, 0.5, 0.25, 0.75);
    pick(controls.prefBGColor, 0.125, 0.25, 0);
    close();
    EXPECT_EQ(inFile("scimode"), 2);
    EXPECT_EQ(inFile("sigfigs"), 12);
    EXPECT_EQ(inFile("schar"), '\'');
    EXPECT_EQ(inFile("histsz"), 123);
    EXPECT_EQ(inFile("separator"), 1);
    EXPECT_EQ(inFile("european"), 1);
    EXPECT_EQ(inFile("twoscomp"), 1);
    EXPECT_EQ(inFile("snaptoscreen"), 0);
    EXPECT_EQ(inFile("transback"), 0);
    EXPECT_EQ(inFile("statusicon"), 0);
    EXPECT_EQ(inFile("trans"), 41);
    expectColor([stored() objectForKey:@"fgcolor"], 0.5, 0.25, 0.75);
    expectColor([stored() objectForKey:@"bgcolor"], 0.125, 0.25, 0);
    expectColor([console textColor], 0.5, 0.25, 0.75);
    expectColor([console backgroundColor], 0.125, 0.25, 0);
}

TEST_F(Preferences, WhatClosingStoredIsThereAtTheNextStart) {
    open();
    enterInto(controls.prefHistSize, @"2");
    pick(controls.prefFGColor, 0.5, 0.25, 0.75);
    close();
    EXPECT_EQ(calc.history.maxEntries, 30); // it acts at the next start
    terminate();
    restartAll();
    EXPECT_EQ(calc.history.maxEntries, 2);
    open();
    EXPECT_EQ(shown(controls.prefHistSize), "2");
    expectColor([controls.prefFGColor color], 0.5, 0.25, 0.75);
}

TEST_F(Preferences, ClosingRedrawsAndClearsTheFlag) {
    open();
    [window displayIfNeeded];
    close();
    EXPECT_TRUE([[window contentView] needsDisplay]);
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_FALSE([panel isVisible]);
}

TEST_F(Preferences, WhatIsBeingTypedCountsAtTheClosing) {
    open();
    [panel makeFirstResponder:controls.prefHistSize];
    NSText* const editor = [controls.prefHistSize currentEditor];
    ASSERT_NE(editor, nil);
    [editor selectAll:nil];
    [static_cast<NSTextView*>(editor) insertText:@"321"];
    close();
    EXPECT_EQ(setting("histsz"), 321);
}

TEST_F(Preferences, ClosingEndsThePickingOfColors) {
    open();
    [controls.prefBGColor activate:YES];
    [[NSColorPanel sharedColorPanel] orderFront:nil];
    close();
    EXPECT_FALSE([controls.prefBGColor isActive]);
    EXPECT_FALSE([[NSColorPanel sharedColorPanel] isVisible]);
    [[NSColorPanel sharedColorPanel] setColor:[NSColor colorWithCalibratedRed:1 green:0 blue:0 alpha:1]];
    run(0.05);
    expectColor([console backgroundColor], 0.1, 0.1, 0.1);
}

TEST_F(Preferences, AColorOfTheColorPanelGoesToTheActiveWell) {
    open();
    [controls.prefBGColor activate:YES];
    [[NSColorPanel sharedColorPanel] setColor:[NSColor colorWithCalibratedRed:0.3
                                                                        green:0.2
                                                                         blue:0.1
                                                                        alpha:1]];
    run(0.05);
    expectColor([console backgroundColor], 0.3, 0.2, 0.1);
    expectColor([console textColor], 0.1, 0.9, 0.9);
}

TEST_F(Preferences, AClosedPanelStoresNothing) {
    open();
    close();
    set("sigfigs", 33);
    [panel close];
    [controller windowWillClose:nil];
    [controller closePanel];
    EXPECT_EQ(setting("sigfigs"), 33);
}

TEST_F(Preferences, QuittingWithThePanelOpenSaves) {
    open();
    enterInto(controls.prefHistSize, @"55");
    quit();
    EXPECT_EQ(inFile("histsz"), 55);
    EXPECT_EQ(prefWinIsOpen, 0);
}

TEST_F(Preferences, QuittingWithThePanelClosedKeepsTheSettings) {
    set("histsz", 56);
    quit();
    EXPECT_EQ(inFile("histsz"), 56);
}

TEST_F(Preferences, TheLiveResultTakesTheNewFormAtTheClosing) {
    type("1/3");
    open();
    enterInto(controls.prefSigFigs, @"4");
    close();
    EXPECT_EQ(status().substr(status().size() - 6), "0.3333");
}

TEST_F(Preferences, ThePanelSurvivesManyOpenings) {
    for (int i = 0; i < 20; i++) {
        open();
        close();
    }
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(setting("sigfigs"), 10);
    EXPECT_EQ(setting("schar"), ',');
}

} // namespace

// --- The table ---

// A row with a title has a control that shows it and stores it; one without a title has none.
TEST_F(Preferences, EveryTitledSettingIsShownAndStored) {
    for (const Setting& row : SETTINGS) {
        SCOPED_TRACE(row.key);
        ASSERT_EQ(row.title != nullptr, controls.of(row) != nil);
        if (!row.title || row.kind == Setting::COLOR || row.kind == Setting::CHARACTER) continue;
        int other = row.least;
        while (other == row.standard || !row.IsPossible(other)) other++;
        set(row.key, other);
        open();
        set(row.key, row.standard);
        close();
        EXPECT_EQ(setting(row.key), other);
        set(row.key, row.standard);
    }
}
