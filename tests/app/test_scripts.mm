// SPDX-License-Identifier: MIT
//
// Scripts: the text that is saved, the panels, and files that the system hands over.
#import "replacement.h"
#import "script_fixture.h"

#import "PelmoAppDelegate.h"

#import <objc/runtime.h>

#include <chrono>
#include <cstring>
#include <list>
#include <sys/stat.h>

class Scripts : public ScriptTest {};

// --- Saving ---

TEST_F(Scripts, ThePanelsListFoldersAndScriptsAlone) {
    EXPECT_TRUE([console panel:nil shouldShowFilename:@"/tmp"]);
    for (NSString* const name in @[ @"/tmp/a.script", @"/tmp/b.txt", @"/tmp/C.TXT" ])
        EXPECT_TRUE([console panel:nil shouldShowFilename:name]) << [name UTF8String];
    for (NSString* const name in @[ @"/tmp/a.png", @"/tmp/script", @"/tmp/a.script.bak", @"/tmp/a" ])
        EXPECT_FALSE([console panel:nil shouldShowFilename:name]) << [name UTF8String];
}

TEST_F(Scripts, TheHeaderIsTwoComments) {
    EXPECT_EQ(Script(), header + std::string("#mode deg;sigfigs 10;scimode auto;display dec;\n"));
}

TEST_F(Scripts, TheHeaderNamesTheSettings) {
    calc.degreeMode = false;
    calc.sigFigs = 33;
    const char* const modes[] = {"auto", "never", "always", "eng", "prefix", "finance"};
    for (int mode = -1; mode <= 6; ++mode) {
        calc.sciMode = mode;
        const char* const word = mode >= 0 && mode <= 5 ? modes[mode] : "auto";
        EXPECT_EQ(Script(),
                  header + ("#mode rad;sigfigs 33;scimode " + std::string(word)) + ";display dec;\n");
    }
    calc.sciMode = 0;
    calc.displayBase = 2;
    EXPECT_NE(Script().find(";display bin;\n"), std::string::npos);
    calc.displayBase = 16;
    EXPECT_NE(Script().find(";display hex;\n"), std::string::npos);
    calc.displayBase = 7;
    EXPECT_NE(Script().find(";display dec;\n"), std::string::npos);
}

TEST_F(Scripts, TheHeadersSettingsCanBeUncommented) {
    Enter("sigfigs 22");
    Enter("mode rad");
    const std::string text = Script();
    const std::string settings = text.substr(text.find("\n#") + 2);
    Enter("sigfigs 10");
    Enter("mode deg");
    Replay(settings.substr(0, settings.find('\n') + 1));
    EXPECT_EQ(calc.sigFigs, 22);
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_EQ([console setting:@"sigfigs"], 22);
}

TEST_F(Scripts, OnlyTheEntriesAreSaved) {
    Enter("1+2");
    Enter("x=5");
    Enter("1/0");
    Enter("list");
    const std::string text = Script();
    EXPECT_EQ(text.substr(text.find('\n', strlen(header)) + 1), "1+2\nx=5\n1/0\nlist\n");
}

TEST_F(Scripts, EmptyPromptsAreLeftOut) {
    Press(KEY_RETURN);
    Enter("1");
    Press(KEY_RETURN);
    Enter("x=4");
    Press(KEY_RETURN); // repeats
    EXPECT_EQ(SavedEntries(), "1\nx=4\n");
}

TEST_F(Scripts, WhatIsBeingTypedIsSavedToo) {
    Enter("1");
    Type("2+3");
    EXPECT_EQ(SavedEntries(), "1\n2+3\n");
    [console clearPrompt];
    EXPECT_EQ(SavedEntries(), "1\n");
}

// Entries are not told by their look.
TEST_F(Scripts, OutputThatLooksLikeAnEntryIsNoEntry) {
    Enter("echo > exit");
    EXPECT_EQ(SavedEntries(), "echo > exit\n");
    Replay("echo > x=1\necho50 > x=2\n> x=3\n");
    EXPECT_EQ(SavedEntries(), "echo > exit\n");
}

TEST_F(Scripts, ASavedScriptOfSuchOutputDoesNotCloseTheWindow) {
    Enter("echo > exit");
    ASSERT_TRUE([console writeScript:String(Path())]);
    EXPECT_TRUE([console loadFile:String(Path())]);
    EXPECT_TRUE([window isVisible]);
    EXPECT_NE(Text().rfind("\n> exit\n"), std::string::npos);
}

TEST_F(Scripts, TheEntriesOfAScriptThatIsReplayedAreNotTyped) {
    Enter("1+1");
    Replay("2+2\nclear\n3+3\n");
    EXPECT_EQ(SavedEntries(), "");
    EXPECT_EQ(Text(), "> \nans = 6\n\n> ");
    Enter("4+4");
    EXPECT_EQ(SavedEntries(), "4+4\n");
}

TEST_F(Scripts, BehindAPromptOfAScriptAnswersBeginALine) {
    Replay("clear\necho50 typed\n1+1\n");
    EXPECT_EQ(Text(), "> \ntyped\nans = 2\n\n> ");
    Replay("clear\nx=1\n");
    EXPECT_EQ(Text(), "> \nx = 1\n\n> ");
    Replay("gospel\ngospel\n5\n"); // the second one shows a prompt
    EXPECT_EQ(Text().find("> ans = 5"), std::string::npos) << Text();
    EXPECT_NE(Text().find("> \nans = 5\n"), std::string::npos) << Text();
}

TEST_F(Scripts, NewForgetsTheEntries) {
    Enter("1+1");
    [console newDocument:nil];
    EXPECT_EQ(SavedEntries(), "");
    Enter("2+2");
    Enter("clear");
    EXPECT_EQ(SavedEntries(), "");
    Enter("3+3");
    EXPECT_EQ(SavedEntries(), "3+3\n");
}

TEST_F(Scripts, AnEntryIsSavedAsItWasWhenItRan) {
    Type("1+");
    Type("2");
    [static_cast<id>(console) undo:nil]; // of what was typed
    [console clearPrompt];
    SetPasteboard("> 7\n8");
    [console paste:nil];
    Press(KEY_RETURN);
    Enter("16");
    [console setDisplayBase:16:NO]; // shows the answer again in front of the prompt
    [static_cast<id>(console) undo:nil];
    Enter("17");
    EXPECT_EQ(SavedEntries(), "> 7; 8\n16\n17\n");
}

TEST_F(Scripts, ASavedScriptReplaysTheEntriesInOrder) {
    Enter("x=5");
    Enter("x=x*3");
    ASSERT_TRUE([console writeScript:String(Path())]);
    EXPECT_EQ(Read(Path()), Script());
    Restart();
    EXPECT_TRUE([console loadFile:String(Path())]);
    EXPECT_EQ(Variable("x"), "15");
}

TEST_F(Scripts, WritingReplacesAFileAndFailsWithoutHarm) {
    Write(Path(), std::string(5000, 'x'));
    EXPECT_TRUE([console writeScript:String(Path())]);
    EXPECT_EQ(Read(Path()), Script());
    EXPECT_FALSE([console writeScript:String(home + "/nowhere/test.script")]);
    EXPECT_FALSE([console writeScript:String(home)]);
}

// Letters that ASCII lacks can only be in texts; they go through a file as UTF-8.
TEST_F(Scripts, OtherLettersComeThroughAFile) {
    Enter("echo \xe9t\xe9"); // ISO Latin-1
    ASSERT_NE(Script().find("echo \u00e9t\u00e9\n"), std::string::npos);
    ASSERT_TRUE([console writeScript:String(Path())]);
    const size_t before = Text().size();
    EXPECT_TRUE([console loadFile:String(Path())]);
    EXPECT_NE(Text().find("\u00e9t\u00e9", before), std::string::npos);
    EXPECT_EQ(Text().find("\u00c3", before), std::string::npos);
}

// --- The panels ---

static std::vector<std::string> panelCalls;
static NSInteger panelAnswer;
static NSString* panelFile;

static NSInteger runSavePanel(NSSavePanel* panel, SEL) {
    panelCalls = {[[panel title] UTF8String],
                  [[[[panel contentView] viewWithTag:NSFileHandlingPanelOKButton] title] UTF8String],
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
        panelFile = String(Path());
        panelAnswer = NSOKButton;
        Replace([NSSavePanel class], @selector(runModal), reinterpret_cast<IMP>(runSavePanel));
        Replace([NSSavePanel class], @selector(filename), reinterpret_cast<IMP>(fileOfPanel));
        Replace([NSOpenPanel class], @selector(runModalForTypes:), reinterpret_cast<IMP>(runOpenPanel));
    }

    void TearDown() override {
        while (!replaced.empty()) replaced.pop_back();
        Scripts::TearDown();
    }

    std::list<Replaced> replaced; // what came later is put back first

    void Replace(Class panel, SEL selector, IMP implementation) {
        replaced.emplace_back(panel, selector, implementation);
    }
};

static bool isKeyLeft;

static bool isKeyWaiting(BOOL isTaken) {
    return [NSApp nextEventMatchingMask:NSKeyDownMask
                              untilDate:[NSDate distantPast]
                                 inMode:NSDefaultRunLoopMode
                                dequeue:isTaken] != nil;
}

// The panel asks whether the file is to be replaced, and a Return comes before anybody can have read that.
static NSInteger runPanelThatAsks(NSSavePanel*, SEL) {
    NSWindow* const question = [[[NSWindow alloc] init] autorelease];
    [[NSNotificationCenter defaultCenter] postNotificationName:NSWindowDidBecomeKeyNotification
                                                        object:question];
    [NSApp postEvent:[NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                          characters:@"\r"
                         charactersIgnoringModifiers:@"\r"
                                           isARepeat:NO
                                             keyCode:0]
             atStart:NO];
    for (int i = 0; i < 100 && isKeyWaiting(NO); ++i)
        [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    isKeyLeft = isKeyWaiting(YES);
    return NSCancelButton;
}

TEST_F(ScriptPanels, AQuickReturnDoesNotReplaceAFile) {
    Replace([NSSavePanel class], @selector(runModal), reinterpret_cast<IMP>(runPanelThatAsks));
    [console saveDocument:nil];
    EXPECT_FALSE(isKeyLeft);
}

TEST_F(ScriptPanels, SavingAsksForAScriptOrATextFile) {
    Enter("1+2");
    [console saveDocument:nil];
    const std::vector<std::string> expected = {"Save to script file...", "Save Script", "script,txt"};
    EXPECT_EQ(panelCalls, expected);
    EXPECT_EQ(Read(Path()), Script());
    EXPECT_TRUE(alerts.empty());
}

TEST_F(ScriptPanels, SaveAsDoesTheSame) {
    [console saveDocumentAs:nil];
    EXPECT_EQ(panelCalls.size(), 3U);
    EXPECT_EQ(Read(Path()), Script());
}

TEST_F(ScriptPanels, AnyOtherAnswerSavesAndOpensNothing) {
    panelAnswer = NSCancelButton;
    [console saveDocument:nil];
    EXPECT_FALSE(Exists(Path()));
    Write(Path(), "x=5\n");
    [console openDocument:nil];
    EXPECT_EQ(Text(), "> ");
}

TEST_F(ScriptPanels, AScriptThatCannotBeSavedIsReported) {
    panelFile = String(home + "/nowhere/x.script");
    [console saveDocument:nil];
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0], "The script could not be saved.\n" + home + "/nowhere/x.script");
}

TEST_F(ScriptPanels, OpeningAsksForOneFileAndReplaysIt) {
    Write(Path(), "x=5\n");
    [console openDocument:nil];
    const std::vector<std::string> expected = {"files", "", "", "txt,script"};
    EXPECT_EQ(panelCalls, expected);
    EXPECT_EQ(Variable("x"), "5");
}

// --- New, the tutorial, files from the system ---

TEST_F(Scripts, ANewDocumentIsAClearConsole) {
    Enter("1+2");
    [console newDocument:nil];
    EXPECT_EQ(Text(), "> ");
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

TEST_F(Scripts, TheTutorialClearsTheEntryAndReplaysItsResource) {
    Type("half an entry");
    Write(Path(), "x=5\n");
    runTutorial(console, String(Path()));
    EXPECT_EQ(askedResources.at(0), "tutorial.script");
    EXPECT_EQ(Text(), "> \nx = 5\n\n> ");
}

TEST_F(Scripts, WithoutItsResourceTheTutorialOnlyClearsTheEntry) {
    Type("half an entry");
    runTutorial(console, nil);
    EXPECT_EQ(Text(), "> ");
}

// --- Files from the system ---

TEST_F(Scripts, AFileFromTheSystemIsReplayedOnceTheConsoleIsReady) {
    Write(Path(), "x=5\n");
    calcIsReady = 0;
    EXPECT_TRUE([delegate application:NSApp openFile:String(Path())]);
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    EXPECT_TRUE([waitingToOpenFilenames isEqual:@[ String(Path()) ]]);
    [waitingToOpenFilenames release];
    waitingToOpenFilenames = nil;
    calcIsReady = 1;
    EXPECT_TRUE([delegate application:NSApp openFile:String(Path())]);
    EXPECT_EQ(Variable("x"), "5");
    EXPECT_FALSE([delegate application:NSApp openFile:String(home + "/none")]);
    calcIsReady = 0;
}
