// SPDX-License-Identifier: MIT
//
// For text fields of few characters: limits the length and turns letters into capitals. Each field needs a
// formatter of its own.
#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

@interface TextFormatter : NSFormatter {
    int32_t maxLength;  // characters; 2147483647, no limit, at first
    NSString* lastText; // the latest within the limit, for fields that keep what was typed too much
}
@property(nonatomic, assign) int32_t maximumLength;
@end
