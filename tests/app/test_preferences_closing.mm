// SPDX-License-Identifier: MIT
//
// What closing the preferences stores and saves.
#import "panel_fixture.h"

namespace {

class PreferencesClosing : public PanelTest {};

TEST_F(PreferencesClosing, ClosingStoresAndSavesEverything) {
    Open();
    Choose(2);
    EnterInto(controls.prefSigFigs, @"12");
    EnterInto(controls.prefSepChar, @"'");
    EnterInto(controls.prefHistSize, @"123");
    Tick(controls.prefSeparator, true);
    Tick(controls.prefEuropean, true);
    Tick(controls.prefTwosComp, true);
    Tick(controls.prefSnapTo, false);
    Tick(controls.prefTransBGOnly, false);
    Tick(controls.prefStatusIcon, false);
    Slide(41.7);
    Pick(controls.prefFGColor, 0.5, 0.25, 0.75);
    Pick(controls.prefBGColor, 0.125, 0.25, 0);
    Close();
    EXPECT_EQ(InFile("scimode"), 2);
    EXPECT_EQ(InFile("sigfigs"), 12);
    EXPECT_EQ(InFile("schar"), '\'');
    EXPECT_EQ(InFile("histsz"), 123);
    EXPECT_EQ(InFile("separator"), 1);
    EXPECT_EQ(InFile("european"), 1);
    EXPECT_EQ(InFile("twoscomp"), 1);
    EXPECT_EQ(InFile("snaptoscreen"), 0);
    EXPECT_EQ(InFile("transback"), 0);
    EXPECT_EQ(InFile("statusicon"), 0);
    EXPECT_EQ(InFile("trans"), 41);
    ExpectColor([Stored() objectForKey:@"fgcolor"], 0.5, 0.25, 0.75);
    ExpectColor([Stored() objectForKey:@"bgcolor"], 0.125, 0.25, 0);
    ExpectColor([console textColor], 0.5, 0.25, 0.75);
    ExpectColor([console backgroundColor], 0.125, 0.25, 0);
}

TEST_F(PreferencesClosing, WhatClosingStoredIsThereAtTheNextStart) {
    Open();
    EnterInto(controls.prefHistSize, @"2");
    Pick(controls.prefFGColor, 0.5, 0.25, 0.75);
    Close();
    EXPECT_EQ(calc.history.maxEntries, 30); // it acts at the next start
    Terminate();
    RestartAll();
    EXPECT_EQ(calc.history.maxEntries, 2);
    Open();
    EXPECT_EQ(Shown(controls.prefHistSize), "2");
    ExpectColor([controls.prefFGColor color], 0.5, 0.25, 0.75);
}

TEST_F(PreferencesClosing, ClosingRedrawsAndClearsTheFlag) {
    Open();
    [window displayIfNeeded];
    Close();
    EXPECT_TRUE([[window contentView] needsDisplay]);
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_FALSE([panel isVisible]);
}

TEST_F(PreferencesClosing, WhatIsBeingTypedCountsAtTheClosing) {
    Open();
    [panel makeFirstResponder:controls.prefHistSize];
    NSText* const editor = [controls.prefHistSize currentEditor];
    ASSERT_NE(editor, nil);
    [editor selectAll:nil];
    [static_cast<NSTextView*>(editor) insertText:@"321"];
    Close();
    EXPECT_EQ(SettingOf("histsz"), 321);
}

TEST_F(PreferencesClosing, ClosingEndsThePickingOfColors) {
    Open();
    [controls.prefBGColor activate:YES];
    [[NSColorPanel sharedColorPanel] orderFront:nil];
    Close();
    EXPECT_FALSE([controls.prefBGColor isActive]);
    EXPECT_FALSE([[NSColorPanel sharedColorPanel] isVisible]);
    [[NSColorPanel sharedColorPanel] setColor:[NSColor colorWithCalibratedRed:1 green:0 blue:0 alpha:1]];
    Run(0.05);
    ExpectColor([console backgroundColor], 0.1, 0.1, 0.1);
}

TEST_F(PreferencesClosing, AColorOfTheColorPanelGoesToTheActiveWell) {
    Open();
    [controls.prefBGColor activate:YES];
    [[NSColorPanel sharedColorPanel] setColor:[NSColor colorWithCalibratedRed:0.3
                                                                        green:0.2
                                                                         blue:0.1
                                                                        alpha:1]];
    Run(0.05);
    ExpectColor([console backgroundColor], 0.3, 0.2, 0.1);
    ExpectColor([console textColor], 0.1, 0.9, 0.9);
}

TEST_F(PreferencesClosing, AClosedPanelStoresNothing) {
    Open();
    Close();
    Set("sigfigs", 33);
    [panel close];
    [controller windowWillClose:nil];
    [controller closePanel];
    EXPECT_EQ(SettingOf("sigfigs"), 33);
}

TEST_F(PreferencesClosing, QuittingWithThePanelOpenSaves) {
    Open();
    EnterInto(controls.prefHistSize, @"55");
    Quit();
    EXPECT_EQ(InFile("histsz"), 55);
    EXPECT_EQ(prefWinIsOpen, 0);
}

TEST_F(PreferencesClosing, QuittingWithThePanelClosedKeepsTheSettings) {
    Set("histsz", 56);
    Quit();
    EXPECT_EQ(InFile("histsz"), 56);
}

TEST_F(PreferencesClosing, TheLiveResultTakesTheNewFormAtTheClosing) {
    Type("1/3");
    Open();
    EnterInto(controls.prefSigFigs, @"4");
    Close();
    EXPECT_EQ(StatusLine().substr(StatusLine().size() - 6), "0.3333");
}

TEST_F(PreferencesClosing, ThePanelSurvivesManyOpenings) {
    for (int i = 0; i < 20; ++i) {
        Open();
        Close();
    }
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(SettingOf("sigfigs"), 10);
    EXPECT_EQ(SettingOf("schar"), ',');
}

} // namespace
