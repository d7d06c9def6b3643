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

void tellBehaviour(id, SEL, NSUInteger behaviour) {
    stand.told.push_back("behaviour " + std::to_string(behaviour));
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

    id application() const { return reinterpret_cast<id>(delegate); }

    // What the window, the application and the fades are told meanwhile.
    template <typename Action> Told toldBy(Action action) {
        const Class type = [NSWindow class];
        const Replaced key(type, @selector(isKeyWindow), isKey);
        const Replaced miniaturized(type, @selector(isMiniaturized), isMiniaturized);
        const Replaced deminiaturize(type, @selector(deminiaturize:), tell);
        const Replaced front(type, @selector(makeKeyAndOrderFront:), tell);
        const Replaced behaviour(type, @selector(setCollectionBehavior:), tellBehaviour);
        const Replaced activate([NSApplication class], @selector(activateIgnoringOtherApps:), tellActivate);
        const Replaced fade([PrefController class], @selector(fadeWindow:rate:), tellFade);
        stand.told.clear();
        action();
        return stand.told;
    }

    Told click() {
        return toldBy([this] { clickStatusItem(); });
    }
    Told hideByMenu() {
        return toldBy([this] { [application() hideMainWindow:nil]; });
    }
    Told resign() {
        return toldBy([this] { [application() applicationDidResignActive:nil]; });
    }
    Told willBecomeActive() {
        return toldBy([this] { [application() applicationWillBecomeActive:nil]; });
    }
    Told becomeActive() {
        return toldBy([this] { [application() applicationDidBecomeActive:nil]; });
    }

    const Told fadesAway = {"fade -1 -0.3", "behaviour 1"};
    const Told comesBack = {"behaviour 1", "makeKeyAndOrderFront:", "activate"};
};

// --- The status item ---

TEST_F(Hiding, aClickFadesTheKeyWindowAway) {
    EXPECT_EQ(click(), fadesAway);
    EXPECT_EQ(mainWinIsHidden, 1);
}

TEST_F(Hiding, aClickBringsAHiddenWindowBack) {
    mainWinIsHidden = 1;
    EXPECT_EQ(click(), comesBack);
    EXPECT_EQ(mainWinIsHidden, 1) << "until the application is active";
    EXPECT_EQ(becomeActive(), Told({"fade 1 0.25", "behaviour 0"}));
    EXPECT_EQ(mainWinIsHidden, 0);
}

TEST_F(Hiding, aClickBringsAWindowToTheFrontThatIsNotKey) {
    stand.isKey = NO;
    EXPECT_EQ(click(), comesBack);
    EXPECT_EQ(mainWinIsHidden, 0);
}

TEST_F(Hiding, aClickTakesTheWindowOutOfTheDock) {
    for (const BOOL key : {NO, YES}) {
        stand.isKey = key;
        stand.isMiniaturized = YES;
        EXPECT_EQ(click(), Told({"behaviour 1", "deminiaturize:", "makeKeyAndOrderFront:", "activate"}));
        EXPECT_EQ(mainWinIsHidden, 0);
    }
}

TEST_F(Hiding, escapeOnAnEmptyEntryIsAClick) {
    type("1");
    press(KEY_ESCAPE);
    EXPECT_EQ(hideRequests(), 0);
    press(KEY_ESCAPE);
    EXPECT_EQ(hideRequests(), 1);
}

TEST_F(Hiding, theFrameIsStoredBeforeTheWindowGoes) {
    setSetting("snaptoscreen", 0);
    [window setFrame:NSMakeRect(300, 200, 444, 222) display:YES];
    click();
    EXPECT_EQ(setting("x"), 300);
    EXPECT_EQ(setting("y"), 200);
    EXPECT_EQ(setting("cx"), 444);
    EXPECT_EQ(setting("cy"), 222);
}

// --- The menu ---

TEST_F(Hiding, theMenuHidesAlsoWhileAnotherWindowIsKey) {
    stand.isKey = NO;
    EXPECT_EQ(hideByMenu(), fadesAway);
    EXPECT_EQ(mainWinIsHidden, 1);
    EXPECT_EQ(hideByMenu(), Told()) << "it is hidden";
}

TEST_F(Hiding, theMenuLeavesAMiniaturizedWindowWhereItIs) {
    stand.isMiniaturized = YES;
    EXPECT_EQ(hideByMenu(), Told());
    EXPECT_EQ(mainWinIsHidden, 0);
}

// --- The focus ---

TEST_F(Hiding, losingTheFocusFadesToTheTransparency) {
    EXPECT_EQ(resign(), Told{"fade 0.8 -0.05"});
    setSetting("trans", 100);
    EXPECT_EQ(resign(), Told{"fade 0.2 -0.05"});
    setSetting("trans", 0);
    EXPECT_EQ(resign(), Told{"fade 1 -0.05"});
}

TEST_F(Hiding, withTheSettingOffTheWindowNeverFadesOnLosingTheFocus) {
    setSetting("transback", 0);
    EXPECT_EQ(resign(), Told());
}

TEST_F(Hiding, aHiddenWindowDoesNotFadeOnLosingTheFocus) {
    mainWinIsHidden = 1;
    EXPECT_EQ(resign(), Told());
}

TEST_F(Hiding, gainingTheFocusFadesBackToOpaque) {
    EXPECT_EQ(willBecomeActive(), Told{"behaviour 1"});
    EXPECT_EQ(becomeActive(), Told({"fade 1 0.15", "behaviour 0"}));
}

// --- The ways back ---

TEST_F(Hiding, theIconOfTheApplicationBringsTheWindowBack) {
    const auto reopen = [this] {
        EXPECT_FALSE([application() applicationShouldHandleReopen:NSApp hasVisibleWindows:YES]);
    };
    EXPECT_EQ(toldBy(reopen), Told()) << "it is there";
    mainWinIsHidden = 1;
    EXPECT_EQ(toldBy(reopen), comesBack);
    mainWinIsHidden = 0;
    stand.isMiniaturized = YES;
    EXPECT_EQ(toldBy(reopen), Told({"behaviour 1", "deminiaturize:", "makeKeyAndOrderFront:", "activate"}));
}

// --- The end ---

TEST_F(Hiding, theLastWindowEndsTheProgramUnlessItIsHidden) {
    EXPECT_TRUE([application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
    mainWinIsHidden = 1;
    EXPECT_FALSE([application() applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

TEST_F(Hiding, aHiddenWindowThatIsTakenOutOfTheDockIsShown) {
    mainWinIsHidden = 1;
    const auto deminiaturized = [this] {
        [reinterpret_cast<id>([window delegate]) windowDidDeminiaturize:nil];
    };
    EXPECT_EQ(toldBy(deminiaturized), Told({"fade 1 0.25", "behaviour 0"}));
    EXPECT_EQ(mainWinIsHidden, 0);
    EXPECT_EQ(toldBy(deminiaturized), Told()) << "it was not hidden";
}

} // namespace
