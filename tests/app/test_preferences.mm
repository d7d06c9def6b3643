// SPDX-License-Identifier: MIT
#import "panel_fixture.h"

#import "Platform.h"

// In place of the font manager, once a font was chosen in its panel.
@interface FontChoice : NSObject
- (NSFont*)convertFont:(NSFont*)font;
@end

@implementation FontChoice
- (NSFont*)convertFont:(NSFont*)font {
    return [NSFont fontWithName:@"DejaVuSerif" size:[font pointSize]];
}
@end

namespace {

class Preferences : public PanelTest {};

// --- Opening ---

TEST_F(Preferences, OpeningLoadsNumbers) {
    Set("scimode", 3);
    Set("sigfigs", 17);
    Set("histsz", 250);
    Set("trans", 60);
    Open();
    EXPECT_EQ([controls.prefSciMode indexOfSelectedItem], 3);
    EXPECT_EQ(Shown(controls.prefSigFigs), "17");
    EXPECT_EQ(Shown(controls.prefHistSize), "250");
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
        for (const auto& box : boxes) Set(box.key, 0);
        Set(on.key, 1);
        Open();
        for (const auto& box : boxes) {
            EXPECT_EQ(IsTicked(box.box), box.key == on.key) << box.key << " with " << on.key;
        }
    }
}

TEST_F(Preferences, OpeningLoadsTheColorsOfTheConsoleNotOfTheSettings) {
    [console showTextColor:[NSColor colorWithCalibratedRed:0.9 green:0.8 blue:0.1 alpha:1]
                background:[NSColor colorWithCalibratedRed:0.2 green:0.1 blue:0.3 alpha:1]];
    Open();
    ExpectColor([controls.prefFGColor color], 0.9, 0.8, 0.1);
    ExpectColor([controls.prefBGColor color], 0.2, 0.1, 0.3);
}

TEST_F(Preferences, TheSliderReportsWhileItIsMoved) {
    [controls.prefSlider setContinuous:NO];
    Open();
    EXPECT_TRUE([controls.prefSlider isContinuous]);
}

TEST_F(Preferences, AMarkOfNumbersIsShownAsTheOneThatGoesWithTheDecimalMark) {
    const struct {
        int separator, european;
        const char* shown;
    } cases[] = {{',', 0, ","}, {'.', 0, ","}, {',', 1, "."}, {'.', 1, "."}};
    for (const auto& one : cases) {
        Set("schar", one.separator);
        Set("european", one.european);
        Open();
        EXPECT_EQ(Shown(controls.prefSepChar), one.shown) << one.separator << " " << one.european;
    }
}

TEST_F(Preferences, AnotherSeparatorIsShownAsItIs) {
    const struct {
        int separator;
        const char* shown;
    } cases[] = {{';', ";"}, {'\'', "'"}, {' ', " "}, {'_', "_"}, {0xB7, "\u00B7"}};
    for (const auto& one : cases) {
        Set("schar", one.separator);
        Open();
        EXPECT_EQ(Shown(controls.prefSepChar), one.shown) << one.separator;
    }
}

TEST_F(Preferences, OpeningShowsTheSampleInTheSettings) {
    Open();
    EXPECT_EQ(Shown(controls.prefNumPreview), "12345.6");
    Set("separator", 1);
    Open();
    EXPECT_EQ(Shown(controls.prefNumPreview), "12,345.6");
    Set("european", 1);
    Open();
    EXPECT_EQ(Shown(controls.prefNumPreview), "12.345,6");
}

TEST_F(Preferences, TheSampleIsDecimalWhateverTheDisplayBase) {
    [console setDisplayBase:16:NO];
    Open();
    EXPECT_EQ(Shown(controls.prefNumPreview), "12345.6");
    EXPECT_EQ(SettingOf("dispbase"), 16);
}

TEST_F(Preferences, TheSampleLeavesTheEntryAndTheAnswerAlone) {
    Enter("7*6");
    Type("1+1");
    Open();
    Close();
    EXPECT_EQ(Entry(), "1+1");
    EXPECT_EQ(StatusLine().substr(StatusLine().size() - 1), "2");
    Enter("");
    Type("ans");
    EXPECT_EQ(StatusLine().substr(StatusLine().size() - 1), "2");
}

TEST_F(Preferences, OpeningShowsThePanelAndSetsTheFlag) {
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_FALSE([panel isVisible]);
    Open();
    EXPECT_EQ(prefWinIsOpen, 1);
    EXPECT_TRUE([panel isVisible]);
    EXPECT_TRUE([panel canBecomeKeyWindow]);
}

TEST_F(Preferences, OpeningAnOpenPanelLoadsItAnew) {
    Open();
    Set("histsz", 77);
    Open();
    EXPECT_EQ(Shown(controls.prefHistSize), "77");
    EXPECT_EQ(prefWinIsOpen, 1);
    Close();
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(SettingOf("histsz"), 77);
}

// --- Effects at once ---

TEST_F(Preferences, TheModesOfThePopUpAreInTheOrderOfTheirCodes) {
    // Auto, never, always, engineering, metric prefixes, fixed; with six figures or six decimals.
    const char* const expected[] = {"12345.6",   "12345.6",  "1.23456e4",
                                    "12.3456e3", "12.3456k", "12345.600000"};
    ASSERT_EQ([controls.prefSciMode numberOfItems], 6);
    Set("sigfigs", 6);
    for (int mode = 0; mode < 6; ++mode) {
        Open();
        Choose(mode);
        EXPECT_EQ(SettingOf("scimode"), mode);
        EXPECT_EQ(Shown(controls.prefNumPreview), expected[mode]) << mode;
    }
}

TEST_F(Preferences, FiguresActWhenTheFieldIsLeft) {
    Open();
    EnterInto(controls.prefSigFigs, @"5");
    EXPECT_EQ(SettingOf("sigfigs"), 5);
    EXPECT_EQ(Shown(controls.prefNumPreview), "12346"); // rounded to five figures
}

TEST_F(Preferences, GroupingActsAtOnce) {
    Open();
    Tick(controls.prefSeparator, true);
    EXPECT_EQ(SettingOf("separator"), 1);
    EXPECT_EQ(Shown(controls.prefNumPreview), "12,345.6");
    Tick(controls.prefSeparator, false);
    EXPECT_EQ(SettingOf("separator"), 0);
    EXPECT_EQ(Shown(controls.prefNumPreview), "12345.6");
}

TEST_F(Preferences, AnotherSeparatorIsStoredButTheSampleWaitsForTheNextOpening) {
    Set("separator", 1);
    Open();
    EnterInto(controls.prefSepChar, @";");
    EXPECT_EQ(SettingOf("schar"), ';');
    EXPECT_EQ(Shown(controls.prefNumPreview), "12,345.6");
    Close();
    EXPECT_EQ(SettingOf("schar"), ';');
    Open();
    EXPECT_EQ(Shown(controls.prefSepChar), ";");
    EXPECT_EQ(Shown(controls.prefNumPreview), "12;345.6");
}

TEST_F(Preferences, WithAnotherSeparatorTheDecimalMarkWaitsForTheClosing) {
    Set("schar", ';');
    Open();
    Tick(controls.prefEuropean, true);
    EXPECT_EQ(SettingOf("european"), 0);
    EXPECT_EQ(Shown(controls.prefSepChar), ";");
    EXPECT_EQ(Shown(controls.prefNumPreview), "12345.6");
    Close();
    EXPECT_EQ(SettingOf("european"), 1);
    EXPECT_EQ(SettingOf("schar"), ';');
}

TEST_F(Preferences, APointAsSeparatorIsStoredAsAComma) {
    Open();
    EnterInto(controls.prefSepChar, @".");
    EXPECT_EQ(SettingOf("schar"), ',');
    Close();
    EXPECT_EQ(SettingOf("schar"), ',');
    EXPECT_EQ(InFile("schar"), ',');
}

TEST_F(Preferences, TheGroupingMarkFollowsTheDecimalMark) {
    Set("separator", 1);
    Open();
    Tick(controls.prefEuropean, true);
    EXPECT_EQ(Shown(controls.prefSepChar), ".");
    EXPECT_EQ(SettingOf("european"), 1);
    EXPECT_EQ(SettingOf("schar"), ',');
    EXPECT_EQ(Shown(controls.prefNumPreview), "12.345,6");
    Tick(controls.prefEuropean, false);
    EXPECT_EQ(Shown(controls.prefSepChar), ",");
    EXPECT_EQ(SettingOf("european"), 0);
    EXPECT_EQ(Shown(controls.prefNumPreview), "12,345.6");
}

TEST_F(Preferences, FadingActsAtOnceAndRedraws) {
    Open();
    [window displayIfNeeded];
    Tick(controls.prefTransBGOnly, false);
    EXPECT_EQ(SettingOf("transback"), 0);
    EXPECT_TRUE([[window contentView] needsDisplay]);
}

TEST_F(Preferences, TheSliderIsStoredWithoutItsFractionAndRedraws) {
    Open();
    [window displayIfNeeded];
    Slide(33.9);
    EXPECT_EQ(SettingOf("trans"), 33);
    EXPECT_TRUE([[window contentView] needsDisplay]);
}

TEST_F(Preferences, ColorsActAtOnce) {
    Open();
    Pick(controls.prefFGColor, 0.9, 0.8, 0.7);
    ExpectColor([console textColor], 0.9, 0.8, 0.7);
    ExpectColor([console insertionPointColor], 0.9, 0.8, 0.7);
    [window displayIfNeeded];
    Pick(controls.prefBGColor, 0.3, 0.2, 0.1);
    ExpectColor([console backgroundColor], 0.3, 0.2, 0.1);
    EXPECT_TRUE([[window contentView] needsDisplay]);
    // They are stored when the panel closes.
    ExpectColor([[console settings] objectForKey:@"bgcolor"], 0.1, 0.1, 0.1);
}

TEST_F(Preferences, ResetBringsBackColorsAndTransparencyAtOnce) {
    Open();
    Pick(controls.prefFGColor, 1, 0, 0);
    Pick(controls.prefBGColor, 0, 0, 1);
    Slide(80);
    [controls.prefResetColors performClick:nil];
    ExpectColor([controls.prefFGColor color], 0.1, 0.9, 0.9);
    ExpectColor([controls.prefBGColor color], 0.1, 0.1, 0.1);
    ExpectColor([console textColor], 0.1, 0.9, 0.9);
    ExpectColor([console insertionPointColor], 0.1, 0.9, 0.9);
    ExpectColor([console backgroundColor], 0.1, 0.1, 0.1);
    ExpectColor([[console settings] objectForKey:@"fgcolor"], 0.1, 0.9, 0.9);
    ExpectColor([[console settings] objectForKey:@"bgcolor"], 0.1, 0.1, 0.1);
    EXPECT_EQ([controls.prefSlider intValue], 25);
    EXPECT_EQ(SettingOf("trans"), 25);
}

TEST_F(Preferences, AlwaysOnTopIsOfThisRunAlone) {
    Open();
    EXPECT_EQ([window level], NSNormalWindowLevel);
    [window setExcludedFromWindowsMenu:YES];
    Tick(controls.prefAlwaysTop, true);
    EXPECT_EQ([window level], NSFloatingWindowLevel);
    EXPECT_FALSE([window isExcludedFromWindowsMenu]);
    Close();
    EXPECT_EQ([window level], NSFloatingWindowLevel);
    EXPECT_EQ(SettingOf("alwaystop"), 0);
    EXPECT_EQ(InFile("alwaystop"), 0);
    Open();
    EXPECT_TRUE(IsTicked(controls.prefAlwaysTop));
    Tick(controls.prefAlwaysTop, false);
    EXPECT_EQ([window level], NSNormalWindowLevel);
}

TEST_F(Preferences, AStoredAlwaysOnTopIsLeftAlone) {
    Set("alwaystop", 1);
    Open();
    EXPECT_EQ([window level], NSNormalWindowLevel);
    Tick(controls.prefAlwaysTop, false);
    Close();
    EXPECT_EQ(InFile("alwaystop"), 1);
}

TEST_F(Preferences, WhatWaitsForTheClosing) {
    Open();
    Tick(controls.prefSnapTo, false);
    Tick(controls.prefTwosComp, true);
    Tick(controls.prefStatusIcon, false);
    EnterInto(controls.prefHistSize, @"44");
    EXPECT_EQ(SettingOf("snaptoscreen"), 1);
    EXPECT_EQ(SettingOf("twoscomp"), 0);
    EXPECT_EQ(SettingOf("statusicon"), 1);
    EXPECT_EQ(SettingOf("histsz"), 30);
    Close();
    EXPECT_EQ(SettingOf("snaptoscreen"), 0);
    EXPECT_EQ(SettingOf("twoscomp"), 1);
    EXPECT_EQ(SettingOf("statusicon"), 0);
    EXPECT_EQ(SettingOf("histsz"), 44);
}

TEST_F(Preferences, TheStatusItemIsOfferedWhereThereIsAStatusBar) {
    EXPECT_EQ([controls.prefStatusIcon isHidden], platformStatusBar() == nil);
}

TEST_F(Preferences, NothingIsGrayedThatCanNeverBeUsed) {
    Open();
    for (NSView* const view in [[panel contentView] subviews]) {
        if ([view isHidden] || ![view isKindOfClass:[NSControl class]]) continue;
        EXPECT_TRUE([static_cast<NSControl*>(view) isEnabled]);
    }
}

TEST_F(Preferences, TheStepperChangesTheNumberBesideIt) {
    Open();
    NSStepper* const figures = controls.steppers[0];
    EXPECT_EQ([figures intValue], 10);
    [figures setIntValue:12];
    [controller step:figures];
    EXPECT_EQ(Shown(controls.prefSigFigs), "12");
    EXPECT_EQ(SettingOf("sigfigs"), 12);
    EnterInto(controls.prefSigFigs, @"50");
    EXPECT_EQ([figures intValue], 50) << "it goes on from what was typed";
    NSStepper* const lines = controls.steppers[1];
    [lines setIntValue:31];
    [controller step:lines];
    EXPECT_EQ(Shown(controls.prefHistSize), "31");
    [figures setIntValue:1000];
    EXPECT_EQ([figures intValue], 100) << "no further than the setting";
    Close();
    EXPECT_EQ(SettingOf("histsz"), 31);
}

TEST_F(Preferences, TheCloseButtonClosesAndStores) {
    Open();
    Tick(controls.prefTwosComp, true);
    [controls.prefClose performClick:nil];
    EXPECT_FALSE([panel isVisible]);
    EXPECT_EQ(SettingOf("twoscomp"), 1);
}

// --- The font ---

TEST_F(Preferences, TheFontPanelsChoiceIsKept) {
    Open();
    [controls.prefFont performClick:nil];
    NSFontPanel* const fonts = [[NSFontManager sharedFontManager] fontPanel:NO];
    EXPECT_TRUE([fonts isVisible]);
    EXPECT_FALSE(NSIntersectsRect([fonts frame], [panel frame]));
    FontChoice* const choice = [[[FontChoice alloc] init] autorelease];
    [NSApp sendAction:[[NSFontManager sharedFontManager] action] to:console from:choice];
    EXPECT_TRUE([[[console font] fontName] isEqualToString:@"DejaVuSerif"]);
    EXPECT_EQ([[console font] pointSize], 13);
    Close();
    EXPECT_FALSE([fonts isVisible]);
    RestartAll();
    EXPECT_TRUE([[[console font] fontName] isEqualToString:@"DejaVuSerif"]);
}

} // namespace

// --- The table ---

// A row with a title has a control that shows it and stores it; one without a title has none.
TEST_F(Preferences, EveryTitledSettingIsShownAndStored) {
    for (const Setting& row : SETTINGS) {
        SCOPED_TRACE(row.key);
        ASSERT_EQ(row.title != nullptr, controls.Of(row) != nil);
        if (!row.title || row.kind == Setting::COLOR || row.kind == Setting::CHARACTER) continue;
        int other = row.least;
        while (other == row.standard || !row.IsPossible(other)) ++other;
        Set(row.key, other);
        Open();
        Set(row.key, row.standard);
        Close();
        EXPECT_EQ(SettingOf(row.key), other);
        Set(row.key, row.standard);
    }
}
