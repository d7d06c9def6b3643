// SPDX-License-Identifier: MIT
#include "BackgroundWriter.h"

#include "FileKeeping.h"

void BackgroundWriter::Write(std::vector<File> files) {
    Finish();
    worker = std::thread([files = std::move(files)] {
        for (const File& file : files) WriteFileAtomically(file.first, file.second);
    });
}

void BackgroundWriter::Finish() {
    if (worker.joinable()) worker.join();
}
