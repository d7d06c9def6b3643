// SPDX-License-Identifier: MIT
//
// Runs the session files; their format is described in sessions/README.md.
#include "Calculator.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace {

std::vector<std::string> sessionFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(SESSIONS_DIR)) {
        if (entry.path().extension() == ".txt") files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string unescape(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '\\' || i + 1 >= text.size()) {
            out += text[i];
            continue;
        }
        switch (text[++i]) {
        case 'n': out += '\n'; break;
        case 't': out += '\t'; break;
        case 'r': out += '\r'; break;
        case 's': out += ' '; break;
        case 'x':
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
            break;
        default: out += text[i];
        }
    }
    return out;
}

// The text that "expected" stands for: with its line feed unless it is empty or ends in \c.
std::string expectedText(const std::string& text) {
    if (text.empty()) return "";
    if (text.size() >= 2 && text.compare(text.size() - 2, 2, "\\c") == 0) {
        return unescape(text.substr(0, text.size() - 2));
    }
    return unescape(text) + "\n";
}

class Session {
public:
    explicit Session(const std::string& path) : file(path) {
        deleteAllFunctions();
        deleteAllUnits();
        calc.InitializeFunctionsAndVars();
        calc.sigFigs = 10;
        calc.sciMode = SCI_AUTO;
    }

    void Run() {
        std::ifstream in(file);
        ASSERT_TRUE(in) << "cannot read " << file;
        for (std::string text; std::getline(in, text);) {
            line++;
            RunLine(text);
        }
        EXPECT_FALSE(pending) << Where() << "the last entry has no expectation";
        EXPECT_GT(entries, 0) << Where() << "no entries";
    }

private:
    ZqCalculator calc;
    std::string file;
    int line = 0;
    int entries = 0;
    int actualStatus = 0;
    bool pending = false; // an entry waits for its expectation
    std::string typed;

    std::string Where() const { return file + ":" + std::to_string(line) + ": " + typed + "\n"; }

    void RunLine(const std::string& text) {
        if (text.empty() || text[0] == '#') return;
        if (text.rfind(">", 0) == 0) return Enter(text, 1, false);
        if (text.rfind("quick>", 0) == 0) return Enter(text, 6, true);
        if (text.rfind("set ", 0) == 0) return Set(text.substr(4));
        if (text.rfind("check ", 0) == 0) return Check(text.substr(6));
        Expect(text);
    }

    void Enter(const std::string& text, size_t prompt, bool quick) {
        EXPECT_FALSE(pending) << Where() << "an entry without an expectation stands before this line";
        typed = text.size() > prompt + 1 ? text.substr(prompt + 1) : "";
        const int before = calc.status;
        actualStatus = calc.ProcessEntry(unescape(typed).c_str(), quick);
        EXPECT_EQ(quick ? before : actualStatus, calc.status) << Where();
        pending = true;
        entries++;
    }

    void Expect(const std::string& text) {
        EXPECT_TRUE(pending) << Where() << "an expectation without an entry: " << text;
        pending = false;
        const size_t blank = std::min(text.find(' '), text.size());
        const std::string status = text.substr(0, blank);
        const std::string shown = expectedText(blank < text.size() ? text.substr(blank + 1) : "");
        EXPECT_EQ(status, std::to_string(actualStatus)) << Where() << "message: " << calc.message;
        EXPECT_EQ(shown, actualStatus == STATUS_RESULT ? calc.resultLine : calc.message) << Where();
    }

    void Set(const std::string& text) {
        std::istringstream in(text);
        std::string name, value;
        in >> name >> value;
        ASSERT_FALSE(value.empty()) << Where() << "setting without a value: " << text;
        if (name == "separatorChar") {
            calc.separatorChar = value[0];
            return;
        }
        const int number = std::stoi(value);
        if (name == "sigFigs")
            calc.sigFigs = number;
        else if (name == "sciMode")
            calc.sciMode = number;
        else if (name == "displayBase")
            calc.displayBase = number;
        else if (name == "european")
            calc.european = number != 0;
        else if (name == "tenKey")
            calc.tenKey = number != 0;
        else if (name == "histStack")
            calc.histStack = number != 0;
        else if (name == "degreeMode")
            calc.degreeMode = number != 0;
        else if (name == "useSeparator")
            calc.useSeparator = number != 0;
        else if (name == "twosComp")
            calc.twosComp = number != 0;
        else
            ADD_FAILURE() << Where() << "unknown setting " << name;
    }

    std::map<std::string, int> Settings() const {
        return {{"sigFigs", calc.sigFigs},   {"sciMode", calc.sciMode},     {"displayBase", calc.displayBase},
                {"european", calc.european}, {"histStack", calc.histStack}, {"degreeMode", calc.degreeMode}};
    }

    void Check(const std::string& text) {
        const size_t blank = std::min(text.find(' '), text.size());
        const std::string name = text.substr(0, blank);
        const std::string value = blank < text.size() ? unescape(text.substr(blank + 1)) : "";
        const auto settings = Settings();
        if (const auto setting = settings.find(name); setting != settings.end())
            EXPECT_EQ(value, std::to_string(setting->second)) << Where();
        else if (name == "lastAnswer")
            EXPECT_EQ(value, calc.lastAnswer) << Where();
        else if (name == "echoText")
            EXPECT_EQ(value, calc.echoText) << Where();
        else if (name == "entryCount")
            EXPECT_EQ(std::stod(value), calc.entryCount) << Where();
        else if (name == "overflowed")
            EXPECT_EQ(value, std::to_string(calc.overflowed)) << Where();
        else if (name == "newest") {
            const char* newest = calc.history.GetHistoryStr(1);
            EXPECT_EQ(value, newest ? newest : "(none)") << Where();
        } else
            ADD_FAILURE() << Where() << "unknown field " << name;
    }
};

class Sessions : public testing::TestWithParam<std::string> {};

TEST_P(Sessions, AnswerAsWritten) {
    Session(GetParam()).Run();
}

INSTANTIATE_TEST_SUITE_P(Files, Sessions, testing::ValuesIn(sessionFiles()), [](const auto& instance) {
    std::string name = std::filesystem::path(instance.param).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});

} // namespace
