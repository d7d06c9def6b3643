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

    static void Put(Display* display, const XSelectionRequestEvent& request, const std::string& text) {
        XChangeProperty(display, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    }

    // As a program does with a long text: part by part, each when the one before was taken.
    static void GiveInParts(Display* display, const XSelectionRequestEvent& request,
                            const std::vector<std::string>& parts) {
        if (request.target != XInternAtom(display, "UTF8_STRING", False)) return;
        XSelectInput(display, request.requestor, PropertyChangeMask);
        const long least = 1;
        XChangeProperty(display, request.requestor, request.property, XInternAtom(display, "INCR", False), 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&least), 1);
        Answer(display, request, request.property);
        for (const std::string& part : parts) {
            XEvent event;
            do XNextEvent(display, &event);
            while (event.type != PropertyNotify || event.xproperty.state != PropertyDelete);
            Put(display, request, part);
        }
        XFlush(display);
    }

    void ClickMiddleButton() const { [console otherMouseDown:Mouse(NSOtherMouseDown, NSMakePoint(20, 60))]; }

    static void BeSilent(Display*, Window, const XSelectionRequestEvent&, int) {}

    pid_t other = 0;
    int told = -1;
};

TEST_F(Selections, AManagerHasTheClipboardBeforeTheEnd) {
    Enter("6*7");
    [console copy:nil];
    EXPECT_FALSE(platformKeepClipboard({})) << "there is no manager";
    Own("CLIPBOARD_MANAGER", Keep);
    EXPECT_TRUE(platformKeepClipboard({}));
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
    EXPECT_FALSE(platformKeepClipboard({}));
}

// --- The middle button ---

TEST_F(Selections, TheMiddleButtonPastesWhatIsSelectedElsewhere) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        if (request.target != XInternAtom(display, "UTF8_STRING", False)) return;
        Put(display, request, "5 \xc3\x97 2\n");
        Answer(display, request, request.property);
    });
    Enter("1+1");
    Type("3*");
    ClickMiddleButton();
    EXPECT_EQ(Entry(), "3*5 * 2") << "with the sign of multiplication as it is typed";
}

// GNUstep's own pastes at the release what was selected here.
TEST_F(Selections, TheReleaseOfTheMiddleButtonPastesNothingMore) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        Put(display, request, "5");
        Answer(display, request, request.property);
    });
    Type("3*");
    ClickMiddleButton();
    [console otherMouseUp:Mouse(NSOtherMouseUp, NSMakePoint(20, 60))];
    EXPECT_EQ(Entry(), "3*5");
}

TEST_F(Selections, NothingSelectedPastesNothing) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        Answer(display, request, None);
    });
    EXPECT_EQ([platformSelection() length], 0u);
    ClickMiddleButton();
    EXPECT_EQ(StatusLine(), "");
}

TEST_F(Selections, ALongTextThatComesInPartsIsPasted) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        GiveInParts(display, request, {"1+", std::string(3000, '2'), "+3", ""});
    });
    ClickMiddleButton();
    EXPECT_EQ(Entry(), "1+" + std::string(3000, '2') + "+3");
}

TEST_F(Selections, ATextTooLongForAnEntryIsRefusedWithTheReason) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        GiveInParts(display, request, std::vector<std::string>(10, std::string(60000, '2')));
    });
    Type("7");
    ClickMiddleButton();
    EXPECT_EQ(Entry(), "7");
    EXPECT_EQ(StatusLine(), "The text is too long for an entry.");
}

// Its owner hangs: the window does not, and says why nothing came.
TEST_F(Selections, WhatIsNotHandedOverIsSaid) {
    Own("PRIMARY", BeSilent);
    Type("7");
    ClickMiddleButton();
    EXPECT_EQ(Entry(), "7");
    EXPECT_EQ(StatusLine(), "The text could not be fetched.");
}

TEST_F(Selections, PartsThatDoNotComeAreNotWaitedFor) {
    Own("PRIMARY", [](Display* display, Window, const XSelectionRequestEvent& request, int) {
        GiveInParts(display, request, {"1+"});
    });
    ClickMiddleButton();
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(StatusLine(), "The text could not be fetched.");
}

} // namespace
