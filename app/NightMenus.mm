// SPDX-License-Identifier: MIT
//
// The keys in GNUstep's menus, written as they stand on the keyboard: "Alt+Shift+S" where GNUstep would write "Alt+S",
// and "Alt+S" for "Alt+s". The names of the modifiers are GNUstep's defaults (platformRegisterDefaults()).
#import <AppKit/AppKit.h>

#ifdef GNUSTEP

static NSString* nameOfModifier(NSString* setting, NSString* usual) {
    NSString* const name = [[NSUserDefaults standardUserDefaults] stringForKey:setting];
    return name ? name : usual;
}

@interface NSMenuItemCell (NightMenus)
- (NSString*)_keyEquivalentString;
@end

@implementation NSMenuItemCell (NightMenus)

// In place of GNUstep's own: what is measured and drawn at the right of an item.
- (NSString*)_keyEquivalentString {
    NSString* const key = [[self menuItem] keyEquivalent];
    if ([key length] == 0) return @"";
    const NSUInteger flags = [[self menuItem] keyEquivalentModifierMask];
    NSString* const capital = [key uppercaseString];
    const bool isCapital = [key isEqualToString:capital] && ![key isEqualToString:[key lowercaseString]];
    NSMutableString* const text = [NSMutableString string];
    if (flags & NSControlKeyMask) [text appendString:nameOfModifier(@"GSControlKeyString", @"Ctrl+")];
    if (flags & NSAlternateKeyMask) [text appendString:nameOfModifier(@"GSAlternateKeyString", @"Option+")];
    if (flags & NSCommandKeyMask) [text appendString:nameOfModifier(@"GSCommandKeyString", @"Alt+")];
    if (isCapital || (flags & NSShiftKeyMask))
        [text appendString:nameOfModifier(@"GSShiftKeyString", @"Shift+")];
    [text appendString:capital];
    return text;
}

@end

#endif
