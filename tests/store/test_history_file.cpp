// SPDX-License-Identifier: MIT
#include "HistoryFile.h"

#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace {

using Lines = std::vector<std::string>;

class HistoryFileTest : public testing::Test {
protected:
    void Put(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

    mode_t ModeOf(const std::string& name) const {
        struct stat info = {};
        EXPECT_EQ(stat(name.c_str(), &info), 0);
        return info.st_mode & 0777U;
    }

    TemporaryFolder folder;
    std::string path = folder.File("history");
    std::error_code reason;
};

TEST_F(HistoryFileTest, AMissingFileIsEmptyAndIsMadeForTheFirstLine) {
    path = folder.File("state/tallyquill/history");
    HistoryFile file(path);
    EXPECT_EQ(file.Read(), Lines());
    EXPECT_TRUE(file.Append("1+1", reason));
    EXPECT_TRUE(file.Append("2+2", reason));
    EXPECT_EQ(contentOf(path), "1+1\n2+2\n");
    EXPECT_EQ(file.Read(), (Lines{"1+1", "2+2"}));
    EXPECT_EQ(ModeOf(path), 0600U);
    EXPECT_EQ(ModeOf(folder.File("state/tallyquill")), 0700U);
}

TEST_F(HistoryFileTest, WhatCannotBeAnEntryIsLeftOut) {
    Put("1+1\n\n\x1b[2J\n2\t+2\n3+3\r\n4+\xE4\xB8\n\u009b2J\n5\u0080\n");
    EXPECT_EQ(HistoryFile(path).Read(), (Lines{"1+1", "2\t+2"}));
}

TEST_F(HistoryFileTest, ALineWithoutItsEndStaysALineOfItsOwn) {
    Put("1+1\n2+");
    HistoryFile file(path);
    EXPECT_EQ(file.Read(), (Lines{"1+1", "2+"}));
    EXPECT_TRUE(file.Append("3", reason));
    EXPECT_TRUE(file.Append("4", reason));
    EXPECT_EQ(contentOf(path), "1+1\n2+\n3\n4\n");
}

TEST_F(HistoryFileTest, TheNewestTenThousandLinesCount) {
    std::string text;
    for (int i = 0; i < 10003; i++) text += std::to_string(i) + "\n";
    Put(text);
    HistoryFile file(path);
    const Lines lines = file.Read();
    ASSERT_EQ(lines.size(), 10000U);
    EXPECT_EQ(lines.front(), "3");
    EXPECT_EQ(lines.back(), "10002");
    EXPECT_EQ(contentOf(path), text); // reading changes nothing
    file.Shorten();
    EXPECT_EQ(contentOf(path), text.substr(6)); // without 0, 1 and 2
    file.Shorten();
    EXPECT_EQ(contentOf(path), text.substr(6));
}

TEST_F(HistoryFileTest, AFileThatIsShortEnoughIsNotWrittenAgain) {
    Put("1+1\n");
    const auto fileNumber = [&] {
        struct stat info = {};
        EXPECT_EQ(stat(path.c_str(), &info), 0);
        return info.st_ino;
    };
    const ino_t before = fileNumber();
    HistoryFile(path).Shorten();
    EXPECT_EQ(before, fileNumber()); // writing puts another file in its place
}

TEST_F(HistoryFileTest, AFailureSaysWhy) {
    Put("");
    HistoryFile file(path + "/below");
    EXPECT_FALSE(file.Append("1", reason));
    EXPECT_EQ(reason, std::errc::not_a_directory);
}

// A disk that takes only a part of a line.
TEST_F(HistoryFileTest, ALineThatWasCutDoesNotSpoilTheNext) {
    class Full : public System {
    public:
        bool isFull = true;

    private:
        ssize_t Write(int file, const void* bytes, size_t size) override {
            if (!isFull) return System::Write(file, bytes, size);
            if (size > 2) return System::Write(file, bytes, 2);
            errno = ENOSPC;
            return -1;
        }
    } disk;
    HistoryFile file(path, disk);
    EXPECT_FALSE(file.Append("123", reason)); // "12" is there, then no room for "3\n"
    EXPECT_EQ(reason, std::errc::no_space_on_device);
    disk.isFull = false;
    EXPECT_TRUE(file.Append("4+4", reason));
    EXPECT_EQ(contentOf(path), "12\n4+4\n");
}

TEST_F(HistoryFileTest, ProgramsThatAppendAtTheSameTimeLoseNothing) {
    const auto append = [this](const std::string& entry) {
        HistoryFile file(path);
        std::error_code why;
        for (int i = 0; i < 300; i++) {
            EXPECT_TRUE(file.Append(entry, why));
            if (i % 50 == 0) file.Shorten();
        }
    };
    std::thread one(append, "1+1");
    std::thread two(append, "2+2");
    one.join();
    two.join();
    const Lines lines = HistoryFile(path).Read();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "1+1"), 300);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "2+2"), 300);
}

} // namespace
