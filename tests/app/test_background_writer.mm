// SPDX-License-Identifier: MIT
#include "BackgroundWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

class WriterInTheBackground : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/tallyquill-writer-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = name;
    }
    void TearDown() override {
        unlink(file("a").c_str());
        unlink(file("b").c_str());
        EXPECT_EQ(rmdir(folder.c_str()), 0) << "something else was left in " << folder;
    }
    std::string file(const char* name) const { return folder + "/" + name; }
    static std::string contentOf(const std::string& path) {
        std::ifstream stream(path);
        std::ostringstream bytes;
        bytes << stream.rdbuf();
        return bytes.str();
    }
    std::string folder;
};

TEST_F(WriterInTheBackground, hasWrittenEverythingWhenItHasFinished) {
    BackgroundWriter writer;
    writer.Write({{file("a"), "one\n"}, {file("b"), "two\n"}});
    writer.Finish();
    EXPECT_EQ(contentOf(file("a")), "one\n");
    EXPECT_EQ(contentOf(file("b")), "two\n");
}

TEST_F(WriterInTheBackground, leavesTheLastOfManyTexts) {
    BackgroundWriter writer;
    for (int i = 0; i < 50; i++) writer.Write({{file("a"), std::to_string(i)}});
    writer.Finish();
    EXPECT_EQ(contentOf(file("a")), "49");
}

TEST_F(WriterInTheBackground, finishesWhenItGoesAway) {
    {
        BackgroundWriter writer;
        writer.Write({{file("a"), std::string(1000000, 'x')}});
    }
    EXPECT_EQ(contentOf(file("a")).size(), 1000000u);
}

TEST_F(WriterInTheBackground, writesTheOthersWhenOneFails) {
    BackgroundWriter writer;
    writer.Write({{folder + "/missing/a", "one"}, {file("b"), "two"}});
    writer.Finish();
    writer.Finish();
    EXPECT_EQ(contentOf(file("b")), "two");
    const auto failures = writer.TakeFailures();
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures.begin()->first, folder + "/missing/a");
    EXPECT_EQ(failures.begin()->second.reason, std::errc::no_such_file_or_directory);
}

TEST_F(WriterInTheBackground, hasNewsOfAFailureOnceUntilTheFileWasWritten) {
    BackgroundWriter writer;
    const auto hasNews = [&writer](const std::string& path) {
        writer.Write({{path, "text"}});
        writer.Finish();
        return writer.TakeNews() != nullptr;
    };
    const std::string below = file("a") + "/below";
    EXPECT_TRUE(hasNews(below)); // there is no folder
    EXPECT_FALSE(hasNews(below));
    EXPECT_FALSE(hasNews(file("a")));
    EXPECT_TRUE(hasNews(below)); // there is a file in the folder's place: another reason
    EXPECT_FALSE(hasNews(below));
    unlink(file("a").c_str());
    ASSERT_EQ(mkdir(file("a").c_str(), 0700), 0);
    EXPECT_FALSE(hasNews(below));
    EXPECT_TRUE(writer.TakeFailures().empty());
    unlink(below.c_str());
    ASSERT_EQ(rmdir(file("a").c_str()), 0);
    EXPECT_TRUE(hasNews(below));
}
