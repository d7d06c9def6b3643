// SPDX-License-Identifier: MIT
//
// Keys that interrupt a script or a calculation, and keys that do not.
#import "console_fixture.h"

namespace {

class InterruptKeys : public ConsoleTest {
protected:
    // What waits in the application's queue.
    static std::string NextKey() {
        NSEvent* const event = [NSApp nextEventMatchingMask:NSKeyDownMask
                                                  untilDate:[NSDate date]
                                                     inMode:NSDefaultRunLoopMode
                                                    dequeue:YES];
        return event ? [[event characters] UTF8String] : "";
    }

    void TearDown() override {
        while (!NextKey().empty()) {
        }
        ConsoleTest::TearDown();
    }

    // d0 calls a built-in function, d1 calls d0 ten times, and so on up to d7.
    void DefineSlowFunctions() {
        [console ProcessResult:"d0(x)=sin(x)":NO];
        for (char level = '1'; level <= '7'; ++level) {
            std::string line = std::string("d") + level + "(x)=";
            for (int i = 0; i < 10; ++i) {
                if (i > 0) line += '+';
                line += std::string("d") + static_cast<char>(level - 1) + "(x+" + static_cast<char>('0' + i) +
                        ")";
            }
            [console ProcessResult:line.c_str():NO];
        }
    }

    void RunAlone(const std::string& line) {
        [console clearConsole];
        [console replacePrompt:line.c_str()];
        Press(KEY_RETURN);
    }
};

TEST_F(InterruptKeys, WithoutAKeyNothingIsInterrupted) {
    EXPECT_EQ(0, [console checkInterruptEvent]);
}

TEST_F(InterruptKeys, EscapeInterruptsTheEntry) {
    Post(@"\033");
    EXPECT_EQ(1, [console checkInterruptEvent]);
    EXPECT_EQ(0, [console checkInterruptEvent]);
}

TEST_F(InterruptKeys, CommandQInterrupts) {
    Post(@"q", NSCommandKeyMask);
    EXPECT_EQ(1, [console checkInterruptEvent]);
}

TEST_F(InterruptKeys, ControlCInterrupts) {
    Post(@"c", NSControlKeyMask);
    EXPECT_EQ(1, [console checkInterruptEvent]);
}

TEST_F(InterruptKeys, OtherKeysAreConsumedOneByOne) {
    Post(@"q");
    Post(@"c");
    Post(@"c", NSCommandKeyMask);
    Post(@"s", NSControlKeyMask);
    Post(@"\r");
    Post(@"7");
    for (int i = 0; i < 6; ++i) EXPECT_EQ(0, [console checkInterruptEvent]) << i;
    EXPECT_EQ("", NextKey());
    EXPECT_EQ("> ", Text());
    Post(@"7");
    Post(@"\033");
    EXPECT_EQ(0, [console checkInterruptEvent]);
    EXPECT_EQ(1, [console checkInterruptEvent]);
}

TEST_F(InterruptKeys, EachOfThemEndsALongEntry) {
    DefineSlowFunctions();
    const struct {
        NSString* key;
        NSUInteger flags;
    } keys[] = {{@"\033", 0}, {@"q", NSCommandKeyMask}, {@"c", NSControlKeyMask}, {@"q", NSControlKeyMask}};
    for (const auto& one : keys) {
        Post(one.key, one.flags);
        RunAlone("d7(1)");
        EXPECT_EQ("> d7(1)\n** ERROR: interrupted **\n\n> ", Text());
        EXPECT_EQ("", NextKey());
    }
    Enter("1+2");
    EXPECT_NE(std::string::npos, Text().find("ans = 3\n"));
}

// The entry looked at them, for it came to the Escape behind them, and went on.
TEST_F(InterruptKeys, OtherKeysDuringALongEntryAreLost) {
    DefineSlowFunctions();
    Post(@"7");
    Post(@"\r");
    Post(@"\033");
    RunAlone("d7(1)");
    EXPECT_EQ("> d7(1)\n** ERROR: interrupted **\n\n> ", Text());
    EXPECT_EQ("", NextKey());
}

TEST_F(InterruptKeys, WhatIsTypedAheadOfAShortEntrysEndStays) {
    [console replacePrompt:"1+2"];
    Post(@"7");
    Press(KEY_RETURN);
    EXPECT_EQ("> 1+2\nans = 3\n\n> ", Text());
    EXPECT_EQ("7", NextKey());
}

} // namespace
