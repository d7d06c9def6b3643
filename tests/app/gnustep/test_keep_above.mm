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
        Open();
        Asked();
    }
    void TearDown() override {
        if (manager) XCloseDisplay(manager);
        PanelTest::TearDown();
    }

    static Window DeviceOf(NSWindow* one) {
        return reinterpret_cast<Window>(
            [GSServerForWindow(one) windowDevice:static_cast<int>([one windowNumber])]);
    }

    std::string NameOf(Window device) const {
        if (device == DeviceOf(window)) return "calculator";
        return device == DeviceOf(panel) ? "preferences" : "another";
    }

    // The requests since the last call, each once: the window with "+" for above and "-" for no longer.
    std::vector<std::string> Asked() const {
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
            const std::string one = NameOf(message.window) + (message.data.l[0] == 1 ? "+" : "-");
            if (std::find(all.begin(), all.end(), one) == all.end()) all.push_back(one);
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    using Requests = std::vector<std::string>;

    Display* manager = nullptr;
};

TEST_F(KeepAbove, TheWindowManagerIsAskedForAllWindowsThatAreShown) {
    Tick(controls.prefAlwaysTop, true);
    EXPECT_EQ(Asked(), Requests({"calculator+", "preferences+"}));
    Tick(controls.prefAlwaysTop, false);
    EXPECT_EQ(Asked(), Requests({"calculator-", "preferences-"}));
}

TEST_F(KeepAbove, TheLevelIsNotGNUsteps) {
    // It would take the window out of the lists of windows.
    Tick(controls.prefAlwaysTop, true);
    const IMP level = class_getMethodImplementation([NSWindow class], @selector(level));
    EXPECT_EQ(reinterpret_cast<NSInteger (*)(id, SEL)>(level)(window, @selector(level)), NSNormalWindowLevel);
    EXPECT_EQ([window level], NSFloatingWindowLevel);
}

TEST_F(KeepAbove, AWindowThatComesBackIsAskedForAgain) {
    Tick(controls.prefAlwaysTop, true);
    Close();
    Asked();
    [window orderOut:nil];
    EXPECT_EQ(Asked(), Requests());
    [window orderFront:nil];
    EXPECT_EQ(Asked(), Requests({"calculator+"}));
    Tick(controls.prefAlwaysTop, false);
    Asked();
    [window orderOut:nil];
    [window orderFront:nil];
    EXPECT_EQ(Asked(), Requests());
}

TEST_F(KeepAbove, AnotherWindowComesInFrontOfIt) {
    Tick(controls.prefAlwaysTop, true);
    Asked();
    // Without a window manager no focus comes and goes.
    [panel resignKeyWindow];
    [panel becomeKeyWindow];
    EXPECT_EQ(Asked(), Requests({"preferences+"}));
    Tick(controls.prefAlwaysTop, false);
    Asked();
    [panel resignKeyWindow];
    [panel becomeKeyWindow];
    EXPECT_EQ(Asked(), Requests());
}

} // namespace
