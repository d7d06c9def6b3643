// SPDX-License-Identifier: MIT
//
// The one place that knows which routines of the number and unit libraries are missing. Delete this file and
// what names it to switch the operators on.
#ifndef TALLYQUILL_UNAVAILABLE_H
#define TALLYQUILL_UNAVAILABLE_H

#include "deq.h"

namespace unavailable {

inline bool isOperatorAvailable(int32_t code) {
    switch (code) {
    case OP_POWER:
    case OP_FACTORIAL:
    case OP_REMAINDER:
    case OP_AND:
    case OP_OR:
    case OP_XOR:
    case OP_CONVERT: return false;
    default: return true;
    }
}

inline bool isBaseAvailable(int32_t base) {
    return base != 16 && base != 2;
}

// Stand-ins that are never reached. Templates give way to the real routines.
template <class A, class B, class C> void qpow(A, B, C) {}
template <class A, class B> void qfac(A, B) {}
template <class A, class B, class C> void qremain(A, B, C) {}
template <class A, class B, class C, class D> void qlogic(A, B, C, D) {}
template <class A, class B, class C> void qtohex(A, B, C) {}
template <class A, class B, class C> void qtobin(A, B, C) {}
template <class A, class B> double units_convert(A, B) {
    return 0.0;
}
template <class T = void> void units_clear_exception() {}
template <class T = void> const char* units_check_exception() {
    return nullptr;
}

} // namespace unavailable

using namespace unavailable;

#endif
