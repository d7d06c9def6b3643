// SPDX-License-Identifier: MIT
//
// Reading a file of functions that a person may have edited or damaged, or that would take too long.
#include "DefinitionsMerge.h"
#include "definitions_file_fixture.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

class ReadingADefinitionsFile : public DefinitionsFile {};

// --- Reading ---

TEST_F(ReadingADefinitionsFile, AMissingFileIsNotOpened) {
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_FALSE(read.opened);
    EXPECT_FALSE(read.damaged);
    EXPECT_FALSE(readDefinitions(*calc, folder.Path()).opened);
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(ReadingADefinitionsFile, EuropeanAndTenKeyDoNotCountAndStay) {
    Enter("f(x,y)=1.5*x-2e-3*y");
    Enter("v=1234.5");
    const std::string before = Text();
    ASSERT_TRUE(writeFileAtomically(path, before));
    for (const bool european : {false, true}) {
        StartAgain();
        calc->european = european;
        calc->tenKey = !european;
        EXPECT_FALSE(readDefinitions(*calc, path).damaged);
        EXPECT_EQ(european, calc->european);
        EXPECT_EQ(!european, calc->tenKey);
        EXPECT_EQ(before, Text());
    }
}

TEST_F(ReadingADefinitionsFile, WhatWasEnteredInEuropeanAndTenKeyModeIsThereAgain) {
    calc->european = true;
    EXPECT_EQ("f(x)=1.5*x\n", Answer("f(x)=1,5*x"));
    calc->tenKey = true;
    Enter("g(x)=10x+20,5-");
    Enter("v=1,5+2-");
    ExpectNothingLost();
    EXPECT_EQ("ans = 3\n", Answer("f(2)"));
    EXPECT_EQ("ans = -0.5\n", Answer("v"));
}

bool interruptAtOnce() {
    return true;
}

TEST_F(ReadingADefinitionsFile, ReadingLeavesAFreshStart) {
    merror = 0;
    putContent(path, fileWith("f(x)=x+1\nbad bad bad\necho shown\nv=5\ndisp v\nw=1" + repeated("+1", 4000) +
                                  "\nz=7*0e5\n",
                              "v=5\n"));
    calc->fullEntry = false;
    calc->interruptCheck = interruptAtOnce;
    EXPECT_TRUE(readDefinitions(*calc, path).damaged);
    EXPECT_FALSE(calc->fullEntry);
    EXPECT_EQ(interruptAtOnce, calc->interruptCheck);
    EXPECT_FALSE(calc->interrupted);
    EXPECT_EQ(STATUS_RESULT, calc->status);
    EXPECT_STREQ("", calc->message);
    EXPECT_STREQ("", calc->echoText);
    EXPECT_STREQ("", calc->resultLine);
    EXPECT_STREQ("", calc->lastAnswer);
    EXPECT_EQ(nullptr, calc->lastName);
    EXPECT_EQ(nullptr, calc->lastValue);
    EXPECT_EQ(calc->vars.first, calc->target);
    EXPECT_EQ(0, calc->terms.count);
    EXPECT_EQ(0, qcmp(qzero, calc->result));
    EXPECT_EQ(0, calc->entryCount);
    EXPECT_EQ(0, calc->history.location);
    EXPECT_EQ(0, merror);
    calc->interruptCheck = nullptr;
    EXPECT_EQ(STATUS_MESSAGE, Enter("")); // nothing is repeated
    EXPECT_EQ("ans = 6\n", Answer("f(v)"));
    EXPECT_EQ("ans = 4001\n", Answer("w"));
}

TEST_F(ReadingADefinitionsFile, NoLineRepeatsTheHistory) {
    Enter("a=1");
    Enter("a=a+1");
    Enter("");
    EXPECT_EQ("ans = 3\n", Answer("a"));
    Enter("a=a+1");
    EXPECT_TRUE(writeFileAtomically(path, Text()));
    EXPECT_FALSE(
        readDefinitions(*calc, path).damaged); // in the same run: the entry is the newest of the history
    EXPECT_EQ("ans = 4\n", Answer("a"));
}

TEST_F(ReadingADefinitionsFile, TheFirstLineIsLeftOut) {
    EXPECT_TRUE(IsDamaged("a=5\nb=6\n### HISTORY ###\n"));
    EXPECT_EQ(nullptr, calc->VariableExists("a"));
    EXPECT_NE(nullptr, calc->VariableExists("b"));
}

TEST_F(ReadingADefinitionsFile, CommentsBlankLinesAndOtherLineEndsAreNoDamage) {
    EXPECT_FALSE(IsDamaged("### FUNCTIONS ###\r\n"
                           "# mine\r\n\r\n   \r\n"
                           "f ( x ) = x + 1 # adds one\r\n"
                           "v = 5\r\n"
                           "### HISTORY ###\r\n"
                           "v\r\n"));
    EXPECT_EQ("ans = 6\n", Answer("f(v)"));
    EXPECT_STREQ("v", calc->history.GetHistoryStr(2));
}

TEST_F(ReadingADefinitionsFile, AnOrdinaryFileIsNoDamage) {
    EXPECT_FALSE(IsDamaged(EMPTY_FILE));
    EXPECT_FALSE(IsDamaged(fileWith("v=5\n", "v\n")));
    EXPECT_FALSE(IsDamaged("### FUNCTIONS ###\n### HISTORY ###\n"));
}

TEST_F(ReadingADefinitionsFile, DamageIsNoticedAndTheRestIsRead) {
    EXPECT_TRUE(IsDamaged(""));
    EXPECT_TRUE(IsDamaged("\n"));
    EXPECT_TRUE(IsDamaged("### VARIABLES ###\nv=5\n### HISTORY ###\nv\n"));
    EXPECT_EQ("ans = 5\n", Answer("v"));
    EXPECT_TRUE(IsDamaged("### FUNCTIONS ###\n### VARIABLES ###\nv=5\n"));
    EXPECT_EQ("ans = 5\n", Answer("v"));
    EXPECT_TRUE(IsDamaged(fileWith("v=5\n", "v\nv+")));
    EXPECT_EQ(2, calc->history.count);
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=x+*2\ng(x)=x\n")));
    EXPECT_EQ("ans = 5\n", Answer("g(5)"));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67 nonsense\nv=5\n")));
    EXPECT_EQ("ans = 5\n", Answer("v"));
}

TEST_F(ReadingADefinitionsFile, ControlCharactersAreDamage) {
    using namespace std::string_literals;
    EXPECT_TRUE(IsDamaged(fileWith("v=12\0\0\0\nw=6\n"s)));
    EXPECT_EQ(nullptr, calc->VariableExists("v")); // 12 may be a part of the number
    EXPECT_NE(nullptr, calc->VariableExists("w"));
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=12\0\0\0\nw=6\n"s)));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("\fv=5\nw=6\n")));
    EXPECT_EQ(nullptr, calc->VariableExists("v"));
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=x+\x02"
                                   "a\nw=6\n")));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67\x1b inch\nw=6\n")));
    EXPECT_EQ(0, calc->unitDefs.count);
    EXPECT_NE(nullptr, calc->VariableExists("w"));
    EXPECT_TRUE(IsDamaged(fileWith("", "1+1\n2\0+2\n3\n"s)));
    EXPECT_EQ(3, calc->history.count);
    EXPECT_TRUE(IsDamaged(std::string(4096, '\0')));
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(ReadingADefinitionsFile, WhatDefinesNothingHasNoEffect) {
    for (const char* line :
         {"sigfigs 20",  "mode deg", "scimode eng", "display hex", "european on", "histstack off", "gospel",
          "del mod",     "del all",  "rem pi",      "clear",       "exit",        "pause 5000",    "echo a=5",
          "convert a=5", "list",     "5+6",         "pi",          "pi==3",       "3=4",           "unit",
          "unit smoot",  "=5",       "a b=5",       "sqrt(4)",     "x=1;mode deg"}) {
        EXPECT_TRUE(IsDamaged(fileWith(std::string(line) + "\nv=5\n"))) << line;
        EXPECT_EQ("ans = 5\n", Answer("v")) << line;
        calc->vars.Del(calc->VariableExists("v"));
        calc->history.Clear();
        StartAgain();
        readDefinitions(*calc, path);
        EXPECT_EQ(10, calc->sigFigs) << line;
        EXPECT_FALSE(calc->degreeMode) << line;
        EXPECT_EQ(SCI_AUTO, calc->sciMode) << line;
        EXPECT_EQ(10, calc->displayBase) << line;
        EXPECT_FALSE(calc->european) << line;
        EXPECT_TRUE(calc->histStack) << line;
        EXPECT_EQ(3, calc->vars.count) << line; // ans, pi and v
        EXPECT_EQ(0, qcmp(qzero, *calc->vars.first->value)) << line;
        EXPECT_NE(nullptr, funcs.FindByName("mod", 2)) << line;
    }
}

TEST_F(ReadingADefinitionsFile, NamesOfCommandsMayHaveBlanksBehindThem) {
    EXPECT_FALSE(IsDamaged(fileWith(" del = 5\nsigfigs 20 (x) = x\npause = 6\n")));
    EXPECT_EQ("ans = 11\n", Answer("del+pause"));
    EXPECT_EQ(10, calc->sigFigs);
}

// --- Files that would take too long ---

std::string bomb(const std::string& variable) {
    std::string lines = "f0(x)=x+1\n";
    for (int i = 1; i <= 40; i++) {
        const std::string call = "f" + std::to_string(i - 1) + "(x)";
        lines += "f" + std::to_string(i) + "(x)=" + call + "+" + call + "\n";
    }
    return lines + variable + "=f40(1)\n";
}

TEST_F(ReadingADefinitionsFile, ADefinitionThatTakesTooLongIsLeftAlone) {
    const std::string text = fileWith(bomb("a") + "b=2\n");
    putContent(path, text);
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(1U, read.unread);
    EXPECT_EQ(nullptr, calc->VariableExists("a"));
    EXPECT_EQ("ans = 2\n", Answer("b"));
    EXPECT_EQ("ans = 16\n", Answer("f3(1)"));
    EXPECT_TRUE(read.refused.empty());
}

TEST_F(ReadingADefinitionsFile, WhatUsesADefinitionThatWasLeftAloneStaysInTheFileToo) {
    std::string text = fileWith(bomb("a"));
    const std::string variables = "a=f40(1)\nb=a+1\nc=b+1\nd=2\n";
    text.erase(text.find("a=f40(1)\n"), strlen("a=f40(1)\n"));
    text.insert(text.find("### CUSTOM"), variables);
    putContent(path, text);
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(3U, read.unread);
    EXPECT_EQ("ans = 2\n", Answer("d"));
    DefinitionsMerge merge;
    merge.Know(read.text, Text());
    std::error_code reason;
    EXPECT_TRUE(merge.Write(path, Text(), reason));
    for (const char* line : {"\na=f40(1)\n", "\nb=a+1\n", "\nc=b+1\n", "\nd=2\n"})
        EXPECT_NE(std::string::npos, contentOf(path).find(line)) << line;
}

TEST_F(ReadingADefinitionsFile, WhatDefinesNothingIsDamageAlsoBesideADefinitionThatWasLeftAlone) {
    EXPECT_FALSE(IsDamaged(fileWith(bomb("a"))));
    EXPECT_TRUE(IsDamaged(fileWith(bomb("a") + "1+1\n")));
    EXPECT_TRUE(IsDamaged(fileWith("b=a+1\n"))); // nothing was left alone: it is simply wrong
}

TEST_F(ReadingADefinitionsFile, AllDefinitionsTogetherHaveALimit) {
    std::string lines = "b=2\n" + bomb("a");
    for (int i = 0; i < 1000; i++) lines += "a" + std::to_string(i) + "=f40(1)\n";
    putContent(path, fileWith(lines));
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(1001U, read.unread);
    EXPECT_EQ("ans = 2\n", Answer("b"));
}

// Reading them takes 5,800,000 and 17,000,000 units of work, less and more than the limit for evaluations.
TEST_F(ReadingADefinitionsFile, AnyNumberOfPlainDefinitionsIsRead) {
    for (const int count : {4000, 12000}) {
        std::string functions, variables;
        for (int i = 0; i < count; i++) {
            const std::string number = std::to_string(i);
            functions += "f" + number + "(x,y)=x*y+" + std::string(70, '1') + "\n";
            variables += "v" + number + "=1." + std::string(99, '3') + "\n";
            variables += "w" + number + "=2." + std::string(99, '7') + "\n";
            variables += "x" + number + "=3." + std::string(99, '1') + "\n";
        }
        StartAgain();
        putContent(path, fileWith(functions + variables));
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_FALSE(read.damaged);
        EXPECT_EQ(0U, read.unread);
        const std::string last = std::to_string(count - 1);
        EXPECT_EQ("ans = 3\n", Answer("f" + last + "(2,3)-" + std::string(70, '1') + "-3"));
        EXPECT_EQ("ans = 3.111111111\n", Answer("x" + last));
    }
}

// The line of a sum, of so many characters.
std::string longSum(std::string line, size_t characters) {
    if ((characters - line.size()) % 2 != 0) line += '1';
    return line + repeated("+1", (characters - line.size()) / 2) + "\n";
}

// They are no entries: what reading them takes has a limit by itself, which is that of 99 functions of 10,000
// characters each (8 units of work for one, 20 for a line, 8,000,000 for all).
TEST_F(ReadingADefinitionsFile, LongFunctionsTogetherHaveALimit) {
    for (const size_t characters : {TEXT_SIZE - 1, TEXT_SIZE}) {
        std::string lines;
        for (int i = 100; i < 205; ++i) lines += longSum("f" + std::to_string(i) + "(x)=x+1", characters);
        StartAgain();
        putContent(path, fileWith(lines));
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_FALSE(read.damaged);
        EXPECT_EQ(characters == TEXT_SIZE ? 6U : 0U, read.unread) << characters;
    }
}

TEST_F(ReadingADefinitionsFile, AVariableWhoseLineIsNoEntryIsLeftAlone) {
    for (const size_t characters : {TEXT_SIZE - 1, TEXT_SIZE}) {
        StartAgain();
        putContent(path, fileWith(longSum("v=2", characters)));
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_FALSE(read.damaged);
        EXPECT_EQ(characters == TEXT_SIZE ? 1U : 0U, read.unread) << characters;
    }
}

TEST_F(ReadingADefinitionsFile, WhatWasLeftAloneStaysInTheFileWithEverySave) {
    std::string text = fileWith(bomb("a"));
    text.erase(text.find("a=f40(1)\n"), strlen("a=f40(1)\n"));
    text.insert(text.find("### CUSTOM"), "a=f40(1)\n");
    putContent(path, text);
    for (int run = 0; run < 3; run++) {
        StartAgain();
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_FALSE(read.damaged);
        EXPECT_EQ(1U, read.unread);
        DefinitionsMerge merge;
        merge.Know(read.text, Text());
        std::error_code reason;
        for (int save = 0; save < 2; save++) {
            Enter("b" + std::to_string(save) + "=1");
            EXPECT_TRUE(merge.Write(path, Text(), reason));
            EXPECT_NE(std::string::npos, contentOf(path).find("\na=f40(1)\n"));
        }
    }
    Enter("a=5"); // defined anew
    DefinitionsMerge merge;
    std::error_code reason;
    EXPECT_TRUE(merge.Write(path, Text(), reason));
    EXPECT_EQ(std::string::npos, contentOf(path).find("\na=f40(1)\n"));
}

// The file holds the name twice: what could be read counts, and the other line is not lost.
TEST_F(ReadingADefinitionsFile, WhatWasLeftAloneStaysBesideALineOfTheSameNameUntilThatIsDefinedAnew) {
    std::string text = fileWith(bomb("a") + "g(x)=x\n");
    text.insert(text.find("### CUSTOM"), "a=1\n");
    putContent(path, text);
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_EQ(1U, read.unread);
    EXPECT_EQ("ans = 1\n", Answer("a"));
    DefinitionsMerge merge;
    merge.Know(read.text, Text());
    std::error_code reason;
    const auto holds = [this](const char* line) { return contentOf(path).find(line) != std::string::npos; };
    for (const char* entry : {"b=1", "del g"}) {
        Enter(entry);
        EXPECT_TRUE(merge.Write(path, Text(), reason));
        EXPECT_TRUE(holds("\na=1\n") && holds("\na=f40(1)\n")) << contentOf(path);
        EXPECT_EQ(entry == std::string("b=1"), holds("\ng(x)=x\n"));
    }
    Enter("a=5");
    EXPECT_TRUE(merge.Write(path, Text(), reason));
    EXPECT_TRUE(holds("\na=5\n"));
    EXPECT_FALSE(holds("a=1\n") || holds("a=f40(1)"));
}

// A name of five letters for every number below 26^3.
std::string unitName(int number) {
    std::string name = "qq";
    for (int i = 0; i < 3; i++, number /= 26) name += static_cast<char>('a' + number % 26);
    return name;
}

// The retries alone would take some thousand times as long and pass the limit.
TEST_F(ReadingADefinitionsFile, AShuffledChainOfUnitsOrVariablesIsReadInOnePass) {
    constexpr int LENGTH = 5000;
    std::string units;
    std::string variables;
    for (int i = 0; i < LENGTH; i++) {
        const int number = (i * 2741) % LENGTH; // 2741 is a prime: each number once
        const std::string next = unitName(number + 1);
        units += "unit " + unitName(number) + "=" + (number + 1 == LENGTH ? "3 m" : "1 " + next) + "\n";
        variables += unitName(number) + "=" + (number + 1 == LENGTH ? "3" : next) + "\n";
    }
    putContent(path, fileWith(variables + units));
    const DefinitionsRead read = readDefinitions(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(0U, read.unread);
    EXPECT_EQ(LENGTH, calc->unitDefs.count);
    EXPECT_EQ("ans = 6\n", Answer("2 qqaaa->m"));
    EXPECT_EQ("ans = 3\n", Answer("qqaaa"));
}

TEST_F(ReadingADefinitionsFile, AChainOfPluralsAndPrefixesMayBeInAnyOrder) {
    EXPECT_FALSE(IsDamaged(fileWith("unit qqa=2 qqbs\nunit qqd=3 m\nunit qqc=2 kiloqqd\nunit qqb=2 qqcs\n")));
    EXPECT_EQ("ans = 24000\n", Answer("1 qqa->m"));
}

TEST_F(ReadingADefinitionsFile, AVariableMayUseOneFurtherDownThroughAFunction) {
    EXPECT_FALSE(IsDamaged(fileWith("a=f(1)\nf(x)=g(x)+1\ng(x)=x*rate\nrate=2.5\n")));
    EXPECT_EQ("ans = 3.5\n", Answer("a"));
}

TEST_F(ReadingADefinitionsFile, FunctionsThatUseEachOtherInACircleAreThereAgain) {
    const std::string text = "f(x)=g(x,1)\ng(x,y)=f(x)\n";
    EXPECT_FALSE(IsDamaged(fileWith(text)));
    EXPECT_NE(std::string::npos, Text().find(text));
}

TEST_F(ReadingADefinitionsFile, UnitsThatUseEachOtherInACircleAreRefused) {
    EXPECT_TRUE(IsDamaged(fileWith("unit qqa=2 qqb\nunit qqb=2 qqa\nunit qqc=2 m\n")));
    EXPECT_EQ(1, calc->unitDefs.count);
}

TEST_F(ReadingADefinitionsFile, ALineOfTenMegabytesIsLeftAlone) {
    const std::string sum = repeated("+1", 5000000);
    for (const char* start : {"f(x)=x", "a=1", "unit smoot=1"}) {
        StartAgain();
        putContent(path, fileWith(start + sum + "\nv=5\n"));
        const DefinitionsRead read = readDefinitions(*calc, path);
        EXPECT_FALSE(read.damaged) << start;
        EXPECT_EQ(1U, read.unread) << start;
        EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
        EXPECT_EQ("ans = 5\n", Answer("v"));
    }
}

TEST_F(ReadingADefinitionsFile, EveryBeginningOfAFileIsReadWithoutHarm) {
    for (const char* line : {"f(x)=x*(2 km->m)", "v=1/3", "unit smoot=67 inch", "f(v)"}) Enter(line);
    const std::string text = Text();
    for (size_t length = 0; length < text.size(); length++)
        EXPECT_TRUE(IsDamaged(text.substr(0, length)) ||
                    (text[length - 1] == '\n' && length > text.find("### HISTORY")));
}

TEST_F(ReadingADefinitionsFile, ThousandsOfDefinitionsAreThereAgain) {
    for (int i = 1000; i > 0; i--) {
        const std::string number = std::to_string(i);
        Enter("f" + number + "(x)=x+" + number + "*f" + std::to_string(i - 1) + "(x)");
        Enter("v" + number + "=1/" + number);
    }
    calc->history.Clear();
    ExpectNothingLost();
}

} // namespace
