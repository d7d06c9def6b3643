// SPDX-License-Identifier: MIT
#import "NumberField.h"

static NSString* const ELLIPSIS = @"\u2026";

static bool isDigit(unichar c) {
    return c >= '0' && c <= '9';
}

// Where the exponent or the metric prefix of a number at the end begins; the text's length when there is
// none.
static NSUInteger startOfScale(NSString* text) {
    const NSUInteger length = [text length];
    if (length < 2 || [text rangeOfString:@"0x"].location != NSNotFound)
        return length; // an e is a digit there
    NSUInteger start = length - 1;
    NSCharacterSet* const prefixes = [NSCharacterSet characterSetWithCharactersInString:@"afpnumckMGTP"];
    if (![prefixes characterIsMember:[text characterAtIndex:start]]) {
        while (start > 0 && isDigit([text characterAtIndex:start])) start--;
        if (start > 0 && [text characterAtIndex:start] == '-') start--;
        if (start == length - 1 || [text characterAtIndex:start] != 'e') return length;
    }
    const unichar before = start > 0 ? [text characterAtIndex:start - 1] : ' ';
    return isDigit(before) || before == '.' || before == ',' ? start : length;
}

static NSString* shortened(NSString* text, NSUInteger kept, NSUInteger scale) {
    return [NSString
        stringWithFormat:@"%@%@%@", [text substringToIndex:kept], ELLIPSIS, [text substringFromIndex:scale]];
}

// The text, or as much of its beginning as fits with the ellipsis and its scale.
static NSString* fitting(NSString* text, CGFloat width, NSDictionary* attributes) {
    if ([text sizeWithAttributes:attributes].width <= width) return text;
    const NSUInteger scale = startOfScale(text);
    NSUInteger fits = 0;
    NSUInteger tooMuch = scale;
    while (fits + 1 < tooMuch) {
        const NSUInteger middle = fits + (tooMuch - fits) / 2;
        if ([shortened(text, middle, scale) sizeWithAttributes:attributes].width <= width)
            fits = middle;
        else
            tooMuch = middle;
    }
    return shortened(text, fits, scale);
}

@interface NumberCell : NSTextFieldCell
- (NSString*)textShownIn:(NSRect)frame;
@end

@implementation NumberCell

- (NSDictionary*)attributes {
    return [NSDictionary dictionaryWithObjectsAndKeys:[self font], NSFontAttributeName, [self textColor],
                                                      NSForegroundColorAttributeName, nil];
}

- (NSString*)textShownIn:(NSRect)frame {
    return fitting([self stringValue], [self titleRectForBounds:frame].size.width, [self attributes]);
}

- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view {
    NSString* const text = [self textShownIn:frame];
    NSDictionary* const attributes = [self attributes];
    const NSSize size = [text sizeWithAttributes:attributes];
    NSRect place = [self titleRectForBounds:frame];
    place.origin.y += (place.size.height - size.height) / 2;
    [text drawAtPoint:place.origin withAttributes:attributes];
}

@end

@implementation NumberField

- (id)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (!self) return nil;
    NumberCell* const cell = [[[NumberCell alloc] initTextCell:@""] autorelease];
    [cell setFont:[NSFont systemFontOfSize:0]];
    [self setCell:cell];
    [self setEditable:NO];
    [self setSelectable:NO];
    [self setBezeled:NO];
    [self setBordered:NO];
    [self setDrawsBackground:NO];
    return self;
}

- (NSString*)shownText {
    return [static_cast<NumberCell*>([self cell]) textShownIn:[self bounds]];
}

@end
