// SPDX-License-Identifier: MIT
//
// The one place that knows the unit library to be missing: with units.h in its place conversions and the user's
// units work.
#ifndef TALLYQUILL_UNAVAILABLE_H
#define TALLYQUILL_UNAVAILABLE_H

constexpr bool areUnitsAvailable = false;

inline double units_convert(const char*, const char*) {
    return 0.0;
}
inline void units_new(const char*, const char*) {}
inline bool removeUnit(const char*) {
    return true;
}
inline void units_clear_exception() {}
inline const char* units_check_exception() {
    return "units are not available";
}

#endif
