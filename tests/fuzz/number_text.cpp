// SPDX-License-Identifier: MIT
//
// Any text as a number, and numbers as texts.
#include "fuzz.h"
#include "qfloat.h"

#include <cstring>

namespace {

constexpr int FRACTION_DIGITS = 99;

std::string textOf(const qfloat number, int digits) {
    char text[128];
    qtoasc(number, text, digits);
    return text;
}

bool isOverflow(const qfloat number) {
    return number[1] >= 0x10000;
}

void checkTexts(const qfloat number, int digits) {
    const std::string text = textOf(number, digits);
    require(text.size() <= static_cast<size_t>(3 +
                                               (digits < 0     ? 0
                                                : digits > 104 ? 104
                                                               : digits) +
                                               8 - 1),
            "a text fits its buffer", text);
    if (isOverflow(number)) return;
    qfloat again;
    require(asctoq(textOf(number, FRACTION_DIGITS).c_str(), again) == 0, "a number's text is a number");
    requireSame(textOf(number, FRACTION_DIGITS), textOf(again, FRACTION_DIGITS),
                "a number with 100 figures reads back the same");
    char radix[RADIX_TEXT_SIZE];
    for (const bool twos : {false, true}) {
        qtohex(number, radix, twos);
        require(std::strlen(radix) < sizeof radix, "a hexadecimal text fits");
        qtobin(number, radix, twos);
        require(std::strlen(radix) < sizeof radix, "a binary text fits");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int digits = int{input.Byte()} - 64;
    const std::string text = input.Rest();
    qfloat number;
    std::memset(number, 0xA5, sizeof number);
    merror = 0;
    qfloat quiet;
    std::memset(quiet, 0x5A, sizeof quiet);
    const int status = qparse(text.c_str(), quiet);
    const int code = merror;
    merror = 0;
    require(asctoq(text.c_str(), number) == status && merror == code, "both ways of reading say the same",
            text);
    require(std::memcmp(quiet, number, sizeof quiet) == 0, "both ways of reading give the same number", text);
    if (status != 0) {
        require(number[1] == 0, "a text that is no number gives 0", text);
        return 0;
    }
    require(number[2] == 0 && (number[1] == 0 || (number[3] & 0x80000000U) != 0), "a number is normalized",
            text);
    require(merror == 0 || merror == 3 || merror == 4, "reading reports a known code", text);
    require((merror == 3) == isOverflow(number), "a text beyond the range is reported", text);
    checkTexts(number, digits);
    return 0;
}
