// SPDX-License-Identifier: MIT
#include "PreviewRow.h"

#include <gtest/gtest.h>

namespace {

TEST(PreviewRow, TheCursorIsBackAfterDrawingAndErasing) {
    PreviewRow row;
    EXPECT_EQ(row.Erase(), "");
    EXPECT_EQ(row.Draw("7", {0, 5}, {0, 5}, 80), "\r\n\x1b[K\x1b[2m7\x1b[0m\x1b[1A\r\x1b[5C");
    EXPECT_EQ(row.Erase(), "\x1b[1B\r\x1b[K\x1b[1A\r\x1b[5C");
    EXPECT_EQ(row.Erase(), "");
    EXPECT_EQ(row.Draw("7", {0, 0}, {2, 3}, 80), "\x1b[2B\r\n\x1b[K\x1b[2m7\x1b[0m\x1b[3A\r");
}

} // namespace
