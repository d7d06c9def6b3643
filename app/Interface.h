// SPDX-License-Identifier: MIT
//
// The windows, the controls and the menus, built in code.
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

// What the program is: its icon, version and license (AboutPanel.mm). Not shown yet.
NSPanel* buildAboutPanel();

// The guide that belongs to the application (GuideWindow.mm), not shown yet; nil when the application has
// none. A panel, because it is no main window: it does not keep the calculator running once that is closed.
NSPanel* buildGuideWindow();

// A text in the guide's notation, a small part of Markdown, laid out: headings ("#" to "###"), tables, fenced
// code, items ("- "), `code` and **strong**; a link shows its text, an image nothing. Anything else stands as
// it is.
NSAttributedString* guideText(NSString* markdown);
