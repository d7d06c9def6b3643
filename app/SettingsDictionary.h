// SPDX-License-Identifier: MIT
//
// The settings as the window holds them: a dictionary of numbers, colors and the font.
#pragma once

#import <AppKit/AppKit.h>

#include "SettingsFile.h"

// `font` is taken in place of one that cannot be had; it may be nil.
NSMutableDictionary* settingsDictionary(const KeptSettings& kept, NSFont* font);

// What the dictionary has under the keys of the settings. A value of another kind is missing.
KeptSettings keptSettings(NSDictionary* settings);
