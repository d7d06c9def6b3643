// SPDX-License-Identifier: MIT
#include "BackgroundWriter.h"

#include "DefinitionsMerge.h"
#include "FileKeeping.h"

#include <utility>

void BackgroundWriter::Write(std::vector<FileToWrite> files) {
    Finish();
    isBusy = true;
    worker = std::thread([this, files = std::move(files)] {
        WriteFiles(files);
        isBusy = false;
    });
}

void BackgroundWriter::WriteFiles(const std::vector<FileToWrite>& files) {
    for (const FileToWrite& file : files) {
        std::error_code reason;
        const bool isWritten = file.merge ? file.merge->Write(file.path, file.text, reason)
                                          : writeFileAtomically(file.path, file.text, &reason);
        if (isWritten)
            failures.erase(file.path);
        else
            SetFailed(file.path, reason);
    }
}

void BackgroundWriter::Finish() {
    if (worker.joinable()) worker.join();
}

void BackgroundWriter::SetFailed(const std::string& path, std::error_code reason) {
    FailedWrite& failure = failures[path];
    if (failure.reason == reason) return;
    failure.reason = reason;
    failure.isTold = false;
}

const std::pair<const std::string, FailedWrite>* BackgroundWriter::TakeNews() {
    const std::pair<const std::string, FailedWrite>* news = nullptr;
    for (auto& failure : failures) {
        if (!failure.second.isTold && !news) news = &failure;
        failure.second.isTold = true;
    }
    return news;
}
