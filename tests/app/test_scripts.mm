// SPDX-License-Identifier: MIT
//
// Scripts: the text that is saved, and replaying.
#import "console_fixture.h"

#import "PelmoAppDelegate.h"

#import <objc/runtime.h>

#include <chrono>
#include <cstring>
#include <sys/stat.h>

class Scripts : public ConsoleTest {
protected:
    const char* const HEADER = "# PELMO SCRIPT: uncomment line below to include calculator settings.\n";

    std::string script() const { return [[console scriptText] UTF8String]; }
    // What is saved, without the header.
    std::string savedEntries() const {
        const std::string text = script();
        return text.substr(text.find('\n', strlen(HEADER)) + 1);
    }

    std::string path() const { return home + "/test.script"; }
    static NSString* string(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

    // Replays lines; the transcript is what it adds.
    std::string replay(const std::string& lines) {
        write(path(), lines);
        const size_t before = text().size();
        EXPECT_TRUE([console loadFile:string(path())]);
        const std::string all = text();
        return all.size() < before ? all : all.substr(before);
    }

    std::string variable(const char* name) {
        const std::string line = "display dec; ans=" + std::string(name);
        EXPECT_EQ(calc.ProcessEntry(line.c_str(), false), STATUS_RESULT) << name;
        return calc.lastAnswer;
    }

    void waitForVariable(const char* name) {
        for (int i = 0; i < 200 && !calc.VariableExists(name); i++) run(0.05);
    }

    static double seconds(std::chrono::steady_clock::time_point since) {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
    }
};

// --- Saving ---

TEST_F(Scripts, theHeaderIsTwoComments) {
    EXPECT_EQ(script(), HEADER + std::string("#mode deg;sigfigs 10;scimode auto;display dec;\n"));
}

TEST_F(Scripts, theHeaderNamesTheSettings) {
    calc.degreeMode = false;
    calc.sigFigs = 33;
    const char* const modes[] = {"auto", "never", "always", "eng", "prefix", "finance"};
    for (int mode = -1; mode <= 6; mode++) {
        calc.sciMode = mode;
        const char* const word = mode >= 0 && mode <= 5 ? modes[mode] : "auto";
        EXPECT_EQ(script(),
                  HEADER + ("#mode rad;sigfigs 33;scimode " + std::string(word)) + ";display dec;\n");
    }
    calc.sciMode = 0;
    calc.displayBase = 2;
    EXPECT_NE(script().find(";display bin;\n"), std::string::npos);
    calc.displayBase = 16;
    EXPECT_NE(script().find(";display hex;\n"), std::string::npos);
    calc.displayBase = 7;
    EXPECT_NE(script().find(";display dec;\n"), std::string::npos);
}

TEST_F(Scripts, theHeadersSettingsCanBeUncommented) {
    enter("sigfigs 22");
    enter("mode rad");
    const std::string text = script();
    const std::string settings = text.substr(text.find("\n#") + 2);
    enter("sigfigs 10");
    enter("mode deg");
    replay(settings.substr(0, settings.find('\n') + 1));
    EXPECT_EQ(calc.sigFigs, 22);
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_EQ([console setting:@"sigfigs"], 22);
}

TEST_F(Scripts, onlyTheEntriesAreSaved) {
    enter("1+2");
    enter("x=5");
    enter("1/0");
    enter("list");
    const std::string text = script();
    EXPECT_EQ(text.substr(text.find('\n', strlen(HEADER)) + 1), "1+2\nx=5\n1/0\nlist\n");
}

TEST_F(Scripts, emptyPromptsAreLeftOut) {
    press(KEY_RETURN);
    enter("1");
    press(KEY_RETURN);
    enter("x=4");
    press(KEY_RETURN); // repeats
    EXPECT_EQ(savedEntries(), "1\nx=4\n");
}

TEST_F(Scripts, whatIsBeingTypedIsSavedToo) {
    enter("1");
    type("2+3");
    EXPECT_EQ(savedEntries(), "1\n2+3\n");
    [console clearPrompt];
    EXPECT_EQ(savedEntries(), "1\n");
}

// Entries are not told by their look.
TEST_F(Scripts, outputThatLooksLikeAnEntryIsNoEntry) {
    enter("echo > exit");
    EXPECT_EQ(savedEntries(), "echo > exit\n");
    replay("echo > x=1\necho50 > x=2\n> x=3\n");
    EXPECT_EQ(savedEntries(), "echo > exit\n");
}

TEST_F(Scripts, aSavedScriptOfSuchOutputDoesNotCloseTheWindow) {
    enter("echo > exit");
    ASSERT_TRUE([console writeScript:string(path())]);
    EXPECT_TRUE([console loadFile:string(path())]);
    EXPECT_TRUE([window isVisible]);
    EXPECT_NE(text().rfind("\n> exit\n"), std::string::npos);
}

TEST_F(Scripts, theEntriesOfAScriptThatIsReplayedAreNotTyped) {
    enter("1+1");
    replay("2+2\nclear\n3+3\n");
    EXPECT_EQ(savedEntries(), "");
    EXPECT_EQ(text(), "> \nans = 6\n\n> ");
    enter("4+4");
    EXPECT_EQ(savedEntries(), "4+4\n");
}

TEST_F(Scripts, behindAPromptOfAScriptAnswersBeginALine) {
    replay("clear\necho50 typed\n1+1\n");
    EXPECT_EQ(text(), "> \ntyped\nans = 2\n\n> ");
    replay("clear\nx=1\n");
    EXPECT_EQ(text(), "> \nx = 1\n\n> ");
    replay("gospel\ngospel\n5\n"); // the second one shows a prompt
    EXPECT_EQ(text().find("> ans = 5"), std::string::npos) << text();
    EXPECT_NE(text().find("> \nans = 5\n"), std::string::npos) << text();
}

TEST_F(Scripts, newForgetsTheEntries) {
    enter("1+1");
    [console newDocument:nil];
    EXPECT_EQ(savedEntries(), "");
    enter("2+2");
    enter("clear");
    EXPECT_EQ(savedEntries(), "");
    enter("3+3");
    EXPECT_EQ(savedEntries(), "3+3\n");
}

TEST_F(Scripts, anEntryIsSavedAsItWasWhenItRan) {
    type("1+");
    type("2");
    [static_cast<id>(console) undo:nil]; // of what was typed
    [console clearPrompt];
    setPasteboard("> 7\n8");
    [console paste:nil];
    press(KEY_RETURN);
    enter("16");
    [console setDisplayBase:16:NO]; // shows the answer again in front of the prompt
    [static_cast<id>(console) undo:nil];
    enter("17");
    EXPECT_EQ(savedEntries(), "> 7; 8\n16\n17\n");
}

TEST_F(Scripts, aSavedScriptReplaysTheEntriesInOrder) {
    enter("x=5");
    enter("x=x*3");
    ASSERT_TRUE([console writeScript:string(path())]);
    EXPECT_EQ(read(path()), script());
    restart();
    EXPECT_TRUE([console loadFile:string(path())]);
    EXPECT_EQ(variable("x"), "15");
}

TEST_F(Scripts, writingReplacesAFileAndFailsWithoutHarm) {
    write(path(), std::string(5000, 'x'));
    EXPECT_TRUE([console writeScript:string(path())]);
    EXPECT_EQ(read(path()), script());
    EXPECT_FALSE([console writeScript:string(home + "/nowhere/test.script")]);
    EXPECT_FALSE([console writeScript:string(home)]);
}

// Letters that ASCII lacks can only be in texts; they go through a file as UTF-8.
TEST_F(Scripts, otherLettersComeThroughAFile) {
    enter("echo \xe9t\xe9"); // ISO Latin-1
    ASSERT_NE(script().find("echo \u00e9t\u00e9\n"), std::string::npos);
    ASSERT_TRUE([console writeScript:string(path())]);
    const size_t before = text().size();
    EXPECT_TRUE([console loadFile:string(path())]);
    EXPECT_NE(text().find("\u00e9t\u00e9", before), std::string::npos);
    EXPECT_EQ(text().find("\u00c3", before), std::string::npos);
}

// --- The panels ---

static std::vector<std::string> panelCalls;
static NSInteger panelAnswer;
static NSString* panelFile;

static NSInteger runSavePanel(NSSavePanel* panel, SEL) {
    panelCalls = {[[panel title] UTF8String],
                  [[panel prompt] UTF8String],
                  [[[panel allowedFileTypes] componentsJoinedByString:@","] UTF8String]};
    return panelAnswer;
}

static NSInteger runOpenPanel(NSOpenPanel* panel, SEL, NSArray* types) {
    panelCalls = {[panel canChooseFiles] ? "files" : "",
                  [panel canChooseDirectories] ? "directories" : "",
                  [panel allowsMultipleSelection] ? "several" : "",
                  [[types componentsJoinedByString:@","] UTF8String]};
    return panelAnswer;
}

static NSString* fileOfPanel(id, SEL) {
    return panelFile;
}

// Panels that answer at once, in place of those that wait for a person.
class ScriptPanels : public Scripts {
protected:
    void SetUp() override {
        Scripts::SetUp();
        panelCalls.clear();
        panelFile = string(path());
        panelAnswer = NSOKButton;
        replace([NSSavePanel class], @selector(runModal), reinterpret_cast<IMP>(runSavePanel));
        replace([NSSavePanel class], @selector(filename), reinterpret_cast<IMP>(fileOfPanel));
        replace([NSOpenPanel class], @selector(runModalForTypes:), reinterpret_cast<IMP>(runOpenPanel));
    }

    void TearDown() override {
        for (const Replaced& one : replaced) method_setImplementation(one.method, one.original);
        Scripts::TearDown();
    }

private:
    struct Replaced {
        Method method;
        IMP original;
    };
    std::vector<Replaced> replaced;

    void replace(Class panel, SEL selector, IMP implementation) {
        Method const method = class_getInstanceMethod(panel, selector);
        ASSERT_NE(method, nullptr);
        replaced.push_back({method, method_setImplementation(method, implementation)});
    }
};

TEST_F(ScriptPanels, savingAsksForAScriptOrATextFile) {
    enter("1+2");
    [console saveDocument:nil];
    const std::vector<std::string> expected = {"Save to script file...", "Save Script", "script,txt"};
    EXPECT_EQ(panelCalls, expected);
    EXPECT_EQ(read(path()), script());
    EXPECT_TRUE(alerts.empty());
}

TEST_F(ScriptPanels, saveAsDoesTheSame) {
    [console saveDocumentAs:nil];
    EXPECT_EQ(panelCalls.size(), 3U);
    EXPECT_EQ(read(path()), script());
}

TEST_F(ScriptPanels, anyOtherAnswerSavesAndOpensNothing) {
    panelAnswer = NSCancelButton;
    [console saveDocument:nil];
    EXPECT_FALSE(exists(path()));
    write(path(), "x=5\n");
    [console openDocument:nil];
    EXPECT_EQ(text(), "> ");
}

TEST_F(ScriptPanels, aScriptThatCannotBeSavedIsReported) {
    panelFile = string(home + "/nowhere/x.script");
    [console saveDocument:nil];
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0], "The script could not be saved.\n" + home + "/nowhere/x.script");
}

TEST_F(ScriptPanels, openingAsksForOneFileAndReplaysIt) {
    write(path(), "x=5\n");
    [console openDocument:nil];
    const std::vector<std::string> expected = {"files", "", "", "txt,script"};
    EXPECT_EQ(panelCalls, expected);
    EXPECT_EQ(variable("x"), "5");
}

// --- Replaying ---

TEST_F(Scripts, aReplayShowsAnswersAndEndsWithAPrompt) {
    EXPECT_EQ(replay("x=5\nx*2\n"), "\nx = 5\nans = 10\n\n> ");
    EXPECT_EQ(entry(), "");
    EXPECT_EQ(g_linestart, static_cast<int32_t>([[console string] length]));
}

TEST_F(Scripts, linesThatBeginWithANumberSignAreNeverExecuted) {
    replay("# x=1\n#x=2\n###\n### HISTORY ###\n#");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(calc.history.count, 0);
}

TEST_F(Scripts, aCommentBehindAnEntryIsLeftOut) {
    replay("x=5 # five\n");
    EXPECT_EQ(variable("x"), "5");
}

TEST_F(Scripts, aBlankLineIsNoEntry) {
    replay("x=5\nx=x+1\n\n  \t\n\r\n");
    EXPECT_EQ(variable("x"), "6");
}

TEST_F(Scripts, lineEndsOfOtherSystemsAndTheLastLineWithoutOne) {
    replay("x=5\r\nclear\r\ny=7");
    EXPECT_EQ(variable("x"), "5");
    EXPECT_EQ(variable("y"), "7");
}

TEST_F(Scripts, aByteOrderMarkIsNoText) {
    EXPECT_EQ(replay("\xEF\xBB\xBF# note\nx=5\n"), "\nx = 5\n\n> ");
    EXPECT_EQ(replay("\xEF\xBB\xBFx=6\n"), "\nx = 6\n\n> ");
    EXPECT_EQ(replay("\xEF\xBB\xBF"), "\n\n> ");
    replay("x=x+1\n");
    replay("\xEF\xBB\xBF\n");
    EXPECT_EQ(variable("x"), "7"); // the blank line repeated nothing
}

TEST_F(Scripts, anEmptyFileGivesANewPrompt) {
    EXPECT_EQ(replay(""), "\n\n> ");
    EXPECT_EQ(replay("\n"), "\n\n> ");
}

TEST_F(Scripts, whatCannotBeOpenedIsRefusedWithoutAMessage) {
    EXPECT_FALSE([console loadFile:string(home + "/none.script")]);
    EXPECT_FALSE([console loadFile:string(home)]);
    EXPECT_FALSE([console loadFile:@""]);
    EXPECT_FALSE([console loadFile:nil]);
    ASSERT_EQ(mkfifo((home + "/pipe").c_str(), 0600), 0);
    EXPECT_FALSE([console loadFile:string(home + "/pipe")]);
    EXPECT_EQ(text(), "> ");
    EXPECT_TRUE(alerts.empty());
}

TEST_F(Scripts, nothingHidesBehindANul) {
    replay(std::string("x=5\0+1\ny=7\n", 12));
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(variable("y"), "7");
}

TEST_F(Scripts, bytesOfChanceAreErrorsAndNothingWorse) {
    std::string bytes;
    for (int i = 0; i < 4000; i++) bytes += static_cast<char>(i * 7919 % 251 + (i % 40 == 0 ? 4 : 0));
    replay(bytes);
    enter("40+2");
    EXPECT_STREQ(calc.lastAnswer, "42");
}

// A cut line would be another entry.
TEST_F(Scripts, linesOfMoreThan998CharactersAreReadWhole) {
    std::string line = "x=0";
    for (int i = 0; i < 2000; i++) line += "+1";
    replay(line + "\n");
    EXPECT_EQ(variable("x"), "2000");
}

TEST_F(Scripts, aLineThatIsTooLongForAnEntryIsAnErrorAndTheNextOneRuns) {
    std::string line = "x=0";
    while (line.size() < 20000) line += "+1";
    const std::string output = replay(line + "\ny=7\n");
    EXPECT_NE(output.find("ERROR"), std::string::npos);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_EQ(variable("y"), "7");
}

TEST_F(Scripts, clearEmptiesTheConsoleAndTheScriptGoesOn) {
    const std::string output = replay("x=5\nclear\ny=7\n");
    EXPECT_EQ(output.find("x = 5"), std::string::npos);
    EXPECT_NE(output.find("y = 7"), std::string::npos);
    EXPECT_EQ(output.substr(output.size() - 3), "\n> ");
}

TEST_F(Scripts, exitClosesTheWindowAndEndsTheScript) {
    replay("x=5\nexit\nx=6\n");
    EXPECT_FALSE([window isVisible]);
    EXPECT_EQ(variable("x"), "5");
}

TEST_F(Scripts, aPauseWaits) {
    const auto start = std::chrono::steady_clock::now();
    replay("pause 300\nx=5\n");
    EXPECT_GE(seconds(start), 0.3); // on a busy machine it takes longer
    EXPECT_EQ(variable("x"), "5");
}

TEST_F(Scripts, escapeWhileALinePausesEndsTheReplayBehindThatLine) {
    post(@"\033");
    const std::string output = replay("x=5\npause 5000\nx=6\n");
    EXPECT_EQ(variable("x"), "5");
    EXPECT_EQ(output.substr(output.size() - 3), "\n> ");
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Scripts, anInterruptionTellsTheEngine) {
    post(@"\033");
    replay("pause 5000\nx=6\n");
    EXPECT_TRUE(calc.interrupted);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
}

TEST_F(Scripts, escapeWhileATextIsTypedOutEndsTheReplay) {
    post(@"\033");
    replay("echo5 a long text that takes its time\nx=6\n");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
}

TEST_F(Scripts, otherKeysDoNotEndIt) {
    post(@"x");
    replay("pause 200\nx=6\n");
    EXPECT_EQ(variable("x"), "6");
}

TEST_F(Scripts, anEarlierEntrysInterruptionDoesNotEndTheNextScript) {
    scriptInterrupted = true;
    replay("x=5\nx=6\n");
    EXPECT_EQ(variable("x"), "6");
}

TEST_F(Scripts, theNextScriptRunsWholeAfterAnInterruption) {
    post(@"\033");
    replay("pause 5000\nx=5\n");
    replay("x=6\nx=x+1\n");
    EXPECT_EQ(variable("x"), "7");
}

// The system hands over a file whenever the run loop turns, also while a script pauses.
TEST_F(Scripts, aScriptThatComesDuringAnotherWaitsForItsEnd) {
    const std::string other = home + "/other.script";
    write(other, "y=x\n");
    [console performSelector:@selector(loadFile:) withObject:string(other) afterDelay:0.05];
    replay("x=5\npause 400\nx=6\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    waitForVariable("y");
    EXPECT_EQ(variable("y"), "6");
}

TEST_F(Scripts, aScriptThatWaitsForOneThatClosesTheWindowNeverRuns) {
    const std::string other = home + "/other.script";
    write(other, "y=1\n");
    [console performSelector:@selector(loadFile:) withObject:string(other) afterDelay:0];
    replay("pause 50\nexit\n");
    EXPECT_FALSE([window isVisible]);
    EXPECT_FALSE([console hasWaitingScripts]);
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    EXPECT_EQ(text().find("y = 1"), std::string::npos);
}

TEST_F(Scripts, aScriptThatComesDuringAnEntryWaitsForItsEnd) {
    write(path(), "y=1\n");
    [console entryWillRun];
    EXPECT_TRUE([console loadFile:string(path())]);
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    EXPECT_EQ(text(), "> ");
    [console entryDidRun];
    waitForVariable("y");
    EXPECT_EQ(variable("y"), "1");
}

// --- New, the tutorial, files from the system ---

TEST_F(Scripts, aNewDocumentIsAClearConsole) {
    enter("1+2");
    [console newDocument:nil];
    EXPECT_EQ(text(), "> ");
    EXPECT_EQ(g_linestart, 2);
}

static NSString* resourcePath;
static std::vector<std::string> askedResources;

static NSString* findResource(id, SEL, NSString* name, NSString* type) {
    askedResources.push_back(std::string([name UTF8String]) + "." + [type UTF8String]);
    return resourcePath;
}

// Runs the tutorial with this file as the bundle's resource; nil: it has none.
static void runTutorial(MainConsole* console, NSString* path) {
    resourcePath = path;
    askedResources.clear();
    Method const method = class_getInstanceMethod([NSBundle class], @selector(pathForResource:ofType:));
    IMP const original = method_setImplementation(method, reinterpret_cast<IMP>(findResource));
    [console tutorial:nil];
    method_setImplementation(method, original);
}

TEST_F(Scripts, theTutorialClearsTheEntryAndReplaysItsResource) {
    type("half an entry");
    write(path(), "x=5\n");
    runTutorial(console, string(path()));
    EXPECT_EQ(askedResources.at(0), "tutorial.script");
    EXPECT_EQ(text(), "> \nx = 5\n\n> ");
}

TEST_F(Scripts, withoutItsResourceTheTutorialOnlyClearsTheEntry) {
    type("half an entry");
    runTutorial(console, nil);
    EXPECT_EQ(text(), "> ");
}

// --- Files from the system ---

TEST_F(Scripts, aFileFromTheSystemIsReplayedOnceTheConsoleIsReady) {
    write(path(), "x=5\n");
    calcIsReady = 0;
    EXPECT_TRUE([delegate application:NSApp openFile:string(path())]);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_TRUE([waitingToOpenFilenames isEqual:@[ string(path()) ]]);
    [waitingToOpenFilenames release];
    waitingToOpenFilenames = nil;
    calcIsReady = 1;
    EXPECT_TRUE([delegate application:NSApp openFile:string(path())]);
    EXPECT_EQ(variable("x"), "5");
    EXPECT_FALSE([delegate application:NSApp openFile:string(home + "/none")]);
    calcIsReady = 0;
}
