// SPDX-License-Identifier: MIT
//
// Files written in one step, and files kept beside.
#include "FileKeeping.h"
#include "failing_system.h"
#include "temporary_folder.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using Names = std::vector<std::string>;

class FileKeeping : public testing::Test {
protected:
    TemporaryFolder folder;
    const std::string path = folder.File("file");
};

// The superuser may do everything: as long as this lives the test is somebody else.
class WithoutPrivileges {
public:
    WithoutPrivileges() : user(geteuid()) { EXPECT_TRUE(user != 0 || seteuid(65534) == 0); }
    ~WithoutPrivileges() { EXPECT_TRUE(user != 0 || seteuid(user) == 0); }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

private:
    uid_t user;
};

// One that takes nothing and has no reason.
class FullSystem : public System {
public:
    ssize_t Write(int, const void*, size_t) override { return 0; }
};

// No file grows beyond so many bytes: like a disk that is full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : before(), handler(signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(0, getrlimit(RLIMIT_FSIZE, &before));
        rlimit limit = before;
        limit.rlim_cur = bytes;
        EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
    }
    ~FileSizeLimit() {
        EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &before));
        signal(SIGXFSZ, handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before;
    void (*handler)(int);
};

// --- Reading ---

TEST_F(FileKeeping, AWriteThatTakesNothingIsNotTriedForEver) {
    FullSystem system;
    std::error_code reason;
    EXPECT_FALSE(writeFileAtomically(path, "text", &reason, system));
}

TEST_F(FileKeeping, EveryByteIsRead) {
    std::string bytes;
    for (int i = 0; i < 200000; i++) bytes += static_cast<char>(i % 256);
    putContent(path, bytes);
    std::string text = "before";
    EXPECT_TRUE(readWholeFile(path, text));
    EXPECT_EQ(bytes, text);
}

TEST_F(FileKeeping, OnlyRegularFilesAreRead) {
    std::string text = "before";
    EXPECT_FALSE(readWholeFile(path, text));
    EXPECT_EQ("", text);
    EXPECT_FALSE(readWholeFile(folder.Path(), text));
    EXPECT_FALSE(readWholeFile("/dev/zero", text));
    EXPECT_FALSE(readWholeFile("", text));
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_FALSE(readWholeFile(path, text)); // and does not wait for a writer
}

// --- Writing ---

TEST_F(FileKeeping, ANewFileIsItsOwnersAlone) {
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(path));
    EXPECT_EQ(0600U, permissions(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AnOldFileIsReplacedByAnother) {
    putContent(path, "old, and longer than the new one\n");
    const std::string other = folder.File("other");
    ASSERT_EQ(0, link(path.c_str(), other.c_str()));
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(path));
    EXPECT_EQ("old, and longer than the new one\n", contentOf(other)); // nobody ever sees half of it
    EXPECT_TRUE(writeFileAtomically(path, ""));
    EXPECT_EQ("", contentOf(path));
}

TEST_F(FileKeeping, TheNameOfAFileInTheCurrentFolderNeedsNoFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    EXPECT_TRUE(writeFileAtomically("file", "new\n"));
    std::filesystem::current_path(before);
    EXPECT_EQ("new\n", contentOf(path));
}

TEST_F(FileKeeping, AFolderInTheFilesPlaceStays) {
    ASSERT_TRUE(std::filesystem::create_directory(path));
    EXPECT_FALSE(writeFileAtomically(path, "new\n"));
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AMissingFolderIsAFailure) {
    EXPECT_FALSE(writeFileAtomically(folder.File("none/file"), "new\n"));
    EXPECT_FALSE(writeFileAtomically("", "new\n"));
    EXPECT_EQ(Names{}, folder.Names());
}

TEST_F(FileKeeping, AFolderThatMayNotBeWrittenKeepsTheOldFile) {
    putContent(path, "old\n");
    ASSERT_EQ(0, chmod(path.c_str(), 0666));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0555));
    {
        const WithoutPrivileges somebody;
        EXPECT_FALSE(writeFileAtomically(path, "new\n"));
    }
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0755));
    EXPECT_EQ("old\n", contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AFileThatMayNotBeWrittenStays) {
    putContent(path, "old\n");
    ASSERT_EQ(0, chmod(path.c_str(), 0444));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0777));
    {
        const WithoutPrivileges somebody;
        EXPECT_FALSE(writeFileAtomically(path, "new\n"));
    }
    EXPECT_EQ("old\n", contentOf(path));
}

TEST_F(FileKeeping, AFullDiskKeepsTheOldFile) {
    putContent(path, "old\n");
    {
        const FileSizeLimit full(1000);
        EXPECT_FALSE(writeFileAtomically(path, std::string(5000, 'x')));
    }
    EXPECT_EQ("old\n", contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AFailedCallKeepsTheOldFileAndLeavesNoOther) {
    class Broken : public System {
        int Sync(int /*file*/) override {
            errno = EIO;
            return -1;
        }
    } broken;
    putContent(path, "old");
    std::error_code reason;
    EXPECT_FALSE(writeFileAtomically(path, "new", &reason, broken));
    EXPECT_EQ(std::errc::io_error, reason);
    EXPECT_EQ("old", contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AFailureSaysWhy) {
    std::error_code reason;
    EXPECT_TRUE(writeFileAtomically(path, "new\n", &reason));
    EXPECT_FALSE(reason);
    const auto failure = [](const std::string& file) {
        std::error_code why;
        EXPECT_FALSE(writeFileAtomically(file, std::string(5000, 'x'), &why));
        return why;
    };
    EXPECT_EQ(std::errc::not_a_directory, failure(path + "/file"));
    EXPECT_EQ(std::errc::no_such_file_or_directory, failure(folder.File("none/file")));
    EXPECT_EQ(std::errc::is_a_directory, failure(folder.Path()));
    const FileSizeLimit full(1000);
    EXPECT_EQ(std::errc::file_too_large, failure(path));
}

// --- What killed programs leave ---

class Leftovers : public FileKeeping {
protected:
    // A process that is killed in the middle of writing the file: at the limit of its size.
    void WriteHalf() const {
        const pid_t child = fork();
        if (child == 0) {
            const FileSizeLimit limit(4096);
            const rlimit noCore = {};
            setrlimit(RLIMIT_CORE, &noCore);
            signal(SIGXFSZ, SIG_DFL);
            writeFileAtomically(path, std::string(size_t{1} << 20, 'x'));
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(child, waitpid(child, &status, 0));
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    }
};

TEST_F(Leftovers, OfProgramsThatWereKilledWhileTheyWroteAreRemoved) {
    ASSERT_TRUE(writeFileAtomically(path, "whole\n"));
    WriteHalf();
    WriteHalf();
    ASSERT_EQ(3U, folder.Names().size());
    removeLeftovers(path);
    EXPECT_EQ(Names{"file"}, folder.Names());
    std::string text;
    EXPECT_TRUE(readWholeFile(path, text));
    EXPECT_EQ("whole\n", text);
}

// In every language: the Turkish one has an i of its own.
TEST_F(Leftovers, OfAnyLettersAreRemoved) {
    const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789aaaa";
    for (size_t i = 0; i < letters.size(); i += 6)
        putContent(folder.File("file.tallyquill-" + letters.substr(i, 6)), "half");
    removeLeftovers(path);
    EXPECT_EQ(Names{}, folder.Names());
}

TEST_F(Leftovers, OfKeptFilesAreRemoved) {
    putContent(folder.File("file.unreadable.7.tallyquill-aB3dEf"), "half");
    removeLeftovers(path);
    EXPECT_EQ(Names{}, folder.Names());
}

TEST_F(Leftovers, ThatAreNotOursStay) {
    const Names others = {"file.backup",
                          "file.tallyquill-",
                          "file.tallyquill-abc",
                          "file.tallyquill-abc_ef",
                          "file.tallyquill-abcdef.txt",
                          "file.tallyquill-abcdefg",
                          "file.unread.tallyquill-abcdef",
                          "file.unreadable.tallyquill-abc-ef",
                          "file2.tallyquill-abcdef",
                          "tallyquill-abcdef"};
    for (const std::string& name : others) putContent(folder.File(name), "a person's");
    ASSERT_TRUE(std::filesystem::create_directory(folder.File("file.tallyquill-folder")));
    ASSERT_EQ(0, symlink("file.backup", folder.File("file.tallyquill-linked").c_str()));
    removeLeftovers(path);
    EXPECT_EQ(others.size() + 2, folder.Names().size());
}

// The lock stands for a program that is just writing.
TEST_F(Leftovers, OfALivingProgramStay) {
    const std::string name = folder.File("file.tallyquill-abcdef");
    putContent(name, "half");
    const int writing = open(name.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(0, flock(writing, LOCK_EX));
    removeLeftovers(path);
    EXPECT_EQ(Names{"file.tallyquill-abcdef"}, folder.Names());
    close(writing);
    removeLeftovers(path);
    EXPECT_EQ(Names{}, folder.Names());
}

TEST_F(Leftovers, AreRemovedWhileAnotherProgramWritesWithoutHarm) {
    const pid_t child = fork();
    if (child == 0) {
        bool isWritten = true;
        for (int i = 0; i < 300 && isWritten; i++) isWritten = writeFileAtomically(path, "text\n");
        _exit(isWritten ? 0 : 1);
    }
    int status = -1;
    while (waitpid(child, &status, WNOHANG) == 0) removeLeftovers(path);
    EXPECT_EQ(0, status);
    EXPECT_EQ(Names{"file"}, folder.Names());
}

// --- The lock ---

TEST_F(FileKeeping, TheLockOfAKilledProgramIsFree) {
    int ready[2];
    ASSERT_EQ(0, pipe(ready));
    const pid_t child = fork();
    if (child == 0) {
        const FileLock lock(path);
        const bool isTold = write(ready[1], "x", 1) == 1;
        if (!isTold) _exit(1);
        for (;;) pause();
    }
    close(ready[1]); // a child that fails ends the wait
    char byte = 0;
    ASSERT_EQ(1, read(ready[0], &byte, 1));
    EXPECT_TRUE(FileLock(path).IsTaken());
    EXPECT_FALSE(FileLock(folder.File("other")).IsTaken());
    EXPECT_EQ(0, kill(child, SIGKILL));
    EXPECT_EQ(child, waitpid(child, nullptr, 0));
    EXPECT_FALSE(FileLock(path).IsTaken());
    close(ready[0]);
}

TEST_F(FileKeeping, WhereNoLockCanBeHadNobodyIsKeptOut) {
    EXPECT_FALSE(FileLock(folder.File("none/file")).IsTaken());
}

// --- Keeping ---

TEST_F(FileKeeping, AFileIsCopiedBesideOnce) {
    putContent(path, "one");
    EXPECT_EQ(path + ".unreadable", keepUnreadable(path));
    EXPECT_EQ(path + ".unreadable", keepUnreadable(path));
    EXPECT_EQ("one", contentOf(path));
    EXPECT_EQ("one", contentOf(path + ".unreadable"));
    EXPECT_EQ((Names{"file", "file.unreadable"}), folder.Names());
}

TEST_F(FileKeeping, OtherContentIsKeptUnderTheNextOfTenNames) {
    for (int i = 0; i < 10; i++) {
        putContent(path, std::to_string(i));
        EXPECT_EQ(path + ".unreadable" + (i == 0 ? "" : "." + std::to_string(i)), keepUnreadable(path));
    }
    EXPECT_EQ(11U, folder.Names().size());
    putContent(path, "one more");
    EXPECT_EQ("", keepUnreadable(path));
    EXPECT_EQ("one more", contentOf(path));
    putContent(path, "7");
    EXPECT_EQ(path + ".unreadable.7", keepUnreadable(path));
    EXPECT_EQ("0", contentOf(path + ".unreadable"));
    EXPECT_EQ("9", contentOf(path + ".unreadable.9"));
}

TEST_F(FileKeeping, WhatIsNotThereIsNotKept) {
    EXPECT_EQ("", keepUnreadable(path));
    ASSERT_EQ(0, symlink("nowhere", path.c_str()));
    EXPECT_EQ("", keepUnreadable(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, AnEmptyFileIsKept) {
    putContent(path, "");
    EXPECT_EQ(path + ".unreadable", keepUnreadable(path));
    EXPECT_EQ((Names{"file", "file.unreadable"}), folder.Names());
}

TEST_F(FileKeeping, AFolderIsMovedAside) {
    putContent(path + ".unreadable", "taken");
    ASSERT_TRUE(std::filesystem::create_directory(path));
    putContent(path + "/inside", "kept");
    EXPECT_EQ(path + ".unreadable.1", keepUnreadable(path));
    EXPECT_EQ("kept", contentOf(path + ".unreadable.1/inside"));
    EXPECT_EQ("taken", contentOf(path + ".unreadable"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(writeFileAtomically(path, "new\n"));
}

TEST_F(FileKeeping, AFileWithoutPermissionIsMovedAside) {
    putContent(path, "secret");
    ASSERT_EQ(0, chmod(path.c_str(), 0));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0777));
    std::string kept;
    {
        const WithoutPrivileges somebody;
        kept = keepUnreadable(path);
    }
    EXPECT_EQ(path + ".unreadable", kept);
    ASSERT_EQ(Names{"file.unreadable"}, folder.Names());
    ASSERT_EQ(0, chmod(kept.c_str(), 0600));
    EXPECT_EQ("secret", contentOf(kept));
}

TEST_F(FileKeeping, AFileThatCannotBeKeptStays) {
    putContent(path, std::string(5000, 'x'));
    {
        const FileSizeLimit full(1000);
        EXPECT_EQ("", keepUnreadable(path));
    }
    EXPECT_EQ(std::string(5000, 'x'), contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

// --- Without a standard input ---

// A program that starts with standard input closed gets the descriptor 0 for a file.
class WithoutStandardInput {
public:
    WithoutStandardInput() : kept(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100)) { close(STDIN_FILENO); }
    ~WithoutStandardInput() {
        EXPECT_EQ(STDIN_FILENO, dup2(kept, STDIN_FILENO));
        close(kept);
    }
    WithoutStandardInput(const WithoutStandardInput&) = delete;
    WithoutStandardInput& operator=(const WithoutStandardInput&) = delete;

private:
    int kept;
};

TEST_F(FileKeeping, WorksWithTheDescriptorZero) {
    const WithoutStandardInput closed;
    std::error_code reason;
    EXPECT_TRUE(writeFileAtomically(path, "one\n", &reason)) << reason.message();
    EXPECT_TRUE(appendToFile(path, "two\n", reason)) << reason.message();
    std::string text;
    EXPECT_TRUE(readWholeFile(path, text, System::Real(), &reason)) << reason.message();
    EXPECT_EQ("one\ntwo\n", text);
    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD)) << "all are closed";
}

TEST_F(FileKeeping, ALockOnTheDescriptorZeroIsOne) {
    const WithoutStandardInput closed;
    {
        const FileLock lock(path, System::Real());
        EXPECT_FALSE(lock.IsTaken());
        const int other = open((folder.Path() + "/.file.lock").c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GT(other, 0);
        EXPECT_NE(0, flock(other, LOCK_EX | LOCK_NB));
        close(other);
    }
    EXPECT_EQ(-1, fcntl(STDIN_FILENO, F_GETFD)) << "it is closed, and so is free for others";
}

TEST_F(FileKeeping, AFileThatCannotBeOpenedIsNotAppendedTo) {
    putContent(path, "old\n");
    FailingSystem disk(0, EIO); // the first call, which opens the file
    std::error_code reason;
    EXPECT_FALSE(appendToFile(path, "new\n", reason, disk));
    EXPECT_EQ(EIO, reason.value());
    EXPECT_EQ("old\n", contentOf(path));
}

TEST_F(FileKeeping, TheNewestLinesOfATextBeginBehindALineFeed) {
    EXPECT_EQ(startOfNewest("", 3), 0U);
    EXPECT_EQ(startOfNewest("1\n22\n", 1), 2U);
    EXPECT_EQ(startOfNewest("1\n22\n", 2), 0U);
    EXPECT_EQ(startOfNewest("\n\n", 1), 1U) << "empty lines are lines";
    EXPECT_EQ(startOfNewest("1\n22\n333\n", 3, 7), 2U) << "no more bytes";
}

} // namespace
