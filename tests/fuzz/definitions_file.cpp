// SPDX-License-Identifier: MIT
//
// Any bytes as the definitions file; behind a NUL, as what another program makes of it meanwhile.
#include "DefinitionsFile.h"
#include "DefinitionsMerge.h"
#include "calculators.h"
#include "memory_system.h"

#include <algorithm>

namespace {

// The calculator of a start with such a file.
std::unique_ptr<ZqCalculator> started(const std::string& content, DefinitionsRead& read) {
    MemorySystem system;
    system.files["definitions"] = content;
    auto calc = newCalculator();
    read = readDefinitions(*calc, "definitions", system);
    return calc;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = Input(data, size).Rest();
    const size_t end = bytes.find('\0');
    const std::string mine = bytes.substr(0, end);
    DefinitionsRead read;
    const std::string saved = definitionsText(*started(mine, read));
    require(read.opened, "a file can be opened");
    DefinitionsRead again;
    const std::string savedAgain = definitionsText(*started(saved, again));
    // A pi beyond the range is left out, and the next start has pi; it is the same with the last answer.
    const auto has = [&](const char* line) { return saved.find(line) < saved.find("\n### HISTORY"); };
    // Entries of the history may differ in control characters alone, which no front end lets through. One
    // that is cut at ";;" may leave empty and equal ones, which the next start leaves out.
    const bool isTyped =
        std::none_of(mine.begin(), mine.end(), [](char c) { return isControl(c) && c != '\n' && c != '\r'; });
    const bool isWhole = isTyped && mine.find(";;") == std::string::npos;
    const size_t compared = isWhole ? std::string::npos : saved.find("\n### HISTORY");
    if (has("\npi=") && has("\nans="))
        requireSame(saved.substr(0, compared), savedAgain.substr(0, compared),
                    "saved, loaded and saved again it is the same file");
    if (read.unread == 0) require(!again.damaged && again.refused.empty(), "what is saved is whole", saved);

    if (end >= bytes.size()) return 0;
    const std::string theirs = bytes.substr(end + 1);
    DefinitionsMerge merge;
    merge.Know(mine, saved, read.refused);
    const std::string merged = merge.Merge(saved, theirs);
    require(DefinitionsText(merged).isFramed, "a merged file is whole", merged);
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(saved, theirs);
    const auto calc = started(saved, again);
    takeDefinitions(*calc, foreign.defined, foreign.deleted);
    merge.Took(foreign, definitionsText(*calc));
    require(merge.TakeForeign(definitionsText(*calc), theirs).keys.empty(),
            "what others changed is told once", merged);
    return 0;
}
