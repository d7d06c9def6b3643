// SPDX-License-Identifier: MIT
//
// The guide tells of every message of the sources: the texts of two words or more in them, and those of one
// word that end as a line or a sentence does, it has too.
#include "Options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Texts in the place of which something is shown when the program runs, and the end of a line.
constexpr char HOLE = '\x01';

// Reads the string literals of a source, those that stand behind each other as one.
class Literals {
public:
    explicit Literals(const std::string& whole) : source(whole) {
        while (i < source.size()) Step();
        End();
    }

    std::vector<std::string> found;

private:
    bool Is(std::string_view sign) const { return source.compare(i, sign.size(), sign) == 0; }

    void Step() {
        if (Is("//") || Is("#include") || Is("#import"))
            i = std::min(source.find('\n', i), source.size());
        else if (Is("R\"")) // none of ours holds a message
            SkipRaw();
        else if (source[i] == '"')
            Take();
        else if (source[i] == '\'' && !IsSeparator())
            i = std::min(source.find('\'', i + (source[i + 1] == '\\' ? 3 : 1)), source.size() - 1) + 1;
        else {
            if (!isspace(static_cast<unsigned char>(source[i])) && source[i] != '@') End();
            ++i;
        }
    }

    // As in 1'000.
    bool IsSeparator() const { return i > 0 && isdigit(static_cast<unsigned char>(source[i - 1])); }

    void SkipRaw() {
        const size_t open = source.find('(', i);
        const std::string close = ")" + source.substr(i + 2, open - i - 2) + "\"";
        i = std::min(source.find(close, open), source.size() - close.size()) + close.size();
    }

    void Take() {
        isOpen = true;
        for (++i; i < source.size() && source[i] != '"'; ++i) {
            const size_t kind = source.find_first_not_of("0123456789.", i + 1);
            if (source[i] == '%' && kind < source.size() && strchr("sigcC", source[kind])) {
                i = kind;
                text += HOLE;
            } else if (source[i] == '\\') {
                ++i;
                text += strchr("nt", source[i]) ? HOLE : source[i];
            } else if (source[i] != '`') {
                text += source[i];
            }
        }
        ++i;
    }

    void End() {
        if (isOpen) found.push_back(text);
        text.clear();
        isOpen = false;
    }

    const std::string& source;
    size_t i = 0;
    std::string text;
    bool isOpen = false;
};

// A word alone is said when it is a line, or ends as a sentence or the head of something does; names of
// methods do so too, and begin with a small letter.
bool isWordThatIsSaid(const std::string& text) {
    const char last = text.back();
    return last == HOLE || (strchr(".:!?", last) && !islower(static_cast<unsigned char>(text[0])));
}

// Whether a person would read it: two words, the sign of errors, or a word that is said.
bool isMessage(const std::string& text) {
    if (text.rfind("** ", 0) == 0) return text.size() > 3;
    int words = 0;
    size_t letters = 0;
    for (const char c : text + " ") {
        if (isalpha(static_cast<unsigned char>(c))) {
            ++letters;
        } else if (strchr(" ,:;.?!\x01", c)) {
            words += letters > 1 ? 1 : 0;
            letters = 0;
        } else {
            letters = 0;
        }
    }
    return words > 1 || (words == 1 && isWordThatIsSaid(text));
}

// The parts between the holes, in which something is said. The colon behind the name of a control is left
// out.
std::vector<std::string> partsOf(const std::string& text) {
    std::vector<std::string> parts;
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find(HOLE, start), text.size());
        std::string part = text.substr(start, end - start);
        if (!part.empty() && part.find(':') == part.size() - 1) part.pop_back();
        if (std::any_of(part.begin(), part.end(), [](unsigned char c) { return isalpha(c) != 0; }))
            parts.push_back(part);
        start = end + 1;
    }
    return parts;
}

// The guide without its signs of code, each of its paragraphs, items and rows on one line.
std::vector<std::string> paragraphsOfGuide() {
    std::ifstream guide(TALLYQUILL_GUIDE);
    std::vector<std::string> paragraphs(1);
    for (std::string line; std::getline(guide, line);) {
        if (line.empty() || line[0] == '|' || line.rfind("- ", 0) == 0) paragraphs.emplace_back();
        line.erase(std::remove(line.begin(), line.end(), '`'), line.end());
        for (size_t bar = line.find("\\|"); bar != std::string::npos; bar = line.find("\\|"))
            line.erase(bar, 1);
        const size_t start = std::min(line.find_first_not_of(' '), line.size());
        paragraphs.back() += (paragraphs.back().empty() ? "" : " ") + line.substr(start);
    }
    return paragraphs;
}

bool hasInOrder(const std::string& text, const std::vector<std::string>& parts) {
    size_t at = 0;
    for (const std::string& part : parts) {
        at = text.find(part, at);
        if (at == std::string::npos) return false;
        at += part.size();
    }
    return true;
}

// Sources whose texts are no messages, or stand elsewhere.
bool isLeftOut(const std::filesystem::path& path) {
    static constexpr std::array<std::string_view, 7> FILES = {
        "OptionTexts.cpp", // a program of the build
        "Keys.cpp",     // titles of menus; what keys do is compared with the guide by the tests of the window
        "FlatTheme.mm", // names of colors
        "ThemeImages.mm",   // names of images
        "AboutPanel.mm",    // who made it
        "SettingsFile.cpp", // a file's head
        "Script.cpp",       // likewise
    };
    return std::find(FILES.begin(), FILES.end(), path.filename().string()) != FILES.end();
}

// Texts that are no messages.
bool isLeftOut(const std::string& text) {
    static constexpr std::array<std::string_view, 16> STARTS = {
        "In the beginning was the prompt", // what "gospel" says
        "histstack o",                     // words of commands
        "convert+",
        "display ",
        "list units",
        "mulq %",       // a processor's instructions
        "no parent!!!", // a trace
        "Attempting ProcParenth",
        "=http,https", // an argument of curl
        "the flags are AppKit's",
        "%lf",
        "### CUSTOM UNITS",
        "command -v", // a script for a shell
        "Tallyquill Guide",
        "Tallyquill Preferences",
        "Save to script file",
    };
    return std::any_of(STARTS.begin(), STARTS.end(),
                       [&text](std::string_view start) { return text.rfind(start, 0) == 0; });
}

std::vector<std::filesystem::path> sources() {
    std::vector<std::filesystem::path> paths;
    for (const char* const folder :
         {"qfloat", "units", "engine", "library", "store", "web", "terminal", "app"}) {
        for (const auto& file : std::filesystem::recursive_directory_iterator(TALLYQUILL_SOURCES +
                                                                              ("/" + std::string(folder)))) {
            const std::string ending = file.path().extension().string();
            const bool isSource = ending == ".cpp" || ending == ".h" || ending == ".mm";
            if (isSource && !isLeftOut(file.path())) paths.push_back(file.path());
        }
    }
    return paths;
}

TEST(Messages, AllStandInTheGuide) {
    std::vector<std::string> known = paragraphsOfGuide();
    // What the options do is said by --help, and longer in the guide.
    std::string help = helpText();
    std::replace(help.begin(), help.end(), '\n', HOLE);
    known.push_back(help);
    int messages = 0;
    for (const auto& path : sources()) {
        const std::string text = bytesOf(path);
        for (const std::string& literal : Literals(text).found) {
            if (!isMessage(literal) || isLeftOut(literal)) continue;
            const std::vector<std::string> parts = partsOf(literal);
            EXPECT_TRUE(std::any_of(known.begin(), known.end(),
                                    [&parts](const std::string& one) { return hasInOrder(one, parts); }))
                << path.filename() << ": " << literal;
            ++messages;
        }
    }
    EXPECT_GT(messages, 200);
}

// So that the test above can fail.
TEST(Messages, AreFoundInSources) {
    const std::string source =
        "f(\"one \" // a \"comment\"\n  @\"two\", 'c', \"\\\"x\\\" %s of %.3g\\n\"); R\"(raw text)\"";
    const std::vector<std::string> literals = {"one two",
                                               std::string("\"x\" ") + HOLE + " of " + HOLE + HOLE};
    EXPECT_EQ(Literals(source).found, literals);
    EXPECT_TRUE(isMessage("is empty"));
    EXPECT_FALSE(isMessage("empty"));
    EXPECT_FALSE(isMessage("empty:"));
    EXPECT_TRUE(isMessage("Empty:"));
    EXPECT_TRUE(isMessage(std::string("empty") + HOLE));
    EXPECT_TRUE(isMessage("** x"));
}

} // namespace
