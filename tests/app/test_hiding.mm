// SPDX-License-Identifier: MIT
//
// Showing and hiding the window, and what losing and gaining the focus does to it.
#import "shell_fixture.h"

#import "PrefController.h"

namespace {

// Where the window stands, and what it is told.
struct Stand {
    BOOL isKey = YES;
    BOOL isMiniaturized = NO;
    std::vector<std::string> told;
};
Stand stand;

BOOL isKey(id, SEL) {
    return stand.isKey;
}

BOOL isMiniaturized(id, SEL) {
    return stand.isMiniaturized;
}

void tell(id, SEL selector, id) {
    stand.told.push_back(sel_getName(selector));
}

void tellBehavior(id, SEL, NSUInteger behavior) {
    stand.told.push_back("behavior " + std::to_string(behavior));
}

void tellActivate(id, SEL, BOOL ignoring) {
    stand.told.push_back(ignoring ? "activate" : "activate politely");
}

void tellFade(id, SEL, float target, float rate) {
    char text[50];
    snprintf(text, sizeof text, "fade %.4g %.4g", static_cast<double>(target), static_cast<double>(rate));
    stand.told.push_back(text);
}

using Told = std::vector<std::string>;

class Hiding : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        stand = Stand();
    }

    id Application() const { return reinterpret_cast<id>(delegate); }

    // What the window, the application and the fades are told meanwhile.
    template <typename Action> Told ToldBy(Action action) {
        const Class type = [NSWindow class];
        const Replaced key(type, @selector(isKeyWindow), isKey);
        const Replaced miniaturized(type, @selector(isMiniaturized), isMiniaturized);
        const Replaced deminiaturize(type, @selector(deminiaturize:), tell);
        const Replaced front(type, @selector(makeKeyAndOrderFront:), tell);
        const Replaced behavior(type, @selector(setCollectionBehavior:), tellBehavior);
        const Replaced activate([NSApplication class], @selector(activateIgnoringOtherApps:), tellActivate);
        const Replaced fade([PrefController class], @selector(fadeWindow:rate:), tellFade);
        stand.told.clear();
        action();
        return stand.told;
    }

    Told Click() {
        return ToldBy([this] { ClickStatusItem(); });
    }
    Told HideByMenu() {
        return ToldBy([this] { [Application() hideMainWindow:nil]; });
    }
    Told Resign() {
        return ToldBy([this] { [Application() applicationDidResignActive:nil]; });
    }
    Told WillBecomeActive() {
        return ToldBy([this] { [Application() applicationWillBecomeActive:nil]; });
    }
    Told BecomeActive() {
        return ToldBy([this] { [Application() applicationDidBecomeActive:nil]; });
    }

    const Told fadesAway = {"fade -1 -0.3", "behavior 1"};
    const Told comesBack = {"behavior 1", "makeKeyAndOrderFront:", "activate"};
};

// --- The status item ---

TEST_F(Hiding, AClickFadesTheKeyWindowAway) {
    EXPECT_EQ(Click(), fadesAway);
    EXPECT_EQ(mainWinIsHidden, 1);
}

TEST_F(Hiding, AClickBringsAHiddenWindowBack) {
    mainWinIsHidden = 1;
    EXPECT_EQ(Click(), comesBack);
    EXPECT_EQ(mainWinIsHidden, 1) << "until the application is active";
    EXPECT_EQ(BecomeActive(), Told({"fade 1 0.25", "behavior 0"}));
    EXPECT_EQ(mainWinIsHidden, 0);
}

TEST_F(Hiding, AClickBringsAWindowToTheFrontThatIsNotKey) {
    stand.isKey = NO;
    EXPECT_EQ(Click(), comesBack);
    EXPECT_EQ(mainWinIsHidden, 0);
}

TEST_F(Hiding, AClickTakesTheWindowOutOfTheDock) {
    for (const BOOL key : {NO, YES}) {
        stand.isKey = key;
        stand.isMiniaturized = YES;
        EXPECT_EQ(Click(), Told({"behavior 1", "deminiaturize:", "makeKeyAndOrderFront:", "activate"}));
        EXPECT_EQ(mainWinIsHidden, 0);
    }
}

TEST_F(Hiding, EscapeOnAnEmptyEntryIsAClick) {
    Type("1");
    Press(KEY_ESCAPE);
    EXPECT_EQ(HideRequests(), 0);
    Press(KEY_ESCAPE);
    EXPECT_EQ(HideRequests(), 1);
}

TEST_F(Hiding, TheFrameIsStoredBeforeTheWindowGoes) {
    SetSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(300, 200, 444, 222) display:YES];
    Click();
    EXPECT_EQ(SettingOf("x"), 300);
    EXPECT_EQ(SettingOf("y"), 200);
    EXPECT_EQ(SettingOf("cx"), 444);
    EXPECT_EQ(SettingOf("cy"), 222);
}

// --- The menu ---

TEST_F(Hiding, TheMenuHidesAlsoWhileAnotherWindowIsKey) {
    stand.isKey = NO;
    EXPECT_EQ(HideByMenu(), fadesAway);
    EXPECT_EQ(mainWinIsHidden, 1);
    EXPECT_EQ(HideByMenu(), Told()) << "it is hidden";
}

TEST_F(Hiding, TheMenuLeavesAMiniaturizedWindowWhereItIs) {
    stand.isMiniaturized = YES;
    EXPECT_EQ(HideByMenu(), Told());
    EXPECT_EQ(mainWinIsHidden, 0);
}

// --- The focus ---

TEST_F(Hiding, LosingTheFocusFadesToTheTransparency) {
    EXPECT_EQ(Resign(), Told{"fade 0.8 -0.05"});
    SetSetting("trans", 100);
    EXPECT_EQ(Resign(), Told{"fade 0.2 -0.05"});
    SetSetting("trans", 0);
    EXPECT_EQ(Resign(), Told{"fade 1 -0.05"});
}

TEST_F(Hiding, WithTheSettingOffTheWindowNeverFadesOnLosingTheFocus) {
    SetSetting("transback", 0);
    EXPECT_EQ(Resign(), Told());
}

TEST_F(Hiding, AHiddenWindowDoesNotFadeOnLosingTheFocus) {
    mainWinIsHidden = 1;
    EXPECT_EQ(Resign(), Told());
}

TEST_F(Hiding, GainingTheFocusFadesBackToOpaque) {
    EXPECT_EQ(WillBecomeActive(), Told{"behavior 1"});
    EXPECT_EQ(BecomeActive(), Told({"fade 1 0.15", "behavior 0"}));
}

// --- The ways back ---

TEST_F(Hiding, TheIconOfTheApplicationBringsTheWindowBack) {
    const auto reopen = [this] {
        EXPECT_FALSE([Application() applicationShouldHandleReopen:NSApp hasVisibleWindows:YES]);
    };
    EXPECT_EQ(ToldBy(reopen), Told()) << "it is there";
    mainWinIsHidden = 1;
    EXPECT_EQ(ToldBy(reopen), comesBack);
    mainWinIsHidden = 0;
    stand.isMiniaturized = YES;
    EXPECT_EQ(ToldBy(reopen), Told({"behavior 1", "deminiaturize:", "makeKeyAndOrderFront:", "activate"}));
}

// --- The end ---

TEST_F(Hiding, TheLastWindowEndsTheProgramUnlessItIsHidden) {
    EXPECT_TRUE([Application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
    mainWinIsHidden = 1;
    EXPECT_FALSE([Application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

TEST_F(Hiding, AHiddenWindowThatIsTakenOutOfTheDockIsShown) {
    mainWinIsHidden = 1;
    const auto deminiaturized = [this] {
        [reinterpret_cast<id>([window delegate]) windowDidDeminiaturize:nil];
    };
    EXPECT_EQ(ToldBy(deminiaturized), Told({"fade 1 0.25", "behavior 0"}));
    EXPECT_EQ(mainWinIsHidden, 0);
    EXPECT_EQ(ToldBy(deminiaturized), Told()) << "it was not hidden";
}

} // namespace
