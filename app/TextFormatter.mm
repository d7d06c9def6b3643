// SPDX-License-Identifier: MIT
#import "TextFormatter.h"

@implementation TextFormatter

@synthesize maximumLength = maxLength;

- (id)init {
    self = [super init];
    if (self) maxLength = INT32_MAX;
    return self;
}

- (void)dealloc {
    [lastText release];
    [super dealloc];
}

- (BOOL)isWithinLimit:(NSString*)text {
    return static_cast<int64_t>([text length]) <= maxLength;
}

- (void)rememberText:(NSString*)text {
    if (![text isKindOfClass:[NSString class]] || ![self isWithinLimit:text]) return;
    NSString* const kept = [text copy];
    [lastText release];
    lastText = kept;
}

- (NSString*)stringForObjectValue:(id)object {
    [self rememberText:object];
    return object;
}

- (BOOL)getObjectValue:(id*)object forString:(NSString*)text errorDescription:(NSString**)error {
    [self rememberText:text];
    if (object) *object = text;
    return YES;
}

- (NSAttributedString*)attributedStringForObjectValue:(id)object
                                withDefaultAttributes:(NSDictionary*)attributes {
    return nil;
}

- (BOOL)isPartialStringValid:(NSString**)partial
       proposedSelectedRange:(NSRange*)selection
              originalString:(NSString*)original
       originalSelectedRange:(NSRange)originalSelection
            errorDescription:(NSString**)error {
    if (![self isWithinLimit:*partial]) return NO;
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
    // Without a replacement these fields keep what was typed too much. They do not tell what they held
    // before.
    if (![self isWithinLimit:partial]) {
        if (replacement) *replacement = [self isWithinLimit:lastText] && lastText ? lastText : @"";
        return NO;
    }
    [self rememberText:[partial uppercaseString]];
    const BOOL isValid = [self isPartialStringValid:&proposed
                              proposedSelectedRange:&selection
                                     originalString:partial
                              originalSelectedRange:selection
                                   errorDescription:error];
    if (replacement) *replacement = proposed == partial ? nil : proposed;
    return isValid;
}

@end
