// SPDX-License-Identifier: MIT
//
// What the libraries make and never give back, and is no leak of ours. leaks.supp names the rest of it.
#pragma once

#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
using LeaksOfLibraries = __lsan::ScopedDisabler; // what is made while it lives is not looked at
#else
struct LeaksOfLibraries {
    LeaksOfLibraries() {} // nothing looks for leaks
};
#endif
