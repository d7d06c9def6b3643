// SPDX-License-Identifier: MIT
//
// Any bytes as the definitions file; behind a NUL, as what another program makes of it meanwhile.
#include "DefinitionsFile.h"
#include "DefinitionsMerge.h"
#include "calculators.h"
#include "temporary_folder.h"

namespace {

// The calculator of a start with a file, of all that is in `input`.
std::unique_ptr<ZqCalculator> started(const std::string& input, const std::string& content,
                                      DefinitionsRead& read) {
    static const TemporaryFolder folder;
    const std::string path = folder.File("definitions");
    auto calc = newCalculator(input + "="); // what others removed is gone, too
    putContent(path, content);
    read = readDefinitions(*calc, path);
    return calc;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = Input(data, size).Rest();
    const size_t end = bytes.find('\0');
    const std::string mine = bytes.substr(0, end);
    DefinitionsRead read;
    const std::string saved = definitionsText(*started(bytes, mine, read));
    require(read.opened, "a file can be opened");
    DefinitionsRead again;
    const std::string savedAgain = definitionsText(*started(bytes, saved, again));
    // A pi beyond the range is left out, and the next start has pi.
    const bool hasPi = saved.find("\npi=") < saved.find("\n### HISTORY");
    if (hasPi) requireSame(saved, savedAgain, "saved, loaded and saved again it is the same file");
    if (read.unread == 0) require(!again.damaged && again.refused.empty(), "what is saved is whole", saved);

    if (end >= bytes.size()) return 0;
    const std::string theirs = bytes.substr(end + 1);
    DefinitionsMerge merge;
    merge.Know(mine, saved, read.refused);
    const std::string merged = merge.Merge(saved, theirs);
    require(DefinitionsText(merged).isFramed, "a merged file is whole", merged);
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(saved, theirs);
    const auto calc = started(bytes, saved, again);
    takeDefinitions(*calc, foreign.defined, foreign.deleted);
    merge.Took(foreign, definitionsText(*calc));
    require(merge.TakeForeign(definitionsText(*calc), theirs).keys.empty(),
            "what others changed is told once", merged);
    return 0;
}
