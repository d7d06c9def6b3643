// SPDX-License-Identifier: MIT
//
// What other programs have selected, and the clipboard after the end of the program. GNUstep keeps both in a
// server of its own, which ends with its last program and misses that another program selects something.
#import "Platform.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <chrono>
#include <optional>
#include <poll.h>
#include <string>
#include <thread>

using Clock = std::chrono::steady_clock;

static const std::chrono::milliseconds BEFORE_THE_END(1000); // a manager of clipboards may take
static const std::chrono::milliseconds BEFORE_A_PASTE(300);  // another program may take, for each part
static const long MOST = 100000;                             // bytes of a selection: an entry takes fewer

namespace {

enum class Reply { No, Given, Late };

// A connection of its own to the X server, with a window that answers come to.
class Asker {
public:
    explicit Asker(std::chrono::milliseconds time) : patience(time), display(XOpenDisplay(nullptr)) {
        if (!display) return;
        window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
        XSelectInput(display, window, PropertyChangeMask);
    }
    ~Asker() {
        if (display) XCloseDisplay(display);
    }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;

    bool IsOwned(const char* selection) const {
        return display && XGetSelectionOwner(display, AtomOf(selection)) != None;
    }

    // Whether the owner of the selection gives it in that form.
    Reply Ask(const char* selection, const char* target) const {
        if (!IsOwned(selection)) return Reply::No;
        XConvertSelection(display, AtomOf(selection), AtomOf(target), AtomOf(ANSWER), window, CurrentTime);
        XEvent event;
        if (!Wait(SelectionNotify, event)) return Reply::Late;
        return event.xselection.property != None ? Reply::Given : Reply::No;
    }

    // The text that was given; none when its parts do not come, or it is in another form. Of a long one at
    // least MOST bytes.
    std::optional<std::string> Text(const char* target) const {
        std::string text;
        const Atom type = Take(text);
        if (type == AtomOf(target)) return text;
        if (type != AtomOf("INCR")) return {};
        text.clear();
        while (text.size() < MOST) {
            XEvent event;
            if (!Wait(PropertyNotify, event)) return {};
            std::string part;
            if (event.xproperty.state != PropertyNewValue || Take(part) != AtomOf(target)) continue;
            if (part.empty()) break;
            text += part;
        }
        return text;
    }

private:
    static constexpr const char* ANSWER = "TALLYQUILL_ANSWER";

    Atom AtomOf(const char* name) const { return XInternAtom(display, name, False); }

    // False when no such event comes in time.
    bool Wait(int type, XEvent& event) const {
        XFlush(display);
        const auto end = Clock::now() + patience;
        while (!XCheckTypedWindowEvent(display, window, type, &event)) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
            if (left.count() <= 0) return false;
            pollfd connection = {ConnectionNumber(display), POLLIN, 0};
            poll(&connection, 1, static_cast<int>(left.count()));
        }
        return true;
    }

    // What the owner has put down, which it learns; the type is None when there is nothing.
    Atom Take(std::string& text) const {
        Atom type = None;
        int format = 0;
        unsigned long count = 0, rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, window, AtomOf(ANSWER), 0, 4 * MOST, True, AnyPropertyType, &type,
                           &format, &count, &rest, &bytes);
        if (bytes && format == 8) text.assign(reinterpret_cast<char*>(bytes), count);
        if (bytes) XFree(bytes);
        return type;
    }

    std::chrono::milliseconds patience;
    Display* display;
    Window window = None;
};

} // namespace

NSString* platformSelection() {
    const Asker asker(BEFORE_A_PASTE);
    const struct {
        const char* target;
        NSStringEncoding encoding;
    } forms[] = {{"UTF8_STRING", NSUTF8StringEncoding}, {"STRING", NSISOLatin1StringEncoding}};
    for (const auto& form : forms) {
        const Reply reply = asker.Ask("PRIMARY", form.target);
        if (reply == Reply::No) continue;
        if (reply == Reply::Late) return nil;
        const std::optional<std::string> text = asker.Text(form.target);
        if (!text) return nil;
        return [[[NSString alloc] initWithBytes:text->data() length:text->size()
                                       encoding:form.encoding] autorelease];
    }
    return @"";
}

// The manager fetches what the clipboard holds and answers when it has it.
bool platformKeepClipboard(Clock::time_point copied) {
    const Asker asker(BEFORE_THE_END);
    if (!asker.IsOwned("CLIPBOARD")) return false;
    if (asker.Ask("CLIPBOARD_MANAGER", "SAVE_TARGETS") == Reply::Given) return true;
    std::this_thread::sleep_until(copied + BEFORE_THE_END);
    return false;
}
