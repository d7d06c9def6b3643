// SPDX-License-Identifier: MIT
//
// usage: tests/app/with_display.sh --limit 600 key_press_bench
//
// Prints what a key press at the end of an entry costs: milliseconds of this process's processor time for the
// preview, the layout of the text and its drawing; what the X server takes is not in it. The transcript above
// the entry is empty, then 1,000 entries long.
#include "lines.h"

#import "Interface.h"
#import "MainConsole.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

#import <objc/runtime.h>

#include <cstdio>
#include <unistd.h>

static void ignoreSheet(id, SEL, NSString*, NSString*, NSString*, SEL) {}

static NSEvent* keyEvent(NSWindow* window, char character) {
    const char bytes[] = {character, '\0'};
    NSString* const text = textFromBytes(bytes);
    return [NSEvent keyEventWithType:NSKeyDown
                            location:NSZeroPoint
                       modifierFlags:0
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:[window graphicsContext]
                          characters:text
         charactersIgnoringModifiers:text
                           isARepeat:NO
                             keyCode:0];
}

static double timeOf(MainConsole* console, const std::string& text) {
    NSWindow* const window = [console window];
    NSAutoreleasePool* pool = nil;
    const auto prepare = [&] {
        [pool release];
        pool = [[NSAutoreleasePool alloc] init];
        [console replacePrompt:text.substr(0, text.size() - 1).c_str()];
        [window displayIfNeeded];
    };
    const auto press = [&] {
        [console keyDown:keyEvent(window, text.back())];
        [window displayIfNeeded];
        [window flushWindow];
    };
    const double time = preview::median(prepare, press);
    [console clearPrompt];
    [pool release];
    return time;
}

static void printTable(FILE* table, MainConsole* console, const char* title) {
    fprintf(table, "%-26s %10s %10s %10s   (ms; the limit is 16)\n", title, "10 chars", "100", "1000");
    for (const preview::Line& line : preview::lines()) {
        fprintf(table, "%-26s", line.name.c_str());
        for (size_t length : {10U, 100U, 1000U}) {
            const std::string text = preview::textOf(line, length);
            if (text.empty()) {
                fprintf(table, " %10s", "");
                continue;
            }
            const double time = timeOf(console, text);
            fprintf(table, " %10.3f%s", time, time > 16 ? "!" : "");
        }
        fprintf(table, "\n");
        fflush(table);
    }
}

int main() {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    FILE* const table = fdopen(dup(STDOUT_FILENO), "w");
    if (!table || !freopen("/dev/null", "w", stdout)) return 1;
    platformRegisterDefaults();
    [NSApplication sharedApplication];
    platformAfterLaunch();
    // The sheet of the first start would wait for an answer.
    class_replaceMethod([MainConsole class], @selector(showSheet:yes:no:didEnd:),
                        reinterpret_cast<IMP>(ignoreSheet), "v@:@@@:");
    PelmoAppDelegate* const delegate = [[PelmoAppDelegate alloc] init];
    NSWindow* const window = [buildMainWindow(delegate) retain];
    MainConsole* const console = [delegate mainConsole];
    [console initializeConsole:window];
    [window makeFirstResponder:console];
    preview::define(calc);
    printTable(table, console, "empty transcript");
    for (int i = 0; i < 1000; ++i) [console insertWithNewPrompt:"ans = 123456789.123456789"];
    printTable(table, console, "1,000 entries above");
    const bool isWritten = fclose(table) == 0;
    [window release];
    [delegate release];
    [pool release];
    return isWritten ? 0 : 1;
}
