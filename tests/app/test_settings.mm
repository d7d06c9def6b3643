// SPDX-License-Identifier: MIT
#import "settings_fixture.h"

#include <clocale>
#include <cstdlib>
#include <unistd.h>

// --- Defaults ---

TEST_F(Settings, FirstStartMakesTheFolderAndWritesEveryDefault) {
    EXPECT_TRUE(Exists(Folder()));
    NSDictionary* const file = Stored();
    EXPECT_EQ([file count], std::size(SETTINGS));
    for (const Setting& one : NUMBERS) {
        SCOPED_TRACE(one.key);
        const id value = [file objectForKey:string(one.key)];
        ASSERT_TRUE([value isKindOfClass:[NSNumber class]]);
        EXPECT_EQ([value intValue], one.standard);
    }
    for (const Setting& one : SETTINGS) {
        if (!one.IsNumber())
            EXPECT_TRUE([[file objectForKey:string(one.key)] isKindOfClass:[NSData class]]) << one.key;
    }
}

TEST_F(Settings, SettingsInMemoryHaveEveryDefault) {
    EXPECT_EQ([[console settings] count], std::size(SETTINGS));
    ExpectDefaults();
}

TEST_F(Settings, InitSettingsDefaultDiscardsWhatWasThere) {
    for (const Setting& one : NUMBERS) [console setSetting:string(one.key) to:otherValue(one)];
    [[console settings] setObject:@"x" forKey:@"unknown"];
    [console initSettingsDefault];
    [console setSetting:@"firstrun" to:2];
    ExpectDefaults();
    EXPECT_EQ(SettingOf("unknown"), nil);
}

TEST_F(Settings, InitColorsDefaultSetsColorsAndTransparencyAlone) {
    for (const Setting& one : NUMBERS) [console setSetting:string(one.key) to:otherValue(one)];
    [[console settings] setObject:[NSColor redColor] forKey:@"fgcolor"];
    [[console settings] setObject:[NSColor redColor] forKey:@"bgcolor"];
    [console initColorsDefault];
    expectColor(SettingOf("bgcolor"), 0.1, 0.1, 0.1, 1);
    expectColor(SettingOf("fgcolor"), 0.1, 0.9, 0.9, 1);
    EXPECT_EQ([console setting:@"trans"], 25);
    EXPECT_EQ([console setting:@"sigfigs"], 11);
}

// --- Saving and loading ---

TEST_F(Settings, EveryNumberComesBackAtTheNextStart) {
    for (const Setting& one : NUMBERS) [console setSetting:string(one.key) to:otherValue(one)];
    [console saveSettings];
    for (const Setting& one : NUMBERS) EXPECT_EQ(StoredNumber(one.key), otherValue(one)) << one.key;
    Restart();
    for (const Setting& one : NUMBERS) {
        const bool isFirstRun = strcmp(one.key, "firstrun") == 0; // counted by the start
        EXPECT_EQ([SettingOf(one.key) intValue], isFirstRun ? otherValue(one) + 1 : otherValue(one))
            << one.key;
    }
}

TEST_F(Settings, TheEngineAndTheWindowStartWithWhatTheFileSays) {
    StartOver(HEAD + pair("firstrun", integer(5)) + pair("degmode", integer(0)) +
              pair("dispbase", integer(16)) + pair("european", integer(1)) + pair("sigfigs", integer(5)) +
              pair("separator", integer(1)) + pair("schar", integer(39)) + pair("twoscomp", integer(1)) +
              pair("histsz", integer(7)) + pair("x", integer(60)) + pair("y", integer(70)) +
              pair("cx", integer(600)) + pair("cy", integer(320)) + END);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_TRUE(calc.european);
    EXPECT_EQ(calc.sigFigs, 5);
    EXPECT_TRUE(calc.useSeparator);
    EXPECT_EQ(calc.separatorChar, '\'');
    EXPECT_TRUE(calc.twosComp);
    EXPECT_EQ(calc.history.maxEntries, 7);
    EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(60, 70, 600, 320)));
}

// Ten-key entry is set by a start alone.
TEST_F(Settings, EverySettingOfAnEntryReachesTheEngineAndItsCommandComesBack) {
    for (const Setting& one : NUMBERS) {
        SCOPED_TRACE(one.key);
        [console setSetting:string(one.key) to:otherValue(one)];
        Enter("1");
        if (one.entry.IsOfEachEntry()) EXPECT_EQ(one.ValueIn(calc), otherValue(one));
        if (one.command.word) Enter(one.CommandFor(one.standard).c_str());
        EXPECT_EQ([console setting:string(one.key)], one.command.word ? one.standard : otherValue(one));
        if (strcmp(one.key, "tenkey") != 0)
            EXPECT_EQ(one.entry.field.index() != 0, one.entry.IsOfEachEntry());
    }
}

TEST_F(Settings, SavingTakesFontAndColorsFromTheView) {
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.2 green:0.3 blue:0.4 alpha:0.5]];
    [console setTextColor:[NSColor colorWithCalibratedRed:0.6 green:0.7 blue:0.8 alpha:1]];
    NSFont* const font = [NSFont userFixedPitchFontOfSize:21];
    [console setFont:font];
    [console saveSettings];
    expectColor(SettingOf("bgcolor"), 0.2, 0.3, 0.4, 0.5);
    expectColor(SettingOf("fgcolor"), 0.6, 0.7, 0.8, 1);
    EXPECT_TRUE([SettingOf("nsfont") isEqual:font]);
    Restart();
    expectColor(SettingOf("bgcolor"), 0.2, 0.3, 0.4, 0.5);
    expectColor(SettingOf("fgcolor"), 0.6, 0.7, 0.8, 1);
    EXPECT_EQ([[console font] pointSize], 21);
    EXPECT_TRUE([[[console font] fontName] isEqualToString:[font fontName]]);
}

TEST_F(Settings, LoadingShowsTheConsoleInColorsAndFont) {
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.6 alpha:1]];
    [console setTextColor:[NSColor colorWithCalibratedRed:0.5 green:0.5 blue:0.5 alpha:1]];
    [console saveSettings];
    Restart();
    expectColor([console backgroundColor], 0.2, 0.4, 0.6, 1);
    expectColor([console textColor], 0.5, 0.5, 0.5, 1);
    expectColor([console insertionPointColor], 0.5, 0.5, 0.5, 1);
    NSColor* const selected = [[console selectedTextAttributes] objectForKey:NSBackgroundColorAttributeName];
    // 0.3 of the gray 0.5 and 0.7 of the background.
    expectColor(selected, 0.15 + 0.14, 0.15 + 0.28, 0.15 + 0.42, 1);
}

TEST_F(Settings, ColorsAndFontAreDataThatSpellThemOut) {
    EXPECT_EQ(bytes([Stored() objectForKey:@"fgcolor"]), "0.1 0.9 0.9 1");
    EXPECT_EQ(bytes([Stored() objectForKey:@"bgcolor"]), "0.1 0.1 0.1 1");
    const std::string font = std::string("13 ") + [[[console font] fontName] UTF8String];
    EXPECT_EQ(bytes([Stored() objectForKey:@"nsfont"]), font);
}

TEST_F(Settings, MissingColorsAndFontLeaveTheViewAsItWas) {
    [console setTextColor:[NSColor colorWithCalibratedRed:1 green:0.5 blue:0 alpha:1]];
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0 green:0 blue:1 alpha:1]];
    [console setFont:[NSFont userFixedPitchFontOfSize:21]];
    Write(SettingsPath(), fileWith("sigfigs", integer(3)));
    [console loadSettings];
    EXPECT_EQ([[console settings] count], 1U);
    EXPECT_EQ([console setting:@"sigfigs"], 3);
    expectColor([console textColor], 1, 0.5, 0, 1);
    expectColor([console backgroundColor], 0, 0, 1, 1);
    EXPECT_EQ([[console font] pointSize], 21);
}

TEST_F(Settings, WithoutSettingsNothingIsSaved) {
    Terminate();
    const std::string before = Read(SettingsPath());
    [console saveSettings];
    EXPECT_EQ(Read(SettingsPath()), before);
    EXPECT_EQ([console settings], nil);
}

TEST_F(Settings, TheEndOfTheProgramStoresTheFrame) {
    [window setFrame:NSMakeRect(33, 44, 555, 333) display:YES];
    Terminate();
    EXPECT_EQ(StoredNumber("x"), 33);
    EXPECT_EQ(StoredNumber("y"), 44);
    EXPECT_EQ(StoredNumber("cx"), 555);
    EXPECT_EQ(StoredNumber("cy"), 333);
}

TEST_F(Settings, KeysOfOtherVersionsStay) {
    StartOver(HEAD + pair("later", "<array><string>a</string></array>") + pair("firstrun", integer(3)) + END);
    Terminate();
    EXPECT_TRUE([[Stored() objectForKey:@"later"] isEqual:[NSArray arrayWithObject:@"a"]]);
}

TEST_F(Settings, TheDecimalPointOfTheFileIsNotTheLocales) {
    const std::string locale = home + "/xx_XX";
    const std::string make = "localedef -i de_DE -f UTF-8 '" + locale + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(make.c_str()), 0) << "the package locales is missing";
    setenv("LOCPATH", home.c_str(), 1);
    ASSERT_NE(setlocale(LC_NUMERIC, "xx_XX"), nullptr);
    EXPECT_STREQ(localeconv()->decimal_point, ",");
    platformAfterLaunch(); // as the program does
    unsetenv("LOCPATH");
    EXPECT_STREQ(localeconv()->decimal_point, ".");
    [console saveSettings];
    EXPECT_EQ(bytes([Stored() objectForKey:@"fgcolor"]), "0.1 0.9 0.9 1");
    Restart();
    expectColor([console textColor], 0.1, 0.9, 0.9, 1);
    Enter("x=1.5");
    Terminate();
    EXPECT_NE(Read(FunctionsPath()).find("\nx=1.5\n"), std::string::npos);
}

// --- Written soon after an entry ---

TEST_F(Settings, WhatAnEntryChangesIsWrittenWithoutTheEndOfTheProgram) {
    Enter("sigfigs 20");
    Enter("mode rad");
    Enter("scimode eng");
    Enter("display hex");
    for (int i = 0; i < 100 && StoredNumber("dispbase") != 16; ++i) Run(0.05);
    EXPECT_EQ(StoredNumber("sigfigs"), 20);
    EXPECT_EQ(StoredNumber("degmode"), 0);
    EXPECT_EQ(StoredNumber("scimode"), 3);
    EXPECT_EQ(StoredNumber("dispbase"), 16);
}

// The write that is due when an entry ends comes before its settings are taken over.
TEST_F(Settings, AnEntryAtTheMomentOfTheWriteIsNotForgotten) {
    Enter("1+1");
    WaitForWriting(); // the run loop has no turn
    Enter("sigfigs 20");
    for (int i = 0; i < 100 && StoredNumber("sigfigs") != 20; ++i) Run(0.05);
    EXPECT_EQ(StoredNumber("sigfigs"), 20);
}
