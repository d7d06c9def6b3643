// SPDX-License-Identifier: MIT
//
// A console in a real window, as a first start leaves it, with its files in a folder of its own. Sheets and
// alerts are recorded instead of shown, for they would wait for a person.
#pragma once

#import "MainConsole.h"
#import "Platform.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

@class TestDelegate;

@interface MainConsole (EditMenu)
- (void)undo:(id)sender;
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
    void Restart();

    void Terminate(); // the regular end of the program

    // A key press delivered to the console. `characters` are those without modifiers and those with them.
    void Press(uint32_t virtualKey, NSUInteger flags = 0);
    void Press(NSString* characters, NSUInteger flags = 0);

    // One whose characters differ from those without modifiers, as those of Control-c do.
    void Press(NSString* characters, NSString* plain, NSUInteger flags);

    // A key press in the application's queue, where checkInterruptEvent finds it.
    void Post(NSString* characters, NSUInteger flags = 0);

    // A press of a button of the mouse, or its end, at a place of the window.
    NSEvent* Mouse(NSEventType type, NSPoint where) const;

    // Has this done again and again while a menu or a control follows the mouse, until it returns true or the
    // timer is invalidated.
    static NSTimer* WhileTracking(const std::function<bool()>& act);

    static NSMenuView* MenuIn(NSView* view); // the view itself or one in it, or nil
    NSMenuView* OpenMenu() const;            // a menu with a window of its own, or nil

    void Type(const char* text);  // a key press for each character
    void Enter(const char* line); // types a line and presses Return
    void Select(NSUInteger location, NSUInteger length = 0);
    void SelectEntry(NSUInteger from, NSUInteger length = 0); // counted from g_linestart

    // The run loop for so long: timers fire.
    void Run(double seconds);

    // Waits, without a turn of the run loop, until what was entered is due to be written.
    void WaitForWriting();

    // Writes what was entered, as the timer does a second after the entry. It is written, or has failed, at
    // the end.
    void WriteWhatIsDue();

    std::string Text() const;         // the whole text, in UTF-8
    std::string Entry() const;        // from g_linestart on
    std::string Transcript() const;   // what stands before it, the prompt included
    std::string Selected() const;     // the selected text
    NSUInteger Cursor() const;        // the selection's location
    NSUInteger CursorInEntry() const; // counted from g_linestart
    std::string StatusLine() const;   // the status line

    // A variable of the console that nobody else asks for.
    template <typename Type> Type& PartOf(const char* name) const {
        Ivar const part = class_getInstanceVariable([MainConsole class], name);
        return *reinterpret_cast<Type*>(reinterpret_cast<char*>(console) + ivar_getOffset(part));
    }

    std::string News(); // the status line as soon as it says something, or the empty text
    std::string Pasteboard() const;
    void SetPasteboard(const char* text) const;

    std::string Folder() const; // that of the files
    std::string FunctionsPath() const;
    std::string SettingsPath() const;
    static std::string Read(const std::string& path);
    static void Write(const std::string& path, const std::string& bytes);
    static bool Exists(const std::string& path);

    MainConsole* console = nil;
    NSWindow* window = nil;
    TestDelegate* delegate = nil;
    std::string home;                   // a temporary folder; $XDG_DATA_HOME points to it
    int HideRequests() const;           // how often clickedAppStatusItem: was sent
    std::vector<RecordedSheet>& sheets; // shown so far in this test
    std::vector<std::string>& alerts;   // title + "\n" + detail

    ConsoleTest();
    void Start(); // SetUp and restart call it: a new engine, a new window

    NSAutoreleasePool* pool = nil;
};
