// SPDX-License-Identifier: MIT
//
// Any bytes as a script, and the record of its entries as another one.
#include "../../app/Script.h"
#include "calculators.h"

namespace {

std::vector<std::string> entriesOf(const std::string& bytes) {
    std::vector<std::string> entries;
    Script script(bytes);
    for (std::string entry; script.Next(entry);) entries.push_back(entry);
    return entries;
}

std::string utf8Of(const std::string& latin1) {
    std::string text;
    for (const char c : latin1) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x80) text += static_cast<char>(0xC0U | code >> 6U);
        text += static_cast<char>(code >= 0x80 ? 0x80U | (code & 0x3FU) : code);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::unique_ptr<ZqCalculator> calc = newCalculator();
    const std::vector<std::string> entries = entriesOf(Input(data, size).Rest());
    EntryRecord record;
    for (const std::string& entry : entries) {
        const bool isOneLine = entry.find_first_of(std::string("\n\0", 2)) == std::string::npos;
        require(isOneLine && !entry.empty() && entry[0] != '#', "an entry is a line", entry);
        record.Add(utf8Of(entry));
    }
    require(entriesOf(record.Script(*calc, "")) == entries, "a saved script has the same entries");
    return 0;
}
