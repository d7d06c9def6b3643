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

    Frame storedFrame() const {
        const auto stored = storedSettings();
        return {stored.at("x"), stored.at("y"), stored.at("cx"), stored.at("cy")};
    }

    void expectStored(const NSRect& frame) {
        EXPECT_EQ(storedFrame(),
                  Frame({static_cast<int>(NSMinX(frame)), static_cast<int>(NSMinY(frame)),
                         static_cast<int>(NSWidth(frame)), static_cast<int>(NSHeight(frame))}));
    }

    id application() const { return reinterpret_cast<id>(delegate); }
};

TEST_F(Shutdown, theFrameIsTruncatedToIntegers) {
    fakeFrame = NSMakeRect(100.9, -3.7, 512.5, 301.99);
    {
        const Replaced frame([NSWindow class], @selector(frame), frameOfTests);
        terminate();
    }
    EXPECT_EQ(storedFrame(), Frame({100, -3, 512, 301}));
}

TEST_F(Shutdown, withoutAWindowTheFrameIsZero) {
    [[console retain] autorelease];
    [[[[console enclosingScrollView] retain] autorelease] removeFromSuperview];
    ASSERT_EQ([console window], nil);
    terminate();
    EXPECT_EQ(storedFrame(), Frame({0, 0, 0, 0}));
    restart();
    EXPECT_TRUE([window isVisible]);
    EXPECT_GE(NSWidth([window frame]), 400);
    EXPECT_GE(NSHeight([window frame]), 150);
}

TEST_F(Shutdown, aHiddenWindowKeepsTheFrameThatItHad) {
    [window setFrame:NSMakeRect(200, 200, 480, 320) display:YES];
    clickStatusItem();
    mainWinIsHidden = 1;
    [window setFrame:NSMakeRect(0, 0, 480, 320) display:YES]; // what the window manager says of it
    const int before[] = {setting("x"), setting("y")};
    terminate();
    EXPECT_EQ(storedFrame()[0], before[0]);
    EXPECT_EQ(storedFrame()[1], before[1]);
}

TEST_F(Shutdown, aClosedWindowKeepsTheFrameThatItHad) {
    setSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(210, 220, 490, 330) display:YES];
    [window close];
    terminate();
    expectStored(NSMakeRect(210, 220, 490, 330));
}

TEST_F(Shutdown, exitKeepsTheFrame) {
    setSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(230, 240, 470, 310) display:YES];
    enter("exit");
    terminate();
    expectStored(NSMakeRect(230, 240, 470, 310));
}

TEST_F(Shutdown, theFilesAreWrittenAndThePathsLetGo) {
    enter("width=7");
    setSetting("sigfigs", 23);
    terminate();
    EXPECT_EQ(storedSettings().at("sigfigs"), 23);
    EXPECT_NE(read(functionsPath()).find("width=7"), std::string::npos);
    EXPECT_EQ(funcFilePath, nil);
    EXPECT_EQ(prefFilePath, nil);
    EXPECT_EQ([console settings], nil);
    terminate(); // a second end does nothing
    EXPECT_EQ(storedSettings().at("sigfigs"), 23);
}

// --- The application's end ---

std::vector<std::string> sent;
std::map<std::string, IMP> originals;

void record(id self, SEL selector) {
    sent.push_back(sel_getName(selector));
    reinterpret_cast<void (*)(id, SEL)>(originals[sent.back()])(self, selector);
}

TEST_F(Shutdown, thePreferencesCloseFirstAndTheStatusItemGoesLast) {
    sent.clear();
    const Replaced close([PrefController class], @selector(closePanel), record);
    const Replaced terminated([MainConsole class], @selector(terminateConsole), record);
    const Replaced removed([PelmoAppDelegate class], @selector(removeAppStatusItem), record);
    originals = {{"closePanel", close.implementation()},
                 {"terminateConsole", terminated.implementation()},
                 {"removeAppStatusItem", removed.implementation()}};
    [application() applicationWillTerminate:nil];
    EXPECT_EQ(sent, std::vector<std::string>({"closePanel", "terminateConsole", "removeAppStatusItem"}));
}

TEST_F(Shutdown, whatOpenPreferencesSayIsStored) {
    [preferences() menuPreferences:nil];
    ASSERT_EQ(prefWinIsOpen, 1);
    [[preferences() controls].prefSigFigs setIntValue:17];
    [application() applicationWillTerminate:nil];
    EXPECT_EQ(prefWinIsOpen, 0);
    EXPECT_EQ(storedSettings().at("sigfigs"), 17);
}

TEST_F(Shutdown, theLastWindowEndsTheProgramUnlessItIsHidden) {
    EXPECT_TRUE([application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
    mainWinIsHidden = 1;
    EXPECT_FALSE([application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

BOOL yes(id, SEL) {
    return YES;
}

TEST_F(Shutdown, aMiniaturizedWindowKeepsTheProgramAlive) {
    const Replaced miniaturized([NSWindow class], @selector(isMiniaturized), yes);
    EXPECT_FALSE([application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

} // namespace
