// SPDX-License-Identifier: MIT
//
// What happens while an entry or a script looks for interruptions: timers fire and events are dealt with.
#import "console_fixture.h"

#import "replacement.h"

#ifdef GNUSTEP
#include <GNUstepGUI/GSDisplayServer.h>
#endif

// An object that counts how many of its kind there are.
@interface CountedObject : NSObject
@end

static int living = 0;
static int most = 0;

@implementation CountedObject
- (id)init {
    living++;
    most = living > most ? living : most;
    return [super init];
}
- (void)dealloc {
    living--;
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
    using ConsoleTest::run;
    void load(const std::string& script) {
        const std::string path = home + "/a.script";
        write(path, script);
        EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    }
    void later(SEL selector, id object = nil) {
        [console performSelector:selector withObject:object afterDelay:0];
    }
};

// --- Memory ---

// An hour of pauses asks some millions of times.
TEST_F(EventsInEntries, aPauseKeepsNothingOfWhatItsQuestionsLeave) {
    living = most = 0;
    const Replaced find([MainConsole class], @selector(findInterruptEvent), leaveAnObject);
    [console RunGUICommand:"pause200"];
    EXPECT_GT(most, 0);
    EXPECT_LE(most, 1);
    EXPECT_EQ(living, 0);
}

TEST_F(EventsInEntries, aScriptKeepsNothingOfWhatItsLinesLeave) {
    living = most = 0;
    const Replaced after([MainConsole class], @selector(entryDidRun), leaveOneWithEveryEntry);
    std::string lines;
    for (int i = 0; i < 50; i++) lines += "x=" + std::to_string(i) + "\n";
    load(lines);
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

TEST_F(EventsInEntries, aTimerStartsNoEntryInAnother) {
    later(@selector(enterInTheMiddle));
    load("pause 100\nx=1\n");
    EXPECT_EQ(calc.VariableExists("inside"), nullptr);
    EXPECT_NE(calc.VariableExists("x"), nullptr);
    [console enterInTheMiddle];
    EXPECT_NE(calc.VariableExists("inside"), nullptr);
}

TEST_F(EventsInEntries, aTimerStartsNoPreviewInAnEntry) {
    later(@selector(previewInTheMiddle));
    enter("pause 100");
    EXPECT_EQ(text(), "> pause 100\n\n> ");
    type("2+3");
    EXPECT_NE(status().find("5"), std::string::npos);
}

TEST_F(EventsInEntries, scriptsThatComeInAPauseRunBehindItInTheirOrder) {
    NSMutableArray* const paths = [NSMutableArray array];
    for (const char* const line : {"x=2\n", "x=x*10\n", "x=x+1\n"}) {
        const std::string path = home + "/" + std::to_string([paths count]) + ".script";
        write(path, line);
        [paths addObject:[NSString stringWithUTF8String:path.c_str()]];
        later(@selector(loadFile:), [paths lastObject]);
    }
    enter("pause 100");
    EXPECT_EQ(calc.VariableExists("x"), nullptr);
    for (int i = 0; i < 100 && text().find("x = 21") == std::string::npos; i++) run(0.05);
    EXPECT_NE(text().find("x = 21"), std::string::npos) << text();
}

// --- Closing windows ---

#ifdef GNUSTEP
static void askToClose(NSWindow* window) {
    [NSApp postEvent:[NSEvent otherEventWithType:NSAppKitDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[window windowNumber]
                                         context:nil
                                         subtype:GSAppKitWindowClose
                                           data1:0
                                           data2:0]
             atStart:NO];
}

TEST_F(EventsInEntries, onlyTheCalculatorsOwnWindowEndsAScriptWhenItIsClosed) {
    NSWindow* const other = [[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, 200, 100)
                                                        styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                          backing:NSBackingStoreBuffered
                                                            defer:NO];
    [other setReleasedWhenClosed:NO];
    [other orderFront:nil];
    askToClose(other);
    load("pause 50\nx=1\n");
    EXPECT_NE(calc.VariableExists("x"), nullptr);
    EXPECT_FALSE([other isVisible]);
    askToClose(window);
    load("pause 50\ny=1\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    [other release];
}

// A million sines take some seconds when nothing ends them.
TEST_F(EventsInEntries, theEndOfTheCalculatorsWindowEndsALongEntry) {
    enter("d0(x)=sin(x)");
    for (int level = 1; level <= 6; level++) {
        const std::string call = "d" + std::to_string(level - 1) + "(x)";
        std::string line = "d" + std::to_string(level) + "(x)=" + call;
        for (int i = 1; i < 10; i++) line += "+" + call;
        enter(line.c_str());
    }
    askToClose(window);
    [console ProcessResult:"y=d6(1)":NO];
    EXPECT_STREQ(calc.message, "** ERROR: interrupted **\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
}
#endif
