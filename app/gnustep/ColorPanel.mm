// SPDX-License-Identifier: MIT
//
// GNUstep's color panel in our look.
#import "Controls.h"
#import "ThemeImages.h"

#import <objc/runtime.h>

// --- The sliders of the color components ---

// What draws a slider in GNUstep's cell, under a name of ours: the class has our own under its name.
@interface NSObject (TheirSliderCell)
- (void)drawWithoutTitle:(NSRect)frame inView:(NSView*)view;
@end

// With the title in white with a dark edge, since the bar behind it can have any color.
static void drawSlider(id cell, SEL, NSRect frame, NSView* view) {
    NSString* const title = [[[cell title] copy] autorelease];
    [cell setTitle:@""];
    [cell drawWithoutTitle:frame inView:view];
    [cell setTitle:title];
    NSFont* const font = [NSFont systemFontOfSize:[NSFont smallSystemFontSize]];
    const CGFloat x = NSMinX(frame) + 4, y = NSMidY(frame) - [font defaultLineHeightForFont] / 2;
    const CGFloat edge[][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    for (const auto& step : edge) {
        NSColor* const dark = [NSColor colorWithCalibratedWhite:0 alpha:0.6];
        [title drawAtPoint:NSMakePoint(x + step[0], y + step[1]) withAttributes:textLook(font, dark)];
    }
    [title drawAtPoint:NSMakePoint(x, y) withAttributes:textLook(font, [NSColor whiteColor])];
}

// GNUstep's cell writes its title in black or white, whatever is behind. It comes with the bundle of the
// sliders.
static void makeTitlesLegible() {
    const Class cells = NSClassFromString(@"GSColorSliderCell");
    SEL theirs = @selector(drawWithoutTitle:inView:);
    if (!cells || class_getInstanceMethod(cells, theirs)) return;
    SEL selector = @selector(drawInteriorWithFrame:inView:);
    Method method = class_getInstanceMethod(cells, selector);
    const char* const types = method_getTypeEncoding(method);
    class_addMethod(cells, theirs, method_getImplementation(method), types);
    class_replaceMethod(cells, selector, reinterpret_cast<IMP>(drawSlider), types);
}

// --- The tabs ---

@implementation NSColorPicker (PickerTabs)

+ (void)load {
    SEL selector = @selector(provideNewButtonImage);
    Method ours = class_getInstanceMethod(self, @selector(ownButtonImage));
    class_replaceMethod(self, selector, method_getImplementation(ours), method_getTypeEncoding(ours));
}

// In place of GNUstep's own: the theme's image of a picker's tab where it has one, else that of the picker's
// bundle. Both are named for the picker's class.
- (NSImage*)ownButtonImage {
    makeTitlesLegible();
    NSString* const name = NSStringFromClass([self class]);
    NSImage* const drawn = themeImage(name);
    if (drawn) return drawn;
    NSString* const path = [[NSBundle bundleForClass:[self class]] pathForImageResource:name];
    return path ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
}

@end

// --- Keys ---

// GNUstep's panel goes on through the controls of the picker that was there before.
@implementation NSColorPanel (PanelKeys)

- (void)selectNextKeyView:(id)sender {
    [self recalculateKeyViewLoop];
    [super selectNextKeyView:sender];
}

- (void)selectPreviousKeyView:(id)sender {
    [self recalculateKeyViewLoop];
    [super selectPreviousKeyView:sender];
}

// The magnifier waits for a click, whatever is typed.
static void leaveToTheMouse(NSView* view) {
    for (NSView* const one in [view subviews]) {
        if ([one isKindOfClass:[NSButton class]]) [(NSButton*)one setRefusesFirstResponder:YES];
        leaveToTheMouse(one);
    }
}

- (void)beginWithPicker {
    leaveToTheMouse([self contentView]);
    [self makeFirstResponder:nil];
    [self selectNextKeyView:nil];
}

@end

// Those of the color panel take colors from the mouse alone.
@implementation NSColorWell (PanelKeys)

- (BOOL)acceptsFirstResponder {
    return NO;
}

@end
