// SPDX-License-Identifier: MIT
//
// GNUstep's color panel on dark ground.
#import <AppKit/AppKit.h>

#import <objc/runtime.h>

// --- The sliders of the color components ---

using DrawCell = void (*)(id, SEL, NSRect, NSView*);
static DrawCell drawSliderWithoutTitle = nullptr;

// White with a dark edge, since the bar behind it can have any color.
static void drawTitle(NSString* title, NSPoint place) {
    NSFont* const font = [NSFont systemFontOfSize:[NSFont smallSystemFontSize]];
    const CGFloat steps[][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {0, 0}};
    for (const auto& step : steps) {
        const bool isLetter = step[0] == 0 && step[1] == 0;
        NSColor* const color = [NSColor colorWithCalibratedWhite:isLetter ? 1 : 0 alpha:isLetter ? 1 : 0.6];
        [title drawAtPoint:NSMakePoint(place.x + step[0], place.y + step[1])
            withAttributes:[NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, color,
                                                                      NSForegroundColorAttributeName, nil]];
    }
}

static void drawSlider(id cell, SEL selector, NSRect frame, NSView* view) {
    NSString* const title = [[[cell title] copy] autorelease];
    [cell setTitle:@""];
    drawSliderWithoutTitle(cell, selector, frame, view);
    [cell setTitle:title];
    const CGFloat height = [[NSFont systemFontOfSize:[NSFont smallSystemFontSize]] defaultLineHeightForFont];
    drawTitle(title, NSMakePoint(NSMinX(frame) + 4, NSMidY(frame) - height / 2));
}

// GNUstep's cell writes its title in black or white, whatever is behind. It comes with the bundle of the
// sliders.
static void makeTitlesLegible() {
    const Class cells = NSClassFromString(@"GSColorSliderCell");
    if (!cells || drawSliderWithoutTitle) return;
    const SEL selector = @selector(drawInteriorWithFrame:inView:);
    const Method theirs = class_getInstanceMethod(cells, selector);
    drawSliderWithoutTitle = reinterpret_cast<DrawCell>(method_getImplementation(theirs));
    class_replaceMethod(cells, selector, reinterpret_cast<IMP>(drawSlider), method_getTypeEncoding(theirs));
}

// --- The tabs ---

@interface NightColorPicker : NSColorPicker
@end

@implementation NightColorPicker

// Every picker finds its image this way.
+ (void)load {
    const SEL selector = @selector(provideNewButtonImage);
    const Method ours = class_getInstanceMethod(self, selector);
    class_replaceMethod([NSColorPicker class], selector, method_getImplementation(ours),
                        method_getTypeEncoding(ours));
}

// The theme's image of a picker's tab where it has one, else that of the picker's bundle. Both are named for
// the picker's class.
- (NSImage*)provideNewButtonImage {
    makeTitlesLegible();
    NSString* const name = NSStringFromClass([self class]);
    NSString* path = [[NSBundle mainBundle] pathForResource:name ofType:@"png" inDirectory:@"ThemeImages"];
    if (!path) path = [[NSBundle bundleForClass:[self class]] pathForImageResource:name];
    return path ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
}

@end
