// SPDX-License-Identifier: MIT
//
// The application: start and end, files handed over by the system, and showing and hiding the window.
#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

@class MainConsole;
@class MainWindowDelegate;
@class PrefController;

extern uint8_t mainWinIsHidden;                // 1 while the window has been faded away
extern uint8_t calcIsReady;                    // 1 once start-up has finished
extern NSMutableArray* waitingToOpenFilenames; // handed over before that, in order, or nil; retained

// Whether it is neither hidden, minimized nor closed.
bool isShown(NSWindow* mainWindow);

@interface PelmoAppDelegate : NSObject {
    NSWindow* window;
    MainConsole* mainConsole;
    PrefController* prefController;
    MainWindowDelegate* windowDelegate;
    NSStatusItem* statusItem;
    NSPanel* aboutPanel;  // nil until it is asked for
    NSPanel* guideWindow; // likewise
}
@property(nonatomic, retain) NSWindow* window;
@property(nonatomic, retain) MainConsole* mainConsole;
@property(nonatomic, retain) MainWindowDelegate* windowDelegate;
@property(nonatomic, retain) PrefController* prefController;

- (void)createAppStatusItem;                     // in the system's status bar
- (void)createAppStatusItemIn:(NSStatusBar*)bar; // nothing when there is no bar, or an item already
- (void)removeAppStatusItem;

// Fades the visible window away and hides the application; otherwise brings it back to the front.
- (void)clickedAppStatusItem:(id)sender;

// The menu's way to hide, also while another window, such as the preferences, has the keys.
- (void)hideMainWindow:(id)sender;

- (void)showGuide:(id)sender; // the guide, in a window of its own
- (void)showAbout:(id)sender;

// A click on the application's icon brings the window back, wherever it is.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)isAnyVisible;

// The program was started again: shows the window, wherever it is, and opens the files of these paths.
- (void)showAgainWith:(NSArray*)paths;

- (void)applicationDidBecomeActive:(NSNotification*)notification;
- (BOOL)application:(NSApplication*)application openFile:(NSString*)path;

// The display is gone and the program about to end: writes what is due, without a word to the display.
- (void)displayWasLost;
@end
