// SPDX-License-Identifier: MIT
//
// Memory that can run out: the test program's own operator new and delete.
#pragma once

#include <cstddef>

namespace allocation {

size_t live(); // blocks allocated and not freed
size_t peak(); // the most bytes at once since resetPeak, above those of that moment
void resetPeak();

// After `count` more successful requests every request fails; never with a negative count.
void failAfter(long count);

} // namespace allocation
