// SPDX-License-Identifier: MIT
#include "FileKeeping.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t LARGEST_FILE = size_t{256} << 20;
constexpr size_t PIECE = size_t{1} << 16;  // bytes read at once
constexpr size_t LARGEST_WRITE = 1U << 30; // some systems refuse more at once
constexpr int MAX_LINKS = 40;              // symbolic links followed one after the other
constexpr int KEPT_FILES = 10;
constexpr std::string_view KEPT_NAME = ".unreadable";
constexpr std::string_view TEMPORARY_NAME = ".tallyquill-XXXXXX";
constexpr useconds_t LOCK_PAUSE = 2000; // microseconds

// An open file, closed at the end of its life.
class Descriptor {
public:
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number; }
    bool IsOpen() const { return number >= 0; }

    // Whether closing worked: some file systems report only here that a write failed. An interrupted close has
    // closed, or cannot be repeated safely.
    bool Close() {
        const int closing = number;
        number = -1;
        return closing < 0 || close(closing) == 0 || errno == EINTR;
    }

private:
    int number;
};

bool readAll(int file, std::string& text) {
    std::string piece(PIECE, '\0');
    while (text.size() <= LARGEST_FILE) {
        const ssize_t got = read(file, piece.data(), piece.size());
        if (got == 0) return true;
        if (got > 0)
            text.append(piece, 0, static_cast<size_t>(got));
        else if (errno != EINTR)
            return false;
    }
    return false;
}

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t put = write(file, text.data(), std::min(text.size(), LARGEST_WRITE));
        if (put > 0)
            text.remove_prefix(static_cast<size_t>(put));
        else if (put == 0 || errno != EINTR)
            return false;
    }
    return true;
}

// To the disk itself where the system tells the disk's memory from the disk. File systems without the operation
// answer EINVAL or ENOTSUP.
bool flush(int file) {
#ifdef F_FULLFSYNC
    if (fcntl(file, F_FULLFSYNC) == 0) return true;
#endif
    int state;
    do {
        state = fsync(file);
    } while (state != 0 && errno == EINTR);
    return state == 0 || errno == EINVAL || errno == ENOTSUP;
}

// The folder of a path with its '/', or nothing for a name alone.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// A new name is on the disk when its folder is. Where that cannot be asked for, the file is in place all the same.
void flushFolder(const std::string& path) {
    const std::string folder = folderOf(path);
    const Descriptor opened(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) flush(opened.Number());
}

bool exists(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0;
}

// Where the text of a symbolic link leads: the path, from the link's own folder.
bool readLink(const std::string& path, std::string& destination) {
    std::string text(PIECE, '\0');
    const ssize_t length = readlink(path.c_str(), text.data(), text.size());
    if (length <= 0 || static_cast<size_t>(length) >= text.size()) return false;
    text.resize(static_cast<size_t>(length));
    destination = text[0] == '/' ? text : folderOf(path) + text;
    return true;
}

// Follows the symbolic links from `path` to the file itself, which need not exist. False with errno set for links
// in a circle.
bool followLinks(std::string& path) {
    for (int links = 0; links <= MAX_LINKS; links++) {
        struct stat info;
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return true;
        if (!readLink(path, path)) return false;
    }
    errno = ELOOP;
    return false;
}

// Nothing there yet, or a regular file that may be written; otherwise errno says why not.
bool isReplaceable(const std::string& path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return errno == ENOENT;
    if (S_ISREG(info.st_mode)) return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
    errno = S_ISDIR(info.st_mode) ? EISDIR : EEXIST;
    return false;
}

bool isGone(int file) {
    struct stat info;
    return fstat(file, &info) == 0 && info.st_nlink == 0;
}

// Makes a file that did not exist, for its owner alone, and locks it: one without a lock was left by a program that
// is gone. Another program that starts may remove it before it is locked; then another one is made. Returns the
// open file, or -1 with errno set.
int makeTemporary(std::string& name) {
    const std::string pattern = name;
    for (;;) {
        name = pattern;
        const int file = mkstemp(name.data());
        if (file < 0) return -1;
        fcntl(file, F_SETFD, FD_CLOEXEC);
        flock(file, LOCK_EX); // a file system without locks goes without
        if (!isGone(file)) return file;
        close(file);
    }
}

// Closing may report that a write failed; another descriptor keeps the lock until the file has its name.
bool fill(Descriptor& file, const std::string& text) {
    const bool isWritten = writeAll(file.Number(), text) && flush(file.Number());
    const int error = errno;
    const bool isClosed = file.Close();
    if (!isWritten) errno = error;
    return isClosed && isWritten;
}

// False with errno set.
bool replaceFile(std::string destination, const std::string& text) {
    if (!followLinks(destination) || !isReplaceable(destination)) return false;
    std::string temporary = destination + std::string(TEMPORARY_NAME);
    Descriptor file(makeTemporary(temporary));
    if (!file.IsOpen()) return false;
    const Descriptor lock(fcntl(file.Number(), F_DUPFD_CLOEXEC, 0));
    if (!fill(file, text) || rename(temporary.c_str(), destination.c_str()) != 0) {
        const int error = errno;
        unlink(temporary.c_str());
        errno = error;
        return false;
    }
    flushFolder(destination);
    return true;
}

// Whether a name in a folder is that of a temporary file for `name` or for a file kept beside that.
bool isTemporaryName(std::string_view entry, std::string_view name) {
    const size_t letters = 6;
    const std::string_view mark = TEMPORARY_NAME.substr(0, TEMPORARY_NAME.size() - letters);
    if (entry.size() < name.size() + TEMPORARY_NAME.size() || entry.substr(0, name.size()) != name)
        return false;
    const std::string_view end = entry.substr(entry.size() - TEMPORARY_NAME.size());
    if (end.substr(0, mark.size()) != mark) return false;
    const std::string_view between =
        entry.substr(name.size(), entry.size() - name.size() - TEMPORARY_NAME.size());
    const bool isBeside = between.empty() || between.substr(0, KEPT_NAME.size()) == KEPT_NAME;
    const auto isLetterOrDigit = [](unsigned char c) { return isalnum(c) != 0; };
    return isBeside && std::all_of(end.begin() + static_cast<long>(mark.size()), end.end(), isLetterOrDigit);
}

// Under its lock, which a living program would have.
void removeUnlocked(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info;
    if (!file.IsOpen() || fstat(file.Number(), &info) != 0 || !S_ISREG(info.st_mode)) return;
    if (flock(file.Number(), LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
}

// Beside the file itself, so that programs that reach it through different links have one lock. Links in a circle
// have one of their own.
std::string lockName(std::string path) {
    followLinks(path);
    const std::string folder = folderOf(path);
    return folder + "." + path.substr(folder.size()) + ".lock";
}

std::string keptName(const std::string& path, int number) {
    const std::string name = path + std::string(KEPT_NAME);
    return number == 0 ? name : name + "." + std::to_string(number);
}

std::string keepCopy(const std::string& path, const std::string& text, std::error_code* reason) {
    for (int number = 0; number < KEPT_FILES; number++) {
        std::string name = keptName(path, number);
        std::string kept;
        if (!exists(name)) return WriteFileAtomically(name, text, reason) ? name : "";
        if (ReadWholeFile(name, kept) && kept == text) return name;
    }
    return "";
}

std::string moveAside(const std::string& path, std::error_code* reason) {
    for (int number = 0; number < KEPT_FILES; number++) {
        std::string name = keptName(path, number);
        if (exists(name)) continue;
        if (rename(path.c_str(), name.c_str()) == 0) return name;
        if (reason) *reason = std::error_code(errno, std::generic_category());
        return "";
    }
    return "";
}

} // namespace

bool ReadWholeFile(const std::string& path, std::string& text) {
    text.clear();
    // Opening a pipe would wait for its other end.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat info;
    if (!file.IsOpen() || fstat(file.Number(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    if (readAll(file.Number(), text)) return true;
    text.clear();
    return false;
}

bool WriteFileAtomically(const std::string& path, const std::string& text, std::error_code* reason) {
    if (replaceFile(path, text)) return true;
    if (reason) *reason = std::error_code(errno, std::generic_category());
    return false;
}

void RemoveLeftovers(const std::string& path) {
    std::string file = path;
    if (!followLinks(file)) return;
    const std::string folder = folderOf(file);
    const std::string name = file.substr(folder.size());
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(folder.empty() ? "." : folder.c_str()),
                                                     closedir);
    if (!opened) return;
    while (const dirent* const entry = readdir(opened.get())) {
        if (isTemporaryName(entry->d_name, name)) removeUnlocked(folder + entry->d_name);
    }
}

FileLock::FileLock(const std::string& path)
    : file(open(lockName(path).c_str(), O_RDWR | O_CREAT | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC, 0600)) {
    if (file < 0) return;
    for (int waits = LOCK_SECONDS * (1000000 / static_cast<int>(LOCK_PAUSE)); waits >= 0; waits--) {
        isTaken = flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!isTaken) return;
        usleep(LOCK_PAUSE);
    }
}

FileLock::~FileLock() {
    if (file >= 0) close(file);
}

std::string KeepUnreadable(const std::string& path, std::error_code* reason) {
    struct stat info;
    // A link that leads nowhere holds nothing.
    if (stat(path.c_str(), &info) != 0 && errno == ENOENT) return "";
    std::string text;
    return ReadWholeFile(path, text) ? keepCopy(path, text, reason) : moveAside(path, reason);
}
