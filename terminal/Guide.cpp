// SPDX-License-Identifier: MIT
#include "Guide.h"

#include "GuideText.h"
#include "Helpers_String.h"

#include <algorithm>

namespace {

constexpr std::string_view TITLE = "## ";

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// A line's text without the signs for code, bold and links.
std::string withoutMarks(std::string_view line) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '`' || line.substr(i, 2) == "**") {
            i += line[i] == '`' ? 0 : 1;
        } else if (line.substr(i, 2) == "](") {
            i = std::min(line.find(')', i), line.size() - 1);
        } else if (line[i] == '[' && line.find("](", i) != std::string_view::npos) {
            continue;
        } else {
            text += line[i];
        }
    }
    return text;
}

// The cells of "| a | b |".
std::vector<std::string> cellsOf(std::string_view row) {
    std::vector<std::string> cells;
    row.remove_prefix(1);
    while (!row.empty()) {
        std::size_t end = std::min(row.find('|'), row.size());
        while (end > 0 && end < row.size() && row[end - 1] == '\\')
            end = std::min(row.find('|', end + 1), row.size());
        std::string cell = withoutMarks(row.substr(0, end));
        cell.erase(std::remove(cell.begin(), cell.end(), '\\'), cell.end());
        const std::size_t start = std::min(cell.find_first_not_of(' '), cell.size());
        cells.push_back(cell.substr(start, cell.find_last_not_of(' ') + 1 - start));
        row.remove_prefix(std::min(end + 1, row.size()));
    }
    return cells;
}

// The rows with their first columns padded to one width, without the line of dashes below the head.
std::string tableText(const std::vector<std::string_view>& rows) {
    std::vector<std::vector<std::string>> table;
    std::vector<std::size_t> widths;
    for (const std::string_view row : rows) {
        if (row.find_first_not_of("|-: ") == std::string_view::npos) continue;
        table.push_back(cellsOf(row));
        widths.resize(std::max(widths.size(), table.back().size()));
        for (std::size_t i = 0; i < table.back().size(); ++i) {
            widths[i] = std::max(widths[i], table.back()[i].size());
        }
    }
    std::string text;
    for (const auto& cells : table) {
        std::string line = " ";
        for (std::size_t i = 0; i < cells.size(); ++i) {
            line += " " + cells[i] + std::string(widths[i] - cells[i].size() + 1, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace

std::string plainText(std::string_view markdown) {
    std::string text;
    bool isCode = false;
    std::vector<std::string_view> table;
    const std::vector<std::string_view> lines = linesOf(markdown);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        const bool isRow = !isCode && !line.empty() && line.front() == '|';
        if (isRow) table.push_back(line);
        if (!table.empty() && (!isRow || i + 1 == lines.size())) {
            text += tableText(table);
            table.clear();
        }
        if (isRow) continue;
        if (line.substr(0, 3) == "```") {
            isCode = !isCode;
        } else {
            text += (isCode ? "  " + std::string(line) : withoutMarks(line)) + "\n";
        }
    }
    return text;
}

std::vector<std::string> guideTopics() {
    std::vector<std::string> topics;
    for (const std::string_view line : linesOf(GUIDE_TEXT)) {
        if (line.substr(0, TITLE.size()) == TITLE) topics.emplace_back(line.substr(TITLE.size()));
    }
    return topics;
}

std::string guideSection(std::string_view topic) {
    const std::string wanted = lowerCased(std::string(topic));
    for (const std::string& title : guideTopics()) {
        if (lowerCased(title).find(wanted) == std::string::npos) continue;
        const std::size_t start =
            GUIDE_TEXT.find("\n" + std::string(TITLE) + title + "\n") + 1 + TITLE.size();
        const std::size_t end = std::min(GUIDE_TEXT.find("\n## ", start), GUIDE_TEXT.size());
        return plainText(GUIDE_TEXT.substr(start, end - start));
    }
    return "";
}
