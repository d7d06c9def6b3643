// SPDX-License-Identifier: MIT
//
// Functions, variables, units and history from one run of the window to the next.
#import "console_fixture.h"

#include "../seed.h"
#include "damage.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

class FunctionsFileOfTheWindow : public ConsoleTest {
protected:
    void run(const char* line) { [console ProcessResult:line:NO]; }
    using ConsoleTest::Run;

    std::string File() const { return Read(FunctionsPath()); }
    bool Holds(const std::string& line) const { return File().find("\n" + line + "\n") != std::string::npos; }

    // Waits until the line is in the file, for five seconds at most.
    bool ComesToHold(const std::string& line) {
        for (int i = 0; i < 100 && !Holds(line); ++i) Run(0.05);
        return Holds(line);
    }

    // What an entry answers, without its line feed.
    std::string Answer(const char* line) {
        run(line);
        const std::string text = calc.status == STATUS_RESULT ? calc.resultLine : calc.message;
        return text.substr(0, text.find('\n'));
    }

    void ExpectUsable() {
        run("display dec");
        EXPECT_EQ(Answer("40+2"), "ans = 42");
    }

    void StartOver(const std::string& text) {
        Write(FunctionsPath(), text);
        Restart();
    }

    std::vector<std::string> FilesInFolder() const {
        std::vector<std::string> names;
        DIR* const opened = opendir(Folder().c_str());
        while (const dirent* const entry = opened ? readdir(opened) : nullptr) {
            if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
        }
        if (opened) closedir(opened);
        return names;
    }

    void DefineSomething() {
        run("square(x)=x^2");
        run("side=12.5");
        run("unit smoot=67 inch");
        run("square(side)");
    }

    void ExpectSomething() {
        EXPECT_EQ(Answer("square(3)"), "ans = 9");
        EXPECT_EQ(Answer("side"), "ans = 12.5");
        EXPECT_EQ(Answer("2 smoot->inch"), "ans = 134");
    }
};

// --- The file ---

TEST_F(FunctionsFileOfTheWindow, HasItsFourSectionsInOrder) {
    for (const char* const line : {"square(x)=x^2", "side=12.5", "unit smoot=67 inch", "square(side)"})
        Enter(line);
    Terminate();
    const std::string text = File();
    const char* const inOrder[] = {"### FUNCTIONS ###\n",    "\nsquare(x)=x^2\n",  "\n### VARIABLES ###\n",
                                   "\nans=156.25\n",         "\nside=12.5\n",      "\n### CUSTOM UNITS ###\n",
                                   "\nunit smoot=67 inch\n", "\n### HISTORY ###\n"};
    size_t place = 0;
    for (const char* const line : inOrder) {
        const size_t found = text.find(line);
        ASSERT_NE(found, std::string::npos) << line;
        EXPECT_GE(found, place) << line;
        place = found;
    }
    EXPECT_EQ(text.rfind("### FUNCTIONS ###\n", 0), 0U);
    EXPECT_EQ(text.substr(text.find("### HISTORY ###\n")),
              "### HISTORY ###\nsquare(x)=x^2\nside=12.5\nunit smoot=67 inch\nsquare(side)\n");
    EXPECT_EQ(text.find("sin("), std::string::npos); // predefined functions are not written
}

TEST_F(FunctionsFileOfTheWindow, AnEmptyHistoryIsAnEmptySection) {
    Terminate();
    const std::string end = "### CUSTOM UNITS ###\n### HISTORY ###\n";
    const std::string text = File();
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(FunctionsFileOfTheWindow, WhatWasDefinedIsThereInTheNextRun) {
    DefineSomething();
    Terminate();
    Restart();
    EXPECT_EQ(Text(), "> "); // reading shows nothing
    EXPECT_TRUE(alerts.empty());
    ExpectSomething();
}

TEST_F(FunctionsFileOfTheWindow, ASecondRunWritesTheSameFile) {
    DefineSomething();
    Terminate();
    const std::string first = File();
    Restart();
    Terminate();
    EXPECT_EQ(File(), first);
    EXPECT_EQ(FilesInFolder().size(), 2U); // no temporary file is left
}

TEST_F(FunctionsFileOfTheWindow, AVariableKeepsAHundredDigits) {
    run("third=1/3");
    Terminate();
    EXPECT_TRUE(Holds("third=0." + std::string(100, '3')));
    Restart();
    EXPECT_EQ(Answer("abs(third*3-1) < 1e-99"), "ans = 1");
}

TEST_F(FunctionsFileOfTheWindow, HasDecimalPointsAlsoInEuropeanAndTenKeyMode) {
    [console setSetting:@"european" to:1];
    [console setSetting:@"tenkey" to:1];
    run("rate=1,5");
    run("grow(x)=x*2,25");
    Terminate();
    EXPECT_TRUE(Holds("rate=1.5"));
    EXPECT_TRUE(Holds("grow(x)=x*2.25"));
    Restart();
    EXPECT_TRUE(calc.european);
    EXPECT_TRUE(calc.tenKey);
    calc.european = calc.tenKey = false;
    [console setSetting:@"european" to:0];
    EXPECT_EQ(Answer("rate"), "ans = 1.5");
    EXPECT_EQ(Answer("grow(4)"), "ans = 9");
}

TEST_F(FunctionsFileOfTheWindow, TheFlagsComeBackFromTheSettingsWithoutAFileToo) {
    [console setSetting:@"european" to:1];
    [console setSetting:@"tenkey" to:1];
    [console saveSettings];
    unlink(FunctionsPath().c_str());
    Restart();
    EXPECT_TRUE(calc.european);
    EXPECT_TRUE(calc.tenKey);
}

TEST_F(FunctionsFileOfTheWindow, TheHistoryIsRecalledNewestFirst) {
    Enter("1+1");
    Enter("2+2");
    Terminate();
    Restart();
    Press(KEY_UP);
    EXPECT_EQ(Entry(), "2+2");
    Press(KEY_UP);
    EXPECT_EQ(Entry(), "1+1");
}

TEST_F(FunctionsFileOfTheWindow, TheHistoryIsAsLongAsTheSettingSays) {
    [console setSetting:@"histsz" to:2];
    for (const char* const line : {"1+1", "2+2", "3+3"}) run(line);
    Terminate();
    Restart();
    EXPECT_EQ(calc.history.count, 2);
    EXPECT_STREQ(calc.history.GetHistoryStr(1), "3+3");
    EXPECT_STREQ(calc.history.GetHistoryStr(2), "2+2");
}

// A cut line would be another definition, or none.
TEST_F(FunctionsFileOfTheWindow, LinesOfMoreThan998CharactersAreReadWhole) {
    std::string line = "long(x)=x";
    for (int i = 0; i < 1000; ++i) line += "+1";
    run(line.c_str());
    Terminate();
    Restart();
    EXPECT_EQ(Answer("long(5)"), "ans = 1005");
    EXPECT_FALSE(Exists(FunctionsPath() + ".unreadable"));
}

TEST_F(FunctionsFileOfTheWindow, LoadingGoesOnBehindALineThatIsRefused) {
    const std::string text = "### FUNCTIONS ###\nbad(x)=(((\n### VARIABLES ###\n1/0\n### what is this\nb=7\n"
                             "### HISTORY ###\nb+1\n";
    StartOver(text);
    EXPECT_EQ(this->Text(), "> ");
    EXPECT_TRUE(alerts.empty());
    EXPECT_EQ(Answer("b"), "ans = 7");
    EXPECT_EQ(Read(FunctionsPath() + ".unreadable"), text);
}

TEST_F(FunctionsFileOfTheWindow, DamageIsSaidInTheStatusLine) {
    StartOver("### FUNCTIONS ###\nf(x)=x+\x02\n### HISTORY ###\n");
    EXPECT_NE(News().find("pelmo_functions.txt.unreadable"), std::string::npos) << StatusLine();
}

TEST_F(FunctionsFileOfTheWindow, ACommandWordInItChangesNoSetting) {
    StartOver("### FUNCTIONS ###\nsigfigs 20\nmode rad\neuropean on\ndisplay hex\n### HISTORY ###\n");
    EXPECT_EQ(Answer("1.5+sin(90)"), "ans = 2.5");
    EXPECT_EQ(Answer("1/3"), "ans = 0.3333333333");
}

TEST_F(FunctionsFileOfTheWindow, WhatTakesTooLongToReadIsSaidAndStays) {
    std::string text = "### FUNCTIONS ###\nf0(x)=x+1\n";
    for (int i = 1; i <= 40; ++i) {
        const std::string call = "f" + std::to_string(i - 1) + "(x)";
        text += "f" + std::to_string(i) + "(x)=" + call + "+" + call + "\n";
    }
    StartOver(text + "### VARIABLES ###\na=f40(1)\nb=2\n### CUSTOM UNITS ###\n### HISTORY ###\n");
    EXPECT_NE(News().find("takes too long to read"), std::string::npos) << StatusLine();
    EXPECT_FALSE(Exists(FunctionsPath() + ".unreadable"));
    EXPECT_EQ(Answer("b"), "ans = 2");
    Terminate();
    EXPECT_TRUE(Holds("a=f40(1)"));
    Restart();
    Terminate();
    EXPECT_TRUE(Holds("a=f40(1)"));
}

TEST_F(FunctionsFileOfTheWindow, NoFileIsNoDamage) {
    EXPECT_FALSE(Exists(FunctionsPath()));
    Restart();
    EXPECT_FALSE(Exists(FunctionsPath() + ".unreadable"));
    ExpectUsable();
}

TEST_F(FunctionsFileOfTheWindow, NothingIsWrittenAfterTheEnd) {
    Terminate();
    unlink(FunctionsPath().c_str());
    [console saveFuncFile];
    [console loadFuncFile];
    EXPECT_FALSE(Exists(FunctionsPath()));
    EXPECT_EQ(funcFilePath, nil);
    EXPECT_EQ(prefFilePath, nil);
}

// --- Killed ---

TEST_F(FunctionsFileOfTheWindow, AnEntryIsWrittenTwoSecondsLaterWithoutTheEndOfTheProgram) {
    Enter("side=12.5");
    EXPECT_TRUE(ComesToHold("side=12.5"));
    Restart(); // as after a kill
    EXPECT_EQ(Answer("side"), "ans = 12.5");
}

TEST_F(FunctionsFileOfTheWindow, WhatWasEnteredBeforeALongEntryIsWrittenWhileItRuns) {
    Enter("a=1");
    Enter("sigfigs 20");
    Enter("b=2");
    [console entryWillRun];
    for (int i = 0; i < 500 && !Holds("b=2"); ++i) {
        [console writeDueFiles]; // as the engine's question for interruptions does
        usleep(20000);
    }
    EXPECT_TRUE(Holds("a=1"));
    EXPECT_TRUE(Holds("b=2"));
    EXPECT_NE(Read(SettingsPath()).find("<integer>20</integer>"), std::string::npos);
    [console entryDidRun];
}

TEST_F(FunctionsFileOfTheWindow, IsWrittenWhileAScriptPauses) {
    const std::string script = home + "/pause.script";
    Write(script, "side=12.5\npause 2500\nother=1\n");
    std::atomic<bool> isOver(false);
    bool isSeen = false;
    std::thread watch([&] {
        while (!isOver && !isSeen) {
            isSeen = Holds("side=12.5") && !Holds("other=1");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:script.c_str()]]);
    isOver = true;
    watch.join();
    EXPECT_TRUE(isSeen);
}

TEST_F(FunctionsFileOfTheWindow, IsWrittenWhileAScriptOfManyLinesRuns) {
    const std::string script = home + "/many.script";
    std::string lines = "side=12.5\n";
    for (int i = 0; i < 15; ++i) lines += "pause 100\n";
    Write(script, lines + "pause 1\n");
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:script.c_str()]]);
    EXPECT_TRUE(Holds("side=12.5")); // the run loop had no turn of its own
}

// Of what both defined the copy that quits last has its way; the history is its own.
TEST_F(FunctionsFileOfTheWindow, TwoCopiesThatQuitOneAfterTheOtherLeaveAWholeFile) {
    DefineSomething();
    Terminate();
    std::string both = File();
    both.insert(both.find("### CUSTOM UNITS"), "other=1\n");
    Restart();
    Write(FunctionsPath(),
          "### FUNCTIONS ###\n### VARIABLES ###\nother=1\n### CUSTOM UNITS ###\n### HISTORY ###\n");
    Terminate();
    EXPECT_EQ(File(), both);
    Restart();
    EXPECT_FALSE(Exists(FunctionsPath() + ".unreadable"));
    ExpectSomething();
    EXPECT_EQ(Answer("other"), "ans = 1");
}

// --- Damage ---

TEST_F(FunctionsFileOfTheWindow, ADamagedFileIsKeptBesideAndTheRestIsRead) {
    DefineSomething();
    Terminate();
    const std::string whole = File();
    const std::string files[] = {"", std::string("\0\1\2\xff\xfe\n", 6), "nonsense",
                                 whole.substr(0, whole.size() / 2)};
    for (const std::string& text : files) {
        SCOPED_TRACE(text);
        StartOver(text);
        EXPECT_EQ(Read(FunctionsPath() + ".unreadable"), text);
        EXPECT_EQ(this->Text(), "> ");
        ExpectUsable();
        Terminate();
        EXPECT_EQ(File().rfind("### FUNCTIONS ###\n", 0), 0U);
        EXPECT_EQ(Read(FunctionsPath() + ".unreadable"), text);
        unlink((FunctionsPath() + ".unreadable").c_str());
    }
}

TEST_F(FunctionsFileOfTheWindow, ATruncatedFileGivesWhatStandsBeforeTheEnd) {
    StartOver("### FUNCTIONS ###\nsquare(x)=x^2\n### VARIABLES ###\nside=12.5\n### CUST");
    EXPECT_EQ(Answer("square(side)"), "ans = 156.25");
}

TEST_F(FunctionsFileOfTheWindow, AFolderInTheFilesPlaceIsMovedAside) {
    ASSERT_EQ(mkdir(FunctionsPath().c_str(), 0700), 0);
    Restart();
    EXPECT_TRUE(Exists(FunctionsPath() + ".unreadable"));
    DefineSomething();
    Terminate();
    EXPECT_TRUE(Holds("side=12.5"));
}

TEST_F(FunctionsFileOfTheWindow, APipeInTheFilesPlaceDoesNotHang) {
    ASSERT_EQ(mkfifo(FunctionsPath().c_str(), 0600), 0);
    Restart();
    ExpectUsable();
    Terminate();
}

// Files may not grow beyond `bytes`, as on a disk that is full.
static void limitFiles(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = bytes;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST_F(FunctionsFileOfTheWindow, TheOnlyCopyOfADamagedFileIsNotOverwritten) {
    const std::string text = "### FUNCTIONS ###\nside=12.5\n" + std::string(size_t{8} << 20, '\1');
    Write(FunctionsPath(), text);
    limitFiles(rlim_t{4} << 20);
    Restart();
    ExpectUsable();
    [console saveFuncFile];
    limitFiles(RLIM_INFINITY);
    EXPECT_FALSE(Exists(FunctionsPath() + ".unreadable"));
    EXPECT_TRUE(File() == text);
    [console saveFuncFile]; // there is room again
    EXPECT_TRUE(Read(FunctionsPath() + ".unreadable") == text);
    EXPECT_TRUE(Holds("side=12.5"));
}

// --- What cannot be written ---

TEST_F(FunctionsFileOfTheWindow, AFullDiskIsSaidOnceAndTriedAgainWithTheNextChange) {
    Enter("a=1");
    limitFiles(100);
    const std::string said = News();
    limitFiles(RLIM_INFINITY);
    EXPECT_NE(said.find("Not saved: pelmo_functions.txt, pelmo_settings.plist"), std::string::npos) << said;
    EXPECT_NE(said.find(strerror(EFBIG)), std::string::npos) << said;
    limitFiles(100);
    Enter("b=2");
    WriteWhatIsDue();
    limitFiles(RLIM_INFINITY);
    EXPECT_EQ(StatusLine(), "");
    EXPECT_FALSE(Holds("a=1"));
    Enter("c=3");
    EXPECT_TRUE(ComesToHold("c=3"));
    EXPECT_TRUE(Holds("a=1") && Holds("b=2"));
    EXPECT_EQ(StatusLine(), "");
}

TEST_F(FunctionsFileOfTheWindow, WhatCouldNotBeWrittenIsTriedAgainAtTheEnd) {
    Enter("a=1");
    limitFiles(100);
    News();
    limitFiles(RLIM_INFINITY);
    EXPECT_FALSE(Holds("a=1"));
    testing::internal::CaptureStderr();
    Terminate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(Holds("a=1"));
}

TEST_F(FunctionsFileOfTheWindow, WhatIsLostAtTheEndIsSaidOnStandardError) {
    Enter("a=1");
    testing::internal::CaptureStderr();
    limitFiles(100);
    Terminate();
    limitFiles(RLIM_INFINITY);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("Tallyquill: Not saved: pelmo_functions.txt"), std::string::npos) << said;
}

TEST_F(FunctionsFileOfTheWindow, AFolderThatWasTakenAwayIsMadeAgain) {
    ASSERT_EQ(rename(Folder().c_str(), (home + "/elsewhere").c_str()), 0);
    Enter("a=1");
    EXPECT_TRUE(ComesToHold("a=1"));
    EXPECT_EQ(StatusLine(), "");
}

TEST_F(FunctionsFileOfTheWindow, AFileInTheFoldersPlaceIsSaidAtTheStart) {
    ASSERT_EQ(rename(Folder().c_str(), (home + "/elsewhere").c_str()), 0);
    Write(Folder(), "not a folder");
    Restart();
    const std::string said = News();
    EXPECT_NE(said.find("Not saved: pelmo_settings.plist"), std::string::npos) << said;
    EXPECT_NE(said.find(strerror(ENOTDIR)), std::string::npos) << said;
    ExpectUsable();
    EXPECT_EQ(unlink(Folder().c_str()), 0);
    Terminate();
    EXPECT_TRUE(Exists(FunctionsPath()));
}

TEST_F(FunctionsFileOfTheWindow, WhatAKilledProgramLeftIsRemovedAtTheNextStart) {
    Write(FunctionsPath() + ".tallyquill-aB3dEf", "half");
    Write(SettingsPath() + ".tallyquill-aB3dEf", "half");
    Write(FunctionsPath() + ".backup", "a person's");
    Restart();
    EXPECT_FALSE(Exists(FunctionsPath() + ".tallyquill-aB3dEf"));
    EXPECT_FALSE(Exists(SettingsPath() + ".tallyquill-aB3dEf"));
    EXPECT_TRUE(Exists(FunctionsPath() + ".backup"));
}

TEST_F(FunctionsFileOfTheWindow, DamageByChanceNeverKeepsTheProgramFromStarting) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    DefineSomething();
    run("area(w,h)=w*h");
    Terminate();
    const std::string whole = File();
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        StartOver(damaged(whole, random));
        ExpectUsable();
        if (round % 5 == 0) Terminate();
        [inner release];
        std::string name = FunctionsPath() + ".unreadable";
        unlink(name.c_str());
        if (HasFailure()) break;
    }
}
