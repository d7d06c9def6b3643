// SPDX-License-Identifier: MIT
//
// Files written in one step, and files kept beside.
#include "FileKeeping.h"
#include "temporary_folder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Names = std::vector<std::string>;

class FileKeeping : public testing::Test {
protected:
    TemporaryFolder folder;
    const std::string path = folder.File("file");
};

unsigned permissions(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777U : 0;
}

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

TEST_F(FileKeeping, everyByteIsRead) {
    std::string bytes;
    for (int i = 0; i < 200000; i++) bytes += static_cast<char>(i % 256);
    putContent(path, bytes);
    std::string text = "before";
    EXPECT_TRUE(ReadWholeFile(path, text));
    EXPECT_EQ(bytes, text);
}

TEST_F(FileKeeping, onlyRegularFilesAreRead) {
    std::string text = "before";
    EXPECT_FALSE(ReadWholeFile(path, text));
    EXPECT_EQ("", text);
    EXPECT_FALSE(ReadWholeFile(folder.Path(), text));
    EXPECT_FALSE(ReadWholeFile("/dev/zero", text));
    EXPECT_FALSE(ReadWholeFile("", text));
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_FALSE(ReadWholeFile(path, text)); // and does not wait for a writer
}

// --- Writing ---

TEST_F(FileKeeping, aNewFileIsItsOwnersAlone) {
    EXPECT_TRUE(WriteFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(path));
    EXPECT_EQ(0600U, permissions(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, anOldFileIsReplacedByAnother) {
    putContent(path, "old, and longer than the new one\n");
    const std::string other = folder.File("other");
    ASSERT_EQ(0, link(path.c_str(), other.c_str()));
    EXPECT_TRUE(WriteFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(path));
    EXPECT_EQ("old, and longer than the new one\n", contentOf(other)); // nobody ever sees half of it
    EXPECT_TRUE(WriteFileAtomically(path, ""));
    EXPECT_EQ("", contentOf(path));
}

TEST_F(FileKeeping, theNameOfAFileInTheCurrentFolderNeedsNoFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    EXPECT_TRUE(WriteFileAtomically("file", "new\n"));
    std::filesystem::current_path(before);
    EXPECT_EQ("new\n", contentOf(path));
}

TEST_F(FileKeeping, aSymbolicLinkStaysAndItsFileIsWritten) {
    ASSERT_TRUE(std::filesystem::create_directory(folder.File("dots")));
    putContent(folder.File("dots/real"), "old\n");
    ASSERT_EQ(0, symlink("dots/real", folder.File("second").c_str()));
    ASSERT_EQ(0, symlink(folder.File("second").c_str(), path.c_str()));
    EXPECT_TRUE(WriteFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(folder.File("dots/real")));
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.File("second")));
    EXPECT_EQ((Names{"dots", "file", "second"}), folder.Names());
}

TEST_F(FileKeeping, aSymbolicLinkToNoFileYetMakesIt) {
    ASSERT_EQ(0, symlink("real", path.c_str()));
    EXPECT_TRUE(WriteFileAtomically(path, "new\n"));
    EXPECT_EQ("new\n", contentOf(folder.File("real")));
    EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST_F(FileKeeping, symbolicLinksInACircleAreGivenUp) {
    ASSERT_EQ(0, symlink("other", path.c_str()));
    ASSERT_EQ(0, symlink("file", folder.File("other").c_str()));
    EXPECT_FALSE(WriteFileAtomically(path, "new\n"));
    EXPECT_EQ((Names{"file", "other"}), folder.Names());
}

// A pipe stands for what people link to, such as /dev/null: were the check to fail, a test that is run by the
// superuser would replace the device.
TEST_F(FileKeeping, aLinkToADeviceDoesNotReplaceTheDevice) {
    ASSERT_EQ(0, mkfifo(folder.File("pipe").c_str(), 0600));
    ASSERT_EQ(0, symlink("pipe", path.c_str()));
    EXPECT_FALSE(WriteFileAtomically(path, "new\n"));
    EXPECT_TRUE(std::filesystem::is_fifo(folder.File("pipe")));
    EXPECT_EQ((Names{"file", "pipe"}), folder.Names());
}

TEST_F(FileKeeping, aFolderInTheFilesPlaceStays) {
    ASSERT_TRUE(std::filesystem::create_directory(path));
    EXPECT_FALSE(WriteFileAtomically(path, "new\n"));
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, aMissingFolderIsAFailure) {
    EXPECT_FALSE(WriteFileAtomically(folder.File("none/file"), "new\n"));
    EXPECT_FALSE(WriteFileAtomically("", "new\n"));
    EXPECT_EQ(Names{}, folder.Names());
}

TEST_F(FileKeeping, aFolderThatMayNotBeWrittenKeepsTheOldFile) {
    putContent(path, "old\n");
    ASSERT_EQ(0, chmod(path.c_str(), 0666));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0555));
    {
        const WithoutPrivileges somebody;
        EXPECT_FALSE(WriteFileAtomically(path, "new\n"));
    }
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0755));
    EXPECT_EQ("old\n", contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, aFileThatMayNotBeWrittenStays) {
    putContent(path, "old\n");
    ASSERT_EQ(0, chmod(path.c_str(), 0444));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0777));
    {
        const WithoutPrivileges somebody;
        EXPECT_FALSE(WriteFileAtomically(path, "new\n"));
    }
    EXPECT_EQ("old\n", contentOf(path));
}

TEST_F(FileKeeping, aFullDiskKeepsTheOldFile) {
    putContent(path, "old\n");
    {
        const FileSizeLimit full(1000);
        EXPECT_FALSE(WriteFileAtomically(path, std::string(5000, 'x')));
    }
    EXPECT_EQ("old\n", contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

// --- Keeping ---

TEST_F(FileKeeping, aFileIsCopiedBesideOnce) {
    putContent(path, "one");
    EXPECT_EQ(path + ".unreadable", KeepUnreadable(path));
    EXPECT_EQ(path + ".unreadable", KeepUnreadable(path));
    EXPECT_EQ("one", contentOf(path));
    EXPECT_EQ("one", contentOf(path + ".unreadable"));
    EXPECT_EQ((Names{"file", "file.unreadable"}), folder.Names());
}

TEST_F(FileKeeping, otherContentIsKeptUnderTheNextOfTenNames) {
    for (int i = 0; i < 10; i++) {
        putContent(path, std::to_string(i));
        EXPECT_EQ(path + ".unreadable" + (i == 0 ? "" : "." + std::to_string(i)), KeepUnreadable(path));
    }
    EXPECT_EQ(11U, folder.Names().size());
    putContent(path, "one more");
    EXPECT_EQ("", KeepUnreadable(path));
    EXPECT_EQ("one more", contentOf(path));
    putContent(path, "7");
    EXPECT_EQ(path + ".unreadable.7", KeepUnreadable(path));
    EXPECT_EQ("0", contentOf(path + ".unreadable"));
    EXPECT_EQ("9", contentOf(path + ".unreadable.9"));
}

TEST_F(FileKeeping, whatIsNotThereIsNotKept) {
    EXPECT_EQ("", KeepUnreadable(path));
    ASSERT_EQ(0, symlink("nowhere", path.c_str()));
    EXPECT_EQ("", KeepUnreadable(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

TEST_F(FileKeeping, anEmptyFileIsKept) {
    putContent(path, "");
    EXPECT_EQ(path + ".unreadable", KeepUnreadable(path));
    EXPECT_EQ((Names{"file", "file.unreadable"}), folder.Names());
}

TEST_F(FileKeeping, aFolderIsMovedAside) {
    putContent(path + ".unreadable", "taken");
    ASSERT_TRUE(std::filesystem::create_directory(path));
    putContent(path + "/inside", "kept");
    EXPECT_EQ(path + ".unreadable.1", KeepUnreadable(path));
    EXPECT_EQ("kept", contentOf(path + ".unreadable.1/inside"));
    EXPECT_EQ("taken", contentOf(path + ".unreadable"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(WriteFileAtomically(path, "new\n"));
}

TEST_F(FileKeeping, aFileWithoutPermissionIsMovedAside) {
    putContent(path, "secret");
    ASSERT_EQ(0, chmod(path.c_str(), 0));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0777));
    std::string kept;
    {
        const WithoutPrivileges somebody;
        kept = KeepUnreadable(path);
    }
    EXPECT_EQ(path + ".unreadable", kept);
    ASSERT_EQ(Names{"file.unreadable"}, folder.Names());
    ASSERT_EQ(0, chmod(kept.c_str(), 0600));
    EXPECT_EQ("secret", contentOf(kept));
}

TEST_F(FileKeeping, aFileThatCannotBeKeptStays) {
    putContent(path, std::string(5000, 'x'));
    {
        const FileSizeLimit full(1000);
        EXPECT_EQ("", KeepUnreadable(path));
    }
    EXPECT_EQ(std::string(5000, 'x'), contentOf(path));
    EXPECT_EQ(Names{"file"}, folder.Names());
}

} // namespace
