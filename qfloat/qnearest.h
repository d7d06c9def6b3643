// SPDX-License-Identifier: MIT
//
// Private to qfloat/: from a value of 384 bits and the bound of its error to the nearest number.
#pragma once

#include "qwide.h"

namespace elem {

// Whether a value within `units` (below 2^30) of the last bit of x may lie on either side of the midpoint
// between two numbers of 352 bits: where the 32 bits behind them are that close to 1000...0.
inline bool isUndecided(const limb::Extended& x, uint32_t units) {
    constexpr uint32_t MIDPOINT = uint32_t{1} << 31;
    return static_cast<uint32_t>(x.limb[0]) - (MIDPOINT - units) <= 2 * units;
}

// Makes x, a result within `units` of its last bit, safe to round to 352 bits: an undecided one becomes the
// leading bits of wider(width), the same value as a wide::Wide.
template <typename Wider> inline void settle(limb::Extended& x, uint32_t units, const Wider& wider) {
    if (isUndecided(x, units)) x = wide::decided(wider);
}

} // namespace elem
