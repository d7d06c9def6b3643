// SPDX-License-Identifier: MIT
//
// The arrows beside a number, held down by the mouse.
#import "../panel_fixture.h"
#import "../replacement.h"

#import <GNUstepGUI/GSTheme.h>

namespace {

class Steppers : public PanelTest {
protected:
    void SetUp() override {
        PanelTest::SetUp();
        Open();
        figures = controls.steppers[0];
        ASSERT_EQ([figures intValue], 10);
    }
    void TearDown() override {
        Close();
        PanelTest::TearDown();
    }

    // At a height of the arrows, 0 to 1.
    NSEvent* Event(NSEventType type, double height) const {
        const NSPoint place = NSMakePoint(NSMidX([figures bounds]), NSHeight([figures bounds]) * height);
        return [NSEvent mouseEventWithType:type
                                  location:[figures convertPoint:place toView:nil]
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[panel windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:0];
    }

    void Post(NSEventType type, double height) const { [NSApp postEvent:Event(type, height) atStart:NO]; }

    static void PostTicks(int count) {
        for (int i = 0; i < count; ++i) {
            [NSApp postEvent:[NSEvent otherEventWithType:NSPeriodic
                                                location:NSZeroPoint
                                           modifierFlags:0
                                               timestamp:0
                                            windowNumber:0
                                                 context:nil
                                                 subtype:0
                                                   data1:0
                                                   data2:0]
                     atStart:NO];
        }
    }

    // Returns when what was posted has let it go.
    void Press(double height) const { [figures mouseDown:Event(NSLeftMouseDown, height)]; }

    NSStepper* figures = nil;
};

const double UP = 0.75, DOWN = 0.25;

TEST_F(Steppers, AClickIsOneStep) {
    Post(NSLeftMouseUp, UP);
    Press(UP);
    EXPECT_EQ(SettingOf("sigfigs"), 11);
    EXPECT_EQ(Shown(controls.prefSigFigs), "11");
    for (int i = 0; i < 2; ++i) {
        Post(NSLeftMouseUp, DOWN);
        Press(DOWN);
    }
    EXPECT_EQ(SettingOf("sigfigs"), 9);
}

TEST_F(Steppers, HeldDownTheyGoOn) {
    PostTicks(3);
    Post(NSLeftMouseUp, UP);
    Press(UP);
    EXPECT_EQ(Shown(controls.prefSigFigs), "14");
    PostTicks(100);
    Post(NSLeftMouseUp, DOWN);
    Press(DOWN);
    EXPECT_EQ(Shown(controls.prefSigFigs), "1") << "no further than the setting";
    EXPECT_EQ(SettingOf("sigfigs"), 1);
}

TEST_F(Steppers, TheyStopWhileTheMouseIsElsewhere) {
    Post(NSLeftMouseDragged, DOWN);
    PostTicks(5);
    Post(NSLeftMouseDragged, UP);
    PostTicks(1);
    Post(NSLeftMouseUp, UP);
    Press(UP);
    EXPECT_EQ(Shown(controls.prefSigFigs), "12");
}

IMP stepping = nullptr;
int steps = 0;

// Lets it go at its fourth step.
void letGoLater(id target, SEL selector, id sender) {
    reinterpret_cast<void (*)(id, SEL, id)>(stepping)(target, selector, sender);
    if (++steps != 4) return;
    [NSApp postEvent:[NSEvent mouseEventWithType:NSLeftMouseUp
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[[sender window] windowNumber]
                                         context:nil
                                     eventNumber:0
                                      clickCount:1
                                        pressure:0]
             atStart:YES];
}

TEST_F(Steppers, TimeAloneMakesTheSteps) {
    const Replaced step([PrefController class], @selector(step:), letGoLater);
    stepping = step.Implementation();
    steps = 0;
    NSDate* const start = [NSDate date];
    Press(UP);
    EXPECT_EQ(Shown(controls.prefSigFigs), "14");
    EXPECT_GE(-[start timeIntervalSinceNow], 0.6) << "a click is no long press";
}

std::string drawn;

void noteUpper(id, SEL, NSRect) {
    drawn += "up ";
}

void noteLower(id, SEL, NSRect) {
    drawn += "down ";
}

TEST_F(Steppers, WhatIsHeldDownLooksPressed) {
    const Replaced upper([GSTheme class], @selector(drawStepperHighlightUpButton:), noteUpper);
    const Replaced lower([GSTheme class], @selector(drawStepperHighlightDownButton:), noteLower);
    for (const double height : {UP, DOWN}) {
        drawn.clear();
        Post(NSLeftMouseUp, height);
        Press(height);
        EXPECT_EQ(drawn.substr(0, drawn.find(' ')), height == UP ? "up" : "down");
        drawn.clear();
        [figures display];
        EXPECT_EQ(drawn, "") << "it was let go";
    }
}

} // namespace
