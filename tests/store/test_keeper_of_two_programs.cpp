// SPDX-License-Identifier: MIT
//
// Two programs that keep their definitions in one file: what the other one changed, and what stays.
#include "../seed.h"
#include "keeper_fixture.h"

#include <ctime>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
#include <random>

namespace {

class TwoPrograms : public Kept {
protected:
    void Begin(std::initializer_list<const char*> lines) {
        keeper.LeaveHistory(); // it would hold the same lines
        for (const char* line : lines) Enter(line);
        keeper.SaveDefinitions(*calc);
        StartAgain();
        EXPECT_EQ("", keeper.ReadDefinitions(*calc));
    }

    void ElsewhereReplace(const std::string& line, const std::string& other) {
        std::string text = Definitions();
        const size_t start = text.find("\n" + line + "\n");
        ASSERT_NE(std::string::npos, start) << line << " in " << text;
        text.replace(start + 1, line.size() + 1, other.empty() ? "" : other + "\n");
        putContent(File("pelmo_functions.txt"), text);
    }

    // An entry of this program, which is saved.
    std::string EnterAndSave(const std::string& line) {
        keeper.TakeForeignDefinitions(*calc);
        EnterAndNote(line.c_str());
        const std::string answer = calc->status == STATUS_RESULT ? calc->resultLine : calc->message;
        SaveBoth();
        return answer;
    }
};

TEST_F(TwoPrograms, AVariableThatIsChangedElsewhereHasItsNewValueHereAndInTheFile) {
    Begin({"v=2"});
    ElsewhereReplace("v=2", "v=33");
    EXPECT_EQ("ans = 33\n", EnterAndSave("v"));
    EXPECT_TRUE(Holds("\nv=33\n"));
    EXPECT_FALSE(Holds("\nv=2\n"));
}

TEST_F(TwoPrograms, WhatIsDeletedElsewhereIsGoneHereAndInTheFile) {
    Begin({"v=2", "w=3", "fa(x)=x*2", "fa(x,y)=x*y", "unit smoot=67 inch", "unit ell=1.1 m"});
    for (const char* line : {"v=2", "fa(x)=x*2", "unit smoot=67 inch"}) ElsewhereReplace(line, "");
    EXPECT_EQ("ans = 2\n", EnterAndSave("1+1"));
    for (const char* line : {"\nv=2\n", "\nfa(x)=x*2\n", "\nunit smoot=67 inch\n"}) EXPECT_FALSE(Holds(line));
    for (const char* line : {"\nw=3\n", "\nfa(x,y)=x*y\n", "\nunit ell=1.1 m\n"}) EXPECT_TRUE(Holds(line));
    EXPECT_EQ(nullptr, calc->VariableExists("v"));
    EXPECT_EQ(nullptr, funcs.FindByName("fa", 1));
    EXPECT_EQ(STATUS_ERROR, Enter("1 smoot->m"));
    EXPECT_EQ("ans = 6\n", Answer("fa(w,2)"));
    EXPECT_EQ("ans = 2.2\n", Answer("2 ell->m"));
}

TEST_F(TwoPrograms, AFunctionAndAUnitThatAreChangedElsewhereAreChangedHere) {
    Begin({"fa(x)=x*2", "unit smoot=67 inch"});
    ElsewhereReplace("fa(x)=x*2", "fa(x)=x*5");
    ElsewhereReplace("unit smoot=67 inch", "unit smoot=3 m");
    EXPECT_EQ("ans = 20\n", EnterAndSave("fa(4)"));
    EXPECT_EQ("ans = 6\n", EnterAndSave("2 smoot->m"));
    EXPECT_EQ(1, calc->unitDefs.count);
    EXPECT_TRUE(Holds("\nfa(x)=x*5\n") && Holds("\nunit smoot=3 m\n"));
}

TEST_F(TwoPrograms, WhatBothChangeIsWhatIsWrittenLast) {
    Begin({"v=2"});
    EnterAndNote("v=5");
    ElsewhereReplace("v=2", "v=33");
    EXPECT_EQ("ans = 5\n", EnterAndSave("v"));
    EXPECT_TRUE(Holds("\nv=5\n"));
    ElsewhereReplace("v=5", "v=6");
    EXPECT_EQ("ans = 6\n", EnterAndSave("v"));
    EXPECT_EQ("ans = 7\n", EnterAndSave("v+1")); // no more flipping
    EXPECT_TRUE(Holds("\nv=6\n"));
}

TEST_F(TwoPrograms, TheLastAnswerStaysThatOfThisOne) {
    Begin({"v=2"});
    EXPECT_EQ("ans = 10\n", EnterAndSave("5+5"));
    ElsewhereReplace("ans=10", "ans=2");
    EXPECT_EQ("ans = 40\n", EnterAndSave("ans*4"));
}

TEST_F(TwoPrograms, AFileThatWentAwayOrIsDamagedDeletesNothing) {
    Begin({"v=2", "fa(x)=x*2"});
    std::filesystem::remove(File("pelmo_functions.txt"));
    EXPECT_EQ("ans = 4\n", EnterAndSave("fa(v)"));
    EXPECT_TRUE(Holds("\nv=2\n") && Holds("\nfa(x)=x*2\n"));
    for (const char* text : {"", "### FUNCTIONS ###\n### VARIABLES ###\nv=", "nothing"}) {
        putContent(File("pelmo_functions.txt"), text);
        EXPECT_EQ("ans = 4\n", EnterAndSave("fa(v)"));
        EXPECT_TRUE(Holds("\nv=2\n") && Holds("\nfa(x)=x*2\n"));
    }
}

// A variable that is deleted was the one that was just assigned, which the engine remembers.
TEST_F(TwoPrograms, TheVariableOfTheLastEntryMayBeDeletedElsewhere) {
    Begin({"w=3"});
    EXPECT_EQ("v = 2\n", EnterAndSave("v=2"));
    ElsewhereReplace("v=2", "");
    EXPECT_EQ("** DISPLAY HEX **\n", EnterAndSave("display hex"));
    EXPECT_EQ("ans = 0x0003\n", EnterAndSave("w"));
    EXPECT_FALSE(Holds("\nv=2\n"));
}

TEST_F(TwoPrograms, AFileAtRestIsReadOnce) {
    Begin({"v=2"});
    system.wallTime += 10;
    keeper.TakeForeignDefinitions(*calc);
    system.readings = 0;
    for (int i = 0; i < 3; ++i) {
        keeper.TakeForeignDefinitions(*calc);
        EnterAndNote("1+1");
    }
    EXPECT_EQ(0, system.readings);
    ElsewhereReplace("v=2", "v=3");
    keeper.TakeForeignDefinitions(*calc);
    EXPECT_EQ(1, system.readings);
    EXPECT_EQ("ans = 3\n", Answer("v"));
}

TEST_F(TwoPrograms, AFileThatWasAtRestAtTheStartIsNotReadBeforeTheFirstEntry) {
    Begin({"v=2"});
    StartAgain();
    system.wallTime += 10;
    EXPECT_EQ("", keeper.ReadDefinitions(*calc));
    system.readings = 0;
    keeper.TakeForeignDefinitions(*calc);
    EXPECT_EQ(0, system.readings);
    EXPECT_EQ("ans = 2\n", Answer("v"));
}

TEST_F(TwoPrograms, AClockThatJumpsLosesNothing) {
    constexpr time_t YEARS = 30 * 31556952LL;
    Begin({"v=0"});
    int value = 0;
    for (const time_t jump : {YEARS, -2 * YEARS, YEARS, time_t{-10}, time_t{10}, -system.wallTime}) {
        const std::string before = "v=" + std::to_string(value++);
        const std::string behind = "v=" + std::to_string(value);
        system.wallTime += jump;
        ElsewhereReplace(before, behind);
        const std::string own = "w" + std::to_string(value);
        EXPECT_EQ(own + " = 5\n", EnterAndSave(own + "=5"));
        EXPECT_TRUE(Holds("\n" + behind + "\n") && Holds("\n" + own + "=5\n")) << jump;
    }
    for (int i = 1; i <= value; i++) EXPECT_TRUE(Holds("\nw" + std::to_string(i) + "=5\n"));
}

TEST_F(TwoPrograms, AChangeInTheSameTickOfTheClockIsNotMissed) {
    Begin({"v=2"});
    system.isInOneTick = true;
    for (const char value : {'3', '4'}) {
        std::string text = Definitions(); // written into the same file
        text[text.find("\nv=") + 3] = value;
        std::ofstream(File("pelmo_functions.txt"), std::ios::in) << text;
        keeper.TakeForeignDefinitions(*calc);
        EXPECT_EQ(std::string("ans = ") + value + "\n", Answer("v"));
    }
}

TEST_F(TwoPrograms, WhatIsKeptElsewhereStaysSo) {
    Begin({"v=2"});
    const std::string before = Text();
    Enter("rate=7"); // the init file, say
    keeper.LeaveOut(before, *calc);
    ElsewhereReplace("v=2", "v=33");
    EXPECT_EQ("ans = 40\n", EnterAndSave("v+rate"));
    EXPECT_FALSE(Holds("\nrate=7\n"));
}

TEST_F(TwoPrograms, WhatIsMadeOfWhatIsKeptElsewhereIsThereWithoutThat) {
    Begin({"v=2"});
    const std::string before = Text();
    for (const char* line : {"unit ell=2 m", "unit bead=-primitive", "unit pearl=-primitive", "ten(x)=10*x"})
        Enter(line); // the init file, say
    keeper.LeaveOut(before, *calc);
    for (const char* line :
         {"unit rod=3 ell", "unit stride=5 kiloell", "unit pole=2 rod", "unit string=100 beads",
          "unit xpearl=2 m", "unit chain=4 xpearl", "w=2 rod->ell", "fa(x)=ten(x)+(x ell->m)"})
        EnterAndSave(line);
    EXPECT_FALSE(Holds("\nunit ell=") || Holds("\nunit pearl=") || Holds("\nten(x)="));
    EXPECT_TRUE(Holds("\nunit pole=2 rod\n")) << "rod is kept: " << Definitions();
    EXPECT_TRUE(Holds("\nunit chain=4 xpearl\n")) << "which is no pearl: " << Definitions();
    StartAgain();
    EXPECT_EQ("", keeper.ReadDefinitions(*calc)) << Definitions();
    EXPECT_EQ("ans = 6\n", Answer("1 rod->m"));
    EXPECT_EQ("ans = 10000\n", Answer("1 stride->m"));
    EXPECT_EQ("ans = 12\n", Answer("1 pole->m"));
    EXPECT_EQ("ans = 100\n", Answer("1 string->bead"));
    EXPECT_EQ("ans = 6\n", Answer("w"));
    EXPECT_NE(nullptr, funcs.FindByName("fa", 1));
    SaveBoth();
    EXPECT_TRUE(Holds("\nunit rod=") && Holds("\nunit bead=-primitive\n"));
}

// Variables alone: functions and units are those of the process.
TEST_F(TwoPrograms, KeepersAtRandomDoWhatAPlainModelDoes) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    const auto pick = [&random](size_t count) { return static_cast<size_t>(random() % count); };
    Begin({"va=1", "vb=1"});
    Keeper another(system);
    another.Open(folder.File("Tallyquill"));
    another.LeaveHistory();
    ZqCalculator other;
    other.InitializeFunctionsAndVars();
    ASSERT_EQ("", another.ReadDefinitions(other));
    struct Program {
        Keeper& keeper;
        ZqCalculator& calc;
        std::map<std::string, int> values, before; // 0: there is none
    };
    std::map<std::string, int> file = {{"va", 1}, {"vb", 1}, {"vc", 0}};
    Program programs[] = {{keeper, *calc, file, file}, {another, other, file, file}};
    for (int step = 0; step < 300; step++) {
        SCOPED_TRACE(step);
        Program& one = programs[pick(2)];
        one.keeper.TakeForeignDefinitions(one.calc);
        for (auto& [name, value] : one.values) {
            if (value == one.before[name]) value = file[name];
            if (value == file[name]) one.before[name] = value;
            const node* const variable = one.calc.VariableExists(name.c_str());
            ASSERT_EQ(value != 0, variable != nullptr) << name;
            const double number = value;
            qfloat expected;
            etoq(&number, expected);
            ASSERT_TRUE(value == 0 || qcmp(*variable->value, expected) == 0) << name;
        }
        const std::string name = std::next(file.begin(), static_cast<long>(pick(file.size())))->first;
        const int value = static_cast<int>(pick(4));
        if (value != 0 || one.values[name] != 0)
            one.calc.ProcessEntry((value ? name + "=" + std::to_string(value) : "del " + name).c_str(),
                                  false);
        one.values[name] = value;
        one.keeper.NoteChange();
        if (pick(2) == 0) continue;
        one.keeper.SaveDefinitions(one.calc);
        for (const auto& [written, now] : one.values) {
            if (now != one.before[written]) file[written] = now;
        }
        one.before = one.values;
        for (const auto& [written, now] : file)
            ASSERT_EQ(now != 0, now ? Holds(("\n" + written + "=" + std::to_string(now) + "\n").c_str())
                                    : Holds(("\n" + written + "=").c_str()));
    }
}

} // namespace
