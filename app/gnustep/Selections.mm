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

static const std::chrono::seconds PATIENCE(1);
static const long MOST = 100000; // bytes of a selection: an entry takes fewer

// A connection of its own to the X server, with a window that answers come to.
class Asker {
public:
    Asker() : display(XOpenDisplay(nullptr)) {
        if (!display) return;
        window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    }
    ~Asker() {
        if (display) XCloseDisplay(display);
    }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;

    bool IsOwned(const char* selection) const {
        return display && XGetSelectionOwner(display, AtomOf(selection)) != None;
    }

    // Whether the owner of the selection has answered in time, if need be with something.
    bool Ask(const char* selection, const char* target) const {
        if (!IsOwned(selection)) return false;
        XConvertSelection(display, AtomOf(selection), AtomOf(target), AtomOf(ANSWER), window, CurrentTime);
        XFlush(display);
        const auto end = std::chrono::steady_clock::now() + PATIENCE;
        XEvent event;
        while (!XCheckTypedWindowEvent(display, window, SelectionNotify, &event)) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd connection = {ConnectionNumber(display), POLLIN, 0};
            poll(&connection, 1, static_cast<int>(left.count()));
        }
        return event.xselection.property != None;
    }

    // The text that was answered, none when it came in pieces, as what is too long for an entry does.
    std::optional<std::string> Text(const char* target) const {
        Atom type = None;
        int format = 0;
        unsigned long count = 0, rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, window, AtomOf(ANSWER), 0, MOST / 4, True, AnyPropertyType, &type,
                           &format, &count, &rest, &bytes);
        std::optional<std::string> text;
        if (bytes && type == AtomOf(target) && format == 8 && rest == 0)
            text.emplace(reinterpret_cast<char*>(bytes), count);
        if (bytes) XFree(bytes);
        return text;
    }

private:
    static constexpr const char* ANSWER = "TALLYQUILL_ANSWER";

    Atom AtomOf(const char* name) const { return XInternAtom(display, name, False); }

    Display* display;
    Window window = None;
};

NSString* platformSelection() {
    const Asker asker;
    const struct {
        const char* target;
        NSStringEncoding encoding;
    } forms[] = {{"UTF8_STRING", NSUTF8StringEncoding}, {"STRING", NSISOLatin1StringEncoding}};
    for (const auto& form : forms) {
        if (!asker.Ask("PRIMARY", form.target)) continue;
        const std::optional<std::string> text = asker.Text(form.target);
        if (!text) continue;
        return [[[NSString alloc] initWithBytes:text->data() length:text->size()
                                       encoding:form.encoding] autorelease];
    }
    return nil;
}

// The manager fetches what the clipboard holds and answers when it has it.
bool platformKeepClipboard() {
    const Asker asker;
    return asker.IsOwned("CLIPBOARD") && asker.Ask("CLIPBOARD_MANAGER", "SAVE_TARGETS");
}
