// SPDX-License-Identifier: MIT
#include "BackgroundWriter.h"

#include "DefinitionsMerge.h"
#include "FileKeeping.h"

#include <csignal>
#include <utility>

void BackgroundWriter::Write(std::vector<FileToWrite> files) {
    Finish();
    isBusy = true;
    // Signals are for whoever waits for them, not for this thread: it takes over the mask.
    sigset_t all;
    sigset_t found;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &found);
    worker = std::thread([this, files = std::move(files)] {
        WriteFiles(files);
        isBusy = false;
    });
    pthread_sigmask(SIG_SETMASK, &found, nullptr);
}

void BackgroundWriter::WriteFiles(const std::vector<FileToWrite>& files) {
    for (const FileToWrite& file : files) {
        std::error_code reason;
        const bool isWritten = file.merge ? file.merge->Write(file.path, file.text, reason, system)
                                          : writeFileAtomically(file.path, file.text, &reason, system);
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
    Failure& failure = failures[path];
    failure.isTold = failure.isTold && failure.reason == reason;
    failure.reason = reason;
}

std::string BackgroundWriter::TakeNews() {
    std::map<std::string, std::string> names; // by reasons
    for (auto& [path, failure] : failures) {
        if (std::exchange(failure.isTold, true)) continue;
        std::string& text = names[failure.reason.message()];
        text += (text.empty() ? "" : ", ") + path.substr(path.rfind('/') + 1);
    }
    std::string news;
    for (const auto& [reason, text] : names) {
        news += news.empty() ? "Not saved: " : ", ";
        news.append(text).append(" (").append(reason).append(")");
    }
    return news;
}

std::string BackgroundWriter::TakeFailures() {
    for (auto& [path, failure] : failures) failure.isTold = false;
    std::string all = TakeNews();
    failures.clear();
    return all;
}
