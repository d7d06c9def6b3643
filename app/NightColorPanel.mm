// SPDX-License-Identifier: MIT
//
// GNUstep's color panel on dark ground.
#import <AppKit/AppKit.h>

#ifdef GNUSTEP

#import <objc/runtime.h>

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

// The theme's image of a picker's tab where it has one, else that of the picker's bundle. Both are named for the
// picker's class.
- (NSImage*)provideNewButtonImage {
    NSString* const name = NSStringFromClass([self class]);
    NSString* path = [[NSBundle mainBundle] pathForResource:name ofType:@"png" inDirectory:@"ThemeImages"];
    if (!path) path = [[NSBundle bundleForClass:[self class]] pathForImageResource:name];
    return path ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
}

@end

#endif
