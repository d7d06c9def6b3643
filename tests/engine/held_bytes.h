// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <malloc.h>

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#include <sanitizer/allocator_interface.h>
#define HELD_BYTES_OF_SANITIZER
#endif
#endif

// The bytes of the heap that are in use. The sanitizer has a heap of its own.
inline size_t heldBytes() {
#ifdef HELD_BYTES_OF_SANITIZER
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}
