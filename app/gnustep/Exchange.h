// SPDX-License-Identifier: MIT
//
// Stepping into a method of GNUstep.
#pragma once

#import <objc/runtime.h>

// Exchanges two methods of a class, GNUstep's own and the one of a category that calls it under its own name.
// A version of GNUstep that does not have its one is left as it is: what would have been better stays as it
// was.
inline bool exchange(Class kind, SEL theirs, SEL ours) {
    Method first = class_getInstanceMethod(kind, theirs);
    Method second = class_getInstanceMethod(kind, ours);
    if (!first || !second) return false;
    method_exchangeImplementations(first, second);
    return true;
}
