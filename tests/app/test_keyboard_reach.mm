// SPDX-License-Identifier: MIT
//
// The controls of the window by the keyboard alone.
#import "keyboard_fixture.h"

namespace {

TEST_F(KeyboardReach, F6AndTabGoThroughTheControlsAndEscapeBack) {
    const char* const outlets[] = {"ctrlBase", "ctrlDegMode", "menuVars", "menuFuncs"};
    Press(KEY_F6);
    for (const char* const outlet : outlets) {
        EXPECT_TRUE(HasFocus(outlet)) << outlet;
        Send('\t');
    }
    EXPECT_TRUE(HasFocus("ctrlBase")) << "behind the last one comes the first";
    Send(25, NSShiftKeyMask);
    EXPECT_TRUE(HasFocus("menuFuncs"));
    Send(27);
    EXPECT_TRUE(ConsoleHasFocus());
    Press(KEY_F6);
    Send(NSF6FunctionKey, NSFunctionKeyMask);
    EXPECT_TRUE(ConsoleHasFocus());
    EXPECT_EQ(Text(), "> ");
}

TEST_F(KeyboardReach, TheFocusIsSeen) {
    for (const char* const outlet : {"ctrlBase", "ctrlDegMode", "menuVars", "menuFuncs"})
        EXPECT_TRUE(ShowsFocus(Outlet(outlet))) << outlet;
}

TEST_F(KeyboardReach, LeftAndRightChooseASegment) {
    Press(KEY_F6);
    Send(NSLeftArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 2);
    Send(NSLeftArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 2) << "there is none to its left";
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 16);
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("dispbase"), 16) << "there is none to its right";
    Send('\t');
    Send(NSRightArrowFunctionKey, NSFunctionKeyMask);
    EXPECT_EQ(SettingOf("degmode"), 0);
}

class ListByKey : public KeyboardReach, public testing::WithParamInterface<char16_t> {};

TEST_P(ListByKey, OfWhichOneIsTyped) {
    Enter("width=7");
    Press(KEY_F6);
    Send('\t');
    Send('\t');
    Wait('w');
    Wait('\r');
    Send(GetParam());
    EXPECT_EQ(Entry(), "width");
    EXPECT_TRUE(ConsoleHasFocus());
}

INSTANTIATE_TEST_SUITE_P(SpaceReturnAndDown, ListByKey,
                         testing::Values(u' ', u'\r', char16_t{NSDownArrowFunctionKey}));

TEST_F(KeyboardReach, WhatIsTypedAtAControlIsForTheEntry) {
    Press(KEY_F6);
    Send('7');
    EXPECT_TRUE(ConsoleHasFocus());
    EXPECT_EQ(Entry(), "7");
}

} // namespace
