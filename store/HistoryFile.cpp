// SPDX-License-Identifier: MIT
#include "HistoryFile.h"

#include "DefinitionRecords.h"
#include "FileKeeping.h"
#include "Folder.h"

#include <algorithm>

namespace {

// The start of the newest LINES lines of a text.
size_t startOfNewest(const std::string& text) {
    size_t start = text.size();
    size_t lines = 0;
    while (start > 0) {
        const size_t end = start >= 2 ? text.rfind('\n', start - 2) : std::string::npos;
        start = end == std::string::npos ? 0 : end + 1;
        if (++lines == HistoryFile::LINES) break;
    }
    return start;
}

} // namespace

std::vector<std::string> HistoryFile::Read() {
    std::string text;
    readWholeFile(path, text, system);
    isCut = !text.empty() && text.back() != '\n';
    std::vector<std::string> lines;
    for (size_t start = startOfNewest(text); start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        if (!line.empty() && std::none_of(line.begin(), line.end(), isControl)) lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

bool HistoryFile::Append(const std::string& line, std::error_code& reason) {
    makeFolder(path.substr(0, path.rfind('/')), system);
    const FileLock lock(path, system);
    if (lock.IsTaken()) {
        reason = std::make_error_code(std::errc::resource_unavailable_try_again);
        return false;
    }
    const bool isWritten = appendToFile(path, (isCut ? "\n" : "") + line + "\n", reason, system);
    isCut = !isWritten;
    return isWritten;
}

void HistoryFile::Shorten() {
    const FileLock lock(path, system);
    std::string text;
    if (lock.IsTaken() || !readWholeFile(path, text, system)) return;
    const size_t start = startOfNewest(text);
    if (start > 0) writeFileAtomically(path, text.substr(start), nullptr, system);
}
