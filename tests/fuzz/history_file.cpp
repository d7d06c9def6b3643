// SPDX-License-Identifier: MIT
//
// Any bytes as the file of the prompt's entries.
#include "HistoryFile.h"
#include "fuzz.h"
#include "memory_system.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes = Input(data, size).Rest();
    MemorySystem system;
    system.files["folder/history"] = bytes;
    HistoryFile file("folder/history", system);
    std::vector<std::string> lines = file.Read();
    for (const std::string& line : lines) {
        require(line.find_first_of("\n\r\x1b") == std::string::npos && !line.empty(), "a line is an entry",
                line);
    }
    std::error_code reason;
    require(file.Append("1+1", reason), "a line can be added");
    lines.emplace_back("1+1");
    if (lines.size() > HistoryFile::LINES) return 0;
    require(file.Read() == lines, "a line that is added is the last one");
    file.Shorten();
    require(file.Read() == lines, "nothing is lost by shortening");
    return 0;
}
