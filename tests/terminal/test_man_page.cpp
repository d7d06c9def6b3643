// SPDX-License-Identifier: MIT
//
// The man pages and the completions know the options that there are, and the examples for a shell are true.
#include "Guide.h"
#include "Options.h"
#include "PromptWords.h"

#include "program.h"
#include "temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using NameSet = std::set<std::string>;

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_FALSE(text.empty()) << path;
    return text;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (size_t i = text.find(from); i != std::string::npos; i = text.find(from, i + to.size()))
        text.replace(i, from.size(), to);
}

// The page as it is read.
std::string manPage(const std::string& path = TALLYQUILL_MAN_PAGE) {
    std::string text = contentOf(path);
    const std::pair<const char*, const char*> escapes[] = {
        {"\\-", "-"}, {"\\(aq", "'"}, {"\\(ha", "^"}, {"\\(ti", "~"}, {"\\(dq", "\""}, {"\\(ga", "`"},
        {"\\fR", ""}, {"\\fB", ""},   {"\\fI", ""},   {"\\&", ""},    {"\\ ", " "},    {"\\e", "\\"}};
    for (const auto& [from, to] : escapes) replaceAll(text, from, to);
    return text;
}

// What the shell shows for a command in a folder where the program is found, both streams in one.
std::string shellShows(const std::string& folder, const std::string& command) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        cleanEnvironment({});
        std::string path = TALLYQUILL_PROGRAM;
        path.resize(path.rfind('/'));
        setenv("PATH", (path + ":" + getenv("PATH")).c_str(), 1);
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        if (chdir(folder.c_str()) == 0) execl("/bin/bash", "bash", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string shown;
    char block[4096];
    for (ssize_t count = 0; (count = read(ends[0], block, sizeof block)) > 0;)
        shown.append(block, static_cast<size_t>(count));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return shown;
}

// Runs the commands behind "$ " of the blocks that begin with one. Returns how many there are.
int runExamples(const std::string& text, const std::string& open, const std::string& close) {
    const TemporaryFolder folder;
    std::istringstream lines(text);
    std::string before;
    std::string command;
    std::string shown;
    int commands = 0;
    bool isInside = false;
    for (std::string line; std::getline(lines, line); before = line) {
        const bool isCommand = line.rfind("$ ", 0) == 0;
        isInside = isInside ? line != close : before == open && isCommand;
        if (!command.empty() && (isCommand || !isInside)) {
            EXPECT_EQ(shellShows(folder.Path(), command), shown) << command;
            command.clear();
            ++commands;
        }
        if (!isInside) continue;
        if (isCommand) {
            command = line.substr(2);
            shown.clear();
        } else {
            shown += line + "\n";
        }
    }
    return commands;
}

NameSet longNames() {
    NameSet names;
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row)
        names.insert(std::string("--") + row->name);
    return names;
}

NameSet namesIn(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    NameSet names;
    for (auto one = std::sregex_iterator(text.begin(), text.end(), expression); one != std::sregex_iterator();
         ++one)
        names.insert("--" + (*one)[1].str());
    return names;
}

TEST(ManPage, HasTheOptionsThatThereAre) {
    const std::string page = manPage();
    const size_t start = page.find("\n.SH OPTIONS\n");
    const std::string options = page.substr(start, page.find("\n.SH ", start + 1) - start);
    EXPECT_EQ(namesIn(options, "\n\\.TP\n[^\n]*--([a-z-]+)"), longNames());
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
        const std::string value = row->argument == nullptr ? "" : "=[A-Z]+";
        const std::string letter = row->letter == 0 ? "" : std::string("-") + row->letter + "( [A-Z]+)?, ";
        EXPECT_TRUE(std::regex_search(
            options, std::regex("\n\\.TP\n\\.B \"" + letter + "--" + row->name + value + "\"\n")))
            << row->name;
    }
}

TEST(ManPage, HasTheSectionsOfOne) {
    const std::string page = manPage();
    for (const char* const section :
         {"NAME", "SYNOPSIS", "DESCRIPTION", "ENTRIES", "OPTIONS", "COMMAND WORDS", "COLUMNS", "PROMPT",
          "JSON", "EXIT STATUS", "ENVIRONMENT", "FILES", "SETTINGS", "EXAMPLES", "TRAPS", "ACCESSIBILITY",
          "SEE ALSO"})
        EXPECT_NE(page.find("\n.SH " + std::string(section) + "\n"), std::string::npos) << section;
    EXPECT_NE(page.find("Tallyquill " TALLYQUILL_VERSION "\""), std::string::npos);
}

TEST(ManPage, TellsWhatThePromptHas) {
    const std::string page = manPage();
    const size_t start = page.find("\n.SH PROMPT\n");
    ASSERT_NE(start, std::string::npos);
    const std::string section = page.substr(start, page.find("\n.SH ", start + 1) - start);
    for (const PromptWord& word : promptWords())
        EXPECT_NE(section.find("\n.B \"" + std::string(word.word) + (*word.argument ? " " : "") +
                               word.argument + "\"\n"),
                  std::string::npos)
            << word.word;
    for (const char* const part : {"Control-R", "Tab", "Control-C", "Control-D", "autoeval", "preview"})
        EXPECT_NE(section.find(part), std::string::npos) << part;
}

TEST(ManPage, HasExamplesThatAreTrue) {
    const std::string page = manPage();
    int commands = 0;
    for (size_t at = page.find("\n$ "); at != std::string::npos; at = page.find("\n$ ", at + 1)) ++commands;
    EXPECT_GT(commands, 8);
    EXPECT_EQ(runExamples(page, ".EX", ".EE"), commands);
}

// --- One source: the guide ---

// A text with one blank in the place of blanks and line ends.
std::string inOneLine(const std::string& text) {
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;) line += (line.empty() ? "" : " ") + word;
    return line;
}

// The page's text, without its commands and what they say.
std::string textOfPage(const std::string& page) {
    std::istringstream lines(page);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        if (line[0] != '.') text += line + '\n';
    }
    return inOneLine(text);
}

// The parts of the guide that a template names, with their kinds: "@SECTION Files@".
std::vector<std::pair<std::string, std::string>> sectionsIn(const std::string& path) {
    static const std::regex part("\n@(SECTION|PROSE) ([^@]+)@(?=\n)");
    const std::string text = contentOf(path);
    std::vector<std::pair<std::string, std::string>> titles;
    for (auto one = std::sregex_iterator(text.begin(), text.end(), part); one != std::sregex_iterator();
         ++one)
        titles.emplace_back((*one)[2], (*one)[1]);
    return titles;
}

// The rows of a table stand in the page, each below its first cell.
void expectTable(const std::string& page, const std::string& text, const std::string& table) {
    for (const std::vector<std::string>& cells : tableRows(table)) {
        EXPECT_NE(page.find("\n.TP\n.B \"" + cells.at(0) + "\"\n"), std::string::npos) << cells[0];
        for (size_t i = 1; i < cells.size(); ++i)
            EXPECT_NE(text.find(inOneLine(cells[i].substr(cells[i].empty() ? 0 : 1))), std::string::npos)
                << cells[i];
    }
}

// Each paragraph of these sections, and each example, stands in the page; so do the rows of their tables.
void expectSections(const std::string& page,
                    const std::vector<std::pair<std::string, std::string>>& sections) {
    const std::string text = textOfPage(page);
    for (const auto& [title, kind] : sections) {
        SCOPED_TRACE(title);
        const bool isProse = kind == "PROSE";
        std::istringstream lines{std::string(guideMarkdown(title))};
        std::string paragraphs;
        std::string table;
        bool isExample = false;
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("```", 0) == 0)
                isExample = !isExample;
            else if (isExample)
                EXPECT_NE(text.find(inOneLine(line)), std::string::npos) << line;
            else if (line.rfind('|', 0) == 0)
                table += line + '\n';
            else
                paragraphs += line + '\n';
            if (!table.empty() && line.rfind('|', 0) != 0) {
                if (!isProse) expectTable(page, text, table);
                table.clear();
            }
        }
        std::istringstream plain(plainText(paragraphs, 100000));
        int found = 0;
        for (std::string line; std::getline(plain, line); ++found) {
            if (line.rfind("- ", 0) == 0) line.erase(0, 2);
            EXPECT_NE(text.find(inOneLine(line)), std::string::npos) << line;
        }
        EXPECT_GT(found, 0);
    }
}

// A template has nothing that the guide says, too.
void expectNothingOfTheGuide(const std::string& path) {
    const std::string guide = inOneLine(plainText(contentOf(TALLYQUILL_GUIDE), 100000));
    const std::string text = textOfPage(manPage(path));
    const std::regex sentence("[^.:;]{40,}[.:;]");
    int sentences = 0;
    for (auto one = std::sregex_iterator(text.begin(), text.end(), sentence); one != std::sregex_iterator();
         ++one, ++sentences)
        EXPECT_EQ(guide.find(inOneLine(one->str())), std::string::npos) << one->str();
    EXPECT_GT(sentences, 1);
}

TEST(ManPage, HasWhatTheGuideSays) {
    const std::string source = TALLYQUILL_SOURCES "/docs/tallyquill.1.in";
    EXPECT_GT(sectionsIn(source).size(), 10U);
    expectSections(manPage(), sectionsIn(source));
    expectNothingOfTheGuide(source);
}

TEST(ManPage, LeavesAnswersAndValuesAsTheyAre) {
    const std::string page = manPage();
    EXPECT_NE(page.find("\n.TP\n.B \"17%5\"\nans = 2: remainder.\n"), std::string::npos);
    EXPECT_NE(page.find("\n.TP\n.B \"european\"\noff: decimal comma, or point.\n"), std::string::npos);
    EXPECT_NE(page.find("\n.TP\n.B \"(6&3)==2\"\nans = 1\n"), std::string::npos);
    EXPECT_NE(page.find("\n.TP\n.B \"@\"\nExclusive or (xor), bit by bit.\n"), std::string::npos);
}

// The pages that people have come from these templates, and no line of them is left.
TEST(ManPage, HasNoPlaceThatIsNotFilledIn) {
    EXPECT_FALSE(std::regex_search(manPage(), std::regex("\n@[A-Z]+ ")));
}

void expectNoWarnings(const std::string& page) {
    EXPECT_EQ(
        shellShows("/", "man --warnings -E UTF-8 -l -Tutf8 -Z '" + page + "' 2>&1 >/dev/null && echo done"),
        "done\n");
}

TEST(ManPage, IsFormattedWithoutWarnings) {
    expectNoWarnings(TALLYQUILL_MAN_PAGE);
}

#ifdef TALLYQUILL_WINDOW_MAN_PAGE

TEST(ManPageOfTheWindow, HasTheSectionsOfOne) {
    const std::string page = manPage(TALLYQUILL_WINDOW_MAN_PAGE);
    for (const char* const section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "KEYS", "EXIT STATUS",
                                      "ENVIRONMENT", "FILES", "SEE ALSO"})
        EXPECT_NE(page.find("\n.SH " + std::string(section) + "\n"), std::string::npos) << section;
}

TEST(ManPageOfTheWindow, HasTheTablesOfTheGuide) {
    const std::string page = manPage(TALLYQUILL_WINDOW_MAN_PAGE);
    const std::pair<const char*, const char*> tables[] = {{"Starting the window", "Option"},
                                                          {"Starting the window", "Status"},
                                                          {"Keys", "Key"},
                                                          {"Files", "File"}};
    for (const auto& [title, head] : tables) {
        const auto rows = guideRows(title, head);
        EXPECT_FALSE(rows.empty()) << title;
        for (const auto& cells : rows)
            EXPECT_NE(page.find("\n.TP\n.B \"" + cells.at(0) + "\"\n"), std::string::npos) << cells.at(0);
    }
}

TEST(ManPageOfTheWindow, HasWhatTheGuideSays) {
    const std::string source = TALLYQUILL_SOURCES "/docs/tallyquill-window.1.in";
    EXPECT_GT(sectionsIn(source).size(), 3U);
    expectSections(manPage(TALLYQUILL_WINDOW_MAN_PAGE), sectionsIn(source));
    expectNothingOfTheGuide(source);
}

TEST(ManPageOfTheWindow, IsFormattedWithoutWarnings) {
    expectNoWarnings(TALLYQUILL_WINDOW_MAN_PAGE);
}

#endif

// Runs the examples for a shell of a document, which are all lines behind "$ ".
void expectTrueExamples(const char* path) {
    const std::string text = contentOf(path);
    int commands = 0;
    for (size_t at = text.find("\n$ "); at != std::string::npos; at = text.find("\n$ ", at + 1)) ++commands;
    EXPECT_GT(commands, 0);
    EXPECT_EQ(runExamples(text, "```", "```"), commands);
}

TEST(Readme, ItsExamplesForAShellAreTrue) {
    expectTrueExamples(TALLYQUILL_README);
}

TEST(Guide, ItsExamplesForAShellAreTrue) {
    expectTrueExamples(TALLYQUILL_GUIDE);
}

// --- Completions ---

std::string completion(const std::string& name) {
    return std::string(TALLYQUILL_COMPLETIONS) + "/" + name;
}

// As one word of a shell's.
std::string quoted(std::string text) {
    replaceAll(text, "'", "'\\''");
    return "'" + text + "'";
}

// What bash proposes for a command line of these words.
std::string bashProposes(const std::string& words) {
    return shellShows("/",
                      "source '" + completion("tallyquill.bash") + "'; COMP_WORDS=(" + words +
                          "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tallyquill; echo \"${COMPREPLY[@]}\"");
}

TEST(Completions, KnowTheOptionsThatThereAre) {
    const std::string bash = contentOf(completion("tallyquill.bash"));
    const size_t options = bash.find("options='");
    EXPECT_EQ(namesIn(bash.substr(options, bash.find('\n', options) - options), "--([a-z-]+)"), longNames());
    EXPECT_EQ(namesIn(contentOf(completion("_tallyquill")), "--([a-z-]+)[=\\[}]"), longNames());
    EXPECT_EQ(namesIn(contentOf(completion("tallyquill.fish")), " -l ([a-z-]+)"), longNames());
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
        if (row->letter == 0) continue;
        const std::string letter(1, row->letter);
        EXPECT_NE(bash.find(" -" + letter), std::string::npos) << letter;
        EXPECT_NE(contentOf(completion("_tallyquill")).find("-" + letter + ",--" + row->name),
                  std::string::npos)
            << letter;
        EXPECT_NE(contentOf(completion("tallyquill.fish")).find("-s " + letter + " -l " + row->name),
                  std::string::npos)
            << letter;
    }
}

TEST(Completions, KnowTheValuesThatThereAre) {
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
        std::string values = row->argument == nullptr ? "" : row->argument;
        if (std::string(row->name) == "with") values = "everyday|constants|money|time|temperature";
        if (values.find('|') == std::string::npos) continue;
        replaceAll(values, "|", " ");
        EXPECT_EQ(bashProposes("tallyquill --" + std::string(row->name) + " ''"), values + "\n");
        for (const char* const file : {"_tallyquill", "tallyquill.fish"})
            EXPECT_NE(contentOf(completion(file)).find(values), std::string::npos)
                << file << ' ' << row->name;
    }
}

TEST(Completions, WorkInBash) {
    EXPECT_EQ(bashProposes("tallyquill --fi"), "--file --figures\n");
    EXPECT_EQ(bashProposes("tallyquill --base ''"), "bin dec hex\n");
    EXPECT_EQ(bashProposes("tallyquill --base = h"), "hex\n");
    EXPECT_EQ(bashProposes("tallyquill --base ="), "bin dec hex\n");
    EXPECT_EQ(bashProposes("tallyquill --with money,t"), "money,time money,temperature\n");
    EXPECT_EQ(bashProposes("tallyquill -f /etc/hostn"), "/etc/hostname\n");
    EXPECT_EQ(bashProposes("tallyquill 1"), "\n");
}

TEST(Completions, WorkInFish) {
    const std::string fish = "HOME=/tmp fish --no-config -c 'source " + completion("tallyquill.fish") +
                             "; complete -C\"tallyquill ";
    EXPECT_EQ(shellShows("/", fish + "--fi\"' | cut -f1"), "--figures\n--file\n");
    EXPECT_EQ(shellShows("/", fish + "--base \"' | cut -f1"), "bin\ndec\nhex\n");
}

// What zsh makes of these words when Tab is pressed behind them, without the signs that move its cursor.
std::string zshCompletes(const std::string& words) {
    const std::string script = "zmodload zsh/zpty; zpty z zsh -f -i; zpty -w z \"PS1=; stty -echo; fpath=(" +
                               std::string(TALLYQUILL_COMPLETIONS) +
                               " \\$fpath); autoload -U compinit; compinit -D -u; echo rea''dy\"; "
                               "zpty -r -m z out '*ready*'; zpty -w -n z $'" +
                               words + "\\tEND'; zpty -r -m z out '*END*'; print -r -- $out; zpty -d z";
    const std::string shown = shellShows("/", "TERM=dumb timeout 30 zsh -f -c " + quoted(script));
    std::string line;
    for (const char c : shown.substr(std::min(shown.rfind("tallyquill"), shown.size()))) {
        if (c == '\b' && !line.empty())
            line.pop_back();
        else
            line += c;
    }
    return line.substr(0, line.find("END"));
}

TEST(Completions, WorkInZsh) {
    EXPECT_EQ(zshCompletes("tallyquill --qui"), "tallyquill --quiet ");
    EXPECT_EQ(zshCompletes("tallyquill --fig"), "tallyquill --figures=");
    EXPECT_EQ(zshCompletes("tallyquill --base=h"), "tallyquill --base=hex ");
    EXPECT_EQ(zshCompletes("tallyquill -f /etc/hostn"), "tallyquill -f /etc/hostname ");
    EXPECT_EQ(zshCompletes("tallyquill 1+1 --with=money,ti"), "tallyquill 1+1 --with=money,time,");
}

TEST(Completions, AreReadByZsh) {
    EXPECT_EQ(shellShows("/", "zsh -n '" + completion("_tallyquill") + "' && echo read"), "read\n");
}

} // namespace
