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
    using ConsoleTest::run;

    std::string file() const { return read(functionsPath()); }
    bool holds(const std::string& line) const { return file().find("\n" + line + "\n") != std::string::npos; }

    // Waits until the line is in the file, for five seconds at most.
    bool comesToHold(const std::string& line) {
        for (int i = 0; i < 100 && !holds(line); i++) run(0.05);
        return holds(line);
    }

    // Waits until the status line says something. The empty text when it does not.
    std::string news() {
        for (int i = 0; i < 100 && status().empty(); i++) run(0.05);
        return status();
    }

    // What an entry answers, without its line feed.
    std::string answer(const char* line) {
        run(line);
        const std::string text = calc.status == STATUS_RESULT ? calc.resultLine : calc.message;
        return text.substr(0, text.find('\n'));
    }

    void expectUsable() {
        run("display dec");
        EXPECT_EQ(answer("40+2"), "ans = 42");
    }

    void startOver(const std::string& text) {
        write(functionsPath(), text);
        restart();
    }

    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> names;
        DIR* const opened = opendir(folder().c_str());
        while (const dirent* const entry = opened ? readdir(opened) : nullptr) {
            if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
        }
        if (opened) closedir(opened);
        return names;
    }

    void defineSomething() {
        run("square(x)=x^2");
        run("side=12.5");
        run("unit smoot=67 inch");
        run("square(side)");
    }

    void expectSomething() {
        EXPECT_EQ(answer("square(3)"), "ans = 9");
        EXPECT_EQ(answer("side"), "ans = 12.5");
        EXPECT_EQ(answer("2 smoot->inch"), "ans = 134");
    }
};

// --- The file ---

TEST_F(FunctionsFileOfTheWindow, hasItsFourSectionsInOrder) {
    for (const char* const line : {"square(x)=x^2", "side=12.5", "unit smoot=67 inch", "square(side)"})
        enter(line);
    terminate();
    const std::string text = file();
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

TEST_F(FunctionsFileOfTheWindow, anEmptyHistoryIsAnEmptySection) {
    terminate();
    const std::string end = "### CUSTOM UNITS ###\n### HISTORY ###\n";
    const std::string text = file();
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(FunctionsFileOfTheWindow, whatWasDefinedIsThereInTheNextRun) {
    defineSomething();
    terminate();
    restart();
    EXPECT_EQ(text(), "> "); // reading shows nothing
    EXPECT_TRUE(alerts.empty());
    expectSomething();
}

TEST_F(FunctionsFileOfTheWindow, aSecondRunWritesTheSameFile) {
    defineSomething();
    terminate();
    const std::string first = file();
    restart();
    terminate();
    EXPECT_EQ(file(), first);
    EXPECT_EQ(filesInFolder().size(), 2U); // no temporary file is left
}

TEST_F(FunctionsFileOfTheWindow, aVariableKeepsAHundredDigits) {
    run("third=1/3");
    terminate();
    EXPECT_TRUE(holds("third=0." + std::string(100, '3')));
    restart();
    EXPECT_EQ(answer("abs(third*3-1) < 1e-99"), "ans = 1");
}

TEST_F(FunctionsFileOfTheWindow, hasDecimalPointsAlsoInEuropeanAndTenKeyMode) {
    [console setSetting:@"european" to:1];
    [console setSetting:@"tenkey" to:1];
    run("rate=1,5");
    run("grow(x)=x*2,25");
    terminate();
    EXPECT_TRUE(holds("rate=1.5"));
    EXPECT_TRUE(holds("grow(x)=x*2.25"));
    restart();
    EXPECT_TRUE(calc.european);
    EXPECT_TRUE(calc.tenKey);
    calc.european = calc.tenKey = false;
    [console setSetting:@"european" to:0];
    EXPECT_EQ(answer("rate"), "ans = 1.5");
    EXPECT_EQ(answer("grow(4)"), "ans = 9");
}

TEST_F(FunctionsFileOfTheWindow, theFlagsComeBackFromTheSettingsWithoutAFileToo) {
    [console setSetting:@"european" to:1];
    [console setSetting:@"tenkey" to:1];
    [console saveSettings];
    unlink(functionsPath().c_str());
    restart();
    EXPECT_TRUE(calc.european);
    EXPECT_TRUE(calc.tenKey);
}

TEST_F(FunctionsFileOfTheWindow, theHistoryIsRecalledNewestFirst) {
    enter("1+1");
    enter("2+2");
    terminate();
    restart();
    press(KEY_UP);
    EXPECT_EQ(entry(), "2+2");
    press(KEY_UP);
    EXPECT_EQ(entry(), "1+1");
}

TEST_F(FunctionsFileOfTheWindow, theHistoryIsAsLongAsTheSettingSays) {
    [console setSetting:@"histsz" to:2];
    for (const char* const line : {"1+1", "2+2", "3+3"}) run(line);
    terminate();
    restart();
    EXPECT_EQ(calc.history.count, 2);
    EXPECT_STREQ(calc.history.GetHistoryStr(1), "3+3");
    EXPECT_STREQ(calc.history.GetHistoryStr(2), "2+2");
}

// A cut line would be another definition, or none.
TEST_F(FunctionsFileOfTheWindow, linesOfMoreThan998CharactersAreReadWhole) {
    std::string line = "long(x)=x";
    for (int i = 0; i < 1000; i++) line += "+1";
    run(line.c_str());
    terminate();
    restart();
    EXPECT_EQ(answer("long(5)"), "ans = 1005");
    EXPECT_FALSE(exists(functionsPath() + ".unreadable"));
}

TEST_F(FunctionsFileOfTheWindow, loadingGoesOnBehindALineThatIsRefused) {
    const std::string text = "### FUNCTIONS ###\nbad(x)=(((\n### VARIABLES ###\n1/0\n### what is this\nb=7\n"
                             "### HISTORY ###\nb+1\n";
    startOver(text);
    EXPECT_EQ(this->text(), "> ");
    EXPECT_TRUE(alerts.empty());
    EXPECT_EQ(answer("b"), "ans = 7");
    EXPECT_EQ(read(functionsPath() + ".unreadable"), text);
}

TEST_F(FunctionsFileOfTheWindow, damageIsSaidInTheStatusLine) {
    startOver("### FUNCTIONS ###\nf(x)=x+\x02\n### HISTORY ###\n");
    EXPECT_NE(news().find("pelmo_functions.txt.unreadable"), std::string::npos) << status();
}

TEST_F(FunctionsFileOfTheWindow, aCommandWordInItChangesNoSetting) {
    startOver("### FUNCTIONS ###\nsigfigs 20\nmode rad\neuropean on\ndisplay hex\n### HISTORY ###\n");
    EXPECT_EQ(answer("1.5+sin(90)"), "ans = 2.5");
    EXPECT_EQ(answer("1/3"), "ans = 0.3333333333");
}

TEST_F(FunctionsFileOfTheWindow, whatTakesTooLongToReadIsSaidAndStays) {
    std::string text = "### FUNCTIONS ###\nf0(x)=x+1\n";
    for (int i = 1; i <= 40; i++) {
        const std::string call = "f" + std::to_string(i - 1) + "(x)";
        text += "f" + std::to_string(i) + "(x)=" + call + "+" + call + "\n";
    }
    startOver(text + "### VARIABLES ###\na=f40(1)\nb=2\n### CUSTOM UNITS ###\n### HISTORY ###\n");
    EXPECT_NE(news().find("takes too long to read"), std::string::npos) << status();
    EXPECT_FALSE(exists(functionsPath() + ".unreadable"));
    EXPECT_EQ(answer("b"), "ans = 2");
    terminate();
    EXPECT_TRUE(holds("a=f40(1)"));
    restart();
    terminate();
    EXPECT_TRUE(holds("a=f40(1)"));
}

TEST_F(FunctionsFileOfTheWindow, noFileIsNoDamage) {
    EXPECT_FALSE(exists(functionsPath()));
    restart();
    EXPECT_FALSE(exists(functionsPath() + ".unreadable"));
    expectUsable();
}

TEST_F(FunctionsFileOfTheWindow, nothingIsWrittenAfterTheEnd) {
    terminate();
    unlink(functionsPath().c_str());
    [console saveFuncFile];
    [console loadFuncFile];
    EXPECT_FALSE(exists(functionsPath()));
    EXPECT_EQ(funcFilePath, nil);
    EXPECT_EQ(prefFilePath, nil);
}

// --- Killed ---

TEST_F(FunctionsFileOfTheWindow, anEntryIsWrittenTwoSecondsLaterWithoutTheEndOfTheProgram) {
    enter("side=12.5");
    EXPECT_TRUE(comesToHold("side=12.5"));
    restart(); // as after a kill
    EXPECT_EQ(answer("side"), "ans = 12.5");
}

TEST_F(FunctionsFileOfTheWindow, whatWasEnteredBeforeALongEntryIsWrittenWhileItRuns) {
    enter("a=1");
    enter("sigfigs 20");
    enter("b=2");
    [console entryWillRun];
    for (int i = 0; i < 500 && !holds("b=2"); i++) {
        [console writeDueFiles]; // as the engine's question for interruptions does
        usleep(20000);
    }
    EXPECT_TRUE(holds("a=1"));
    EXPECT_TRUE(holds("b=2"));
    EXPECT_NE(read(settingsPath()).find("<integer>20</integer>"), std::string::npos);
    [console entryDidRun];
}

TEST_F(FunctionsFileOfTheWindow, isWrittenWhileAScriptPauses) {
    const std::string script = home + "/pause.script";
    write(script, "side=12.5\npause 2500\nother=1\n");
    std::atomic<bool> isOver(false);
    bool isSeen = false;
    std::thread watch([&] {
        while (!isOver && !isSeen) {
            isSeen = holds("side=12.5") && !holds("other=1");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:script.c_str()]]);
    isOver = true;
    watch.join();
    EXPECT_TRUE(isSeen);
}

TEST_F(FunctionsFileOfTheWindow, isWrittenWhileAScriptOfManyLinesRuns) {
    const std::string script = home + "/many.script";
    std::string lines = "side=12.5\n";
    for (int i = 0; i < 15; i++) lines += "pause 100\n";
    write(script, lines + "pause 1\n");
    EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:script.c_str()]]);
    EXPECT_TRUE(holds("side=12.5")); // the run loop had no turn of its own
}

// Of what both defined the copy that quits last has its way; the history is its own.
TEST_F(FunctionsFileOfTheWindow, twoCopiesThatQuitOneAfterTheOtherLeaveAWholeFile) {
    defineSomething();
    terminate();
    std::string both = file();
    both.insert(both.find("### CUSTOM UNITS"), "other=1\n");
    restart();
    write(functionsPath(),
          "### FUNCTIONS ###\n### VARIABLES ###\nother=1\n### CUSTOM UNITS ###\n### HISTORY ###\n");
    terminate();
    EXPECT_EQ(file(), both);
    restart();
    EXPECT_FALSE(exists(functionsPath() + ".unreadable"));
    expectSomething();
    EXPECT_EQ(answer("other"), "ans = 1");
}

// --- Damage ---

TEST_F(FunctionsFileOfTheWindow, aDamagedFileIsKeptBesideAndTheRestIsRead) {
    defineSomething();
    terminate();
    const std::string whole = file();
    const std::string files[] = {"", std::string("\0\1\2\xff\xfe\n", 6), "nonsense",
                                 whole.substr(0, whole.size() / 2)};
    for (const std::string& text : files) {
        SCOPED_TRACE(text);
        startOver(text);
        EXPECT_EQ(read(functionsPath() + ".unreadable"), text);
        EXPECT_EQ(this->text(), "> ");
        expectUsable();
        terminate();
        EXPECT_EQ(file().rfind("### FUNCTIONS ###\n", 0), 0U);
        EXPECT_EQ(read(functionsPath() + ".unreadable"), text);
        unlink((functionsPath() + ".unreadable").c_str());
    }
}

TEST_F(FunctionsFileOfTheWindow, aTruncatedFileGivesWhatStandsBeforeTheEnd) {
    startOver("### FUNCTIONS ###\nsquare(x)=x^2\n### VARIABLES ###\nside=12.5\n### CUST");
    EXPECT_EQ(answer("square(side)"), "ans = 156.25");
}

TEST_F(FunctionsFileOfTheWindow, aFolderInTheFilesPlaceIsMovedAside) {
    ASSERT_EQ(mkdir(functionsPath().c_str(), 0700), 0);
    restart();
    EXPECT_TRUE(exists(functionsPath() + ".unreadable"));
    defineSomething();
    terminate();
    EXPECT_TRUE(holds("side=12.5"));
}

TEST_F(FunctionsFileOfTheWindow, aPipeInTheFilesPlaceDoesNotHang) {
    ASSERT_EQ(mkfifo(functionsPath().c_str(), 0600), 0);
    restart();
    expectUsable();
    terminate();
}

// Files may not grow beyond `bytes`, as on a disk that is full.
static void limitFiles(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = bytes;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST_F(FunctionsFileOfTheWindow, theOnlyCopyOfADamagedFileIsNotOverwritten) {
    const std::string text = "### FUNCTIONS ###\nside=12.5\n" + std::string(size_t{8} << 20, '\1');
    write(functionsPath(), text);
    limitFiles(rlim_t{4} << 20);
    restart();
    expectUsable();
    [console saveFuncFile];
    limitFiles(RLIM_INFINITY);
    EXPECT_FALSE(exists(functionsPath() + ".unreadable"));
    EXPECT_TRUE(file() == text);
    [console saveFuncFile]; // there is room again
    EXPECT_TRUE(read(functionsPath() + ".unreadable") == text);
    EXPECT_TRUE(holds("side=12.5"));
}

// --- What cannot be written ---

TEST_F(FunctionsFileOfTheWindow, aFullDiskIsSaidOnceAndTriedAgainWithTheNextChange) {
    enter("a=1");
    limitFiles(100);
    const std::string said = news();
    limitFiles(RLIM_INFINITY);
    EXPECT_NE(said.find("Not saved: pelmo_functions.txt, pelmo_settings.plist"), std::string::npos) << said;
    EXPECT_NE(said.find(strerror(EFBIG)), std::string::npos) << said;
    limitFiles(100);
    enter("b=2");
    writeWhatIsDue();
    limitFiles(RLIM_INFINITY);
    EXPECT_EQ(status(), "");
    EXPECT_FALSE(holds("a=1"));
    enter("c=3");
    EXPECT_TRUE(comesToHold("c=3"));
    EXPECT_TRUE(holds("a=1") && holds("b=2"));
    EXPECT_EQ(status(), "");
}

TEST_F(FunctionsFileOfTheWindow, whatCouldNotBeWrittenIsTriedAgainAtTheEnd) {
    enter("a=1");
    limitFiles(100);
    news();
    limitFiles(RLIM_INFINITY);
    EXPECT_FALSE(holds("a=1"));
    testing::internal::CaptureStderr();
    terminate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(holds("a=1"));
}

TEST_F(FunctionsFileOfTheWindow, whatIsLostAtTheEndIsSaidOnStandardError) {
    enter("a=1");
    testing::internal::CaptureStderr();
    limitFiles(100);
    terminate();
    limitFiles(RLIM_INFINITY);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("Tallyquill: Not saved: pelmo_functions.txt"), std::string::npos) << said;
}

TEST_F(FunctionsFileOfTheWindow, aFolderThatWasTakenAwayIsMadeAgain) {
    ASSERT_EQ(rename(folder().c_str(), (home + "/elsewhere").c_str()), 0);
    enter("a=1");
    EXPECT_TRUE(comesToHold("a=1"));
    EXPECT_EQ(status(), "");
}

TEST_F(FunctionsFileOfTheWindow, aFileInTheFoldersPlaceIsSaidAtTheStart) {
    ASSERT_EQ(rename(folder().c_str(), (home + "/elsewhere").c_str()), 0);
    write(folder(), "not a folder");
    restart();
    const std::string said = news();
    EXPECT_NE(said.find("Not saved: pelmo_settings.plist"), std::string::npos) << said;
    EXPECT_NE(said.find(strerror(ENOTDIR)), std::string::npos) << said;
    expectUsable();
    EXPECT_EQ(unlink(folder().c_str()), 0);
    terminate();
    EXPECT_TRUE(exists(functionsPath()));
}

TEST_F(FunctionsFileOfTheWindow, whatAKilledProgramLeftIsRemovedAtTheNextStart) {
    write(functionsPath() + ".tallyquill-aB3dEf", "half");
    write(settingsPath() + ".tallyquill-aB3dEf", "half");
    write(functionsPath() + ".backup", "a person's");
    restart();
    EXPECT_FALSE(exists(functionsPath() + ".tallyquill-aB3dEf"));
    EXPECT_FALSE(exists(settingsPath() + ".tallyquill-aB3dEf"));
    EXPECT_TRUE(exists(functionsPath() + ".backup"));
}

TEST_F(FunctionsFileOfTheWindow, damageByChanceNeverKeepsTheProgramFromStarting) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    defineSomething();
    run("area(w,h)=w*h");
    terminate();
    const std::string whole = file();
    for (int round = 0; round < 150; round++) {
        SCOPED_TRACE("round " + std::to_string(round));
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        startOver(damaged(whole, random));
        expectUsable();
        if (round % 5 == 0) terminate();
        [inner release];
        std::string name = functionsPath() + ".unreadable";
        unlink(name.c_str());
        if (HasFailure()) break;
    }
}
