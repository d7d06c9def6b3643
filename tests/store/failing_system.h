// SPDX-License-Identifier: MIT
//
// The system's calls, one of which fails: the first, the second, and so on, in one run after the other.
#pragma once

#include "System.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>

// Of what a system answers when a call goes wrong. SHORT is no error: a read or a write that takes one byte.
constexpr int SHORT = 0;
constexpr int FAILURES[] = {SHORT, EINTR, ENOSPC, EIO, EACCES};

class FailingSystem : public System {
public:
    // The call behind `number` others fails with this error, once.
    FailingSystem(size_t number, int error) : failing(number), failure(error) {}

    // None fails.
    FailingSystem() : FailingSystem(SIZE_MAX, EIO) {}

    // Whether there were so many calls.
    bool IsReached() const { return calls > failing; }

    int Failure() const { return failure; }

    // The name of the call that failed, and of the file if it had one. Nothing where a call cannot be short.
    const std::string& WhatFailed() const { return whatFailed; }

    int Open(const char* path, int flags, mode_t mode) override {
        return Fails("open", path) ? -1 : System::Open(path, flags, mode);
    }
    int MakeTemporary(char* name) override {
        return Fails("mkstemp", name) ? -1 : System::MakeTemporary(name);
    }
    int Duplicate(int file, int lowest) override {
        return Fails("dup") ? -1 : System::Duplicate(file, lowest);
    }
    int DuplicateTo(int file, int number) override {
        return Fails("dup2") ? -1 : System::DuplicateTo(file, number);
    }
    int CloseOnExec(int file) override { return Fails("fcntl") ? -1 : System::CloseOnExec(file); }
    ssize_t Read(int file, void* bytes, size_t size) override {
        if (IsShort("read", size)) return System::Read(file, bytes, 1);
        return Fails("read") ? -1 : System::Read(file, bytes, size);
    }
    ssize_t Write(int file, const void* bytes, size_t size) override {
        if (IsShort("write", size)) return System::Write(file, bytes, 1);
        return Fails("write") ? -1 : System::Write(file, bytes, size);
    }
    // The disk itself is not waited for: no test can tell.
    int Sync(int) override { return Fails("fsync") ? -1 : 0; }
    int Lock(int file, int operation) override { return Fails("flock") ? -1 : System::Lock(file, operation); }
    // As on Linux and macOS, the descriptor is closed whatever is answered.
    int Close(int file) override {
        const int result = System::Close(file);
        return Fails("close") ? -1 : result;
    }
    int Poll(pollfd& file, int milliseconds) override {
        return Fails("poll") ? -1 : System::Poll(file, milliseconds);
    }
    int WaitForInput(int file, const timespec* time, const sigset_t& signals) override {
        return Fails("pselect") ? -1 : System::WaitForInput(file, time, signals);
    }
    int Modes(int terminal, termios& modes) override {
        return Fails("tcgetattr") ? -1 : System::Modes(terminal, modes);
    }
    int SetModes(int terminal, int when, const termios& modes) override {
        return Fails("tcsetattr") ? -1 : System::SetModes(terminal, when, modes);
    }
    int IsTerminal(int file) override { return Fails("isatty") ? 0 : System::IsTerminal(file); }
    int Size(int terminal, winsize& size) override {
        return Fails("ioctl") ? -1 : System::Size(terminal, size);
    }
    pid_t Foreground(int terminal) override { return Fails("tcgetpgrp") ? -1 : System::Foreground(terminal); }
    int Drain(int terminal) override { return Fails("tcdrain") ? -1 : System::Drain(terminal); }
    std::thread StartThread(std::function<void()> action) override {
        if (Fails("pthread_create")) throw std::system_error(failure, std::generic_category());
        return System::StartThread(std::move(action));
    }
    int MakePipe(int* ends) override { return Fails("pipe") ? -1 : System::MakePipe(ends); }
    int Start(pid_t& process, const posix_spawn_file_actions_t& actions, char** arguments,
              char** environment) override {
        if (Fails("posix_spawn", arguments[0])) return failure;
        return System::Start(process, actions, arguments, environment);
    }
    pid_t WaitForEnd(pid_t process, int& status) override {
        return Fails("waitpid") ? -1 : System::WaitForEnd(process, status);
    }
    int Signal(pid_t process, int signal) override {
        return Fails("kill") ? -1 : System::Signal(process, signal);
    }
    int StatusOf(int file, struct stat& info) override {
        return Fails("fstat") ? -1 : System::StatusOf(file, info);
    }
    int Status(const char* path, struct stat& info) override {
        return Fails("stat", path) ? -1 : System::Status(path, info);
    }
    int StatusOfLink(const char* path, struct stat& info) override {
        return Fails("lstat", path) ? -1 : System::StatusOfLink(path, info);
    }
    int ChangeMode(int file, mode_t mode) override {
        return Fails("fchmod") ? -1 : System::ChangeMode(file, mode);
    }
    int MayWrite(const char* path) override { return Fails("access", path) ? -1 : System::MayWrite(path); }
    int Rename(const char* from, const char* to) override {
        return Fails("rename", from) ? -1 : System::Rename(from, to);
    }
    int Remove(const char* path) override { return Fails("unlink", path) ? -1 : System::Remove(path); }
    int MakeFolder(const char* path, mode_t mode) override {
        return Fails("mkdir", path) ? -1 : System::MakeFolder(path, mode);
    }
    DIR* OpenFolder(const char* path) override {
        return Fails("opendir", path) ? nullptr : System::OpenFolder(path);
    }
    const dirent* NextEntry(DIR* folder) override {
        return Fails("readdir") ? nullptr : System::NextEntry(folder);
    }
    int CloseFolder(DIR* folder) override {
        const int result = System::CloseFolder(folder);
        return Fails("closedir") ? -1 : result;
    }

private:
    // Whether this read or write is the one and takes one byte.
    bool IsShort(const char* call, size_t size) {
        if (calls != failing || failure != SHORT || size < 2) return false;
        ++calls;
        whatFailed = std::string("short ") + call;
        return true;
    }

    bool Fails(const char* call, const char* path = "") {
        if (calls++ != failing || failure == SHORT) return false;
        whatFailed = std::string(call) + " " + path;
        errno = failure;
        return true;
    }

    const size_t failing;
    const int failure;
    std::atomic<size_t> calls{0}; // a thread of its own writes while nothing else is called
    std::string whatFailed;
};

// Does something again and again, with the first, the second and every further call failing in each way, as
// long as it makes so many calls. Returns how many times one failed.
template <typename Calls = FailingSystem, typename Action> size_t failEveryCall(Action action) {
    size_t count = 0;
    for (const int failure : FAILURES) {
        for (size_t number = 0;; ++number) {
            Calls system(number, failure);
            action(system);
            if (!system.IsReached()) break;
            if (!system.WhatFailed().empty()) ++count;
        }
    }
    return count;
}
