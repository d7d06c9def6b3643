// SPDX-License-Identifier: MIT
//
// Hexadecimal and binary text, and bitwise operations.
#include "qfloat.h"
#include "qregister.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr int CUT_LENGTH = 9001; // a text that has reached this length is cut
constexpr int SMALLEST_SHOWN = -31;

// Appends to a caller's buffer of radixTextSize characters.
class TextWriter {
public:
    explicit TextWriter(char* buffer) : text(buffer) { text[0] = '\0'; }

    void append(char c) {
        if (length + 1 >= RADIX_TEXT_SIZE) return;
        text[length++] = c;
        text[length] = '\0';
    }

    void append(const char* s) {
        for (; *s != '\0'; ++s) append(*s);
    }

    void Replace(const char* s) {
        length = 0;
        append(s);
    }

    // Marks the text as cut when it has become too long; returns whether it did.
    bool Cut() {
        if (length < CUT_LENGTH) return false;
        append(" . . .");
        return true;
    }

private:
    char* text;
    int length = 0;
};

// Leaves in ac1 the integer part of |x|, two's complemented where that applies, shifted so that word 2 begins
// with its topmost bits and words 3, 4, ... hold the following chunks of 32 bits. Sets `negative` to whether
// a minus sign is due. Returns the index of the top bit, below `smallestShown` when the integer part is 0.
int64_t shiftInteger(const qfloat x, bool twos, bool& negative) {
    qmovz(x, ac4);
    ac4[0] = 0;
    qfloor(ac4, ac4);
    negative = x[0] != 0;
    if (negative && twos && ac4[1] != 0 && qcmp(ac4, q31bitmax) < 0) {
        qsub(ac4, q32bitmax, ac4);
        negative = false;
    }
    qmovz(ac4, ac1);
    const int64_t top = int64_t{ac1[1]} - EXPONENT_BIAS - 1;
    setshiftcount(static_cast<int32_t>(top % 32) + 1);
    shift(ac1);
    return top;
}

int chunkCount(int64_t top) {
    return static_cast<int>(top / 32) + 1;
}

// Chunk k of the integer in ac1; behind the register's words there are only zeros.
uint32_t chunk(int k) {
    return k <= GUARD_WORD - HIGH_WORD ? ac1[HIGH_WORD + k] : 0;
}

// Appends the bits of a chunk in groups of four, without the zero groups in front of the first digit.
void appendBits(uint32_t bits, bool& started, TextWriter& out) {
    for (int position = 0; position < 32; ++position, bits <<= 1) {
        if (!started && position % 4 == 0 && bits <= 0x0FFFFFFF) {
            bits <<= 3; // a group of zeros
            position += 3;
            continue;
        }
        started = true;
        if (position % 4 == 0) out.append(' ');
        out.append(bits >> 31 != 0 ? '1' : '0');
    }
}

} // namespace

void qtohex(const qfloat x, char* buffer, bool twos) {
    bool negative;
    const int64_t top = shiftInteger(x, twos, negative);
    TextWriter out(buffer);
    if (top < SMALLEST_SHOWN) {
        out.append("0x0000");
        return;
    }
    out.append(negative ? "-0x" : "0x");
    const int chunks = chunkCount(top);
    for (int k = 0; k < chunks; ++k) {
        char digits[16];
        const bool isShort = k == 0 && chunk(k) < 0x10000;
        std::snprintf(digits, sizeof digits, isShort ? "%04X" : "%08X", static_cast<unsigned>(chunk(k)));
        out.append(digits);
        if (out.Cut()) return;
    }
}

void qtobin(const qfloat x, char* buffer, bool twos) {
    // No number has an exponent above the overflow value's; a broken word must not count chunks without end.
    const int64_t ownTop = int64_t{std::min(x[1], OVERFLOW_EXPONENT)} - EXPONENT_BIAS - 1;
    const bool minus = x[0] != 0 && !twos; // lost here also where no complement is taken
    bool negative;
    shiftInteger(x, twos, negative);
    TextWriter out(buffer);
    out.append(minus ? "-0b" : "0b");
    bool started = false;
    if (ownTop >= SMALLEST_SHOWN) {
        const int chunks = chunkCount(ownTop);
        for (int k = 0; k < chunks; ++k) {
            appendBits(chunk(k), started, out);
            if (out.Cut()) return;
        }
    }
    if (!started) out.Replace("0b0000");
}

// ---------------------------------------------------------------------------------------------------------

namespace {

// Normalizes ac2 and takes the shift off its exponent. Returns false when the result is settled: zero, or
// out of range.
bool settle(qfloat c) {
    if (normlz(ac2) != 0) {
        qclear(c);
        return false;
    }
    const int64_t exponent = int64_t{ac2[1]} - SC;
    if (exponent > OVERFLOW_EXPONENT) {
        qinfin(c); // c's sign word stays
        merror = 3;
        return false;
    }
    if (exponent < 0) {
        qclear(c);
        return false;
    }
    ac2[1] = static_cast<uint32_t>(exponent);
    return true;
}

// A register with the mantissa of a; all zero when the exponent says that a is zero.
void loadRegister(const qfloat a, uint32_t* r) {
    qmovz(a, r);
    if (a[1] == 0) std::memset(r + HIGH_WORD, 0, (GUARD_WORD - HIGH_WORD + 1) * sizeof *r);
}

} // namespace

void qlogic(const qfloat a, const qfloat b, qfloat c, char op) {
    loadRegister(a, ac1);
    loadRegister(b, ac2);
    int64_t distance = int64_t{ac1[1]} - ac2[1];
    if (distance > 0) {
        std::memcpy(ac3, ac1, sizeof ac3);
        std::memcpy(ac1, ac2, sizeof ac1);
        std::memcpy(ac2, ac3, sizeof ac2);
        distance = -distance;
    }
    setshiftcount(static_cast<int32_t>(distance));
    shift(ac1);
    switch (op) {
    case '&': andm(ac1, ac2); break;
    case '|': orm(ac1, ac2); break;
    case '^': xorm(ac1, ac2); break;
    default: break;
    }
    if (!settle(c)) return;
    if ((ac2[GUARD_WORD] & 0x80000000) != 0 && subflg == 0) {
        for (int i = LAST_WORD; i >= HIGH_WORD; --i) {
            if (++ac2[i] != 0) break;
        }
        if (!settle(c)) return;
    }
    qmov(ac2, c);
}
