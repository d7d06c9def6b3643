// SPDX-License-Identifier: MIT
//
// Writes files without letting the person wait for the disk: flushing one takes milliseconds, at times tenths
// of a second. It remembers which of them could not be written.
#pragma once

#include "System.h"

#include <atomic>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

class DefinitionsMerge;

struct FileToWrite {
    std::string path;
    std::string text;
    // The definitions file: what other programs defined stays in it. Used until Finish, and not to be used
    // elsewhere before that. Null: the text alone.
    DefinitionsMerge* merge = nullptr;
};

class BackgroundWriter {
public:
    explicit BackgroundWriter(System& calls = System::Real()) : system(calls) {}
    ~BackgroundWriter() { Finish(); }
    BackgroundWriter(const BackgroundWriter&) = delete;
    BackgroundWriter& operator=(const BackgroundWriter&) = delete;

    // Writes the files in one step each, one after the other, after those of the call before.
    void Write(std::vector<FileToWrite> files);

    // Returns when all has been written.
    void Finish();

    // Whether something is still being written.
    bool IsBusy() const { return isBusy; }

    // Takes note of a file that could not be written for another reason, or waits for that, too. Finish
    // first.
    void SetFailed(const std::string& path, std::error_code reason);

    // The failures that nobody was told of, as one line without an end, "Not saved: NAME, NAME (reason), NAME
    // (other reason)" in UTF-8, or nothing. They count as told then, until the file has been written or fails
    // for another reason. Finish first.
    std::string TakeNews();

    // The same for all files whose last write failed, which are forgotten then.
    std::string TakeFailures();

private:
    struct Failure {
        std::error_code reason;
        bool isTold = false;
    };

    void WriteFiles(const std::vector<FileToWrite>& files);

    System& system;
    std::thread worker;
    std::atomic<bool> isBusy{false};
    std::map<std::string, Failure> failures; // by their paths; the worker's until Finish
};
