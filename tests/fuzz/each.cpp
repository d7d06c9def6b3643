// SPDX-License-Identifier: MIT
//
// Any lines of fields, with an entry for each: the first byte tells the separator and the decimal mark, the
// first line is the entry.
#include "Each.h"
#include "EntryText.h"
#include "calculators.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int MOST_LINES = 30;
    constexpr const char* SEPARATORS[] = {"", ",", ";", "\t", "|"};
    Input input(data, size);
    const uint8_t how = input.Byte();
    const std::string separator = SEPARATORS[how / 2U % 5];
    const std::string entry = input.Line();
    if (checkEntry(entry) != EntryFault::None) return 0;
    const auto calc = newCalculator();
    calc->european = how % 2 != 0;
    Each each(*calc, entry, separator);
    for (int i = 0; i < MOST_LINES && !input.IsOver(); i++) {
        const std::string line = input.Line();
        for (const std::string& field : splitFields(line, separator)) {
            const FieldNumber number = readField(field, calc->european);
            require(number.digits.empty() != number.fault.empty(), "a field is a number or has a fault",
                    field);
            qfloat value;
            const bool european = calc->european;
            calc->european = false;
            if (number.fault.empty())
                require(calc->Str2Num(number.digits.c_str(), value) == 0, "the engine reads a field's number",
                        field);
            calc->european = european;
        }
        const std::string fault = each.Take(line);
        require(fault.find('\n') == std::string::npos || fault.find('\n') + 1 == fault.size(),
                "a fault is one line", fault);
        if (fault.empty()) enter(*calc, entry, false);
    }
    return 0;
}
