// SPDX-License-Identifier: MIT
//
// What happens while an entry or a script looks for interruptions: timers fire and events are dealt with.
#import "console_fixture.h"

#import "replacement.h"

// An object that counts how many of its kind there are.
@interface CountedObject : NSObject
@end

static int living = 0;
static int most = 0;

@implementation CountedObject
- (id)init {
    ++living;
    most = living > most ? living : most;
    return [super init];
}
- (void)dealloc {
    --living;
    [super dealloc];
}
@end

static int leaveAnObject(id, SEL) {
    [[[CountedObject alloc] init] autorelease];
    return 0;
}

static void leaveOneWithEveryEntry(id, SEL) {
    leaveAnObject(nil, nullptr);
}

class EventsInEntries : public ConsoleTest {
protected:
    using ConsoleTest::Run;
    void Load(const std::string& script) {
        const std::string path = home + "/a.script";
        Write(path, script);
        EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    }
    void Later(SEL selector, id object = nil) {
        [console performSelector:selector withObject:object afterDelay:0];
    }
};

// --- Memory ---

// An hour of pauses asks some millions of times.
TEST_F(EventsInEntries, APauseKeepsNothingOfWhatItsQuestionsLeave) {
    living = most = 0;
    const Replaced find([MainConsole class], @selector(findInterruptEvent), leaveAnObject);
    [console RunGUICommand:"pause200"];
    EXPECT_GT(most, 0);
    EXPECT_LE(most, 1);
    EXPECT_EQ(living, 0);
}

TEST_F(EventsInEntries, AScriptKeepsNothingOfWhatItsLinesLeave) {
    living = most = 0;
    const Replaced after([MainConsole class], @selector(entryDidRun), leaveOneWithEveryEntry);
    std::string lines;
    for (int i = 0; i < 50; ++i) lines += "x=" + std::to_string(i) + "\n";
    Load(lines);
    EXPECT_EQ(most, 1);
    EXPECT_EQ(living, 0);
}

// --- Entries and previews ---

@interface MainConsole (TestEvents)
- (void)enterInTheMiddle;
- (void)previewInTheMiddle;
@end

@implementation MainConsole (TestEvents)
- (void)enterInTheMiddle {
    [self ProcessResult:"inside=1":NO];
}
- (void)previewInTheMiddle {
    calc.message[0] = '?';
    [self ProcessResult:nullptr:YES];
    EXPECT_EQ(calc.message[0], '?');
    EXPECT_TRUE([[self QuickResult:"1+1":10] isEqualToString:@"error"]);
}
@end

TEST_F(EventsInEntries, ATimerStartsNoEntryInAnother) {
    Later(@selector(enterInTheMiddle));
    Load("pause 100\nx=1\n");
    EXPECT_EQ(calc.VariableExists("inside"), nullptr);
    EXPECT_NE(calc.VariableExists("x"), nullptr);
    [console enterInTheMiddle];
    EXPECT_NE(calc.VariableExists("inside"), nullptr);
}

TEST_F(EventsInEntries, ATimerStartsNoPreviewInAnEntry) {
    Later(@selector(previewInTheMiddle));
    Enter("pause 100");
    EXPECT_EQ(Text(), "> pause 100\n\n> ");
    Type("2+3");
    EXPECT_NE(StatusLine().find("5"), std::string::npos);
}

TEST_F(EventsInEntries, ScriptsThatComeInAPauseRunBehindItInTheirOrder) {
    NSMutableArray* const paths = [NSMutableArray array];
    for (const char* const line : {"x=2\n", "x=x*10\n", "x=x+1\n"}) {
        const std::string path = home + "/" + std::to_string([paths count]) + ".script";
        Write(path, line);
        [paths addObject:[NSString stringWithUTF8String:path.c_str()]];
        Later(@selector(loadFile:), [paths lastObject]);
    }
    Enter("pause 100");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    for (int i = 0; i < 100 && Text().find("x = 21") == std::string::npos; ++i) Run(0.05);
    EXPECT_NE(Text().find("x = 21"), std::string::npos) << Text();
}
