// SPDX-License-Identifier: MIT
#import "Interface.h"

#import "Controls.h"

static const NSSize PANEL_SIZE = {340, 240};
static const CGFloat ICON = 96;
static const CGFloat PANEL_MARGIN = 18;

// A centered line whose lower edge is at y.
static void addLine(NSView* content, NSString* text, NSFont* font, CGFloat y) {
    NSTextField* const line =
        labelIn(content, text, NSMakeRect(PANEL_MARGIN, y, PANEL_SIZE.width - 2 * PANEL_MARGIN, 24));
    [line setFont:font];
    [line setAlignment:NSCenterTextAlignment];
}

static void addIcon(NSView* content) {
    const NSRect frame =
        NSMakeRect((PANEL_SIZE.width - ICON) / 2, PANEL_SIZE.height - PANEL_MARGIN - ICON, ICON, ICON);
    NSImageView* const icon = [[[NSImageView alloc] initWithFrame:frame] autorelease];
    [icon setImageScaling:NSImageScaleProportionallyUpOrDown];
    [icon setImage:bundleImage(@"Tallyquill")];
    [content addSubview:icon];
}

// GNUstep's own panel takes no keys, and names GNUstep.
NSPanel* buildAboutPanel() {
    NSPanel* const panel = makePanel([EscapePanel class], @"About Tallyquill", PANEL_SIZE, 0);
    NSView* const content = [panel contentView];
    NSFont* const plain = [NSFont systemFontOfSize:12];
    addIcon(content);
    addLine(content, @"Tallyquill", [NSFont boldSystemFontOfSize:18], 90);
    NSDictionary* const about = [[NSBundle mainBundle] infoDictionary];
    NSString* version = [about objectForKey:@"CFBundleShortVersionString"]; // macOS
    if (!version) version = [about objectForKey:@"ApplicationRelease"];
    if (version) addLine(content, [@"Version " stringByAppendingString:version], plain, 66);
    addLine(content, @"A calculator that works like a console.", plain, 38);
    addLine(content, @"Free software under the MIT license.", plain, 16);
    return panel;
}
