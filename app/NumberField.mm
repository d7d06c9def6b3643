// SPDX-License-Identifier: MIT
#import "NumberField.h"

#import "Controls.h"

static bool isDigit(unichar c) {
    return c >= '0' && c <= '9';
}

// The exponent or the metric prefix of a number at the end of the text, or nothing.
static NSString* scaleOf(NSString* text) {
    const NSUInteger length = [text length];
    if (length < 2 || [text rangeOfString:@"0x"].location != NSNotFound) return @""; // an e is a digit there
    NSUInteger start = length - 1;
    NSCharacterSet* const prefixes = [NSCharacterSet characterSetWithCharactersInString:@"afpnumckMGTP"];
    if (![prefixes characterIsMember:[text characterAtIndex:start]]) {
        while (start > 0 && isDigit([text characterAtIndex:start])) --start;
        if (start > 0 && [text characterAtIndex:start] == '-') --start;
        if (start == length - 1 || [text characterAtIndex:start] != 'e') return @"";
    }
    const unichar before = start > 0 ? [text characterAtIndex:start - 1] : ' ';
    return isDigit(before) || before == '.' || before == ',' ? [text substringFromIndex:start] : @"";
}

NSString* headThatFits(NSString* text, NSString* tail, CGFloat width, NSDictionary* attributes) {
    if ([text sizeWithAttributes:attributes].width <= width) return text;
    NSString* shown = [@"\u2026" stringByAppendingString:tail];
    NSUInteger fits = 0, tooMuch = [text length] - [tail length];
    while (fits + 1 < tooMuch) {
        const NSUInteger middle = fits + (tooMuch - fits) / 2;
        NSString* const head =
            [NSString stringWithFormat:@"%@\u2026%@", [text substringToIndex:middle], tail];
        const bool doesFit = [head sizeWithAttributes:attributes].width <= width;
        if (doesFit) shown = head;
        (doesFit ? fits : tooMuch) = middle;
    }
    return shown;
}

@interface NumberCell : NSTextFieldCell
- (NSString*)textShownIn:(NSRect)frame;
@end

@implementation NumberCell

- (NSMutableDictionary*)attributes {
    return textLook([self font], [self textColor]);
}

- (NSString*)textShownIn:(NSRect)frame {
    NSString* const text = [self stringValue];
    return headThatFits(text, scaleOf(text), [self titleRectForBounds:frame].size.width, [self attributes]);
}

// While it is empty the placeholder is shown, in gray.
- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view {
    const bool isEmpty = [[self stringValue] length] == 0;
    NSMutableDictionary* const attributes = [self attributes];
    if (isEmpty)
        [attributes setObject:[NSColor disabledControlTextColor] forKey:NSForegroundColorAttributeName];
    NSString* text = [self textShownIn:frame];
    if (isEmpty && [self placeholderString]) {
        const CGFloat width = [self titleRectForBounds:frame].size.width;
        text = headThatFits([self placeholderString], @"", width, attributes);
    }
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
    makeLabel(self);
    return self;
}

- (NSString*)shownText {
    return [static_cast<NumberCell*>([self cell]) textShownIn:[self bounds]];
}

@end
