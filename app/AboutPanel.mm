// SPDX-License-Identifier: MIT
#import "AboutPanel.h"

#import "Platform.h"

static const CGFloat WIDTH = 340;
static const CGFloat HEIGHT = 240;
static const CGFloat ICON = 96;
static const CGFloat MARGIN = 18;

// GNUstep's own panel takes no keys, and names GNUstep.
@interface AboutPanel : NSPanel
@end

@implementation AboutPanel

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (void)sendEvent:(NSEvent*)event {
    if ([event type] == NSKeyDown && platformKeyCode(event) == KEY_ESCAPE)
        [self performClose:nil];
    else
        [super sendEvent:event];
}

@end

static NSString* programVersion() {
    NSDictionary* const about = [[NSBundle mainBundle] infoDictionary];
    NSString* const version = [about objectForKey:@"CFBundleShortVersionString"]; // macOS
    return version ? version : [about objectForKey:@"ApplicationRelease"];
}

// A centred line whose lower edge is at y.
static void addLine(NSView* content, NSString* text, NSFont* font, CGFloat y) {
    NSTextField* const line =
        [[[NSTextField alloc] initWithFrame:NSMakeRect(MARGIN, y, WIDTH - 2 * MARGIN, 24)] autorelease];
    [line setStringValue:text];
    [line setFont:font];
    [line setAlignment:NSCenterTextAlignment];
    [line setEditable:NO];
    [line setSelectable:NO];
    [line setBordered:NO];
    [line setBezeled:NO];
    [line setDrawsBackground:NO];
    [content addSubview:line];
}

static void addIcon(NSView* content) {
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"Tallyquill" ofType:@"png"];
    NSImage* const image = path ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
    if (!image) return;
    NSImageView* const icon = [[[NSImageView alloc]
        initWithFrame:NSMakeRect((WIDTH - ICON) / 2, HEIGHT - MARGIN - ICON, ICON, ICON)] autorelease];
    [icon setImageScaling:NSImageScaleProportionallyUpOrDown];
    [icon setImage:image];
    [content addSubview:icon];
}

static NSPanel* buildAboutPanel() {
    NSPanel* const panel = [[AboutPanel alloc] initWithContentRect:NSMakeRect(0, 0, WIDTH, HEIGHT)
                                                         styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                           backing:NSBackingStoreBuffered
                                                             defer:YES];
    [panel setTitle:@"About Tallyquill"];
    [panel setReleasedWhenClosed:NO];
    [panel setHidesOnDeactivate:NO];
    NSView* const content = [panel contentView];
    addIcon(content);
    addLine(content, @"Tallyquill", [NSFont boldSystemFontOfSize:18], 90);
    NSString* const version = programVersion();
    if (version) {
        addLine(content, [@"Version " stringByAppendingString:version], [NSFont systemFontOfSize:12], 66);
    }
    addLine(content, @"A calculator that works like a console.", [NSFont systemFontOfSize:12], 38);
    addLine(content, @"Free software under the MIT licence.", [NSFont systemFontOfSize:12], 16);
    [panel center];
    return panel;
}

void showAboutPanel() {
    static NSPanel* panel = nil; // one for as long as the application runs
    if (!panel) panel = buildAboutPanel();
    [panel makeKeyAndOrderFront:nil];
}
