// SPDX-License-Identifier: MIT
//
// Links in the place of files, and who may read a file.
#include "FileKeeping.h"
#include "HistoryFile.h"
#include "failing_system.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Names = std::vector<std::string>;

class FilesThroughLinks : public testing::Test {
protected:
    TemporaryFolder folder;
    const std::string path = folder.File("file");
    std::error_code reason;
};

// Another's link cannot have a save change a file elsewhere.
TEST_F(FilesThroughLinks, ASymbolicLinkIsReplacedAndItsFileStays) {
    putContent(folder.File("real"), "old\n");
    ASSERT_EQ(0, symlink("real", path.c_str()));
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path)));
    EXPECT_EQ("new\n", contentOf(path));
    EXPECT_EQ("old\n", contentOf(folder.File("real")));
    EXPECT_EQ((Names{"file", "real"}), folder.Names());
}

TEST_F(FilesThroughLinks, WhatIsAppendedToASymbolicLinkIsKeptInItsPlace) {
    putContent(folder.File("real"), "old\n");
    ASSERT_EQ(0, symlink("real", path.c_str()));
    EXPECT_TRUE(appendToFile(path, "new\n", reason));
    EXPECT_TRUE(appendToFile(path, "newer\n", reason));
    EXPECT_FALSE(std::filesystem::is_symlink(path));
    EXPECT_EQ("old\nnew\nnewer\n", contentOf(path));
    EXPECT_EQ("old\n", contentOf(folder.File("real")));
}

TEST_F(FilesThroughLinks, ASymbolicLinkToNothingOrInACircleIsReplaced) {
    for (const char* const target : {"nowhere", "file"}) {
        for (const bool isAppended : {false, true}) {
            std::filesystem::remove(path);
            ASSERT_EQ(0, symlink(target, path.c_str()));
            EXPECT_TRUE(isAppended ? appendToFile(path, "new\n", reason)
                                   : writeFileAtomically(path, "new\n"));
            EXPECT_EQ("new\n", contentOf(path));
            EXPECT_EQ(Names{"file"}, folder.Names());
        }
    }
}

// A pipe stands for what people link to, such as /dev/null: were the link followed, a test that is run by the
// superuser would replace the device.
TEST_F(FilesThroughLinks, ALinkToADeviceDoesNotReplaceTheDevice) {
    ASSERT_EQ(0, mkfifo(folder.File("pipe").c_str(), 0600));
    ASSERT_EQ(0, symlink("pipe", path.c_str()));
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
    EXPECT_TRUE(std::filesystem::is_fifo(folder.File("pipe")));
    EXPECT_EQ((Names{"file", "pipe"}), folder.Names());
}

// Who links the history to such a thing wants none: it is told, and no file comes instead.
TEST_F(FilesThroughLinks, NothingIsAppendedToALinkToWhatIsNoFile) {
    ASSERT_EQ(0, mkfifo(folder.File("pipe").c_str(), 0600));
    for (const char* const target : {"pipe", "."}) {
        std::filesystem::remove(path);
        ASSERT_EQ(0, symlink(target, path.c_str()));
        reason.clear();
        EXPECT_FALSE(appendToFile(path, "new\n", reason));
        EXPECT_TRUE(reason);
        EXPECT_TRUE(std::filesystem::is_symlink(path));
        EXPECT_EQ((Names{"file", "pipe"}), folder.Names());
    }
}

// --- In the place of a lock ---

TEST_F(FilesThroughLinks, ALinkInThePlaceOfALockIsNotFollowed) {
    const std::string victim = folder.File("victim");
    for (const bool isThere : {true, false}) {
        std::filesystem::remove(victim);
        std::filesystem::remove(folder.File(".file.lock"));
        if (isThere) putContent(victim, "a person's");
        ASSERT_EQ(0, symlink("victim", folder.File(".file.lock").c_str()));
        HistoryFile file(path);
        EXPECT_FALSE(FileLock(path).IsTaken());
        EXPECT_TRUE(file.Append("1+1", reason)) << reason.message();
        EXPECT_TRUE(std::filesystem::is_symlink(folder.File(".file.lock")));
        EXPECT_EQ(isThere, std::filesystem::exists(victim));
        EXPECT_EQ(isThere ? "a person's" : "", contentOf(victim));
    }
    EXPECT_EQ("1+1\n1+1\n", contentOf(path));
}

TEST_F(FilesThroughLinks, AFolderInThePlaceOfALockStays) {
    ASSERT_TRUE(std::filesystem::create_directory(folder.File(".file.lock")));
    EXPECT_TRUE(HistoryFile(path).Append("1+1", reason)) << reason.message();
    EXPECT_TRUE(std::filesystem::is_directory(folder.File(".file.lock")));
}

// --- Who may read a file ---

class Rights : public FilesThroughLinks {
protected:
    // A file as an earlier program or a careless copy left it.
    void PutReadable(const std::string& where) const {
        putContent(where, "1+1\n");
        ASSERT_EQ(0, chmod(where.c_str(), 0644));
    }
};

TEST_F(Rights, OfAFileThatIsWrittenAreItsOwnersAlone) {
    PutReadable(path);
    EXPECT_TRUE(appendToFile(path, "2+2\n", reason));
    EXPECT_EQ("1+1\n2+2\n", contentOf(path));
    EXPECT_EQ(0600U, permissions(path));
    PutReadable(path);
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
    EXPECT_EQ(0600U, permissions(path));
}

TEST_F(Rights, ThatAPersonHasNarrowedStay) {
    PutReadable(path);
    ASSERT_EQ(0, chmod(path.c_str(), 0700));
    EXPECT_TRUE(appendToFile(path, "2+2\n", reason));
    EXPECT_EQ(0700U, permissions(path));
}

TEST_F(Rights, OfAFileWithAnotherNameStay) {
    const std::string other = folder.File("other");
    PutReadable(other);
    ASSERT_EQ(0, link(other.c_str(), path.c_str()));
    EXPECT_TRUE(appendToFile(path, "2+2\n", reason));
    EXPECT_EQ(0644U, permissions(other));
    std::filesystem::remove(path);
    ASSERT_EQ(0, symlink("other", path.c_str()));
    EXPECT_TRUE(appendToFile(path, "3+3\n", reason));
    EXPECT_EQ(0600U, permissions(path)) << "the file in the place of the link";
    EXPECT_EQ(0644U, permissions(other));
}

TEST_F(Rights, OfSomebodyElsesFileStay) {
    class OfAnother : public System {
    public:
        int StatusOf(int file, struct stat& info) override {
            const int result = System::StatusOf(file, info);
            info.st_uid += 1;
            return result;
        }
    } system;
    PutReadable(path);
    EXPECT_TRUE(appendToFile(path, "2+2\n", reason, system));
    EXPECT_EQ("1+1\n2+2\n", contentOf(path));
    EXPECT_EQ(0644U, permissions(path));
}

TEST_F(Rights, ThatCannotBeChangedCostNoLine) {
    size_t refused = 0;
    failEveryCall([&](FailingSystem& system) {
        PutReadable(path);
        const bool isWritten = appendToFile(path, "2+2\n", reason, system);
        const std::string& what = system.WhatFailed();
        if (what != "fchmod " && what != "fstat ") return;
        ++refused;
        EXPECT_TRUE(isWritten) << what;
        EXPECT_EQ("1+1\n2+2\n", contentOf(path)) << what;
        EXPECT_EQ(0644U, permissions(path)) << what;
    });
    EXPECT_EQ(8U, refused);
}

} // namespace
