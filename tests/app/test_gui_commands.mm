// SPDX-License-Identifier: MIT
//
// The commands that the engine hands over: clear, exit, pause, echorep, echo, convert, gospel.
#import "console_fixture.h"

#import <objc/runtime.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sys/stat.h>

namespace {

using Clock = std::chrono::steady_clock;
using Waits = std::vector<long>;

Waits waits;                 // what waitMilliseconds: was asked for
std::string queryAsked;      // what QueryWAConvert: was asked
std::string textWhileAsking; // the transcript meanwhile
NSString* queryAnswer = nil; // what it answers

BOOL recordWait(id, SEL, long milliseconds) {
    waits.push_back(milliseconds);
    return YES;
}

NSString* recordQuery(id self, SEL, const char* query) {
    queryAsked = query;
    textWhileAsking = [[self string] UTF8String];
    return queryAnswer;
}

// Another implementation of a method for as long as this lives.
class Replacement {
public:
    Replacement(Class type, SEL selector, IMP replacement)
        : method(class_getInstanceMethod(type, selector)),
          original(method_setImplementation(method, replacement)) {}
    ~Replacement() { method_setImplementation(method, original); }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

private:
    Method method;
    IMP original;
};

class Commands : public ConsoleTest {
protected:
    void command(const char* text) { [console RunGUICommand:text]; }

    // Seconds that a command takes, at least: on a busy machine it is more.
    double timeOf(const char* text) {
        const Clock::time_point begin = Clock::now();
        command(text);
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }

    // The milliseconds that a command waits for, without waiting.
    Waits waitsOf(const char* text) {
        const Replacement replacement([MainConsole class], sel_registerName("waitMilliseconds:"),
                                      reinterpret_cast<IMP>(recordWait));
        waits.clear();
        command(text);
        return waits;
    }

    void setEchoText(const char* text) { snprintf(calc.echoText, sizeof calc.echoText, "%s", text); }

    // The transcript after the line, with a query service that gives `answer`.
    std::string converted(const char* line, NSString* answer) {
        const Replacement replacement([MainConsole class], @selector(QueryWAConvert:),
                                      reinterpret_cast<IMP>(recordQuery));
        queryAnswer = answer;
        enter(line);
        return text();
    }

    void setDefault(NSString* key, NSString* value) {
        [[NSUserDefaults standardUserDefaults] registerDefaults:[NSDictionary dictionaryWithObject:value
                                                                                            forKey:key]];
    }
};

// --- clear, exit ---

TEST_F(Commands, clearLeavesThePromptAlone) {
    enter("1+1");
    type("abc");
    command("clear");
    EXPECT_EQ(text(), "> ");
    EXPECT_EQ(g_linestart, 2);
    EXPECT_EQ(cursor(), 2u);
    enter("5;cls");
    EXPECT_EQ(text(), "> ");
}

TEST_F(Commands, exitClosesTheWindow) {
    ASSERT_TRUE([window isVisible]);
    enter("exit");
    EXPECT_FALSE([window isVisible]);
}

TEST_F(Commands, unknownCommandsDoNothing) {
    type("7");
    for (const char* text : {"", "clearly", "exits", "pause", "echo", "echorepeat", "converts", "Clear"})
        command(text);
    EXPECT_EQ(text(), "> 7");
    EXPECT_TRUE([window isVisible]);
}

// --- pause ---

TEST_F(Commands, aPauseOutsideOfZeroToFiveSecondsIsOneSecond) {
    EXPECT_EQ(waitsOf("pause7000"), Waits{1000});
    EXPECT_EQ(waitsOf("pause5001"), Waits{1000});
    EXPECT_EQ(waitsOf("pause-5"), Waits{1000});
    EXPECT_EQ(waitsOf("pause99999999999999999999"), Waits{1000});
    EXPECT_EQ(waitsOf("pause5000"), Waits{5000});
    EXPECT_EQ(waitsOf("pause0"), Waits{0});
    EXPECT_EQ(waitsOf("pause1"), Waits{1});
    EXPECT_EQ(waitsOf("pause0x10"), Waits{16});
}

TEST_F(Commands, aPauseTakesItsTime) {
    EXPECT_GE(timeOf("pause300"), 0.3);
    EXPECT_GE(timeOf("pause7000"), 1.0);
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Commands, keysInterruptAPause) {
    struct {
        NSString* key;
        NSUInteger flags;
    } const keys[] = {{@"\033", 0}, {@"q", NSCommandKeyMask}, {@"c", NSControlKeyMask}};
    for (const auto& one : keys) {
        scriptInterrupted = false;
        post(one.key, one.flags);
        command("pause5000");
        EXPECT_TRUE(scriptInterrupted);
    }
    command("pause0");
    EXPECT_TRUE(scriptInterrupted); // it stays set for the script's runner
}

TEST_F(Commands, otherKeysDoNotInterruptAPause) {
    post(@"x");
    post(@"c");
    EXPECT_GE(timeOf("pause200"), 0.2);
    EXPECT_FALSE(scriptInterrupted);
    EXPECT_EQ(text(), "> ");
}

TEST_F(Commands, aPauseAtThePromptEndsWithANewPrompt) {
    enter("pause10");
    EXPECT_EQ(text(), "> pause10\n\n> ");
    EXPECT_EQ(entry(), "");
    enter("1+1");
    EXPECT_EQ(text(), "> pause10\n\n> 1+1\nans = 2\n\n> ");
}

TEST_F(Commands, aPauseInAScriptWritesNothing) {
    [console ProcessResult:"pause10":NO];
    EXPECT_EQ(text(), "> ");
}

// --- echorep ---

TEST_F(Commands, echorepReplacesTheEntry) {
    enter("1+1");
    type("old");
    setEchoText("sin(1)");
    command("echorep");
    EXPECT_EQ(text(), "> 1+1\nans = 2\n\n> sin(1)");
    EXPECT_EQ(entry(), "sin(1)");
    EXPECT_EQ(cursorInEntry(), 6u);
}

TEST_F(Commands, echorepOfAScriptReplacesTheEntry) {
    type("old");
    [console ProcessResult:"echorep new text":NO];
    EXPECT_EQ(text(), "> new text\n");
    EXPECT_EQ(g_linestart, 2);
}

// --- echo ---

TEST_F(Commands, echoTypesItsTextAtTheEnd) {
    type("7");
    select(0);
    setEchoText("a(b)-caf\xe9\n");
    command("echo500");
    EXPECT_EQ(text(), "> 7a(b)-caf\u00e9\n");
    EXPECT_EQ(g_linestart, 13);
    EXPECT_EQ(cursor(), 13u);
}

TEST_F(Commands, echoWaitsBetweenTheCharacters) {
    setEchoText("abcd");
    EXPECT_EQ(waitsOf("echo10"), (Waits{100, 100, 100}));
    EXPECT_EQ(waitsOf("echo100"), (Waits{10, 10, 10}));
    EXPECT_EQ(waitsOf("echo3"), (Waits{333, 333, 333}));
    EXPECT_EQ(waitsOf("echo1"), (Waits{1000, 1000, 1000}));
    EXPECT_EQ(text(), "> abcdabcdabcdabcd");
}

TEST_F(Commands, echoAtTheFastestRateDoesNotWait) {
    setEchoText("abcd");
    for (const char* text : {"echo0", "echo101", "echo500", "echo1000", "echo-5"}) {
        EXPECT_EQ(waitsOf(text), Waits{}) << text;
    }
    EXPECT_EQ(text(), "> abcdabcdabcdabcdabcd");
}

TEST_F(Commands, echoTakesItsTime) {
    setEchoText("abcd");
    EXPECT_GE(timeOf("echo10"), 0.3);
}

TEST_F(Commands, keysInterruptATypedText) {
    setEchoText("abcd");
    post(@"\033");
    command("echo0");
    EXPECT_EQ(text(), "> a");
    EXPECT_EQ(g_linestart, 3);
    EXPECT_TRUE(scriptInterrupted);
    scriptInterrupted = false;
    post(@"x");
    command("echo0");
    EXPECT_EQ(text(), "> aabcd");
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Commands, keysInterruptTheWaitBetweenTwoCharacters) {
    setEchoText("ab");
    post(@"x"); // taken behind the first character
    post(@"\033");
    command("echo1");
    EXPECT_EQ(text(), "> a");
    EXPECT_TRUE(scriptInterrupted);
}

TEST_F(Commands, aTextTypedOutAtThePromptEndsWithANewPrompt) {
    enter("echo1000 hi there");
    EXPECT_EQ(text(), "> echo1000 hi there\nhi there\n\n> ");
    EXPECT_EQ(entry(), "");
    press(KEY_BACKSPACE);
    EXPECT_EQ(entry(), "");
    EXPECT_EQ(text(), "> echo1000 hi there\nhi there\n\n> ");
}

TEST_F(Commands, aTextTypedOutByAScriptIsFollowedByTheNextAnswer) {
    [console ProcessResult:"echo1000 hi":NO];
    EXPECT_EQ(text(), "> hi\n");
    [console ProcessResult:"1+1":NO];
    EXPECT_EQ(text(), "> hi\nans = 2\n");
}

TEST_F(Commands, anEmptyTextIsTypedOutAsNothing) {
    setEchoText("");
    command("echo10");
    EXPECT_EQ(text(), "> ");
}

// --- convert ---

TEST_F(Commands, convertShowsTheAnswerAboveTheNewPrompt) {
    EXPECT_EQ(converted("convert 5 miles to km", @"8.047 km"),
              "> convert 5 miles to km\n ...checking...\n8.047 km\n\n> ");
    EXPECT_EQ(queryAsked, "convert+5+miles+to+km");
    EXPECT_EQ(textWhileAsking, "> convert 5 miles to km\n ...checking...\n\n> ");
    EXPECT_EQ(entry(), "");
    EXPECT_EQ(g_linestart, static_cast<int32_t>(text().size()));
}

TEST_F(Commands, convertWithoutAnAnswerIsNotFound) {
    EXPECT_EQ(converted("convert 5 miles to kg", nil),
              "> convert 5 miles to kg\n ...checking...\nNot found.\n\n> ");
}

TEST_F(Commands, anAnswerMayHaveCharactersThatAreNoLatin1) {
    NSString* const answer = [NSString stringWithUTF8String:"\u2248 8 km\u00b2"];
    EXPECT_EQ(converted("convert 1", answer), "> convert 1\n ...checking...\n\u2248 8 km\u00b2\n\n> ");
    enter("1+1");
    EXPECT_NE(text().find("> 1+1\nans = 2\n\n> "), std::string::npos);
}

// --- gospel ---

TEST_F(Commands, withoutAnAddressThereIsNoPageToOpen) {
    setDefault(@"WebPageURL", @"");
    enter("gospel");
    [console clearConsole];
    enter("gospel");
    EXPECT_EQ(text(), "> gospel\nThere is no web page to open.\n\n> ");
}

} // namespace
