// SPDX-License-Identifier: MIT
//
// The system's calls for files, terminals, other programs and the clock. Whatever is kept, read and answered
// goes through one object of this class, so that a test can put another one in its place and let each of the
// calls fail.
#pragma once

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

// To the disk itself where the system tells the disk's memory from the disk.
inline int syncToDisk(int file) {
#ifdef F_FULLFSYNC
    if (fcntl(file, F_FULLFSYNC) == 0) return 0;
#endif
    return fsync(file);
}

// Each method is the system call of its name, with its results and `errno`.
class System {
public:
    System() = default;
    virtual ~System() = default;
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    // The system itself. It holds nothing.
    static System& Real() {
        static System real;
        return real;
    }

    virtual int Open(const char* path, int flags, mode_t mode = 0) { return open(path, flags, mode); }
    virtual int MakeTemporary(char* name) { return mkstemp(name); }
    // The new descriptor is the lowest free one from `lowest` on.
    virtual int Duplicate(int file, int lowest = 0) { return fcntl(file, F_DUPFD_CLOEXEC, lowest); }
    virtual int DuplicateTo(int file, int number) { return dup2(file, number); }
    virtual int CloseOnExec(int file) { return fcntl(file, F_SETFD, FD_CLOEXEC); }
    virtual ssize_t Read(int file, void* bytes, size_t size) { return read(file, bytes, size); }
    virtual ssize_t Write(int file, const void* bytes, size_t size) { return write(file, bytes, size); }
    virtual int Sync(int file) { return syncToDisk(file); }
    virtual int Lock(int file, int operation) { return flock(file, operation); }
    virtual int Close(int file) { return close(file); }

    virtual int Poll(pollfd& file, int milliseconds) { return poll(&file, 1, milliseconds); }
    virtual int WaitForInput(int file, const timespec* time, const sigset_t& signals) {
        fd_set inputs;
        FD_ZERO(&inputs);
        FD_SET(file, &inputs);
        return pselect(file + 1, &inputs, nullptr, nullptr, time, &signals);
    }
    virtual int Modes(int terminal, termios& modes) { return tcgetattr(terminal, &modes); }
    virtual int SetModes(int terminal, int when, const termios& modes) {
        return tcsetattr(terminal, when, &modes);
    }
    virtual int IsTerminal(int file) { return isatty(file); }
    virtual int Size(int terminal, winsize& size) { return ioctl(terminal, TIOCGWINSZ, &size); }
    virtual pid_t Foreground(int terminal) { return tcgetpgrp(terminal); }
    virtual int Drain(int terminal) { return tcdrain(terminal); }

    // Throws std::system_error when there can be no other thread.
    virtual std::thread StartThread(std::function<void()> action) { return std::thread(std::move(action)); }
    virtual int MakePipe(int* ends) { return pipe(ends); }
    // Looks for the program in PATH and gives it this environment. Returns what errno would say.
    virtual int Start(pid_t& process, const posix_spawn_file_actions_t& actions, char** arguments,
                      char** environment) {
        return posix_spawnp(&process, arguments[0], &actions, nullptr, arguments, environment);
    }
    virtual pid_t WaitForEnd(pid_t process, int& status) { return waitpid(process, &status, 0); }
    virtual int Signal(pid_t process, int signal) { return kill(process, signal); }

    virtual int StatusOf(int file, struct stat& info) { return fstat(file, &info); }
    virtual int Status(const char* path, struct stat& info) { return stat(path, &info); }
    virtual int StatusOfLink(const char* path, struct stat& info) { return lstat(path, &info); }
    virtual int ChangeMode(int file, mode_t mode) { return fchmod(file, mode); }
    virtual int MayWrite(const char* path) { return faccessat(AT_FDCWD, path, W_OK, AT_EACCESS); }
    virtual int Rename(const char* from, const char* to) { return rename(from, to); }
    virtual int Remove(const char* path) { return unlink(path); }
    virtual int MakeFolder(const char* path, mode_t mode) { return mkdir(path, mode); }
    virtual DIR* OpenFolder(const char* path) { return opendir(path); }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): each thread reads a folder that it has opened itself
    virtual const dirent* NextEntry(DIR* folder) { return readdir(folder); }
    virtual int CloseFolder(DIR* folder) { return closedir(folder); }
    using Time = std::chrono::steady_clock::time_point;
    virtual Time Now() { return std::chrono::steady_clock::now(); }
    virtual time_t WallTime() { return time(nullptr); }
    virtual void Pause(useconds_t microseconds) { usleep(microseconds); }
};
