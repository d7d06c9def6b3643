// SPDX-License-Identifier: MIT
//
// The tables of docs/guide.md, for tests that compare them with the program's own.
#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

using GuideCells = std::vector<std::string>;

// The cells of "| a | `b\|c` |": "a" and "`b|c`".
inline GuideCells guideCells(const std::string& row) {
    GuideCells cells;
    std::string cell;
    for (size_t i = 1; i < row.size(); ++i) {
        if (row[i] == '\\' && i + 1 < row.size() && row[i + 1] == '|') {
            cell += row[++i];
        } else if (row[i] == '|') {
            const size_t start = cell.find_first_not_of(' ');
            cells.push_back(
                start == std::string::npos ? "" : cell.substr(start, cell.find_last_not_of(' ') + 1 - start));
            cell.clear();
        } else {
            cell += row[i];
        }
    }
    return cells;
}

// The rows of all tables with this head, such as "| Unit | Short |".
inline std::vector<GuideCells> guideTable(const char* path, const std::string& head) {
    std::ifstream guide(path);
    std::vector<GuideCells> rows;
    bool isInside = false;
    for (std::string line; std::getline(guide, line);) {
        const bool isRow = isInside && line.rfind('|', 0) == 0;
        if (isRow && line.rfind("|-", 0) != 0) rows.push_back(guideCells(line));
        isInside = isRow || line == head;
    }
    return rows;
}

// What stands between backquotes: "`a`, `b`" gives a and b.
inline std::vector<std::string> guideCode(const std::string& cell) {
    std::vector<std::string> pieces;
    for (size_t start = cell.find('`'); start != std::string::npos; start = cell.find('`', start)) {
        const size_t end = cell.find('`', start + 1);
        if (end == std::string::npos) break;
        pieces.push_back(cell.substr(start + 1, end - start - 1));
        start = end + 1;
    }
    return pieces;
}
