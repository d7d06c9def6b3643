// SPDX-License-Identifier: MIT
//
// The settings and the text of their file: an XML property list. Colours and the font are data in it that spell
// them out in ASCII, "0.1 0.9 0.9 1" (calibrated red, green, blue, alpha) and "13 DejaVuSansMono" (points, name): a
// damaged file then gives a default and nothing worse.
#ifndef TALLYQUILL_SETTINGSTEXT_H
#define TALLYQUILL_SETTINGSTEXT_H

#import <AppKit/AppKit.h>

#include <string>

// New settings with the default of every key but nsfont, bgcolor and fgcolor.
NSMutableDictionary* defaultSettings();

// The default of a key for which zero would be no value (sigfigs, dispbase, histsz, schar, cx, cy); 0 for others.
int neededSetting(NSString* key);

// The text of the settings' file. Empty when it cannot be made.
std::string settingsText(NSDictionary* settings);

// The settings in a file's bytes, or nil when they are no XML property list of a dictionary. A key that is missing
// stays missing. One with a value of another kind, or with a number that it cannot have, gets its default; `font` is
// that of nsfont and may be nil.
NSMutableDictionary* settingsFromText(NSData* bytes, NSFont* font);

// Why a character cannot be the mark between groups of digits, such as "# begins a comment."; nil when it can. What the
// engine reads as part of a number or beside one would make another number of an answer.
NSString* groupingMarkFault(unichar character);

#endif
