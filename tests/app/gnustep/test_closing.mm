// SPDX-License-Identifier: MIT
//
// The close of a window, which the X server asks for, while an entry or a script runs.
#import "../console_fixture.h"

#include <GNUstepGUI/GSDisplayServer.h>

class Closing : public ConsoleTest {
protected:
    void Load(const std::string& script) {
        const std::string path = home + "/a.script";
        Write(path, script);
        EXPECT_TRUE([console loadFile:[NSString stringWithUTF8String:path.c_str()]]);
    }
};

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

TEST_F(Closing, OnlyTheCalculatorsOwnWindowEndsAScriptWhenItIsClosed) {
    NSWindow* const other = [[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, 200, 100)
                                                        styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                          backing:NSBackingStoreBuffered
                                                            defer:NO];
    [other setReleasedWhenClosed:NO];
    [other orderFront:nil];
    askToClose(other);
    Load("pause 50\nx=1\n");
    EXPECT_NE(calc.VariableExists("x"), nullptr);
    EXPECT_FALSE([other isVisible]);
    askToClose(window);
    Load("pause 50\ny=1\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
    [other release];
}

// A million sines take some seconds when nothing ends them.
TEST_F(Closing, TheEndOfTheCalculatorsWindowEndsALongEntry) {
    Enter("d0(x)=sin(x)");
    for (int level = 1; level <= 6; ++level) {
        const std::string call = "d" + std::to_string(level - 1) + "(x)";
        std::string line = "d" + std::to_string(level) + "(x)=" + call;
        for (int i = 1; i < 10; ++i) line += "+" + call;
        Enter(line.c_str());
    }
    askToClose(window);
    [console ProcessResult:"y=d6(1)":NO];
    EXPECT_STREQ(calc.message, "** ERROR: interrupted **\n");
    EXPECT_EQ(calc.VariableExists("y"), nullptr);
}
