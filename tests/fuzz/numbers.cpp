// SPDX-License-Identifier: MIT
//
// The routines of the number library on any 14 words, and what holds for numbers.
#include "fuzz.h"
#include "qfloat.h"
#include "qtrig.h"

#include <cstring>
#include <iterator>

namespace {

using Unary = void (*)(const qfloat, qfloat);
using Binary = void (*)(const qfloat, const qfloat, qfloat);

constexpr Unary UNARY[] = {qmov,     qsqrt,    qexp,    qlog,    qfac,    qfloor, qround, qsin,
                           qcos,     qtan,     qsindeg, qcosdeg, qtandeg, qasin,  qacos,  qatn,
                           qasindeg, qacosdeg, qatndeg, qsinh,   qcosh,   qtanh};
constexpr Binary BINARY[] = {qadd, qsub, qmul, qmuli, qdiv, qpow, qpowi, qremain, qlogbase};

enum Kind { ANY, NUMBER };

// Any words; or the nearest that are a number.
void read(Input& input, Kind kind, qfloat number) {
    for (size_t i = 0; i < 14; i++) number[i] = input.Word();
    if (kind == ANY) return;
    number[0] = (number[0] & 1U) != 0 ? 0xFFFFFFFFU : 0;
    // Half of them near 1, where the most happens.
    number[1] =
        (number[1] & 1U) != 0 ? (number[1] >> 1U) % 0x10000U : 0x8000U + (number[1] >> 1U) % 200U - 100U;
    number[2] = 0;
    number[3] |= 0x80000000U;
    if (number[1] == 0) qclear(number);
}

bool isSame(const qfloat a, const qfloat b) {
    return std::memcmp(a, b, sizeof(qfloat)) == 0 || (a[1] == 0 && b[1] == 0);
}

void requireNumber(const qfloat a) {
    const bool isOne = a[1] == 0 || (a[2] == 0 && (a[3] & 0x80000000U) != 0 && a[1] <= 0x10000U);
    require(isOne, "a result is a number");
}

void checkUnary(size_t index, const qfloat x, Kind kind) {
    const Unary routine = UNARY[index];
    qfloat apart = {};
    qfloat inPlace;
    std::memcpy(inPlace, x, sizeof inPlace);
    merror = 0;
    routine(x, apart);
    const int code = merror;
    if (kind == ANY) return;
    requireNumber(apart);
    merror = 0;
    routine(inPlace, inPlace);
    require(merror == code, "the code does not depend on the place of the result");
    inPlace[0] = apart[1] >= 0x10000U ? apart[0] : inPlace[0]; // an overflow may keep the sign that was there
    require(isSame(apart, inPlace), "the result may take the argument's place");
}

void checkBinary(size_t index, const qfloat x, const qfloat y, Kind kind) {
    const Binary routine = BINARY[index];
    qfloat first = {};
    qfloat second = {};
    merror = 0;
    routine(x, y, first);
    if (kind == ANY) return;
    requireNumber(first);
    qmov(y, second);
    routine(x, second, second);
    if (first[1] < 0x10000U) require(isSame(first, second), "the result may take the second operand's place");
    if (routine != qadd && routine != qmul) return;
    routine(y, x, second);
    if (first[1] < 0x10000U) require(isSame(first, second), "the order of operands does not matter");
}

// A sign is all that these change, or all that they leave.
void checkSigns(const qfloat x) {
    qfloat to = {};
    const auto isMagnitudeOfX = [&] { return std::memcmp(to + 1, x + 1, sizeof to - sizeof *to) == 0; };
    const int sign = qisneg(x);
    require(sign == (x[0] != 0 ? 1 : 0), "a sign word that is not zero is a minus");
    qmov(x, to);
    qneg(to);
    require(qisneg(to) == 1 - sign && isMagnitudeOfX(), "a negative has the other sign, and nothing else");
    qneg(to);
    require(qisneg(to) == sign && isMagnitudeOfX(), "the negative of the negative is the number");
    qabs(to);
    require(qisneg(to) == 0 && isMagnitudeOfX(), "a magnitude has no sign, and nothing else is lost");
    qmov(x, to);
    qinfin(to);
    require(qisneg(to) == sign && to[0] == x[0] && to[1] >= 0x10000U,
            "what is beyond the range keeps its sign");
    uint32_t wide[15];
    std::memset(wide, 0xA5, sizeof wide);
    qmovz(x, wide);
    require(std::memcmp(wide, x, sizeof(qfloat)) == 0 && wide[14] == 0, "a register has a guard word of 0");
}

void checkConversions(const qfloat x, const qfloat y, int64_t n) {
    checkSigns(x);
    char text[RADIX_TEXT_SIZE];
    qfloat to = {};
    int64_t whole = 0;
    double d = 0;
    qtoe(x, &d);
    etoq(&d, to);
    qifrac(x, &whole, to);
    qfrexp(x, &whole, to);
    qldexp(x, n, to);
    ltoq(&n, to);
    for (const char op : {'&', '|', '^', '?'}) qlogic(x, y, to, op);
    qcmp(x, y);
    qtoasc(x, text, static_cast<int>(n % 200));
    qtohex(x, text, n % 2 == 0);
    qtobin(x, text, n % 2 == 0);
    qmov(x, to);
    qfixintegers(to);
    qmov(x, to);
    qnrmlz(to);
    qmov(x, to);
    qdecexp(to, n);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Kind kind = input.Byte() % 4 == 0 ? ANY : NUMBER;
    const size_t routine = input.Byte() % (std::size(UNARY) + std::size(BINARY) + 1);
    const uint64_t word = input.Word();
    const uint64_t shifted = word << (input.Byte() % 33U);
    const auto n = static_cast<int64_t>(input.Byte() % 2 == 0 ? shifted : 0 - shifted);
    qfloat x;
    qfloat y;
    read(input, kind, x);
    read(input, kind, y);
    if (routine < std::size(UNARY))
        checkUnary(routine, x, kind);
    else if (routine < std::size(UNARY) + std::size(BINARY))
        checkBinary(routine - std::size(UNARY), x, y, kind);
    else
        checkConversions(x, y, n);
    return 0;
}
