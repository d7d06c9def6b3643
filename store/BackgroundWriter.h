// SPDX-License-Identifier: MIT
//
// Writes files without letting the person wait for the disk: flushing one takes milliseconds, at times tenths of a
// second. It remembers which of them could not be written.
#ifndef TALLYQUILL_BACKGROUNDWRITER_H
#define TALLYQUILL_BACKGROUNDWRITER_H

#include <atomic>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

class DefinitionsMerge;

struct FileToWrite {
    std::string path;
    std::string text;
    // The functions file: what other programs defined stays in it. Used until Finish, and not to be used elsewhere
    // before that. Null: the text alone.
    DefinitionsMerge* merge = nullptr;
};

struct FailedWrite {
    std::error_code reason;
    bool isTold = false;
};

class BackgroundWriter {
public:
    BackgroundWriter() = default;
    ~BackgroundWriter() { Finish(); }
    BackgroundWriter(const BackgroundWriter&) = delete;
    BackgroundWriter& operator=(const BackgroundWriter&) = delete;

    // Writes the files in one step each, one after the other, after those of the call before.
    void Write(std::vector<FileToWrite> files);

    // Returns when all has been written.
    void Finish();

    // Whether something is still being written.
    bool IsBusy() const { return isBusy; }

    // Takes note of a file that could not be written for another reason, or waits for that, too.
    void SetFailed(const std::string& path, std::error_code reason);

    // The files whose last write failed, by their paths, which are forgotten then. Finish first.
    std::map<std::string, FailedWrite> TakeFailures() { return std::exchange(failures, {}); }

    // The next failure that nobody was told of, or null. All of them count as told then, until the file has been
    // written or fails for another reason. Finish first.
    const std::pair<const std::string, FailedWrite>* TakeNews();

private:
    void WriteFiles(const std::vector<FileToWrite>& files);

    std::thread worker;
    std::atomic<bool> isBusy{false};
    std::map<std::string, FailedWrite> failures; // the worker's until Finish
};

#endif
