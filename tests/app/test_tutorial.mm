// SPDX-License-Identifier: MIT
//
// The tutorial: how long it lasts, what it shows, and that it leaves nothing behind.
#import "console_fixture.h"

#include "DefinitionsFile.h"

#include <algorithm>
#include <fstream>
#include <regex>

namespace {

using Lines = std::vector<std::string>;

const size_t LONGEST_LINE = 998; // characters of a script's line
const size_t WINDOW_WIDTH = 50;  // characters that fit into the window of the first start

Lines tutorialLines() {
    std::ifstream file(TALLYQUILL_RESOURCES "/tutorial.script");
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        EXPECT_LE(line.size(), LONGEST_LINE) << line;
        for (const char c : line) EXPECT_TRUE(c >= ' ' && c <= '~') << line;
        if (!line.empty() && line[0] != '#') lines.push_back(line);
    }
    EXPECT_GT(lines.size(), 20U);
    return lines;
}

// What a line types out and how long that takes, in milliseconds, and how long it pauses.
struct Timing {
    std::string typed;
    long milliseconds = 0;
};

Timing timingOf(const std::string& line) {
    static const std::regex statement("[^;]+");
    static const std::regex plainEcho(" *echo( (.*))?");
    static const std::regex typedEcho(" *echo([0-9]+)( (.*))?");
    static const std::regex pause(" *pause([0-9]+)");
    Timing timing;
    for (std::sregex_iterator it(line.begin(), line.end(), statement), end; it != end; ++it) {
        const std::string text = it->str();
        std::smatch part;
        if (std::regex_match(text, part, plainEcho)) {
            timing.typed += part[2].str() + "\n";
        } else if (std::regex_match(text, part, typedEcho)) {
            timing.typed += part[3].str() + "\n";
            const long rate = std::stol(part[1]);
            EXPECT_TRUE(rate >= 1 && rate <= 100) << line;
            timing.milliseconds += static_cast<long>(timing.typed.size() - 1) * (1000 / rate);
        } else if (std::regex_match(text, part, pause)) {
            const long length = std::stol(part[1]);
            EXPECT_LE(length, 5000) << "longer pauses last a second: " << line;
            timing.milliseconds += length;
        }
    }
    return timing;
}

// The line without its waiting: characters at the fastest rate, no pauses.
std::string hurried(const std::string& line) {
    static const std::regex wait("(echo|pause)[0-9]+");
    return std::regex_replace(line, wait, "$010");
}

// The line without what it types out.
std::string silent(const std::string& line) {
    static const std::regex echo("echo[^;]*");
    return hurried(std::regex_replace(line, echo, "pause0"));
}

class TutorialTest : public ConsoleTest {
protected:
    // Replays the script and returns what the console then shows in addition.
    std::string Replay(const std::string& script) {
        const std::string path = home + "/hurried.script";
        Write(path, script);
        const size_t before = Text().size();
        EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
        return Text().substr(before);
    }

    std::string ReplayTutorial() {
        std::string script;
        for (const std::string& line : tutorialLines()) script += hurried(line) + "\n";
        return Replay(script);
    }

    // Functions, variables besides ans, units, history and settings.
    std::string WhatIsKept() {
        std::string kept = definitionsText(calc);
        const size_t ans = kept.find("\nans=");
        EXPECT_NE(ans, std::string::npos);
        kept.erase(ans, kept.find('\n', ans + 1) - ans);
        for (NSString* key in [[[console settings] allKeys] sortedArrayUsingSelector:@selector(compare:)]) {
            const id value = [[console settings] objectForKey:key];
            kept += std::string([[NSString stringWithFormat:@"%@ = %@\n", key, value] UTF8String]);
        }
        return kept + (calc.histStack ? "history on\n" : "history off\n");
    }

    // Definitions, history and settings of a person's own.
    void EnterOwnThings() {
        for (const char* const line : {"side=7", "cube(x)=x*x*x", "unit smoot=67 inch", "cube(side)"})
            Enter(line);
    }
};

TEST(TutorialScript, ItLastsAboutFortyFiveSeconds) {
    long total = 0;
    for (const std::string& line : tutorialLines()) total += timingOf(line).milliseconds;
    EXPECT_GE(total, 40000);
    EXPECT_LE(total, 50000);
}

TEST(TutorialScript, WhatItTypesFitsIntoTheWindow) {
    for (const std::string& line : tutorialLines()) {
        const std::string typed = timingOf(line).typed;
        for (size_t start = 0; start < typed.size();) {
            const size_t end = typed.find('\n', start);
            EXPECT_LE(end - start, WINDOW_WIDTH) << line;
            start = end + 1;
        }
    }
}

TEST(TutorialScript, TheTestsTakeTheWaitingOutOfIt) {
    EXPECT_EQ(hurried("echo; echo50 pause 3; pause700"), "echo; echo0 pause 3; pause0");
    EXPECT_EQ(silent("del x; echo; echo50 text; pause700"), "del x; pause0; pause0; pause0");
}

TEST_F(TutorialTest, ItShowsEntriesWithTheirAnswers) {
    const std::string shown = ReplayTutorial();
    for (const char* const part :
         {"\n> 2+3*4\nans = 14\n", "\n> ans/7\nans = 2\n", "\n> demo_side = 3*4\ndemo_side = 12\n",
          "\n> demo_side^2\nans = 144\n", "\n> demo_cube(x) = x^3\ndemo_cube(x)=x^3\n",
          "\n> demo_cube(7)\nans = 343\n", "\n> 60 mi/hr -> km/hr\nans = 96.56064\n",
          "\n> 0xFF + 0b1\nans = 256\n"}) {
        EXPECT_NE(shown.find(part), std::string::npos) << part << "in" << shown;
    }
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '>'), 10)
        << "an arrow, a new prompt, no others: " << shown;
    EXPECT_EQ(shown.find("**"), std::string::npos) << "neither an error nor a confirmation: " << shown;
    EXPECT_EQ(shown.substr(shown.size() - 3), "\n> ");
    EXPECT_EQ(Entry(), "");
}

// Escape ends it behind any line that waits.
TEST_F(TutorialTest, WhereverItEndsItLeavesNothingBehind) {
    EnterOwnThings();
    const std::string before = WhatIsKept();
    ASSERT_NE(before.find("cube(side)\n"), std::string::npos);
    std::string script;
    int ends = 0;
    for (const std::string& line : tutorialLines()) {
        script += silent(line) + "\n";
        if (timingOf(line).milliseconds == 0) continue;
        Replay(script);
        [console clearConsole];
        ASSERT_EQ(WhatIsKept(), before) << line;
        ends++;
    }
    EXPECT_GT(ends, 30);
}

TEST_F(TutorialTest, ItKeepsToThePersonsSettings) {
    for (const char* const line : {"european on", "mode rad", "sigfigs 20", "scimode eng", "display hex"})
        Enter(line);
    const std::string before = WhatIsKept();
    const std::string shown = ReplayTutorial();
    EXPECT_EQ(shown.find("**"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\n> 0xFF + 0b1\nans = 0x0100\n"), std::string::npos) << shown;
    EXPECT_EQ(WhatIsKept(), before);
}

TEST_F(TutorialTest, EscapeEndsItAtOnceWithANewPrompt) {
    Post(@"\033");
    EXPECT_TRUE([console loadFile:@TALLYQUILL_RESOURCES "/tutorial.script"]);
    EXPECT_EQ(Text(), "> \nW\n> ");
}

// The button Hex shows the last answer again with the entry as the tutorial showed it.
TEST_F(TutorialTest, ItsLastAnswerCanBeShownInAnotherBase) {
    ReplayTutorial();
    [console setDisplayBase:16:YES];
    EXPECT_NE(Text().find("\n0xFF + 0b1 = 0x0100\n"), std::string::npos) << Text();
}

} // namespace
