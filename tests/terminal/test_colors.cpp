// SPDX-License-Identifier: MIT
#include "Colors.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

// What tells of colors, and nothing else; without a terminal.
class ColorsTest : public testing::Test {
protected:
    ColorsTest() { Forget(); }
    ~ColorsTest() override { Forget(); }

    static void Forget() {
        for (const char* const name : {"NO_COLOR", "CLICOLOR_FORCE"}) unsetenv(name);
        setenv("TERM", "xterm", 1);
    }
    static bool Wants(std::string_view choice) { return wantsColors(choice, -1); }
};

class ATerminal : public System {
public:
    int IsTerminal(int) override { return 1; }
};

TEST_F(ColorsTest, AChoiceGoesBeforeTheEnvironment) {
    setenv("NO_COLOR", "1", 1);
    EXPECT_TRUE(Wants("always"));
    unsetenv("NO_COLOR");
    setenv("CLICOLOR_FORCE", "1", 1);
    EXPECT_FALSE(Wants("never"));
}

TEST_F(ColorsTest, TheEnvironmentGoesBeforeTheKindOfOutput) {
    ATerminal terminal;
    EXPECT_FALSE(Wants("auto"));
    EXPECT_TRUE(wantsColors("auto", 1, terminal));
    setenv("CLICOLOR_FORCE", "0", 1);
    EXPECT_FALSE(Wants("auto"));
    setenv("CLICOLOR_FORCE", "1", 1);
    EXPECT_TRUE(Wants("auto"));
    EXPECT_TRUE(Wants(""));
    setenv("NO_COLOR", "", 1); // which is as if it were not set
    EXPECT_TRUE(Wants("auto"));
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(Wants("auto"));
    EXPECT_FALSE(wantsColors("auto", 1, terminal));
}

TEST_F(ColorsTest, ATerminalThatIsNotNamedKnowsNoSequences) {
    ATerminal terminal;
    EXPECT_TRUE(knowsSequences());
    for (const char* const kind : {"dumb", ""}) {
        setenv("TERM", kind, 1);
        EXPECT_FALSE(knowsSequences()) << kind;
        EXPECT_FALSE(wantsColors("auto", 1, terminal)) << kind;
    }
    unsetenv("TERM");
    EXPECT_FALSE(knowsSequences());
}

TEST_F(ColorsTest, ALineEndStandsBehindTheColor) {
    EXPECT_EQ("\x1b[31mno\x1b[0m\n", colored(Shade::Error, "no\n"));
    EXPECT_EQ("\x1b[31mno\x1b[0m", colored(Shade::Error, "no"));
    EXPECT_EQ("\n", colored(Shade::Error, "\n"));
    EXPECT_EQ("", colored(Shade::Error, ""));
}

TEST_F(ColorsTest, OfAnAnswerTheNameAndTheValueHaveTheirOwn) {
    EXPECT_EQ("\x1b[36mx\x1b[0m = \x1b[1m5\x1b[0m\n", coloredAnswer("x = 5\n"));
    EXPECT_EQ("\x1b[1m5\x1b[0m\n", coloredAnswer("5\n"));
}

} // namespace
