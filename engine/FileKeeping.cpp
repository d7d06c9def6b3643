// SPDX-License-Identifier: MIT
#include "FileKeeping.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t LARGEST_FILE = size_t{256} << 20;
constexpr size_t PIECE = size_t{1} << 16;  // bytes read at once
constexpr size_t LARGEST_WRITE = 1U << 30; // some systems refuse more at once
constexpr int MAX_LINKS = 40;              // symbolic links followed one after the other
constexpr int KEPT_FILES = 10;

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

// Follows the symbolic links from `path` to the file itself, which need not exist. False for links in a circle.
bool followLinks(std::string& path) {
    for (int links = 0; links <= MAX_LINKS; links++) {
        struct stat info;
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return true;
        if (!readLink(path, path)) return false;
    }
    return false;
}

// Nothing there yet, or a regular file that may be written.
bool isReplaceable(const std::string& path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return errno == ENOENT;
    return S_ISREG(info.st_mode) && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool fill(int file, const std::string& text) {
    fcntl(file, F_SETFD, FD_CLOEXEC);
    Descriptor opened(file);
    const bool isWritten = writeAll(file, text) && flush(file);
    return opened.Close() && isWritten;
}

std::string keptName(const std::string& path, int number) {
    const std::string name = path + ".unreadable";
    return number == 0 ? name : name + "." + std::to_string(number);
}

std::string keepCopy(const std::string& path, const std::string& text) {
    for (int number = 0; number < KEPT_FILES; number++) {
        std::string name = keptName(path, number);
        std::string kept;
        if (!exists(name)) return WriteFileAtomically(name, text) ? name : "";
        if (ReadWholeFile(name, kept) && kept == text) return name;
    }
    return "";
}

std::string moveAside(const std::string& path) {
    for (int number = 0; number < KEPT_FILES; number++) {
        std::string name = keptName(path, number);
        if (!exists(name)) return rename(path.c_str(), name.c_str()) == 0 ? name : "";
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

bool WriteFileAtomically(const std::string& path, const std::string& text) {
    std::string destination = path;
    if (!followLinks(destination) || !isReplaceable(destination)) return false;
    // mkstemp makes a file that did not exist, for its owner alone.
    std::string temporary = destination + ".XXXXXX";
    const int file = mkstemp(temporary.data());
    if (file < 0) return false;
    if (!fill(file, text) || rename(temporary.c_str(), destination.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    flushFolder(destination);
    return true;
}

std::string KeepUnreadable(const std::string& path) {
    struct stat info;
    // A link that leads nowhere holds nothing.
    if (stat(path.c_str(), &info) != 0 && errno == ENOENT) return "";
    std::string text;
    return ReadWholeFile(path, text) ? keepCopy(path, text) : moveAside(path);
}
