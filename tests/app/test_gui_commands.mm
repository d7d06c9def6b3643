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
    void Command(const char* text) { [console RunGUICommand:text]; }

    // Seconds that a command takes, at least: on a busy machine it is more.
    double TimeOf(const char* text) {
        const Clock::time_point begin = Clock::now();
        Command(text);
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }

    // The milliseconds that a command waits for, without waiting.
    Waits WaitsOf(const char* text) {
        const Replacement replacement([MainConsole class], sel_registerName("waitMilliseconds:"),
                                      reinterpret_cast<IMP>(recordWait));
        waits.clear();
        Command(text);
        return waits;
    }

    void SetEchoText(const char* text) { snprintf(calc.echoText, sizeof calc.echoText, "%s", text); }

    // The transcript after the line, with a query service that gives `answer`.
    std::string Converted(const char* line, NSString* answer) {
        const Replacement replacement([MainConsole class], @selector(QueryWAConvert:),
                                      reinterpret_cast<IMP>(recordQuery));
        queryAnswer = answer;
        Enter(line);
        return Text();
    }

    void SetDefault(NSString* key, NSString* value) {
        [[NSUserDefaults standardUserDefaults] registerDefaults:[NSDictionary dictionaryWithObject:value
                                                                                            forKey:key]];
    }
};

// --- clear, exit ---

TEST_F(Commands, ClearLeavesThePromptAlone) {
    Enter("1+1");
    Type("abc");
    Command("clear");
    EXPECT_EQ(Text(), "> ");
    EXPECT_EQ(g_linestart, 2);
    EXPECT_EQ(Cursor(), 2u);
    Enter("5;cls");
    EXPECT_EQ(Text(), "> ");
}

TEST_F(Commands, ExitClosesTheWindow) {
    ASSERT_TRUE([window isVisible]);
    Enter("exit");
    EXPECT_FALSE([window isVisible]);
}

TEST_F(Commands, UnknownCommandsDoNothing) {
    Type("7");
    for (const char* text : {"", "clearly", "exits", "pause", "echo", "echorepeat", "converts", "Clear"})
        Command(text);
    EXPECT_EQ(Text(), "> 7");
    EXPECT_TRUE([window isVisible]);
}

// --- pause ---

TEST_F(Commands, APauseOutsideOfZeroToFiveSecondsIsOneSecond) {
    EXPECT_EQ(WaitsOf("pause7000"), Waits{1000});
    EXPECT_EQ(WaitsOf("pause5001"), Waits{1000});
    EXPECT_EQ(WaitsOf("pause-5"), Waits{1000});
    EXPECT_EQ(WaitsOf("pause99999999999999999999"), Waits{1000});
    EXPECT_EQ(WaitsOf("pause5000"), Waits{5000});
    EXPECT_EQ(WaitsOf("pause0"), Waits{0});
    EXPECT_EQ(WaitsOf("pause1"), Waits{1});
    EXPECT_EQ(WaitsOf("pause0x10"), Waits{16});
}

TEST_F(Commands, APauseTakesItsTime) {
    EXPECT_GE(TimeOf("pause300"), 0.3);
    EXPECT_GE(TimeOf("pause7000"), 1.0);
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Commands, KeysInterruptAPause) {
    struct {
        NSString* key;
        NSUInteger flags;
    } const keys[] = {{@"\033", 0}, {@"q", NSCommandKeyMask}, {@"c", NSControlKeyMask}};
    for (const auto& one : keys) {
        scriptInterrupted = false;
        Post(one.key, one.flags);
        Command("pause5000");
        EXPECT_TRUE(scriptInterrupted);
    }
    Command("pause0");
    EXPECT_TRUE(scriptInterrupted); // it stays set for the script's runner
}

TEST_F(Commands, OtherKeysDoNotInterruptAPause) {
    Post(@"x");
    Post(@"c");
    EXPECT_GE(TimeOf("pause200"), 0.2);
    EXPECT_FALSE(scriptInterrupted);
    EXPECT_EQ(Text(), "> ");
}

TEST_F(Commands, APauseAtThePromptEndsWithANewPrompt) {
    Enter("pause10");
    EXPECT_EQ(Text(), "> pause10\n\n> ");
    EXPECT_EQ(Entry(), "");
    Enter("1+1");
    EXPECT_EQ(Text(), "> pause10\n\n> 1+1\nans = 2\n\n> ");
}

TEST_F(Commands, APauseInAScriptWritesNothing) {
    [console ProcessResult:"pause10":NO];
    EXPECT_EQ(Text(), "> ");
}

// --- echorep ---

TEST_F(Commands, EchorepReplacesTheEntry) {
    Enter("1+1");
    Type("old");
    SetEchoText("sin(1)");
    Command("echorep");
    EXPECT_EQ(Text(), "> 1+1\nans = 2\n\n> sin(1)");
    EXPECT_EQ(Entry(), "sin(1)");
    EXPECT_EQ(CursorInEntry(), 6u);
}

TEST_F(Commands, EchorepOfAScriptReplacesTheEntry) {
    Type("old");
    [console ProcessResult:"echorep new text":NO];
    EXPECT_EQ(Text(), "> new text\n");
    EXPECT_EQ(g_linestart, 2);
}

// --- echo ---

TEST_F(Commands, EchoTypesItsTextAtTheEnd) {
    Type("7");
    Select(0);
    SetEchoText("a(b)-caf\xe9\n");
    Command("echo500");
    EXPECT_EQ(Text(), "> 7a(b)-caf\u00e9\n");
    EXPECT_EQ(g_linestart, 13);
    EXPECT_EQ(Cursor(), 13u);
}

TEST_F(Commands, EchoWaitsBetweenTheCharacters) {
    SetEchoText("abcd");
    EXPECT_EQ(WaitsOf("echo10"), (Waits{100, 100, 100}));
    EXPECT_EQ(WaitsOf("echo100"), (Waits{10, 10, 10}));
    EXPECT_EQ(WaitsOf("echo3"), (Waits{333, 333, 333}));
    EXPECT_EQ(WaitsOf("echo1"), (Waits{1000, 1000, 1000}));
    EXPECT_EQ(Text(), "> abcdabcdabcdabcd");
}

TEST_F(Commands, EchoAtTheFastestRateDoesNotWait) {
    SetEchoText("abcd");
    for (const char* text : {"echo0", "echo101", "echo500", "echo1000", "echo-5"}) {
        EXPECT_EQ(WaitsOf(text), Waits{}) << text;
    }
    EXPECT_EQ(Text(), "> abcdabcdabcdabcdabcd");
}

TEST_F(Commands, EchoTakesItsTime) {
    SetEchoText("abcd");
    EXPECT_GE(TimeOf("echo10"), 0.3);
}

TEST_F(Commands, KeysInterruptATypedText) {
    SetEchoText("abcd");
    Post(@"\033");
    Command("echo0");
    EXPECT_EQ(Text(), "> a");
    EXPECT_EQ(g_linestart, 3);
    EXPECT_TRUE(scriptInterrupted);
    scriptInterrupted = false;
    Post(@"x");
    Command("echo0");
    EXPECT_EQ(Text(), "> aabcd");
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Commands, KeysInterruptTheWaitBetweenTwoCharacters) {
    SetEchoText("ab");
    Post(@"x"); // taken behind the first character
    Post(@"\033");
    Command("echo1");
    EXPECT_EQ(Text(), "> a");
    EXPECT_TRUE(scriptInterrupted);
}

TEST_F(Commands, ATextTypedOutAtThePromptEndsWithANewPrompt) {
    Enter("echo1000 hi there");
    EXPECT_EQ(Text(), "> echo1000 hi there\nhi there\n\n> ");
    EXPECT_EQ(Entry(), "");
    Press(KEY_BACKSPACE);
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(Text(), "> echo1000 hi there\nhi there\n\n> ");
}

TEST_F(Commands, ATextTypedOutByAScriptIsFollowedByTheNextAnswer) {
    [console ProcessResult:"echo1000 hi":NO];
    EXPECT_EQ(Text(), "> hi\n");
    [console ProcessResult:"1+1":NO];
    EXPECT_EQ(Text(), "> hi\nans = 2\n");
}

TEST_F(Commands, AnEmptyTextIsTypedOutAsNothing) {
    SetEchoText("");
    Command("echo10");
    EXPECT_EQ(Text(), "> ");
}

// --- convert ---

TEST_F(Commands, ConvertShowsTheAnswerAboveTheNewPrompt) {
    EXPECT_EQ(Converted("convert 5 miles to km", @"8.047 km"),
              "> convert 5 miles to km\n ...checking...\n8.047 km\n\n> ");
    EXPECT_EQ(queryAsked, "convert+5+miles+to+km");
    EXPECT_EQ(textWhileAsking, "> convert 5 miles to km\n ...checking...\n\n> ");
    EXPECT_EQ(Entry(), "");
    EXPECT_EQ(g_linestart, static_cast<int32_t>(Text().size()));
}

TEST_F(Commands, ConvertWithoutAnAnswerIsNotFound) {
    EXPECT_EQ(Converted("convert 5 miles to kg", nil),
              "> convert 5 miles to kg\n ...checking...\nNot found.\n\n> ");
}

TEST_F(Commands, AnAnswerMayHaveCharactersThatAreNoLatin1) {
    NSString* const answer = [NSString stringWithUTF8String:"\u2248 8 km\u00b2"];
    EXPECT_EQ(Converted("convert 1", answer), "> convert 1\n ...checking...\n\u2248 8 km\u00b2\n\n> ");
    Enter("1+1");
    EXPECT_NE(Text().find("> 1+1\nans = 2\n\n> "), std::string::npos);
}

// --- gospel ---

TEST_F(Commands, WithoutAnAddressThereIsNoPageToOpen) {
    SetDefault(@"WebPageURL", @"");
    Enter("gospel");
    [console clearConsole];
    Enter("gospel");
    EXPECT_EQ(Text(), "> gospel\nThere is no web page to open.\n\n> ");
}

} // namespace
