// SPDX-License-Identifier: MIT
//
// Fades of the window.
#import "shell_fixture.h"

#import "PrefController.h"

namespace {

int miniaturized = 0;

void recordMiniaturize(id, SEL, id) {
    ++miniaturized;
}

int redrawn = 0;

void recordRedraw(id, SEL, BOOL needed) {
    if (needed) ++redrawn;
}

class Fading : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        miniaturized = redrawn = 0;
    }

    NSTimer* Timer() const {
        return object_getIvar(Preferences(), class_getInstanceVariable([PrefController class], "timer"));
    }

    bool IsFading() const { return Timer() != nil; }

    void Fade(float target, float rate) { [Preferences() fadeWindow:target rate:rate]; }

    // One step of a fade, as its timer would take it.
    void Tick(float target, float rate) {
        NSArray* const pair = [NSArray
            arrayWithObjects:[NSNumber numberWithFloat:target], [NSNumber numberWithFloat:rate], nil];
        NSTimer* const timer = [NSTimer timerWithTimeInterval:1000
                                                       target:Preferences()
                                                     selector:@selector(fadeWin:)
                                                     userInfo:pair
                                                      repeats:NO];
        [Preferences() fadeWin:timer];
        [timer invalidate];
    }

    // The opacities of the steps, from where the window is, until the fade rests.
    std::vector<double> Steps(float target, float rate) {
        Fade(target, rate);
        std::vector<double> seen;
        while (IsFading() && seen.size() < 100) {
            Tick(target, rate);
            seen.push_back(Alpha());
        }
        return seen;
    }

    void ExpectSteps(const std::vector<double>& seen, const std::vector<double>& expected) {
        ASSERT_EQ(seen.size(), expected.size());
        for (size_t i = 0; i < seen.size(); ++i) EXPECT_NEAR(seen[i], expected[i], 1e-5) << i;
    }

    const Replaced miniaturize { [NSWindow class], @selector(miniaturize:), recordMiniaturize };
};

TEST_F(Fading, ToANegativeTargetHidesTheApplication) {
    [window setAlphaValue:1];
    // The step below zero shows as zero.
    ExpectSteps(Steps(-1.0f, -0.3f), {0.7, 0.4, 0.1, 0, 0});
    EXPECT_EQ(miniaturized, platformStatusBar() ? 0 : 1) << "from where the window manager brings it back";
    EXPECT_TRUE([window isVisible]);
}

TEST_F(Fading, ToZeroTakesTheWindowAway) {
    [window setAlphaValue:1];
    ExpectSteps(Steps(0.0f, -0.3f), {0.7, 0.4, 0.1, 0, 0});
    EXPECT_FALSE([window isVisible]);
    EXPECT_EQ(miniaturized, 0);
}

TEST_F(Fading, ToALevelStopsThere) {
    [window setAlphaValue:1];
    ExpectSteps(Steps(0.8f, -0.07f), {0.93, 0.86, 0.79, 0.8});
    EXPECT_TRUE([window isVisible]);
    EXPECT_EQ(miniaturized, 0);
}

TEST_F(Fading, RisesToOpaque) {
    [window setAlphaValue:0];
    ExpectSteps(Steps(1.0f, 0.25f), {0.25, 0.5, 0.75, 1, 1});
    [window setAlphaValue:0.8];
    ExpectSteps(Steps(1.0f, 0.15f), {0.95, 1, 1});
}

TEST_F(Fading, ThatIsThereAlreadyEndsWithTheFirstStep) {
    [window setAlphaValue:0.8];
    ExpectSteps(Steps(0.8f, -0.05f), {0.8});
    [window setAlphaValue:1];
    ExpectSteps(Steps(1.0f, 0.15f), {1});
    [window setAlphaValue:0.3];
    ExpectSteps(Steps(0.8f, -0.05f), {0.8}); // falling, and below it already
}

TEST_F(Fading, ItsEndDrawsTheWindowAnew) {
    [window setAlphaValue:1];
    Fade(0.9f, -0.05f);
    const Replaced redraw([NSView class], @selector(setNeedsDisplay:), recordRedraw);
    Tick(0.9f, -0.06f);
    EXPECT_EQ(redrawn, 0);
    Tick(0.9f, -0.06f);
    Tick(0.9f, -0.06f);
    EXPECT_GT(redrawn, 0);
    EXPECT_FALSE(IsFading());
}

TEST_F(Fading, WithARateOfZeroOrOfOneAndMoreIsDoneAtOnce) {
    for (const float rate : {0.0f, 1.0f, -1.0f, 2.5f, -7.0f}) {
        [window setAlphaValue:1];
        Fade(0.4f, rate);
        EXPECT_NEAR(Alpha(), 0.4, 1e-6) << rate;
        EXPECT_FALSE(IsFading()) << rate;
    }
    Fade(0.5f, 0.99f);
    EXPECT_TRUE(IsFading());
    EXPECT_NEAR(Alpha(), 0.4, 1e-6);
}

TEST_F(Fading, RunsOnATimer) {
    [window setAlphaValue:1];
    Fade(0.8f, -0.05f);
    EXPECT_TRUE(IsFading());
    EXPECT_EQ(Alpha(), 1);
    for (int i = 0; i < 1000 && IsFading(); ++i) Run(0.01);
    EXPECT_FALSE(IsFading());
    EXPECT_NEAR(Alpha(), 0.8, 1e-6);
}

TEST_F(Fading, GoesOnWhileAPanelWaitsOrAMenuIsOpen) {
    for (NSString* const mode in @[ NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ]) {
        [window setAlphaValue:1];
        Fade(0.8f, -0.1f);
        for (int i = 0; i < 100 && IsFading(); ++i) {
            [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        }
        EXPECT_FALSE(IsFading()) << [mode UTF8String];
        EXPECT_NEAR(Alpha(), 0.8, 1e-6) << [mode UTF8String];
        [Preferences() fadeWindow:1 rate:0];
    }
}

TEST_F(Fading, ANewOneEndsTheOld) {
    for (const float rate : {0.25f, 0.0f}) {
        [window setAlphaValue:1];
        Fade(-1.0f, -0.3f);
        NSTimer* const old = [[Timer() retain] autorelease];
        EXPECT_TRUE([old isValid]);
        Fade(1.0f, rate);
        EXPECT_FALSE([old isValid]);
        for (int i = 0; i < 1000 && IsFading(); ++i) Run(0.01);
        EXPECT_NEAR(Alpha(), 1, 1e-6);
        EXPECT_EQ(miniaturized, 0);
    }
}

} // namespace
