// SPDX-License-Identifier: MIT
//
// Files that must not be lost: written in one step, and kept beside when they cannot be read. It needs POSIX
// (Linux, macOS). Paths are bytes as the system takes them; nothing throws except for lack of memory.
#pragma once

#include "System.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

// Reads a regular file, or what a symbolic link to one leads to, into `text`. False, with an empty text, for
// anything else: no such file, no permission, a folder, a device, a pipe, more than 256 MiB. Never waits.
// `reason`, when given, receives why; nothing when there is no such file.
bool readWholeFile(const std::string& path, std::string& text, System& system = System::Real(),
                   std::error_code* reason = nullptr);

// What tells two states of a file apart without reading it: which file it is, its size, and when its content
// and its state were changed.
class FileStamp {
public:
    FileStamp() = default; // of no file

    // That of the file as it is now. Take it before the file is read: what is written in between then makes
    // another one.
    FileStamp(const std::string& path, System& system);

    // Whether the file still is as it was read behind the other stamp. A file system's clock has ticks, of
    // some milliseconds, or of two seconds at the worst, and a change in the tick of the one before leaves no
    // mark if the size stays. So a stamp says nothing unless the file had rested for longer than a tick when
    // the stamp was taken: every later change falls into another tick then. Where the clock of a file server
    // is ahead of ours, the stamps say nothing for longer, and the file is read.
    bool IsSameAs(const FileStamp& before) const { return before.isAtRest && state == before.state; }

private:
    std::array<int64_t, 7> state = {};
    bool isAtRest = false;
};

// Puts `text` in the place of the file: a new file in the same folder, readable and writable by its owner
// alone, is filled, flushed to the disk and renamed over the old one. A symbolic link is replaced, and the
// file that it leads to stays as it is. Returns whether the text is there now; on a failure the old file is
// as it was and no other is left. What is there but no regular file (a folder, a device), or may not be
// written, is not replaced. `reason`, when given, receives why it failed; it stays as it is otherwise.
bool writeFileAtomically(const std::string& path, const std::string& text, std::error_code* reason = nullptr,
                         System& system = System::Real());

// Appends `text` to the file, which is made when it is missing, readable and writable by its owner alone. A
// symbolic link is replaced by a file with what it led to and `text`, unless that cannot be read. A file that
// others could read becomes its owner's alone, if we are the owner and it has no other name. False when not
// all was written: `reason` says why.
bool appendToFile(const std::string& path, const std::string& text, std::error_code& reason,
                  System& system = System::Real());

// Removes what programs left that were killed while they wrote the file or one that is kept beside it: the
// files "NAME.tallyquill-XXXXXX" in its folder, X being a letter or a digit. One that a program is just
// writing stays.
void removeLeftovers(const std::string& path, System& system = System::Real());

// As long as it lives, no other program has the lock of the same file: to read the file, change what was read
// and write it again. The system gives it back when a program is killed. The lock belongs to a hidden file of
// its own, ".NAME.lock" in the same folder, which stays.
class FileLock {
public:
    // Waits until other programs have given it back, LOCK_SECONDS at most.
    explicit FileLock(const std::string& path, System& calls = System::Real());
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Whether another program still has it. Where no lock can be had at all, nobody is kept out and it is
    // false: in a folder that cannot be written, on a file system that has none, and where a link or a folder
    // stands in the lock's place. A link is not followed. To save without a lock is better than not to save.
    // `reason`, when given, receives that it has.
    bool IsTaken(std::error_code* reason = nullptr) const;

    static constexpr int LOCK_SECONDS = 2;

private:
    System& system;
    int file;
    bool isTaken = false;
};

// The start of the newest lines of a text: so many, of so many bytes at most.
size_t startOfNewest(std::string_view text, size_t lines, size_t bytes = SIZE_MAX);

// Keeps a file that is damaged or cannot be read from being overwritten: it is copied to `path`.unreadable,
// or moved there when it cannot be read (no permission, a folder). When other content stands there already
// the names .unreadable.1 to .unreadable.9 follow; a copy that is already there is not made twice. Returns
// the path of the copy. Empty when there is nothing at `path`, when all ten names are taken, or when the copy
// could not be made: what is still at `path` is then the only one, and `reason`, when given, receives why no
// copy could be made.
std::string keepUnreadable(const std::string& path, std::error_code* reason = nullptr,
                           System& system = System::Real());
