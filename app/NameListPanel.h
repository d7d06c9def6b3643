// SPDX-License-Identifier: MIT
//
// A list of names, a line each, that becomes shorter while one types. A click on a line, or Return for the
// one that is chosen with the arrows, the first at first, types its name at the console's prompt.
#pragma once

#import "Controls.h"

#include "NameRows.h"

@class MainConsole;

@interface NameListPanel : EscapePanel {
    std::vector<NameRow> rows;
    std::vector<size_t> inSight;    // the rows that the list shows
    std::vector<NSUInteger> starts; // of their lines
    NSInteger chosen;               // of these, or -1
    NSTextField* field;             // the panel's own
    NSTextView* list;               // the panel's own
    MainConsole* console;           // not retained
}

// The panel is the caller's to release. The console must live longer.
+ (NameListPanel*)newPanel:(NSString*)title
                      rows:(const std::vector<NameRow>&)names
                   console:(MainConsole*)owner;
- (void)choose:(NSInteger)line; // counted among those that are shown; the nearest one that there is
- (void)take:(NSInteger)line;
- (void)takeAt:(NSUInteger)character; // the line of that character of the list
@end
