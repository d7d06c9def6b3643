// SPDX-License-Identifier: MIT
//
// Any bytes as the definitions file; behind a NUL, as what another program makes of it meanwhile.
#include "DefinitionsFile.h"
#include "DefinitionsMerge.h"
#include "calculators.h"
#include "temporary_folder.h"

namespace {

// The calculator of a start with this file.
std::unique_ptr<ZqCalculator> started(const std::string& path, const std::string& bytes,
                                      DefinitionsRead& read) {
    auto calc = newCalculator(mayChangeUnits(bytes));
    putContent(path, bytes);
    read = readDefinitions(*calc, path);
    return calc;
}

std::string textRead(const std::string& path, const std::string& bytes, DefinitionsRead& read) {
    const std::string text = definitionsText(*started(path, bytes, read));
    if (mayChangeUnits(bytes)) deleteAllUnits();
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const TemporaryFolder folder;
    const std::string path = folder.File("definitions");
    const std::string bytes = Input(data, size).Rest();
    const size_t end = bytes.find('\0');
    const std::string mine = bytes.substr(0, end);
    DefinitionsRead read;
    const std::string saved = textRead(path, mine, read);
    require(read.opened, "a file can be opened");
    DefinitionsRead again;
    const std::string savedAgain = textRead(path, saved, again);
    // A pi beyond the range is left out, and the next start has pi.
    const bool hasPi = saved.find("\npi=") != std::string::npos;
    if (hasPi) requireSame(saved, savedAgain, "saved, loaded and saved again it is the same file");
    if (read.unread == 0) require(!again.damaged && again.refused.empty(), "what is saved is whole", saved);

    if (end >= bytes.size()) return 0;
    const std::string theirs = bytes.substr(end + 1);
    DefinitionsMerge merge;
    merge.Know(mine, saved, read.refused);
    const std::string merged = merge.Merge(saved, theirs);
    require(DefinitionsText(merged).isFramed, "a merged file is whole", merged);
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(saved, theirs);
    const auto calc = started(path, saved, again);
    takeDefinitions(*calc, foreign.defined, foreign.deleted);
    merge.Took(foreign, definitionsText(*calc));
    require(merge.TakeForeign(definitionsText(*calc), theirs).keys.empty(),
            "what others changed is told once", merged);
    if (mayChangeUnits(bytes)) deleteAllUnits();
    return 0;
}
