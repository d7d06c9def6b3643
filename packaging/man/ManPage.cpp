// SPDX-License-Identifier: MIT
#include "ManPage.h"

#include "Guide.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>
#include <vector>

namespace {

// As roff reads it.
std::string escaped(std::string_view text) {
    static constexpr std::pair<char, const char*> ESCAPES[] = {
        {'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'"', "\\(dq"},
        {'^', "\\(ha"}, {'~', "\\(ti"}, {'`', "\\(ga"}};
    std::string out;
    for (const char c : text) {
        const auto* const one = std::find_if(std::begin(ESCAPES), std::end(ESCAPES),
                                             [c](const auto& escape) { return escape.first == c; });
        out += one == std::end(ESCAPES) ? std::string(1, c) : one->second;
    }
    return out;
}

// A line that begins with a point would be a command.
std::string lineOf(const std::string& text) {
    return (startsWith(text, ".") ? "\\&" + text : text) + "\n";
}

// A paragraph with `code` and **strong** text in bold, links as their texts, and no pictures.
std::string inlineRoff(std::string_view text) {
    std::string out;
    std::string plain;
    bool isStrong = false;
    const auto endPlain = [&] {
        out += escaped(plain);
        plain.clear();
    };
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '`') {
            endPlain();
            const size_t end = std::min(text.find('`', i + 1), text.size());
            out += "\\fB" + escaped(text.substr(i + 1, end - i - 1)) + (isStrong ? "" : "\\fR");
            i = end;
        } else if (text.substr(i, 2) == "**") {
            endPlain();
            isStrong = !isStrong;
            out += isStrong ? "\\fB" : "\\fR";
            ++i;
        } else if (text.substr(i, 2) == "](") {
            i = std::min(text.find(')', i), text.size() - 1);
        } else if (text[i] != '[' || text.find("](", i) == std::string_view::npos) {
            plain += text[i];
        }
    }
    endPlain();
    return out;
}

// A cell of the guide as the end of a sentence, and as a whole one.
std::string ended(std::string cell) {
    return cell.back() == '.' ? cell : cell + ".";
}

std::string sentence(std::string cell) {
    cell[0] = static_cast<char>(toupper(static_cast<unsigned char>(cell[0])));
    return ended(std::move(cell));
}

// One `code` and nothing else: an answer or a value, which is no sentence.
bool isOneCode(const std::string& cell) {
    return cell.size() > 2 && cell.find('`', 1) == cell.size() - 1 && cell.front() == '`';
}

// The cells behind the first, with their marks: "`off`" and "decimal comma" become "off: decimal comma."
std::string textOf(const std::vector<std::string>& cells) {
    std::string text;
    bool isBehindCode = false;
    for (size_t i = 1; i < cells.size(); ++i) {
        if (cells[i].empty()) continue;
        if (!text.empty()) text += isBehindCode ? ": " : " ";
        text += isOneCode(cells[i]) ? cells[i] : isBehindCode ? ended(cells[i]) : sentence(cells[i]);
        isBehindCode = isOneCode(cells[i]);
    }
    return text;
}

std::string rowOf(const std::vector<std::string>& cells) {
    return ".TP\n.B \"" + escaped(withoutMarks(cells.at(0))) + "\"\n" + lineOf(inlineRoff(textOf(cells)));
}

std::string tableOf(const std::vector<std::vector<std::string>>& rows) {
    std::string text;
    for (const auto& cells : rows) text += rowOf(cells);
    return text;
}

// Turns Markdown into roff, line by line.
class Roff {
public:
    explicit Roff(bool isProse) : isProseOnly(isProse) {}

    void Take(std::string_view line) {
        const bool isFence = startsWith(line, "```");
        if (isFence || isCode) {
            TakeCode(line, isFence);
        } else if (startsWith(line, "|")) {
            EndParagraph();
            table.append(line).append("\n");
        } else if (line.empty() || startsWith(line, "- ")) {
            End();
            paragraph = line;
        } else {
            EndTable();
            paragraph.append(paragraph.empty() ? "" : " ").append(line.substr(line.find_first_not_of(' ')));
        }
    }

    std::string Text() {
        End();
        return text;
    }

private:
    void TakeCode(std::string_view line, bool isFence) {
        End();
        if (isFence) isCode = !isCode;
        if (isProseOnly) return;
        text += !isFence ? lineOf(escaped(line)) : isCode ? ".PP\n.EX\n" : ".EE\n";
    }

    void End() {
        EndParagraph();
        EndTable();
    }

    void EndParagraph() {
        const bool isItem = startsWith(paragraph, "- ");
        if (!paragraph.empty() && !startsWith(paragraph, "![")) {
            if (isItem) text += ".IP \\(bu 2\n";
            if (!isItem && !text.empty()) text += ".PP\n";
            text += lineOf(inlineRoff(isItem ? std::string_view(paragraph).substr(2) : paragraph));
        }
        paragraph.clear();
    }

    void EndTable() {
        if (!isProseOnly) text += tableOf(tableRows(table, Marks::Kept));
        table.clear();
    }

    bool isProseOnly;
    std::string text;
    std::string paragraph;
    std::string table;
    bool isCode = false;
};

// What stands for a line "@KIND PLACE@" of a page; empty when the guide has no such part.
std::string partOf(std::string_view kind, const std::string& place) {
    if (kind == "TABLE") {
        const size_t colon = std::min(place.find(": "), place.size());
        return tableOf(
            guideRows(place.substr(0, colon), place.substr(std::min(colon + 2, place.size())), Marks::Kept));
    }
    return roffOf(guideMarkdown(place), kind == "PROSE");
}

} // namespace

std::string roffOf(std::string_view markdown, bool isProse) {
    Roff roff(isProse);
    while (!markdown.empty()) {
        const size_t end = std::min(markdown.find('\n'), markdown.size());
        roff.Take(markdown.substr(0, end));
        markdown.remove_prefix(std::min(end + 1, markdown.size()));
    }
    return roff.Text();
}

bool putGuideInto(std::string& page, std::string& missing) {
    for (const char* const kind : {"SECTION", "PROSE", "TABLE"}) {
        const std::string start = std::string("\n@") + kind + " ";
        for (size_t at = page.find(start); at != std::string::npos; at = page.find(start, at)) {
            const size_t end = page.find("@\n", at + start.size());
            const std::string place = page.substr(at + start.size(), end - at - start.size());
            const std::string part = partOf(kind, place);
            missing = page.substr(at + 1, end - at);
            if (part.empty()) return false;
            page.replace(at + 1, end + 1 - at, part);
        }
    }
    return true;
}
