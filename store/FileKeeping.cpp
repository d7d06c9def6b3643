// SPDX-License-Identifier: MIT
#include "FileKeeping.h"

#include "Helpers_String.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr size_t LARGEST_FILE = size_t{256} << 20;
constexpr size_t PIECE = size_t{1} << 16;  // bytes read at once
constexpr size_t LARGEST_WRITE = 1U << 30; // some systems refuse more at once
constexpr int KEPT_FILES = 10;
constexpr char KEPT_NAME[] = ".unreadable";
constexpr char TEMPORARY_NAME[] = ".tallyquill-XXXXXX";
constexpr size_t TEMPORARY_LETTERS = 6; // the X
constexpr useconds_t LOCK_PAUSE = 2000; // microseconds

// An open file, closed at the end of its life.
class Descriptor {
public:
    Descriptor(System& calls, int opened) : system(calls), number(opened) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number; }
    bool IsOpen() const { return number >= 0; }

    // Whether closing worked: some file systems report only here that a write failed. An interrupted close
    // has closed, or cannot be repeated safely.
    bool Close() {
        const int closing = number;
        number = -1;
        return closing < 0 || system.Close(closing) == 0 || errno == EINTR;
    }

private:
    System& system;
    int number;
};

bool readAll(System& system, int file, std::string& text) {
    char piece[PIECE];
    while (text.size() <= LARGEST_FILE) {
        const ssize_t got = system.Read(file, piece, sizeof piece);
        if (got == 0) return true;
        if (got > 0)
            text.append(piece, static_cast<size_t>(got));
        else if (errno != EINTR)
            return false;
    }
    errno = EFBIG;
    return false;
}

// False with errno set. Opening a pipe would wait for its other end.
bool readRegular(System& system, const std::string& path, std::string& text) {
    const Descriptor file(system, system.Open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat info;
    if (!file.IsOpen() || system.StatusOf(file.Number(), info) != 0) return false;
    errno = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
    return S_ISREG(info.st_mode) && readAll(system, file.Number(), text);
}

bool writeAll(System& system, int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t put = system.Write(file, text.data(), std::min(text.size(), LARGEST_WRITE));
        if (put > 0)
            text.remove_prefix(static_cast<size_t>(put));
        else if (put == 0 || errno != EINTR)
            return false;
    }
    return true;
}

// File systems without the operation answer EINVAL or ENOTSUP.
bool flush(System& system, int file) {
    int state;
    do {
        state = system.Sync(file);
    } while (state != 0 && errno == EINTR);
    return state == 0 || errno == EINVAL || errno == ENOTSUP;
}

// The folder of a path with its '/', or nothing for a name alone.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// A new name is on the disk when its folder is. Where that cannot be asked for, the file is in place all the
// same.
void flushFolder(System& system, const std::string& path) {
    const std::string folder = folderOf(path);
    const Descriptor opened(
        system, system.Open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) flush(system, opened.Number());
}

// Nothing there yet, a symbolic link, which is replaced itself, or a regular file that may be written;
// otherwise errno says why not.
bool isReplaceable(System& system, const std::string& path) {
    struct stat info;
    if (system.StatusOfLink(path.c_str(), info) != 0) return errno == ENOENT;
    if (S_ISLNK(info.st_mode)) return true;
    if (S_ISREG(info.st_mode)) return system.MayWrite(path.c_str()) == 0;
    errno = S_ISDIR(info.st_mode) ? EISDIR : EEXIST;
    return false;
}

bool isGone(System& system, int file) {
    struct stat info;
    return system.StatusOf(file, info) == 0 && info.st_nlink == 0;
}

// Makes a file that did not exist, for its owner alone, and locks it: one without a lock was left by a
// program that is gone. Another program that starts may remove it before it is locked; then another one is
// made. Returns the open file, or -1 with errno set.
int makeTemporary(System& system, std::string& name) {
    const std::string pattern = name;
    for (;;) {
        name = pattern;
        const int file = system.MakeTemporary(name.data());
        if (file < 0) return -1;
        system.CloseOnExec(file);
        system.Lock(file, LOCK_EX); // a file system without locks goes without
        if (!isGone(system, file)) return file;
        system.Close(file);
    }
}

// Closing may report that a write failed. False with errno set for the first failure.
bool closeWritten(Descriptor& file, bool isWritten) {
    const int error = errno;
    const bool isClosed = file.Close();
    if (!isWritten) errno = error;
    return isClosed && isWritten;
}

// False with errno set.
bool replaceFile(System& system, const std::string& destination, const std::string& text) {
    if (!isReplaceable(system, destination)) return false;
    std::string temporary = destination + TEMPORARY_NAME;
    Descriptor file(system, makeTemporary(system, temporary));
    if (!file.IsOpen()) return false;
    const Descriptor lock(system, system.Duplicate(file.Number())); // until the file has its name
    const bool isWritten = writeAll(system, file.Number(), text) && flush(system, file.Number());
    if (!closeWritten(file, isWritten) || system.Rename(temporary.c_str(), destination.c_str()) != 0) {
        const int error = errno;
        system.Remove(temporary.c_str());
        errno = error;
        return false;
    }
    flushFolder(system, destination);
    return true;
}

// For the owner alone, as a new file is. One that has another name or another owner is not ours alone. It is
// written all the same where this fails.
void keepFromOthers(System& system, int file) {
    struct stat info;
    if (system.StatusOf(file, info) == 0 && S_ISREG(info.st_mode) && (info.st_mode & 0077U) != 0 &&
        info.st_nlink == 1 && info.st_uid == geteuid())
        system.ChangeMode(file, 0600);
}

// What the link leads to is not lost: one that cannot be read stays. A link in a circle leads to nothing.
bool appendToLinked(System& system, const std::string& path, const std::string& text,
                    std::error_code& reason) {
    std::string before;
    std::error_code unread;
    if (!readWholeFile(path, before, system, &unread) && unread && unread.value() != ELOOP) {
        reason = unread;
        return false;
    }
    return writeFileAtomically(path, before + text, &reason, system);
}

// Whether the end of a name is what mkstemp makes of TEMPORARY_NAME. Not by fnmatch: in Turkish "i" is none
// of its a-z.
bool isTemporaryEnd(std::string_view end) {
    constexpr std::string_view PATTERN = TEMPORARY_NAME;
    const size_t letters = PATTERN.size() - TEMPORARY_LETTERS;
    return end.size() == PATTERN.size() && startsWith(end, PATTERN.substr(0, letters)) &&
           std::all_of(end.begin() + letters, end.end(), [](char c) { return isLetter(c) || isDigit(c); });
}

// Whether a name in a folder is that of a temporary file for `name` or for a file kept beside that.
bool isTemporaryName(std::string_view entry, std::string_view name) {
    constexpr size_t LENGTH = sizeof TEMPORARY_NAME - 1;
    if (!startsWith(entry, name) || entry.size() < name.size() + LENGTH) return false;
    const std::string_view between = entry.substr(name.size(), entry.size() - name.size() - LENGTH);
    return (between.empty() || startsWith(between, KEPT_NAME)) &&
           isTemporaryEnd(entry.substr(entry.size() - LENGTH));
}

// Under its lock, which a living program would have.
void removeUnlocked(System& system, const std::string& path) {
    const Descriptor file(
        system, system.Open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info;
    if (!file.IsOpen() || system.StatusOf(file.Number(), info) != 0 || !S_ISREG(info.st_mode)) return;
    if (system.Lock(file.Number(), LOCK_EX | LOCK_NB) == 0) system.Remove(path.c_str());
}

std::string lockName(const std::string& path) {
    const std::string folder = folderOf(path);
    return folder + "." + path.substr(folder.size()) + ".lock";
}

} // namespace

bool readWholeFile(const std::string& path, std::string& text, System& system, std::error_code* reason) {
    text.clear();
    if (readRegular(system, path, text)) return true;
    text.clear();
    const bool isThere = errno != ENOENT && errno != ENOTDIR;
    if (reason) *reason = std::error_code(isThere ? errno : 0, std::generic_category());
    return false;
}

FileStamp::FileStamp(const std::string& path, System& system) {
    constexpr int TICK = 2; // seconds
    struct stat info;
    if (system.Status(path.c_str(), info) != 0) return;
#ifdef __APPLE__
    const timespec content = info.st_mtimespec, whole = info.st_ctimespec;
#else
    const timespec content = info.st_mtim, whole = info.st_ctim;
#endif
    state = {static_cast<int64_t>(info.st_dev),
             static_cast<int64_t>(info.st_ino),
             info.st_size,
             content.tv_sec,
             content.tv_nsec,
             whole.tv_sec,
             whole.tv_nsec};
    isAtRest = system.WallTime() > std::max(content.tv_sec, whole.tv_sec) + TICK;
}

bool writeFileAtomically(const std::string& path, const std::string& text, std::error_code* reason,
                         System& system) {
    if (replaceFile(system, path, text)) return true;
    if (reason) *reason = std::error_code(errno, std::generic_category());
    return false;
}

bool appendToFile(const std::string& path, const std::string& text, std::error_code& reason, System& system) {
    Descriptor file(
        system,
        system.Open(path.c_str(),
                    O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file.IsOpen() && errno == ELOOP) return appendToLinked(system, path, text, reason);
    if (file.IsOpen()) keepFromOthers(system, file.Number());
    if (closeWritten(file, file.IsOpen() && writeAll(system, file.Number(), text))) return true;
    reason = std::error_code(errno, std::generic_category());
    return false;
}

void removeLeftovers(const std::string& path, System& system) {
    const std::string folder = folderOf(path);
    const std::string name = path.substr(folder.size());
    DIR* const opened = system.OpenFolder(folder.empty() ? "." : folder.c_str());
    if (!opened) return;
    while (const dirent* const entry = system.NextEntry(opened)) {
        if (isTemporaryName(entry->d_name, name)) removeUnlocked(system, folder + entry->d_name);
    }
    system.CloseFolder(opened);
}

FileLock::FileLock(const std::string& path, System& calls)
    : system(calls),
      file(system.Open(lockName(path).c_str(), O_RDWR | O_CREAT | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC, 0600)) {
    if (file < 0) return;
    for (int waits = LOCK_SECONDS * (1000000 / static_cast<int>(LOCK_PAUSE)); waits >= 0; --waits) {
        isTaken = system.Lock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!isTaken) return;
        system.Pause(LOCK_PAUSE);
    }
}

bool FileLock::IsTaken(std::error_code* reason) const {
    if (isTaken && reason) *reason = std::make_error_code(std::errc::resource_unavailable_try_again);
    return isTaken;
}

FileLock::~FileLock() {
    if (file >= 0) system.Close(file);
}

size_t startOfNewest(std::string_view text, size_t lines, size_t bytes) {
    size_t start = text.size();
    for (; start > 0 && lines > 0; --lines) {
        const size_t before = start >= 2 ? text.rfind('\n', start - 2) : std::string_view::npos;
        const size_t next = before == std::string_view::npos ? 0 : before + 1;
        if (text.size() - next > bytes) break;
        start = next;
    }
    return start;
}

std::string keepUnreadable(const std::string& path, std::error_code* reason, System& system) {
    struct stat info;
    // A link that leads nowhere holds nothing.
    if (system.Status(path.c_str(), info) != 0 && (errno == ENOENT || errno == ENOTDIR)) return "";
    std::string text;
    std::string kept;
    const bool isReadable = readWholeFile(path, text, system);
    for (int number = 0; number < KEPT_FILES; ++number) {
        std::string name = path + KEPT_NAME + (number == 0 ? "" : "." + std::to_string(number));
        if (system.StatusOfLink(name.c_str(), info) == 0) {
            if (isReadable && readWholeFile(name, kept, system) && kept == text) return name;
            continue;
        }
        if (isReadable) return writeFileAtomically(name, text, reason, system) ? name : "";
        if (system.Rename(path.c_str(), name.c_str()) == 0) return name;
        if (reason) *reason = std::error_code(errno, std::generic_category());
        return "";
    }
    return "";
}
