// SPDX-License-Identifier: MIT
#include <tallyquill/qfloat.h>

#include <cstdio>

int main() {
    const int64_t thirty = 30;
    qfloat number, quotient;
    char text[128];
    ltoq(&thirty, number);
    qfac(number, number);
    qtoasc(number, text, 32);
    std::printf("30! =%s\n", text);
    qdiv(qzero, qone, quotient); // the divisor comes first
    std::printf("1/0: %s\n", MATH_ERROR_TEXTS[merror]);
}
