// SPDX-License-Identifier: MIT
//
// The preferences panel over a console in a real window.
#pragma once

#import "Interface.h"
#import "PelmoAppDelegate.h"
#import "PrefController.h"
#import "SettingsDictionary.h"
#import "console_fixture.h"

#include <string>

class PanelTest : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        BuildPanel();
    }

    void TearDown() override {
        [panel orderOut:nil];
        prefWinIsOpen = 0;
        ConsoleTest::TearDown();
    }

    void BuildPanel() {
        buildPreferences(Application());
        controller = [Application() prefController];
        panel = [controller prefWindow];
        controls = [controller controls];
    }

    // The next start of the program.
    void RestartAll() {
        [panel orderOut:nil];
        Restart();
        BuildPanel();
    }

    PelmoAppDelegate* Application() const { return (PelmoAppDelegate*)delegate; }

    void Open() { [controller menuPreferences:nil]; }
    void Close() { [panel close]; }
    void Quit() { [(id)Application() applicationWillTerminate:nil]; }

    // What is typed replaces what the field holds; Tab ends it.
    void EnterInto(NSTextField* field, NSString* characters) {
        [panel makeFirstResponder:nil];
        ASSERT_TRUE([panel makeFirstResponder:field]);
        NSTextView* const editor = static_cast<NSTextView*>([field currentEditor]);
        ASSERT_NE(editor, nil);
        [editor selectAll:nil];
        if ([characters length] == 0) [editor delete:nil];
        for (NSUInteger i = 0; i < [characters length];) {
            const NSRange whole = [characters rangeOfComposedCharacterSequenceAtIndex:i];
            [editor insertText:[characters substringWithRange:whole]];
            i = NSMaxRange(whole);
        }
        [editor insertTab:nil];
    }

    // As the person's doing is reported to the controller.
    void Choose(NSInteger mode) {
        [controls.prefSciMode selectItemAtIndex:mode];
        [controller prefCallback:controls.prefSciMode];
    }
    void Tick(NSButton* box, bool isOn) {
        [box setState:isOn ? NSOnState : NSOffState];
        [controller prefCallback:box];
    }
    void Slide(double place) {
        [controls.prefSlider setDoubleValue:place];
        [controller prefCallback:controls.prefSlider];
    }
    void Pick(NSColorWell* well, double red, double green, double blue) {
        [well setColor:[NSColor colorWithCalibratedRed:red green:green blue:blue alpha:1]];
        [controller prefCallback:well];
    }

    int SettingOf(const char* key) const { return [console setting:[NSString stringWithUTF8String:key]]; }
    void Set(const char* key, int value) {
        [console setSetting:[NSString stringWithUTF8String:key] to:value];
    }
    // The settings as the file holds them.
    NSDictionary* Stored() const {
        KeptSettings kept;
        EXPECT_TRUE(readSettings(Read(SettingsPath()), kept));
        return settingsDictionary(kept, nil);
    }

    int InFile(const char* key) const {
        return [[Stored() objectForKey:[NSString stringWithUTF8String:key]] intValue];
    }

    static std::string Shown(NSTextField* field) { return [[field stringValue] UTF8String]; }
    static bool IsTicked(NSButton* box) { return [box state] == NSOnState; }

    static void ExpectColor(NSColor* color, double red, double green, double blue) {
        NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
        ASSERT_NE(rgb, nil);
        EXPECT_NEAR([rgb redComponent], red, 1e-5);
        EXPECT_NEAR([rgb greenComponent], green, 1e-5);
        EXPECT_NEAR([rgb blueComponent], blue, 1e-5);
    }

    PrefController* controller = nil;
    MyPrefPanel* panel = nil;
    PrefControls controls = {};
};
