// SPDX-License-Identifier: MIT
//
// The window, its controls and the menus, built in code.
//
// The content view from bottom to top: the status line (20 points), the console in its scroll view, the
// controls (27 points): display base, angle mode, variables, functions.
#pragma once

#import <AppKit/AppKit.h>

@class MainConsole;
@class PelmoAppDelegate;

constexpr CGFloat STATUS_HEIGHT = 20;
constexpr CGFloat CONTROLS_HEIGHT = 27;

// Builds everything and hands it to the delegate: the window (not shown yet), the console, the controllers
// and the main menu.
void buildInterface(PelmoAppDelegate* delegate);

// The window with its console alone, without menus. The console's outlets are set.
NSWindow* buildMainWindow(PelmoAppDelegate* delegate);

// The preferences panel with its controller, which also fades the window (InterfacePanel.mm).
void buildPreferences(PelmoAppDelegate* delegate);

// The menu bar (InterfaceMenus.mm). Items of the first responder have no target.
void buildMenus(PelmoAppDelegate* delegate);
