// SPDX-License-Identifier: MIT
#import "TextFormatter.h"

@implementation TextFormatter

- (id)init {
    self = [super init];
    if (self) maxLength = INT32_MAX;
    return self;
}

- (void)setMaximumLength:(int32_t)length {
    maxLength = length;
}

- (int32_t)maximumLength {
    return maxLength;
}

- (NSString*)stringForObjectValue:(id)object {
    return object;
}

- (BOOL)getObjectValue:(id*)object forString:(NSString*)text errorDescription:(NSString**)error {
    (void)error;
    if (object) *object = text;
    return YES;
}

- (NSAttributedString*)attributedStringForObjectValue:(id)object
                                withDefaultAttributes:(NSDictionary*)attributes {
    (void)object;
    (void)attributes;
    return nil;
}

- (BOOL)isPartialStringValid:(NSString**)partial
       proposedSelectedRange:(NSRange*)selection
              originalString:(NSString*)original
       originalSelectedRange:(NSRange)originalSelection
            errorDescription:(NSString**)error {
    (void)selection;
    (void)original;
    (void)originalSelection;
    (void)error;
    if (static_cast<int64_t>([*partial length]) > maxLength) return NO;
    NSString* const capitals = [*partial uppercaseString];
    if ([*partial isEqualToString:capitals]) return YES;
    *partial = capitals;
    return NO;
}

// GNUstep's text fields ask this way alone.
- (BOOL)isPartialStringValid:(NSString*)partial
            newEditingString:(NSString**)replacement
            errorDescription:(NSString**)error {
    NSString* proposed = partial;
    NSRange selection = NSMakeRange([partial length], 0);
    // Where there is no replacement these fields keep what was typed: a text too long is shortened for them.
    if (static_cast<int64_t>([partial length]) > maxLength) {
        const NSUInteger most = maxLength > 0 ? static_cast<NSUInteger>(maxLength) : 0;
        if (replacement) *replacement = [[partial substringToIndex:most] uppercaseString];
        return NO;
    }
    const BOOL isValid = [self isPartialStringValid:&proposed
                              proposedSelectedRange:&selection
                                     originalString:partial
                              originalSelectedRange:selection
                                   errorDescription:error];
    if (replacement) *replacement = proposed == partial ? nil : proposed;
    return isValid;
}

@end
