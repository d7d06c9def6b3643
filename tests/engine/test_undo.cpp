// SPDX-License-Identifier: MIT
//
// The way back: steps in reverse order, kept only while it is open.
#include "Undo.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(UndoTest, RunsTheStepsInReverseOrder) {
    Undo undo;
    std::string ran;
    undo.Begin();
    for (const char* step : {"a", "b", "c"}) undo.Add([&ran, step] { ran += step; });
    EXPECT_EQ("", ran);
    undo.TakeBack();
    EXPECT_EQ("cba", ran);
    undo.TakeBack();
    EXPECT_EQ("cba", ran);
}

TEST(UndoTest, PutsBackWhatAPlaceHeld) {
    Undo undo;
    std::string text = "old";
    int number = 1;
    undo.Begin();
    undo.Keep(text);
    undo.Keep(number);
    text = "new";
    number = 2;
    undo.Keep(number);
    number = 3;
    undo.TakeBack();
    EXPECT_EQ("old", text);
    EXPECT_EQ(1, number);
}

TEST(UndoTest, PutsBackTheTextOfABuffer) {
    Undo undo;
    char buffer[6] = "older";
    undo.Keep(buffer); // not open
    undo.Begin();
    undo.Keep(buffer);
    buffer[0] = '\0';
    undo.Keep(buffer);
    buffer[0] = 'n';
    buffer[1] = '\0';
    undo.TakeBack();
    EXPECT_STREQ("older", buffer);
}

TEST(UndoTest, KeepsNothingOutsideOfAnEntry) {
    Undo undo;
    const auto held = std::make_shared<int>(0);
    const auto step = [held] { ++*held; };
    undo.Add(step);
    undo.Begin();
    undo.Add(step);
    EXPECT_EQ(3, held.use_count()); // here, in the step and in the undo
    undo.End();
    undo.Add(step);
    undo.TakeBack();
    EXPECT_EQ(0, *held);
    EXPECT_EQ(2, held.use_count());
}

} // namespace
