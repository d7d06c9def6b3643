// SPDX-License-Identifier: MIT
//
// Files that must not be lost: written in one step, and kept beside when they cannot be read.
// It needs POSIX (Linux, macOS). Paths are bytes as the system takes them; nothing throws but for lack of memory.
#ifndef TALLYQUILL_FILEKEEPING_H
#define TALLYQUILL_FILEKEEPING_H

#include <string>

// Reads a regular file, or what a symbolic link to one leads to, into `text`. False, with an empty text, for
// anything else: no such file, no permission, a folder, a device, a pipe, more than 256 MiB. Never waits.
bool ReadWholeFile(const std::string& path, std::string& text);

// Puts `text` in the place of the file: a new file in the same folder, readable and writable by its owner alone,
// is filled, flushed to the disk and renamed over the old one. A symbolic link stays, and the file that it leads
// to is written. Returns whether the text is there now; on a failure the old file is as it was and no other is
// left. What is there but no regular file (a folder, a device), or may not be written, is not replaced.
bool WriteFileAtomically(const std::string& path, const std::string& text);

// Keeps a file that is damaged or cannot be read from being overwritten: it is copied to `path`.unreadable, or
// moved there when it cannot be read (no permission, a folder). When other content stands there already the names
// .unreadable.1 to .unreadable.9 follow; a copy that is already there is not made twice. Returns the path of the
// copy. Empty when there is nothing at `path`, when all ten names are taken, or when the copy could not be made:
// what is still at `path` is then the only one.
std::string KeepUnreadable(const std::string& path);

#endif
