// SPDX-License-Identifier: MIT
//
// Writes files without letting the person wait for the disk: flushing one takes milliseconds, at times tenths of a
// second.
#ifndef TALLYQUILL_BACKGROUNDWRITER_H
#define TALLYQUILL_BACKGROUNDWRITER_H

#include <string>
#include <thread>
#include <utility>
#include <vector>

class BackgroundWriter {
public:
    using File = std::pair<std::string, std::string>; // path and text

    BackgroundWriter() = default;
    ~BackgroundWriter() { Finish(); }
    BackgroundWriter(const BackgroundWriter&) = delete;
    BackgroundWriter& operator=(const BackgroundWriter&) = delete;

    // Writes the files with WriteFileAtomically, one after the other, after those of the call before.
    void Write(std::vector<File> files);

    // Returns when all has been written.
    void Finish();

private:
    std::thread worker;
};

#endif
