// SPDX-License-Identifier: MIT
//
// What is kept, when it is written, and what could not be written.
#include "Keeper.h"

#include "../seed.h"
#include "definitions_file_fixture.h"

#include <cstring>
#include <ctime>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <map>
#include <random>

namespace {

// A clock that is set by hand, and calls that fail when they are told to.
class TestSystem : public System {
public:
    Time Now() override { return now; }
    int MakeTemporary(char* name) override { return Fails(writingError) ? -1 : System::MakeTemporary(name); }
    int Rename(const char* from, const char* to) override {
        return Fails(renamingError) ? -1 : System::Rename(from, to);
    }
    time_t WallTime() override { return wallTime; }
    int Open(const char* path, int flags, mode_t mode) override {
        const std::string name = path;
        readings += flags == (O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) &&
                    name.find("functions.txt") + 13 == name.size();
        return System::Open(path, flags, mode);
    }
    int Status(const char* path, struct stat& info) override {
        const int result = System::Status(path, info);
        if (isInOneTick) {
#ifdef __APPLE__
            info.st_mtimespec = info.st_ctimespec = {wallTime, 0};
#else
            info.st_mtim = info.st_ctim = {wallTime, 0};
#endif
        }
        return result;
    }
    void Wait(double seconds) {
        now += std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
    }

    int writingError = 0;
    int renamingError = 0;
    int readings = 0; // of the definitions file
    time_t wallTime = time(nullptr);
    bool isInOneTick = false; // all files were changed just now

private:
    static bool Fails(int error) {
        if (error != 0) errno = error;
        return error != 0;
    }

    Time now{};
};

class Kept : public DefinitionsFile {
protected:
    Kept() { keeper.Open(folder.File("Tallyquill")); }

    std::string File(const char* name) const { return folder.File("Tallyquill/" + std::string(name)); }
    std::string SettingsFile() const { return contentOf(File("pelmo_settings.plist")); }
    std::string Definitions() const { return contentOf(File("pelmo_functions.txt")); }
    bool Holds(const char* line) const { return Definitions().find(line) != std::string::npos; }
    static std::string Reason(int error) { return std::string(" (") + strerror(error) + ")"; }

    // An entry, as a front end carries it out.
    void EnterAndNote(const char* line) {
        keeper.EntryWillRun(*calc, false);
        Enter(line);
        keeper.EntryDidRun();
        keeper.NoteChange();
    }

    void SaveBoth() {
        keeper.SaveBoth(*calc, "settings");
        keeper.Finish();
    }

    TestSystem system;
    Keeper keeper{system};
};

TEST_F(Kept, IsInTwoFilesOfAFolderThatIsMade) {
    Enter("a=1");
    keeper.SaveSettings("settings");
    keeper.SaveDefinitions(*calc);
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("settings", keeper.Settings());
    EXPECT_EQ(Text(), Definitions());
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, IsThereAgainInTheNextRun) {
    Enter("a=1");
    SaveBoth();
    StartAgain();
    EXPECT_EQ("", keeper.ReadDefinitions(*calc));
    EXPECT_EQ("ans = 1\n", Answer("a"));
}

TEST_F(Kept, IsNotWrittenBeforeTheFolderIsKnownAndAfterTheEnd) {
    Keeper unopened(system);
    for (Keeper* const closed : {&unopened, &keeper}) {
        closed->Close();
        closed->SaveSettings("settings");
        closed->SaveDefinitions(*calc);
        closed->SaveBoth(*calc, "settings");
        closed->KeepSettingsBeside();
        EXPECT_EQ("", closed->ReadDefinitions(*calc));
        EXPECT_EQ("", closed->Settings());
        EXPECT_EQ("", closed->TakeFailures());
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.File("Tallyquill")));
}

TEST_F(Kept, IsDueASecondAfterTheFirstChange) {
    EXPECT_FALSE(keeper.IsDue());
    EXPECT_TRUE(keeper.NoteChange());
    EXPECT_FALSE(keeper.IsDue());
    system.Wait(0.5);
    EXPECT_FALSE(keeper.NoteChange()); // a timer runs already
    system.Wait(0.5);
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_FALSE(keeper.IsDue());
    EXPECT_TRUE(keeper.NoteChange());
}

TEST_F(Kept, IsDueLaterAmongEntriesWithoutARest) {
    keeper.NoteChange();
    system.Wait(1);
    EXPECT_FALSE(keeper.IsDue(Keeper::DELAY_WITHOUT_REST));
    EXPECT_TRUE(keeper.IsDue());
    system.Wait(0.75);
    EXPECT_TRUE(keeper.IsDue(Keeper::DELAY_WITHOUT_REST));
}

TEST_F(Kept, OfARunningEntryIsWhatWasThereBeforeItOnce) {
    EnterAndNote("a=1");
    system.Wait(1);
    keeper.EntryWillRun(*calc, false);
    Enter("b=2");
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_TRUE(Holds("\na=1\n"));
    EXPECT_FALSE(Holds("\nb=2\n"));
    EXPECT_FALSE(keeper.IsDue());
    keeper.EntryDidRun();
    EXPECT_TRUE(keeper.IsDue());
    SaveBoth();
    EXPECT_TRUE(Holds("\nb=2\n"));
    EXPECT_FALSE(keeper.IsDue());
}

TEST_F(Kept, OfARunningEntryIsNothingWhenAllWasWrittenBeforeIt) {
    Enter("a=1");
    keeper.SaveDefinitions(*calc);
    keeper.EntryWillRun(*calc, false);
    Enter("b=2");
    system.Wait(10);
    EXPECT_FALSE(keeper.IsDue());
    SaveBoth();
    EXPECT_FALSE(Holds("\nb=2\n"));
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, TakesItsFolderBeingTakenAway) {
    std::filesystem::remove_all(folder.File("Tallyquill"));
    SaveBoth();
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, RemovesWhatKilledProgramsLeft) {
    putContent(File("pelmo_functions.txt.tallyquill-aB3dEf"), "half");
    putContent(File("pelmo_settings.plist.tallyquill-aB3dEf"), "half");
    keeper.Open(folder.File("Tallyquill"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.File("Tallyquill")));
}

// --- What could not be written ---

TEST_F(Kept, NamesBothFilesThatCannotBeWrittenOnce) {
    system.writingError = ENOSPC;
    SaveBoth();
    EXPECT_EQ("Not saved: pelmo_functions.txt, pelmo_settings.plist" + Reason(ENOSPC), keeper.TakeNews());
    SaveBoth();
    EXPECT_EQ("", keeper.TakeNews());
    system.writingError = EROFS; // another reason
    keeper.SaveDefinitions(*calc);
    EXPECT_EQ("Not saved: pelmo_functions.txt" + Reason(EROFS), keeper.TakeNews());
    const std::string functions = "pelmo_functions.txt" + Reason(EROFS);
    const std::string settings = "pelmo_settings.plist" + Reason(ENOSPC);
    const std::string all = keeper.TakeFailures();
    EXPECT_TRUE(all == "Not saved: " + functions + ", " + settings ||
                all == "Not saved: " + settings + ", " + functions)
        << all;
    EXPECT_EQ("", keeper.TakeFailures());
}

TEST_F(Kept, IsWrittenWithTheNextChangeWhenItCouldNotBeWritten) {
    system.writingError = ENOSPC;
    EnterAndNote("a=1");
    SaveBoth();
    system.writingError = 0;
    EnterAndNote("b=2");
    SaveBoth();
    EXPECT_TRUE(Holds("\na=1\n") && Holds("\nb=2\n"));
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, IsTheLastOfManyTexts) {
    for (int i = 0; i < 50; i++) keeper.SaveBoth(*calc, std::to_string(i));
    keeper.Finish();
    EXPECT_EQ("49", SettingsFile());
}

TEST_F(Kept, IsWrittenWhenTheKeeperGoesAway) {
    {
        Keeper another;
        another.Open(folder.File("Tallyquill"));
        another.SaveBoth(*calc, std::string(1000000, 'x'));
    }
    EXPECT_EQ(1000000U, SettingsFile().size());
}

TEST_F(Kept, IsInTheOtherFileWhenOneCannotBeWritten) {
    std::filesystem::create_directory(File("pelmo_settings.plist"));
    Enter("a=1");
    SaveBoth();
    keeper.Finish();
    EXPECT_TRUE(Holds("\na=1\n"));
    EXPECT_EQ("Not saved: pelmo_settings.plist" + Reason(EISDIR), keeper.TakeFailures());
    EXPECT_EQ("", keeper.TakeFailures());
}

TEST_F(Kept, IsToldOfAgainWhenItCouldBeWrittenMeanwhile) {
    const auto hasNews = [this](int error) {
        system.writingError = error;
        SaveBoth();
        return !keeper.TakeNews().empty();
    };
    EXPECT_TRUE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(0));
    EXPECT_TRUE(hasNews(ENOSPC));
    EXPECT_FALSE(hasNews(ENOSPC));
}

// --- What is damaged ---

TEST_F(Kept, IsSaidToBeDamagedAndIsKeptBeside) {
    const std::string damaged = "### FUNCTIONS ###\nf(x)=(((\na=1\n### HISTORY ###\n";
    putContent(File("pelmo_functions.txt"), damaged);
    EXPECT_EQ("Not all of pelmo_functions.txt could be read: see pelmo_functions.txt.unreadable",
              keeper.ReadDefinitions(*calc));
    EXPECT_EQ(damaged, contentOf(File("pelmo_functions.txt.unreadable")));
    putContent(File("pelmo_settings.plist"), "damaged");
    keeper.KeepSettingsBeside();
    SaveBoth();
    EXPECT_EQ("damaged", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_TRUE(Holds("\na=1\n"));
}

TEST_F(Kept, IsNotOverwrittenBeforeThereIsACopyOfWhatIsDamaged) {
    putContent(File("pelmo_functions.txt"), "damaged definitions");
    putContent(File("pelmo_settings.plist"), "damaged settings");
    system.renamingError = EACCES; // no copy gets its name
    keeper.ReadDefinitions(*calc);
    keeper.KeepSettingsBeside();
    system.renamingError = 0;
    system.writingError = ENOSPC;
    SaveBoth();
    EXPECT_EQ("damaged definitions", Definitions());
    EXPECT_EQ("damaged settings", SettingsFile());
    EXPECT_EQ("Not saved: pelmo_functions.txt, pelmo_settings.plist" + Reason(ENOSPC), keeper.TakeNews());
    system.writingError = 0;
    SaveBoth();
    EXPECT_EQ("damaged definitions", contentOf(File("pelmo_functions.txt.unreadable")));
    EXPECT_EQ("damaged settings", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ(Text(), Definitions());
    EXPECT_EQ("settings", SettingsFile());
    EXPECT_EQ("", keeper.TakeNews());
}

// Ten copies are enough: a program that never saved again would lose more.
TEST_F(Kept, IsOverwrittenWhenThereAreTenCopiesAlready) {
    putContent(File("pelmo_settings.plist"), "damaged");
    putContent(File("pelmo_settings.plist.unreadable"), "0");
    for (char i = '1'; i <= '9'; i++)
        putContent(File("pelmo_settings.plist.unreadable.") + i, std::string(1, i));
    keeper.KeepSettingsBeside();
    keeper.SaveSettings("settings");
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, IsNotOverwrittenWhenOnlyTheLastOfTheCopiesIsThere) {
    putContent(File("pelmo_settings.plist"), "damaged");
    putContent(File("pelmo_settings.plist.unreadable.9"), "older");
    system.writingError = ENOSPC;
    keeper.KeepSettingsBeside();
    system.writingError = 0;
    keeper.SaveSettings("settings");
    EXPECT_EQ("damaged", contentOf(File("pelmo_settings.plist.unreadable")));
    EXPECT_EQ("settings", SettingsFile());
}

TEST_F(Kept, WhatAnotherProgramDefinesIsTakenIntoTheCalculator) {
    keeper.ReadDefinitions(*calc);
    EnterAndNote("mine=1");
    SaveBoth();
    std::string text = Definitions();
    text.insert(text.find("### VARIABLES"), "yours(x)=x*3\n");
    putContent(File("pelmo_functions.txt"), text);
    keeper.TakeForeignDefinitions(*calc);
    Enter("yours(14)");
    EXPECT_STREQ("ans = 42\n", calc->resultLine);
    Enter("del yours");
    keeper.TakeForeignDefinitions(*calc); // the file is as it was seen
    SaveBoth();
    EXPECT_FALSE(Holds("yours(x)=x*3"));
    EXPECT_TRUE(Holds("mine=1"));
}

// --- Two programs ---

// Another program, as the file sees it: it reads the file, changes its text and writes it.
// --- The transcript ---

TEST_F(Kept, TheTranscriptIsWrittenBesideTheOtherFilesWhenItHasChanged) {
    EXPECT_EQ("", keeper.ReadTranscript());
    keeper.SetTranscript("> 1+1\nans = 2\n");
    SaveBoth();
    EXPECT_EQ("> 1+1\nans = 2\n", contentOf(File("transcript.txt")));
    struct stat info = {};
    ASSERT_EQ(0, stat(File("transcript.txt").c_str(), &info));
    EXPECT_EQ(0600U, info.st_mode & 07777U);
    putContent(File("transcript.txt"), "of another window\n");
    keeper.SetTranscript("> 1+1\nans = 2\n");
    keeper.SaveSettings("settings");
    EXPECT_EQ("of another window\n", contentOf(File("transcript.txt"))) << "nothing has changed here";
    keeper.SetTranscript("3\n");
    keeper.SaveSettings("settings");
    EXPECT_EQ("3\n", keeper.ReadTranscript());
}

TEST_F(Kept, AnEmptyTranscriptHasNoFile) {
    putContent(File("transcript.txt"), "x\x1b\n");
    EXPECT_EQ("x?\n", keeper.ReadTranscript());
    keeper.SetTranscript("");
    SaveBoth();
    struct stat info = {};
    EXPECT_NE(0, stat(File("transcript.txt").c_str(), &info));
    EXPECT_EQ("", keeper.ReadTranscript());
    keeper.SetTranscript("");
    SaveBoth();
    EXPECT_EQ("", keeper.TakeNews());
}

TEST_F(Kept, ATranscriptThatWasNotReadIsNotTouched) {
    putContent(File("transcript.txt"), "x\n");
    keeper.SetTranscript("");
    SaveBoth();
    EXPECT_EQ("x\n", contentOf(File("transcript.txt")));
}

TEST_F(Kept, ATranscriptThatCouldNotBeWrittenIsToldOfAndWrittenLater) {
    keeper.ReadTranscript();
    ASSERT_EQ(0, mkdir(File("transcript.txt").c_str(), 0700));
    keeper.SetTranscript("x\n");
    SaveBoth();
    EXPECT_EQ("Not saved: transcript.txt" + Reason(EISDIR), keeper.TakeNews());
    ASSERT_EQ(0, rmdir(File("transcript.txt").c_str()));
    keeper.SetTranscript("x\n");
    SaveBoth();
    EXPECT_EQ("x\n", contentOf(File("transcript.txt")));
    EXPECT_EQ("", keeper.TakeFailures());
}

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
    std::string EnterAndSave(const char* line) {
        keeper.TakeForeignDefinitions(*calc);
        EnterAndNote(line);
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
    for (const char* line : {"unit rod=3 ell", "unit stride=5 kiloell", "unit pole=2 rod",
                             "unit string=100 beads", "w=2 rod->ell", "fa(x)=ten(x)+(x ell->m)"})
        EnterAndSave(line);
    EXPECT_FALSE(Holds("\nunit ell=") || Holds("\nunit pearl=") || Holds("\nten(x)="));
    EXPECT_TRUE(Holds("\nunit pole=2 rod\n")) << "rod is kept: " << Definitions();
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
