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
        Enter("1+2");
        Type("4+5");
        begin = static_cast<NSUInteger>(g_linestart);
        first = Transcript();
        [console updateStatusbar:UNTOUCHED];
    }

    void SetEntry(NSString* text) {
        [console replaceCharactersInRange:NSMakeRange(begin, [[console string] length] - begin)
                               withString:text];
    }

    void ExpectSelection(NSUInteger location, NSUInteger length) {
        EXPECT_EQ(location, Cursor());
        EXPECT_EQ(length, [console selectedRange].length);
    }

    // The transcript and the entry are these, and the preview is that of the entry or has not run.
    void Expect(const char* wanted, bool previewed = true) {
        EXPECT_EQ(first, Transcript());
        EXPECT_EQ(wanted, Entry());
        if (previewed)
            EXPECT_NE(UNTOUCHED, StatusLine());
        else
            EXPECT_EQ(UNTOUCHED, StatusLine());
    }

    NSUInteger begin = 0;
    std::string first;
};
