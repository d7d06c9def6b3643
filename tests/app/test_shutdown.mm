// SPDX-License-Identifier: MIT
//
// The end of the program: what it stores, and in which order.
#import "shell_fixture.h"

#import "PrefController.h"

namespace {

NSRect fakeFrame = {{0, 0}, {0, 0}};

NSRect frameOfTests(id, SEL) {
    return fakeFrame;
}

class Shutdown : public ShellTest {
protected:
    using Frame = std::vector<int>;

    Frame StoredFrame() const {
        const auto stored = StoredSettings();
        return {stored.at("x"), stored.at("y"), stored.at("cx"), stored.at("cy")};
    }

    void ExpectStored(const NSRect& frame) {
        EXPECT_EQ(StoredFrame(),
                  Frame({static_cast<int>(NSMinX(frame)), static_cast<int>(NSMinY(frame)),
                         static_cast<int>(NSWidth(frame)), static_cast<int>(NSHeight(frame))}));
    }

    id Application() const { return reinterpret_cast<id>(delegate); }
};

TEST_F(Shutdown, TheFrameIsTruncatedToIntegers) {
    fakeFrame = NSMakeRect(100.9, -3.7, 512.5, 301.99);
    {
        const Replaced frame([NSWindow class], @selector(frame), frameOfTests);
        Terminate();
    }
    EXPECT_EQ(StoredFrame(), Frame({100, -3, 512, 301}));
}

TEST_F(Shutdown, WithoutAWindowTheFrameIsZero) {
    [[console retain] autorelease];
    [[[[console enclosingScrollView] retain] autorelease] removeFromSuperview];
    ASSERT_EQ([console window], nil);
    Terminate();
    EXPECT_EQ(StoredFrame(), Frame({0, 0, 0, 0}));
    Restart();
    EXPECT_TRUE([window isVisible]);
    EXPECT_GE(NSWidth([window frame]), 400);
    EXPECT_GE(NSHeight([window frame]), 150);
}

TEST_F(Shutdown, AHiddenWindowKeepsTheFrameThatItHad) {
    [window setFrame:NSMakeRect(200, 200, 480, 320) display:YES];
    ClickStatusItem();
    mainWinIsHidden = 1;
    [window setFrame:NSMakeRect(0, 0, 480, 320) display:YES]; // what the window manager says of it
    const int before[] = {SettingOf("x"), SettingOf("y")};
    Terminate();
    EXPECT_EQ(StoredFrame()[0], before[0]);
    EXPECT_EQ(StoredFrame()[1], before[1]);
}

TEST_F(Shutdown, AClosedWindowKeepsTheFrameThatItHad) {
    SetSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(210, 220, 490, 330) display:YES];
    [window close];
    Terminate();
    ExpectStored(NSMakeRect(210, 220, 490, 330));
}

TEST_F(Shutdown, ExitKeepsTheFrame) {
    SetSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(230, 240, 470, 310) display:YES];
    Enter("exit");
    Terminate();
    ExpectStored(NSMakeRect(230, 240, 470, 310));
}

TEST_F(Shutdown, TheFilesAreWrittenAndThePathsLetGo) {
    Enter("width=7");
    SetSetting("sigfigs", 23);
    Terminate();
    EXPECT_EQ(StoredSettings().at("sigfigs"), 23);
    EXPECT_NE(Read(FunctionsPath()).find("width=7"), std::string::npos);
    EXPECT_EQ(funcFilePath, nil);
    EXPECT_EQ(prefFilePath, nil);
    EXPECT_EQ([console settings], nil);
    Terminate(); // a second end does nothing
    EXPECT_EQ(StoredSettings().at("sigfigs"), 23);
}

// --- The application's end ---

std::vector<std::string> sent;
std::map<std::string, IMP> originals;

void record(id self, SEL selector) {
    sent.push_back(sel_getName(selector));
    reinterpret_cast<void (*)(id, SEL)>(originals[sent.back()])(self, selector);
}

TEST_F(Shutdown, ThePreferencesCloseFirstAndTheStatusItemGoesLast) {
    sent.clear();
    const Replaced close([PrefController class], @selector(closePanel), record);
    const Replaced terminated([MainConsole class], @selector(terminateConsole), record);
    const Replaced removed([PelmoAppDelegate class], @selector(removeAppStatusItem), record);
    originals = {{"closePanel", close.Implementation()},
                 {"terminateConsole", terminated.Implementation()},
                 {"removeAppStatusItem", removed.Implementation()}};
    [Application() applicationWillTerminate:nil];
    EXPECT_EQ(sent, std::vector<std::string>({"closePanel", "terminateConsole", "removeAppStatusItem"}));
}

TEST_F(Shutdown, WhatOpenPreferencesSayIsStored) {
    [Preferences() menuPreferences:nil];
    ASSERT_EQ(prefWinIsOpen, 1);
    [[Preferences() controls].prefSigFigs setIntValue:17];
    [Application() applicationWillTerminate:nil];
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(StoredSettings().at("sigfigs"), 17);
}

TEST_F(Shutdown, TheLastWindowEndsTheProgramUnlessItIsHidden) {
    EXPECT_TRUE([Application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
    mainWinIsHidden = 1;
    EXPECT_FALSE([Application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

BOOL yes(id, SEL) {
    return YES;
}

TEST_F(Shutdown, AMiniaturizedWindowKeepsTheProgramAlive) {
    const Replaced miniaturized([NSWindow class], @selector(isMiniaturized), yes);
    EXPECT_FALSE([Application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

} // namespace
