// SPDX-License-Identifier: MIT
//
// What the program is: its icon, name and version, in a panel.
#pragma once

#import <AppKit/AppKit.h>

// The panel, not shown yet. Escape and the menu's Close close it.
NSPanel* buildAboutPanel();
