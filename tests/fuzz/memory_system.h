// SPDX-License-Identifier: MIT
//
// A file system in memory: what reading a file and appending to it ask of a system, without a disk. Anything
// else ends the program.
#pragma once

#include "System.h"
#include "fuzz.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

class MemorySystem : public System {
public:
    std::map<std::string, std::string> files; // their contents by their paths. None is removed

    int Open(const char* path, int flags, mode_t) override {
        if ((flags & O_CREAT) == 0 && files.count(path) == 0) {
            errno = ENOENT;
            return -1;
        }
        opened.push_back({&files[path], 0});
        return static_cast<int>(opened.size()) - 1;
    }
    int Close(int file) override {
        At(file).content = nullptr;
        while (!opened.empty() && !opened.back().content) opened.pop_back();
        return 0;
    }
    ssize_t Read(int file, void* bytes, size_t size) override {
        OpenFile& from = At(file);
        const size_t count = from.content->copy(static_cast<char*>(bytes), size, from.position);
        from.position += count;
        return static_cast<ssize_t>(count);
    }
    // Files are written at their ends.
    ssize_t Write(int file, const void* bytes, size_t size) override {
        At(file).content->append(static_cast<const char*>(bytes), size);
        return static_cast<ssize_t>(size);
    }
    int StatusOf(int file, struct stat& info) override {
        info = {};
        info.st_mode = S_IFREG | 0600;
        info.st_nlink = 1;
        info.st_size = static_cast<off_t>(At(file).content->size());
        return 0;
    }
    int Lock(int, int) override { return 0; }
    int MakeFolder(const char*, mode_t) override { return 0; }

    int MakeTemporary(char*) override { return None("mkstemp"); }
    int Rename(const char*, const char*) override { return None("rename"); }
    int Remove(const char*) override { return None("unlink"); }
    int Status(const char*, struct stat&) override { return None("stat"); }
    int StatusOfLink(const char*, struct stat&) override { return None("lstat"); }
    int MayWrite(const char*) override { return None("access"); }
    int ChangeMode(int, mode_t) override { return None("fchmod"); }

private:
    struct OpenFile {
        std::string* content; // null when it is closed
        size_t position;
    };

    OpenFile& At(int file) {
        require(file >= 0 && static_cast<size_t>(file) < opened.size(), "a file that is used is open");
        return opened[static_cast<size_t>(file)];
    }
    static int None(const char* call) {
        require(false, "there is such a call", call);
        return -1;
    }

    std::vector<OpenFile> opened;
};
