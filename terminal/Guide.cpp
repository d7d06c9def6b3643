// SPDX-License-Identifier: MIT
#include "Guide.h"

#include "GuideText.h"
#include "Helpers_String.h"
#include "ScreenText.h"

#include <algorithm>

namespace {

constexpr std::string_view TITLE = "## ";
constexpr std::string_view ITEM = "- ";

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// The cells of "| a | b |".
std::vector<std::string> cellsOf(std::string_view row, Marks marks = Marks::Removed) {
    std::vector<std::string> cells;
    row.remove_prefix(1);
    while (!row.empty()) {
        size_t end = std::min(row.find('|'), row.size());
        while (end > 0 && end < row.size() && row[end - 1] == '\\')
            end = std::min(row.find('|', end + 1), row.size());
        std::string cell(row.substr(0, end));
        if (marks == Marks::Removed) cell = withoutMarks(cell);
        for (size_t bar = cell.find("\\|"); bar != std::string::npos; bar = cell.find("\\|"))
            cell.erase(bar, 1);
        const size_t start = std::min(cell.find_first_not_of(' '), cell.size());
        cells.push_back(cell.substr(start, cell.find_last_not_of(' ') + 1 - start));
        row.remove_prefix(std::min(end + 1, row.size()));
    }
    return cells;
}

bool isRule(std::string_view row) {
    return row.find_first_not_of("|-: ") == std::string_view::npos;
}

// The rows with their cells below each other, without the line of dashes below the head. A cell that would
// take too much of the width for that stands in a line of its own.
std::string tableText(const std::vector<std::string_view>& rows, size_t width) {
    std::vector<std::vector<std::string>> table;
    std::vector<size_t> widths;
    for (const std::string_view row : rows) {
        if (isRule(row)) continue;
        table.push_back(cellsOf(row));
        widths.resize(std::max(widths.size(), table.back().size()));
        for (size_t i = 0; i < table.back().size(); ++i) {
            const size_t columns = columnsOf(table.back()[i]);
            if (columns <= width * 2 / 5) widths[i] = std::max(widths[i], columns);
        }
    }
    constexpr size_t GAP = 2;
    std::string text;
    for (const auto& cells : table) {
        size_t start = GAP;
        for (size_t i = 0; i < cells.size(); start += widths[i++] + GAP) {
            if (cells[i].empty()) continue;
            if (columnBehind(text) + GAP > start && i > 0) text += '\n';
            text.append(start - columnBehind(text), ' ');
            addWords(text, cells[i], start, width);
        }
        text += '\n';
    }
    return text;
}

// With its title.
std::string_view sectionOf(const std::string& title) {
    const size_t start = GUIDE_TEXT.find("\n" + std::string(TITLE) + title + "\n") + 1 + TITLE.size();
    return GUIDE_TEXT.substr(start, GUIDE_TEXT.find("\n## ", start) - start);
}

bool containsIn(std::string_view text, std::string_view part) {
    return lowerCased(std::string(text)).find(lowerCased(std::string(part))) != std::string::npos;
}

} // namespace

// In code there are no other signs.
std::string withoutMarks(std::string_view line) {
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '`') {
            const size_t end = std::min(line.find('`', i + 1), line.size());
            text += line.substr(i + 1, end - i - 1);
            i = end;
        } else if (line.substr(i, 2) == "**") {
            ++i;
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

std::string plainText(std::string_view markdown, int columns) {
    const auto width = static_cast<size_t>(columns);
    std::string text;
    std::string paragraph;
    std::vector<std::string_view> table;
    const auto endBlock = [&] {
        if (!paragraph.empty() && !startsWith(paragraph, "![")) {
            addWords(text, withoutMarks(paragraph), startsWith(paragraph, ITEM) ? ITEM.size() : 0, width);
            text += '\n';
        }
        paragraph.clear();
        text += tableText(table, width);
        table.clear();
    };
    bool isCode = false;
    for (const std::string_view line : linesOf(markdown)) {
        const bool isFence = startsWith(line, "```");
        const bool isRow = !isCode && startsWith(line, "|");
        const bool isText = !isCode && !isFence && !isRow && !line.empty();
        if (isRow ? table.empty()
                  : !isText || !table.empty() || startsWith(line, ITEM) || startsWith(line, "#"))
            endBlock();
        if (isFence)
            isCode = !isCode;
        else if (isRow)
            table.push_back(line);
        else if (isText)
            paragraph.append(paragraph.empty() ? "" : " ").append(line);
        else
            text.append(isCode ? "  " : "").append(line).append("\n");
        if (startsWith(line, "#")) endBlock();
    }
    endBlock();
    return text;
}

std::vector<std::string> guideTopics(std::string_view something) {
    std::vector<std::string> topics;
    for (const std::string_view line : linesOf(GUIDE_TEXT)) {
        if (line.substr(0, TITLE.size()) != TITLE) continue;
        std::string title(line.substr(TITLE.size()));
        if (containsIn(sectionOf(title), something)) topics.push_back(std::move(title));
    }
    return topics;
}

std::string guideSection(std::string_view topic, int columns) {
    for (const std::string& title : guideTopics()) {
        if (containsIn(title, topic)) return plainText(sectionOf(title), columns);
    }
    return "";
}

std::string guideLines(std::string_view something, int columns) {
    std::string text;
    for (const std::string& title : guideTopics(something)) {
        std::string found;
        std::string block;
        const auto endBlock = [&] {
            if (containsIn(block, something)) found += block + (startsWith(block, "|") ? "" : "\n");
            block.clear();
        };
        bool isCode = false;
        for (const std::string_view line : linesOf(guideMarkdown(title))) {
            const bool isFence = startsWith(line, "```");
            if (isFence) isCode = !isCode;
            if (isCode || isFence || line.empty() || startsWith(line, "|") || startsWith(line, ITEM))
                endBlock();
            if (!isCode && !isFence && !line.empty()) block.append(line).append("\n");
        }
        endBlock();
        if (!found.empty()) text += title + "\n" + plainText(found, columns);
    }
    return text;
}

std::string_view guideMarkdown(std::string_view title) {
    for (const std::string& topic : guideTopics()) {
        if (topic == title) return sectionOf(topic).substr(topic.size() + 1);
    }
    return {};
}

std::vector<std::vector<std::string>> tableRows(std::string_view markdown, Marks marks) {
    std::vector<std::vector<std::string>> rows;
    for (const std::string_view line : linesOf(markdown)) {
        if (!isRule(line)) rows.push_back(cellsOf(line, marks));
    }
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

std::vector<std::vector<std::string>> guideRows(std::string_view title, std::string_view head, Marks marks) {
    std::vector<std::vector<std::string>> rows;
    bool isInside = false;
    for (const std::string_view line : linesOf(sectionOf(std::string(title)))) {
        const bool isRow = startsWith(line, "|");
        if (isRow && isInside && !isRule(line)) rows.push_back(cellsOf(line, marks));
        isInside = isRow && (isInside || cellsOf(line)[0] == head);
    }
    return rows;
}
