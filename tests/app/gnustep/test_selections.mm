// SPDX-License-Identifier: MIT
//
// What other programs have selected, and the clipboard that a manager keeps. Another program is a process
// with a connection of its own to the X server.
#include "../console_fixture.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Selections : public ConsoleTest {
protected:
    void TearDown() override {
        if (other > 0) kill(other, SIGKILL), waitpid(other, nullptr, 0);
        ConsoleTest::TearDown();
    }

    // Another program that owns the selection and does `serve` with each request for it.
    template <typename Serve> void Own(const char* selection, Serve serve) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        other = fork();
        if (other == 0) {
            Display* const display = XOpenDisplay(nullptr);
            const Window window =
                XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
            XSetSelectionOwner(display, XInternAtom(display, selection, False), window, CurrentTime);
            XSync(display, False);
            (void)write(ends[1], "!", 1); // it is owned now
            for (XEvent event;;) {
                XNextEvent(display, &event);
                if (event.type == SelectionRequest) serve(display, window, event.xselectionrequest, ends[1]);
            }
        }
        close(ends[1]);
        told = ends[0];
        EXPECT_EQ(Told(1), "!");
    }

    // What the other program has written.
    std::string Told(size_t length) const {
        std::string text(length, ' ');
        size_t done = 0;
        while (done < length) {
            const ssize_t got = read(told, &text[done], length - done);
            if (got <= 0) break;
            done += static_cast<size_t>(got);
        }
        return text.substr(0, done);
    }

    static void Answer(Display* display, const XSelectionRequestEvent& request, Atom property) {
        XEvent event = {};
        event.xselection.type = SelectionNotify;
        event.xselection.requestor = request.requestor;
        event.xselection.selection = request.selection;
        event.xselection.target = request.target;
        event.xselection.property = property;
        XSendEvent(display, request.requestor, False, 0, &event);
        XFlush(display);
    }

    // As a manager does: fetches the text before it answers, and tells what it has.
    static void Keep(Display* display, Window window, const XSelectionRequestEvent& request, int tell) {
        if (request.target != XInternAtom(display, "SAVE_TARGETS", False)) return;
        const Atom text = XInternAtom(display, "UTF8_STRING", False);
        const Atom place = XInternAtom(display, "PLACE", False);
        XConvertSelection(display, XInternAtom(display, "CLIPBOARD", False), text, place, window,
                          CurrentTime);
        XEvent event;
        while (!XCheckTypedWindowEvent(display, window, SelectionNotify, &event)) usleep(1000);
        Atom type = None;
        int format = 0;
        unsigned long count = 0, rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, window, place, 0, 1000, True, AnyPropertyType, &type, &format, &count,
                           &rest, &bytes);
        (void)write(tell, bytes, count);
        Answer(display, request, request.property);
    }

    static void BeSilent(Display*, Window, const XSelectionRequestEvent&, int) {}

    pid_t other = 0;
    int told = -1;
};

TEST_F(Selections, AManagerHasTheClipboardBeforeTheEnd) {
    Enter("6*7");
    [console copy:nil];
    EXPECT_FALSE(platformKeepClipboard()) << "there is no manager";
    Own("CLIPBOARD_MANAGER", Keep);
    EXPECT_TRUE(platformKeepClipboard());
    EXPECT_EQ(Told(2), "42");
}

TEST_F(Selections, TheEndOfTheProgramAsksTheManager) {
    Enter("6*8");
    [console copy:nil];
    Own("CLIPBOARD_MANAGER", Keep);
    Terminate();
    EXPECT_EQ(Told(2), "48");
}

TEST_F(Selections, WhoeverDoesNotAnswerIsNotWaitedForLong) {
    Enter("6*7");
    [console copy:nil];
    Own("CLIPBOARD_MANAGER", BeSilent);
    EXPECT_FALSE(platformKeepClipboard());
}

// --- The middle button ---

TEST_F(Selections, TheMiddleButtonPastesWhatIsSelectedElsewhere) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        if (request.target != XInternAtom(display, "UTF8_STRING", False)) return;
        const auto* const text = reinterpret_cast<const unsigned char*>("5 \xc3\x97 2\n");
        XChangeProperty(display, request.requestor, request.property, request.target, 8, PropModeReplace,
                        text, 7);
        Answer(display, request, request.property);
    });
    Enter("1+1");
    Type("3*");
    NSEvent* const click = [NSEvent mouseEventWithType:NSOtherMouseDown
                                              location:NSMakePoint(20, 60)
                                         modifierFlags:0
                                             timestamp:0
                                          windowNumber:[window windowNumber]
                                               context:nil
                                           eventNumber:0
                                            clickCount:1
                                              pressure:0];
    [console otherMouseDown:click];
    EXPECT_EQ(Entry(), "3*5 * 2") << "with the sign of multiplication as it is typed";
}

TEST_F(Selections, NothingSelectedPastesNothing) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        Answer(display, request, None);
    });
    EXPECT_EQ(platformSelection(), nil);
}

} // namespace
