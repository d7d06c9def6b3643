// SPDX-License-Identifier: MIT
//
// A line of text that shows a number. What does not fit is left out where an ellipsis stands: a number that
// just ends would be a wrong one. An exponent or a prefix at its end stays.
#pragma once

#import <AppKit/AppKit.h>

// The text, or as much of its start as fits a width (points) with an ellipsis and `tail`, an end of the text,
// behind it; the ellipsis and `tail` at least.
NSString* headThatFits(NSString* text, NSString* tail, CGFloat width, NSDictionary* attributes);

// The text, or as much of its end as fits the width with an ellipsis in front of it.
NSString* endThatFits(NSString* text, CGFloat width, NSDictionary* attributes);

// Not editable, without border and background. A placeholder of its cell is seen while it is empty. Its
// string value is always the whole text.
@interface NumberField : NSTextField
- (NSString*)shownText;          // what is seen of it in the field's width
- (void)setShowsEnd:(BOOL)isEnd; // of a text that does not fit, where the person types, and not its start
@end
