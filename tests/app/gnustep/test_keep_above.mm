// SPDX-License-Identifier: MIT
//
// "Keep above other windows": what the window manager is asked for.
#import "../panel_fixture.h"

#import "../replacement.h"
#import "PelmoAppDelegate.h"

#include <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

#include <algorithm>

namespace {

// In the place of the window manager: reads what is sent to the root window.
class KeepAbove : public PanelTest {
protected:
    void SetUp() override {
        PanelTest::SetUp();
        manager = XOpenDisplay(nullptr);
        ASSERT_NE(manager, nullptr);
        XSelectInput(manager, DefaultRootWindow(manager), SubstructureNotifyMask);
        XSync(manager, True);
        open();
        asked();
    }
    void TearDown() override {
        if (manager) XCloseDisplay(manager);
        PanelTest::TearDown();
    }

    static Window deviceOf(NSWindow* one) {
        return reinterpret_cast<Window>(
            [GSServerForWindow(one) windowDevice:static_cast<int>([one windowNumber])]);
    }

    std::string nameOf(Window device) const {
        if (device == deviceOf(window)) return "calculator";
        return device == deviceOf(panel) ? "preferences" : "another";
    }

    // The requests since the last call, each once: the window with "+" for above and "-" for no longer.
    std::vector<std::string> asked() const {
        XSync(static_cast<Display*>([GSServerForWindow(window) serverDevice]), False);
        XSync(manager, False);
        std::vector<std::string> all;
        while (XPending(manager) > 0) {
            XEvent event;
            XNextEvent(manager, &event);
            if (event.type != ClientMessage) continue;
            const XClientMessageEvent& message = event.xclient;
            const Atom above = XInternAtom(manager, "_NET_WM_STATE_ABOVE", False);
            if (message.message_type != XInternAtom(manager, "_NET_WM_STATE", False) ||
                static_cast<Atom>(message.data.l[1]) != above)
                continue;
            const std::string one = nameOf(message.window) + (message.data.l[0] == 1 ? "+" : "-");
            if (std::find(all.begin(), all.end(), one) == all.end()) all.push_back(one);
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    using Asked = std::vector<std::string>;

    Display* manager = nullptr;
};

TEST_F(KeepAbove, theWindowManagerIsAskedForAllWindowsThatAreShown) {
    tick(controls.prefAlwaysTop, true);
    EXPECT_EQ(asked(), Asked({"calculator+", "preferences+"}));
    tick(controls.prefAlwaysTop, false);
    EXPECT_EQ(asked(), Asked({"calculator-", "preferences-"}));
}

TEST_F(KeepAbove, theLevelIsNotGNUsteps) {
    // It would take the window out of the lists of windows.
    tick(controls.prefAlwaysTop, true);
    const IMP level = class_getMethodImplementation([NSWindow class], @selector(level));
    EXPECT_EQ(reinterpret_cast<NSInteger (*)(id, SEL)>(level)(window, @selector(level)), NSNormalWindowLevel);
    EXPECT_EQ([window level], NSFloatingWindowLevel);
}

TEST_F(KeepAbove, aWindowThatComesBackIsAskedForAgain) {
    tick(controls.prefAlwaysTop, true);
    close();
    asked();
    [window orderOut:nil];
    EXPECT_EQ(asked(), Asked());
    [window orderFront:nil];
    EXPECT_EQ(asked(), Asked({"calculator+"}));
    tick(controls.prefAlwaysTop, false);
    asked();
    [window orderOut:nil];
    [window orderFront:nil];
    EXPECT_EQ(asked(), Asked());
}

TEST_F(KeepAbove, anotherWindowComesInFrontOfIt) {
    tick(controls.prefAlwaysTop, true);
    asked();
    // Without a window manager no focus comes and goes.
    [panel resignKeyWindow];
    [panel becomeKeyWindow];
    EXPECT_EQ(asked(), Asked({"preferences+"}));
    tick(controls.prefAlwaysTop, false);
    asked();
    [panel resignKeyWindow];
    [panel becomeKeyWindow];
    EXPECT_EQ(asked(), Asked());
}

} // namespace
