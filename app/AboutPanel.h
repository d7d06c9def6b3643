// SPDX-License-Identifier: MIT
//
// What the program is: its icon, name and version, in a panel.
#pragma once

#import <AppKit/AppKit.h>

// Shows the panel in front of the other windows, with the keys: Escape and the menu's Close close it.
void showAboutPanel();
