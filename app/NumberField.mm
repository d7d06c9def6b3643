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

// What `shorten` makes of the most characters, fewer than `all`, that fit.
template <typename Shorten>
static NSString* longest(NSUInteger all, CGFloat width, NSDictionary* attributes, Shorten shorten) {
    NSString* shown = shorten(0);
    NSUInteger fits = 0, tooMuch = all;
    while (fits + 1 < tooMuch) {
        const NSUInteger middle = fits + (tooMuch - fits) / 2;
        NSString* const part = shorten(middle);
        const bool doesFit = [part sizeWithAttributes:attributes].width <= width;
        if (doesFit) shown = part;
        (doesFit ? fits : tooMuch) = middle;
    }
    return shown;
}

NSString* headThatFits(NSString* text, NSString* tail, CGFloat width, NSDictionary* attributes) {
    if ([text sizeWithAttributes:attributes].width <= width) return text;
    return longest([text length] - [tail length], width, attributes, [&](NSUInteger count) {
        return [NSString stringWithFormat:@"%@\u2026%@", [text substringToIndex:count], tail];
    });
}

NSString* endThatFits(NSString* text, CGFloat width, NSDictionary* attributes) {
    if ([text sizeWithAttributes:attributes].width <= width) return text;
    return longest([text length], width, attributes, [&](NSUInteger count) {
        return [@"\u2026" stringByAppendingString:[text substringFromIndex:[text length] - count]];
    });
}

@interface NumberCell : NSTextFieldCell {
    BOOL showsEnd;
}
@property(nonatomic, assign) BOOL showsEnd;
- (NSString*)textShownIn:(NSRect)frame;
@end

@implementation NumberCell

@synthesize showsEnd;

- (NSMutableDictionary*)attributes {
    return textLook([self font], [self textColor]);
}

- (NSString*)textShownIn:(NSRect)frame {
    NSString* const text = [self stringValue];
    const CGFloat width = [self titleRectForBounds:frame].size.width;
    return showsEnd ? endThatFits(text, width, [self attributes])
                    : headThatFits(text, scaleOf(text), width, [self attributes]);
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

- (void)setShowsEnd:(BOOL)isEnd {
    [static_cast<NumberCell*>([self cell]) setShowsEnd:isEnd];
}

@end
