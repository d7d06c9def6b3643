// SPDX-License-Identifier: MIT
#include "BackgroundWriter.h"

#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

class WriterInTheBackground : public testing::Test {
protected:
    // Nothing else is left in the folder.
    void TearDown() override {
        for (const std::string& name : folder.Names()) EXPECT_TRUE(name == "a" || name == "b") << name;
    }
    std::string File(const char* name) const { return folder.File(name); }
    const TemporaryFolder folder;
};

TEST_F(WriterInTheBackground, HasWrittenEverythingWhenItHasFinished) {
    BackgroundWriter writer;
    writer.Write({{File("a"), "one\n"}, {File("b"), "two\n"}});
    writer.Finish();
    EXPECT_EQ(contentOf(File("a")), "one\n");
    EXPECT_EQ(contentOf(File("b")), "two\n");
}

TEST_F(WriterInTheBackground, LeavesTheLastOfManyTexts) {
    BackgroundWriter writer;
    for (int i = 0; i < 50; i++) writer.Write({{File("a"), std::to_string(i)}});
    writer.Finish();
    EXPECT_EQ(contentOf(File("a")), "49");
}

TEST_F(WriterInTheBackground, FinishesWhenItGoesAway) {
    {
        BackgroundWriter writer;
        writer.Write({{File("a"), std::string(1000000, 'x')}});
    }
    EXPECT_EQ(contentOf(File("a")).size(), 1000000u);
}

TEST_F(WriterInTheBackground, WritesTheOthersWhenOneFails) {
    BackgroundWriter writer;
    writer.Write({{File("missing/a"), "one"}, {File("b"), "two"}});
    writer.Finish();
    writer.Finish();
    EXPECT_EQ(contentOf(File("b")), "two");
    EXPECT_EQ(writer.TakeFailures(), std::string("Not saved: a (") + strerror(ENOENT) + ")");
    EXPECT_EQ(writer.TakeFailures(), "");
}

TEST_F(WriterInTheBackground, HasNewsOfAFailureOnceUntilTheFileWasWritten) {
    BackgroundWriter writer;
    const auto hasNews = [&writer](const std::string& path) {
        writer.Write({{path, "text"}});
        writer.Finish();
        return !writer.TakeNews().empty();
    };
    const std::string below = File("a") + "/below";
    EXPECT_TRUE(hasNews(below)); // there is no folder
    EXPECT_FALSE(hasNews(below));
    EXPECT_FALSE(hasNews(File("a")));
    EXPECT_TRUE(hasNews(below)); // there is a file in the folder's place: another reason
    EXPECT_FALSE(hasNews(below));
    unlink(File("a").c_str());
    ASSERT_EQ(mkdir(File("a").c_str(), 0700), 0);
    EXPECT_FALSE(hasNews(below));
    EXPECT_EQ(writer.TakeFailures(), "");
    unlink(below.c_str());
    ASSERT_EQ(rmdir(File("a").c_str()), 0);
    EXPECT_TRUE(hasNews(below));
}
