// SPDX-License-Identifier: MIT
//
// A console in a real window, as a first start leaves it, with its files in a folder of its own. Sheets and
// alerts are recorded instead of shown, for they would wait for a person.
#pragma once

#import "MainConsole.h"
#import "Platform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

@class TestDelegate;

@interface MainConsole (Edit)
- (void)undo:(id)sender; // the menu's action
@end

// What the console does not tell anybody else.
@interface MainConsole (ForTests)
- (BOOL)isWritingDue;
- (BOOL)hasWaitingScripts;
@end

struct RecordedSheet {
    std::string message;
    std::string yes;
    std::string no; // empty: one button
    std::string selector;
};

class ConsoleTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts the console anew over the same files, as the next start of the program does. The old one is
    // gone, as after a crash unless terminate() was called.
    void restart();

    void terminate(); // the regular end of the program

    // A key press delivered to the console. `characters` are those without modifiers and those with them.
    void press(uint32_t virtualKey, NSUInteger flags = 0);
    void press(NSString* characters, NSUInteger flags = 0);

    // One whose characters differ from those without modifiers, as those of Control-c do.
    void press(NSString* characters, NSString* plain, NSUInteger flags);

    // A key press in the application's queue, where checkInterruptEvent finds it.
    void post(NSString* characters, NSUInteger flags = 0);

    void type(const char* text);  // a key press for each character
    void enter(const char* line); // types a line and presses Return
    void select(NSUInteger location, NSUInteger length = 0);
    void selectEntry(NSUInteger from, NSUInteger length = 0); // counted from g_linestart

    // The run loop for so long: timers fire.
    void run(double seconds);

    // Waits, without a turn of the run loop, until what was entered is due to be written.
    void waitForWriting();

    // Writes what was entered, as the timer does a second after the entry. It is written, or has failed, at
    // the end.
    void writeWhatIsDue();

    std::string text() const;         // the whole text, in UTF-8
    std::string entry() const;        // from g_linestart on
    std::string transcript() const;   // what stands before it, the prompt included
    std::string selected() const;     // the selected text
    NSUInteger cursor() const;        // the selection's location
    NSUInteger cursorInEntry() const; // counted from g_linestart
    std::string status() const;       // the status line
    std::string pasteboard() const;
    void setPasteboard(const char* text) const;

    std::string folder() const; // that of the files
    std::string functionsPath() const;
    std::string settingsPath() const;
    static std::string read(const std::string& path);
    static void write(const std::string& path, const std::string& bytes);
    static bool exists(const std::string& path);

    MainConsole* console = nil;
    NSWindow* window = nil;
    TestDelegate* delegate = nil;
    std::string home;                   // a temporary folder; $XDG_DATA_HOME points to it
    int hideRequests() const;           // how often clickedAppStatusItem: was sent
    std::vector<RecordedSheet>& sheets; // shown so far in this test
    std::vector<std::string>& alerts;   // title + "\n" + detail

    ConsoleTest();
    void start(); // SetUp and restart call it: a new engine, a new window

    NSAutoreleasePool* pool = nil;
};
