// SPDX-License-Identifier: MIT
#include "LineReader.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using std::string_literals::operator""s;

// The lines of `text`, each cut at `keep` bytes, sent through a pipe in pieces of `step` bytes.
Lines linesOf(const std::string& text, size_t keep, size_t step = 65536) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    std::thread writer([&] {
        for (size_t i = 0; i < text.size(); i += step) {
            const std::string piece = text.substr(i, step);
            EXPECT_EQ(write(ends[1], piece.data(), piece.size()), static_cast<ssize_t>(piece.size()));
        }
        close(ends[1]);
    });
    LineReader reader(ends[0], keep);
    Lines lines;
    std::string line;
    LineReader::Status status = reader.Next(line);
    for (; status == LineReader::Status::Line; status = reader.Next(line)) lines.push_back(line);
    EXPECT_EQ(status, LineReader::Status::End);
    writer.join();
    close(ends[0]);
    return lines;
}

TEST(LineReader, SplitsAtLineFeeds) {
    EXPECT_EQ(linesOf("a\nbc\n\nd\n", 10), (Lines{"a", "bc", "", "d"}));
    EXPECT_EQ(linesOf("", 10), Lines{});
    EXPECT_EQ(linesOf("\n", 10), Lines{""});
}

TEST(LineReader, TheLastLineNeedsNoLineFeed) {
    EXPECT_EQ(linesOf("a\nb", 10), (Lines{"a", "b"}));
}

TEST(LineReader, DropsTheCarriageReturnOfALineEndOnly) {
    EXPECT_EQ(linesOf("a\r\nb\rc\r\n\r\nd\r", 10), (Lines{"a", "b\rc", "", "d"}));
    EXPECT_EQ(linesOf("a\r\r\n", 10), Lines{"a\r"});
}

TEST(LineReader, LinesMayArriveByteByByte) {
    EXPECT_EQ(linesOf("12\r\n345\n6", 10, 1), (Lines{"12", "345", "6"}));
}

TEST(LineReader, KeepsNulBytes) {
    EXPECT_EQ(linesOf("a\0b\n"s, 10), Lines{"a\0b"s});
}

TEST(LineReader, CutsAnOverlongLineAndGoesOnBehindIt) {
    EXPECT_EQ(linesOf("abcdefgh\nij\n", 4), (Lines{"abcd", "ij"}));
    EXPECT_EQ(linesOf("abcd\nij\n", 4), (Lines{"abcd", "ij"}));
    EXPECT_EQ(linesOf("abc\rdef\nij\n", 4), (Lines{"abc\r", "ij"}));
}

TEST(LineReader, LinesLongerThanItsBlockAreWhole) {
    const std::string big(200000, 'x');
    EXPECT_EQ(linesOf(big + "\ny\n", 300000), (Lines{big, "y"}));
    EXPECT_EQ(linesOf(big + "\ny\n", 70000), (Lines{big.substr(0, 70000), "y"}));
}

TEST(LineReader, ADescriptorThatCannotBeReadFails) {
    LineReader reader(-1, 10);
    std::string line;
    EXPECT_EQ(reader.Next(line), LineReader::Status::Failed);
    EXPECT_EQ(errno, EBADF);
}

} // namespace
