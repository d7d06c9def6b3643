// SPDX-License-Identifier: MIT
//
// A console with a transcript of one entry and an open entry, for tests of single keys.
#pragma once

#import "console_fixture.h"

const char* const UNTOUCHED = "no preview so far";

class Keys : public ConsoleTest {
protected:
    // A transcript of one entry and an open entry, nothing selected, the cursor at the end.
    void SetUp() override {
        ConsoleTest::SetUp();
        enter("1+2");
        type("4+5");
        begin = static_cast<NSUInteger>(g_linestart);
        first = transcript();
        [console updateStatusbar:UNTOUCHED];
    }

    void setEntry(NSString* text) {
        [console replaceCharactersInRange:NSMakeRange(begin, [[console string] length] - begin)
                               withString:text];
    }

    void expectSelection(NSUInteger location, NSUInteger length) {
        EXPECT_EQ(location, cursor());
        EXPECT_EQ(length, [console selectedRange].length);
    }

    // The transcript and the entry are these, and the preview is that of the entry or has not run.
    void expect(const char* wanted, bool previewed = true) {
        EXPECT_EQ(first, transcript());
        EXPECT_EQ(wanted, entry());
        if (previewed)
            EXPECT_NE(UNTOUCHED, status());
        else
            EXPECT_EQ(UNTOUCHED, status());
    }

    NSUInteger begin = 0;
    std::string first;
};
