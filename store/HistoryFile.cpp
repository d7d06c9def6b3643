// SPDX-License-Identifier: MIT
#include "HistoryFile.h"

#include "FileKeeping.h"
#include "Folder.h"
#include "ShownText.h"

#include <algorithm>

std::vector<std::string> HistoryFile::Read(std::error_code* reason) {
    std::string text;
    readWholeFile(path, text, system, reason);
    isCut = !text.empty() && text.back() != '\n';
    std::vector<std::string> lines;
    for (size_t start = startOfNewest(text, LINES); start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        if (!line.empty() && isUtf8(line) && !hasControls(line)) lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

bool HistoryFile::Append(const std::string& line, std::error_code& reason) {
    makeFolder(path.substr(0, path.rfind('/')), system);
    const FileLock lock(path, system);
    if (lock.IsTaken(&reason)) return false;
    const bool isWritten = appendToFile(path, (isCut ? "\n" : "") + line + "\n", reason, system);
    isCut = !isWritten;
    return isWritten;
}

void HistoryFile::Shorten() {
    const FileLock lock(path, system);
    std::string text;
    if (lock.IsTaken() || !readWholeFile(path, text, system)) return;
    const size_t start = startOfNewest(text, LINES);
    if (start > 0) writeFileAtomically(path, text.substr(start), nullptr, system);
}
