// SPDX-License-Identifier: MIT
//
// Copying: a selection, or the answer without one.
#import "console_fixture.h"

#import <objc/runtime.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

using Clock = std::chrono::steady_clock;

struct Selection {
    NSRange range;
    Clock::time_point when;
};
std::vector<Selection> selections;

void recordSelection(id self, SEL selector, NSRange range) {
    selections.push_back({range, Clock::now()});
    const IMP original = class_getMethodImplementation([NSTextView class], selector);
    reinterpret_cast<void (*)(id, SEL, NSRange)>(original)(self, selector, range);
}

class Clipboard : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        class_addMethod([MainConsole class], @selector(setSelectedRange:),
                        reinterpret_cast<IMP>(recordSelection), "v@:{_NSRange=QQ}");
        SetPasteboard("what was there");
        sheets.clear(); // that of the first start
    }

    // The pasteboard after a copy of the answer of the line.
    std::string CopiedAnswer(const char* line) {
        Enter(line);
        [console copy:nil];
        return Pasteboard();
    }

    const NSUInteger command = NSCommandKeyMask;
};

// --- Copying a selection ---

TEST_F(Clipboard, CopyTakesTheSelection) {
    Enter("1+2");
    Select(2, 3);
    [console copy:nil];
    EXPECT_EQ("1+2", Pasteboard());
    EXPECT_EQ("1+2", Selected());
    Type("7*8");
    SelectEntry(1, 2);
    Press(@"c", command);
    EXPECT_NE("7*8", Pasteboard()); // with a selection the key is the menu's
    [console copy:nil];
    EXPECT_EQ("*8", Pasteboard());
}

TEST_F(Clipboard, CopyingFromTheTranscriptShowsATipOnce) {
    Enter("1+2");
    Select(2, 3);
    [console copy:nil];
    ASSERT_EQ(1U, sheets.size());
    EXPECT_EQ(
        "Tip:  You can copy the previous answer anytime using CMD-c with no text selected.  Give it a try!",
        sheets[0].message);
    EXPECT_EQ("Thanks, but don't tell me again!", sheets[0].yes);
    EXPECT_EQ("", sheets[0].no);
    EXPECT_EQ(1, [console setting:@"tipscode"]);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
}

TEST_F(Clipboard, TheTipIsShownOncePerSettingsFile) {
    Enter("1+2");
    Select(2, 3);
    [console copy:nil];
    Terminate();
    Restart();
    sheets.clear();
    Enter("1+2");
    Select(2, 3);
    [console copy:nil];
    EXPECT_EQ(0U, sheets.size());
}

TEST_F(Clipboard, TheTipNeedsASelectionThatBeginsMoreThanFourCharactersBeforeTheEntry) {
    Enter("1+2");
    Type("45");
    SelectEntry(0, 2);
    [console copy:nil];
    Select(static_cast<NSUInteger>(g_linestart) - 4, 5);
    [console copy:nil];
    EXPECT_EQ(0U, sheets.size());
    EXPECT_EQ(0, [console setting:@"tipscode"]);
    Select(static_cast<NSUInteger>(g_linestart) - 5, 5);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
}

TEST_F(Clipboard, OtherTipsAreKept) {
    [console setSetting:@"tipscode" to:6];
    Enter("1+2");
    Select(2, 3);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
    EXPECT_EQ(7, [console setting:@"tipscode"]);
}

// --- Copying the answer ---

TEST_F(Clipboard, WithoutASelectionTheAnswerIsCopied) {
    EXPECT_EQ("3", CopiedAnswer("1+2"));
    EXPECT_EQ(0U, sheets.size());
}

TEST_F(Clipboard, CommandCCopiesTheAnswer) {
    Enter("1+2");
    Type("45");
    Press(@"c", command);
    EXPECT_EQ("3", Pasteboard());
    EXPECT_EQ("45", Entry());
    EXPECT_EQ(2U, CursorInEntry());
}

TEST_F(Clipboard, TheCopyItemIsEnabledWithoutASelection) {
    for (const SEL action : { @selector(copy:), @selector(cut:), @selector(paste:), @selector(undo:) }) {
        NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"" action:action
                                                      keyEquivalent:@""] autorelease];
        EXPECT_TRUE([console validateMenuItem:item]);
    }
}

TEST_F(Clipboard, TheAnswerIsCopiedWithoutItsSeparators) {
    [console setSetting:@"separator" to:1];
    const struct {
        char character;
        const char* shown;
    } separators[] = {{',', "1,234,567.5"}, {' ', "1 234 567.5"}, {'\'', "1'234'567.5"}};
    for (const auto& one : separators) {
        [console setSetting:@"schar" to:one.character];
        EXPECT_EQ("1234567.5", CopiedAnswer("1234567.5"));
        EXPECT_NE(std::string::npos, Text().find(std::string("= ") + one.shown + "\n")) << one.shown;
    }
}

TEST_F(Clipboard, TheDecimalCommaIsCopied) {
    [console setSetting:@"separator" to:1];
    [console setSetting:@"european" to:1];
    for (const char separator : {',', '.'}) { // either stands for the grouping mark
        [console setSetting:@"schar" to:separator];
        EXPECT_EQ("1234567,5", CopiedAnswer("1234567,5"));
        EXPECT_NE(std::string::npos, Text().find("= 1.234.567,5\n"));
    }
    [console setSetting:@"separator" to:0];
    EXPECT_EQ("1234567,5", CopiedAnswer("1234567,5"));
}

TEST_F(Clipboard, AnotherBaseIsCopiedAsItIsShown) {
    [console setSetting:@"separator" to:0];
    [console setSetting:@"dispbase" to:16];
    Enter("255");
    [console copy:nil];
    const std::string copied = Pasteboard();
    EXPECT_NE(std::string::npos, Text().find("= " + copied + "\n"));
    EXPECT_EQ("0x00FF", copied);
}

TEST_F(Clipboard, WithoutAnAnswerThePasteboardStays) {
    [console copy:nil];
    EXPECT_EQ("what was there", Pasteboard());
}

TEST_F(Clipboard, TheCopiedAnswerFlashesThreeTimes) {
    Enter("3");
    Enter("1+2");
    Type("45");
    SelectEntry(1);
    const NSUInteger place = Cursor();
    const auto answer = static_cast<NSUInteger>(Text().rfind("= 3") + 2);
    selections.clear();
    [console copy:nil];
    ASSERT_EQ(6U, selections.size());
    for (size_t i = 0; i < 6; ++i) {
        const bool isAnswer = i % 2 == 0;
        EXPECT_EQ(isAnswer ? answer : place, selections[i].range.location);
        EXPECT_EQ(isAnswer ? 1U : 0U, selections[i].range.length);
        // A busy machine only makes it longer.
        if (i < 5) EXPECT_LE(std::chrono::milliseconds(80), selections[i + 1].when - selections[i].when);
    }
    EXPECT_EQ(place, Cursor());
    EXPECT_EQ("", Selected());
    EXPECT_EQ("45", Entry());
}

TEST_F(Clipboard, TheAnswerIsFoundWithItsSeparators) {
    [console setSetting:@"separator" to:1];
    Enter("1234567");
    selections.clear();
    [console copy:nil];
    ASSERT_EQ(6U, selections.size());
    EXPECT_EQ(Text().find("1,234,567"), selections[0].range.location);
    EXPECT_EQ(9U, selections[0].range.length);
}

TEST_F(Clipboard, AnAnswerThatIsNotShownAnyMoreIsCopiedWithoutFlashing) {
    Enter("1+2");
    [console clearConsole];
    selections.clear();
    [console copy:nil];
    EXPECT_EQ("3", Pasteboard());
    EXPECT_EQ(0U, selections.size());
}

// --- The answer in other settings than those it was shown in ---

TEST_F(Clipboard, TheAnswerIsCopiedInTheDecimalMarkOfNow) {
    [console setSetting:@"separator" to:1];
    Enter("1234.5");
    Enter("european on");
    [console copy:nil];
    EXPECT_EQ("1234,5", Pasteboard());
    Enter("european off");
    [console copy:nil];
    EXPECT_EQ("1234.5", Pasteboard());
}

TEST_F(Clipboard, AnAnswerThatDispShowedIsCopiedAsItsNumber) {
    Enter("x=1/4");
    Enter("disp pi");
    selections.clear();
    [console copy:nil];
    EXPECT_EQ("3.141592654", Pasteboard());
    ASSERT_EQ(6U, selections.size());
    EXPECT_EQ(Text().find("3.141592654"), selections[0].range.location);
}

// The settings that decide how a number is written.
struct Writing {
    int european, separator, schar, dispbase, sigfigs, scimode, twoscomp;
    int tenkey = 0;
};

const Writing WRITINGS[] = {
    {0, 0, ',', 10, 10, 0, 0}, {0, 1, ',', 10, 10, 0, 0},    {1, 1, ',', 10, 10, 0, 0},
    {1, 0, ',', 10, 30, 1, 0}, {0, 1, '\'', 10, 6, 2, 0},    {1, 1, ' ', 10, 6, 3, 0},
    {0, 1, ' ', 10, 5, 4, 0},  {1, 1, '\'', 10, 2, 5, 0},    {0, 1, ',', 10, 100, 5, 0},
    {0, 0, ',', 16, 10, 0, 0}, {1, 1, ',', 16, 10, 0, 1},    {0, 1, ';', 2, 10, 0, 1},
    {1, 0, ',', 2, 3, 2, 0},   {0, 0, ',', 16, 3, 4, 1},     {1, 1, ';', 10, 12, 4, 1},
    {0, 1, '.', 10, 12, 0, 0}, {0, 0, ',', 10, 10, 0, 0, 1}, {1, 1, ',', 16, 10, 1, 1, 1}};

class CopiedAnswer : public Clipboard {
protected:
    void Use(const Writing& one) {
        const struct {
            NSString* key;
            int value;
        } settings[] = {{@"european", one.european}, {@"separator", one.separator}, {@"schar", one.schar},
                        {@"dispbase", one.dispbase}, {@"sigfigs", one.sigfigs},     {@"scimode", one.scimode},
                        {@"twoscomp", one.twoscomp}, {@"tenkey", one.tenkey}};
        for (const auto& setting : settings) [console setSetting:setting.key to:setting.value];
    }

    static double Number(const qfloat value) {
        double out = 0;
        qtoe(value, &out);
        return out;
    }

    // Half a unit of the last place that the writing shows, beside what no writing shows.
    static bool IsNear(const Writing& one, const qfloat wanted, const qfloat read) {
        qfloat difference;
        qfloat relative = {};
        qsub(wanted, read, difference);
        if (difference[1] == 0) return true;
        if (wanted[1] == 0) return false;
        qdiv(wanted, difference, relative);
        const double own = 1e-30;
        if (one.dispbase != 10) return std::fabs(Number(relative)) <= own;
        if (std::fabs(Number(relative)) <= own) return true;
        if (one.scimode == 5) return std::fabs(Number(difference)) <= 0.5 * std::pow(10, -one.sigfigs);
        return std::fabs(Number(relative)) <= 5 * std::pow(10, -one.sigfigs);
    }
};

// What is copied reads back, by the engine in the settings of the copy, as the answer with the figures it was
// shown with: every value in every writing, copied in every other one.
TEST_F(CopiedAnswer, ReadsBackInWhateverSettingsHoldAtTheCopy) {
    const char* const values[] = {"1234.5",        "0-5",         "255",   "1234567", "0-1234567.25",
                                  "0.015625",      "0-0.0078125", "1e12",  "3e-7",    "0",
                                  "123456789.125", "2^200",       "1e100", "1e400",   "0-1e400"};
    for (const char* value : values) {
        for (const Writing& shown : WRITINGS) {
            Writing typed = shown; // a sum is typed in another way in adding-machine entry
            typed.tenkey = 0;
            std::string line = std::string("x=") + value;
            if (shown.european) std::replace(line.begin(), line.end(), '.', ',');
            Use(typed);
            [console ProcessResult:line.c_str():NO];
            qfloat wanted;
            qmov(calc.answer.value, wanted);
            if (shown.dispbase != 10) { // whole ones alone, toward zero
                const uint32_t sign = wanted[0];
                wanted[0] = 0;
                qfloor(wanted, wanted);
                wanted[0] = sign;
            }
            for (const Writing& now : WRITINGS) {
                Use(now);
                [console copySettingsToEngine];
                const std::string copied = calc.PlainAnswer();
                ASSERT_EQ(STATUS_RESULT, calc.ProcessEntry(copied.c_str(), true)) << copied;
                EXPECT_TRUE(IsNear(shown, wanted, calc.result)) << copied << " of " << line;
            }
        }
    }
}

// --- Clicks and the desktop's selection ---

TEST_F(Clipboard, ADoubleClickTakesAWholeNumberInTheMarksOfNow) {
    Enter("1234567.5*10^20");
    const NSUInteger digits = Text().find("1.234");
    const NSRange number = [console selectionRangeForProposedRange:NSMakeRange(digits + 3, 0)
                                                       granularity:NSSelectByWord];
    EXPECT_EQ("1.2345675e26", [[[console string] substringWithRange:number] UTF8String] + std::string());
    [console setSetting:@"separator" to:1];
    Enter("1234567.5");
    const NSRange grouped = [console selectionRangeForProposedRange:NSMakeRange(Text().find("1,234"), 0)
                                                        granularity:NSSelectByWord];
    EXPECT_EQ("1,234,567.5", [[[console string] substringWithRange:grouped] UTF8String] + std::string());
    [console setSetting:@"european" to:1];
    Enter("7654321,5");
    const NSRange european = [console selectionRangeForProposedRange:NSMakeRange(Text().find("7.654"), 0)
                                                         granularity:NSSelectByWord];
    EXPECT_EQ("7.654.321,5", [[[console string] substringWithRange:european] UTF8String] + std::string());
}

TEST_F(Clipboard, ADoubleClickKnowsAnyGroupingMark) {
    [console setSetting:@"separator" to:1];
    [console setSetting:@"schar" to:'\''];
    Enter("1234567.5");
    const NSRange number = [console selectionRangeForProposedRange:NSMakeRange(Text().find("1'234"), 0)
                                                       granularity:NSSelectByWord];
    EXPECT_EQ("1'234'567.5", [[[console string] substringWithRange:number] UTF8String] + std::string());
}

TEST_F(Clipboard, ADragOfADoubleClickGoesOnInWholeWords) {
    Type("12.5+width");
    const NSRange both =
        [console selectionRangeForProposedRange:NSMakeRange(static_cast<NSUInteger>(g_linestart) + 1, 6)
                                    granularity:NSSelectByWord];
    EXPECT_EQ(both.location, static_cast<NSUInteger>(g_linestart));
    EXPECT_EQ(both.length, 10U);
}

TEST_F(Clipboard, ATripleClickTakesTheLineWithoutItsPromptAndEnd) {
    Enter("1+2");
    Type("45");
    const auto line = [this](NSUInteger place) {
        const NSRange range = [console selectionRangeForProposedRange:NSMakeRange(place, 0)
                                                          granularity:NSSelectByParagraph];
        return std::string([[[console string] substringWithRange:range] UTF8String]);
    };
    EXPECT_EQ("1+2", line(3));
    EXPECT_EQ("ans = 3", line(8));
    EXPECT_EQ("45", line(static_cast<NSUInteger>(g_linestart)));
    EXPECT_EQ("", line(Text().find("\n\n") + 1));
}

TEST_F(Clipboard, WhatIsSelectedIsTheDesktopsSelection) {
    Type("12345");
    SelectEntry(1, 3);
    Run(0.05);
    NSPasteboard* const selection = [NSPasteboard pasteboardWithName:@"Selection"];
    EXPECT_TRUE([[selection stringForType:NSStringPboardType] isEqualToString:@"234"]);
    SelectEntry(5);
    Run(0.05);
    EXPECT_TRUE([[selection stringForType:NSStringPboardType] isEqualToString:@"234"]) << "it stays";
}

} // namespace
