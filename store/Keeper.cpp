// SPDX-License-Identifier: MIT
#include "Keeper.h"

#include "DefinitionsFile.h"
#include "Folder.h"
#include "TranscriptFile.h"

#include <cerrno>
#include <csignal>
#include <map>
#include <utility>

void Keeper::Open(const std::string& path) {
    Close();
    folder = path;
    settingsFile.path = settingsPath(folder);
    definitionsFile.path = definitionsPath(folder);
    transcriptFile.path = transcriptPath(folder);
    makeFolder(folder, system);
    for (const File* const file : {&settingsFile, &definitionsFile, &transcriptFile})
        removeLeftovers(file->path, system);
}

void Keeper::Close() {
    Finish();
    Forget();
    settingsFile = definitionsFile = transcriptFile = {};
    transcript.reset();
    transcriptKept.reset();
    definitionsStamp = {};
    merge = {};
}

// What was due is written, or will not be.
void Keeper::Forget() {
    isChanged = isRunning = false;
    textBefore.clear();
    textTime = {};
    textCost = {};
}

// --- Reading ---

std::string Keeper::Settings() {
    Finish();
    std::string text;
    readWholeFile(settingsFile.path, text, system);
    return text;
}

void Keeper::KeepSettingsBeside() {
    KeepBeside(settingsFile);
}

std::string Keeper::ReadDefinitions(ZqCalculator& calc) {
    if (definitionsFile.path.empty()) return "";
    Finish();
    definitionsStamp = FileStamp(definitionsFile.path, system);
    const DefinitionsRead read = readDefinitions(calc, definitionsFile.path, system);
    if (!read.opened || read.damaged) KeepBeside(definitionsFile);
    const bool leavesHistory = merge.leavesHistory;
    merge = {};
    merge.leavesHistory = leavesHistory;
    merge.Know(read.text, TextOf(calc), read.refused); // what was refused is in the copy
    if (read.unread > 0) return "Some of pelmo_functions.txt takes too long to read; it stays in the file";
    if (read.damaged)
        return "Not all of pelmo_functions.txt could be read: see pelmo_functions.txt.unreadable";
    return "";
}

void Keeper::TakeForeignDefinitions(ZqCalculator& calc) {
    if (definitionsFile.path.empty() || isBusy) return;
    Finish();
    const FileStamp stamp(definitionsFile.path, system);
    if (stamp.IsSameAs(definitionsStamp)) return;
    std::string theirs;
    if (!readWholeFile(definitionsFile.path, theirs, system)) return;
    definitionsStamp = stamp;
    if (merge.IsSettled(theirs)) return;
    const DefinitionsMerge::Foreign foreign = merge.TakeForeign(TextOf(calc), theirs);
    if (foreign.keys.empty()) return;
    takeDefinitions(calc, foreign.defined, foreign.deleted);
    merge.Took(foreign, TextOf(calc));
}

void Keeper::LeaveOut(const std::string& before, const ZqCalculator& calc) {
    merge.LeaveOut(before, definitionsText(calc));
}

std::string Keeper::TextOf(const ZqCalculator& calc) const {
    return definitionsText(calc, merge.LeftOut());
}

std::string Keeper::ReadTranscript() {
    Finish();
    std::string text;
    readWholeFile(transcriptFile.path, text, system);
    transcriptKept = text;
    return endOfTranscript(text);
}

// No reason is given when there is nothing to keep, or when there are ten copies already.
void Keeper::KeepBeside(File& file) {
    if (file.path.empty()) return;
    std::error_code reason;
    keepUnreadable(file.path, &reason, system);
    file.isOnlyCopy = static_cast<bool>(reason);
    if (file.isOnlyCopy) file.SetFailed(reason);
}

// --- Writing ---

// What a damaged file held is not overwritten before there is a copy of it.
bool Keeper::MayWrite(File& file) {
    if (file.isOnlyCopy) KeepBeside(file);
    return !file.path.empty() && !file.isOnlyCopy;
}

void Keeper::SetTranscript(const std::string& text) {
    Finish();
    if (transcriptKept && !transcriptFile.path.empty()) transcript = endOfTranscript(text);
}

// A file that is to be empty is removed.
bool Keeper::WriteTranscript(const std::string& text, std::error_code& reason) {
    const char* const path = transcriptFile.path.c_str();
    if (!text.empty()) return writeFileAtomically(path, text, &reason, system);
    if (system.Remove(path) == 0 || errno == ENOENT) return true;
    reason = {errno, std::generic_category()};
    return false;
}

// Starts to write the texts that are not empty, behind those of the call before.
void Keeper::Write(std::string settings, std::string definitions) {
    Finish();
    makeFolder(folder, system); // it may have been taken away
    if (!settings.empty() && !MayWrite(settingsFile)) settings.clear();
    if (!definitions.empty() && !MayWrite(definitionsFile)) definitions.clear();
    if (transcript == transcriptKept) transcript.reset();
    isBusy = true;
    // Signals are for whoever waits for them, not for this thread: it takes over the mask.
    sigset_t all, found;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &found);
    worker = std::thread([this, settings = std::move(settings), definitions = std::move(definitions)] {
        const auto note = [](File& file, bool isWritten, const std::error_code& reason) {
            if (!isWritten) return file.SetFailed(reason);
            file.failure.clear();
            file.isTold = false;
        };
        std::error_code reason;
        if (!settings.empty())
            note(settingsFile, writeFileAtomically(settingsFile.path, settings, &reason, system), reason);
        if (!definitions.empty())
            note(definitionsFile, merge.Write(definitionsFile.path, definitions, reason, system), reason);
        if (transcript) {
            const bool isWritten = WriteTranscript(*transcript, reason);
            if (isWritten) transcriptKept = std::move(transcript);
            note(transcriptFile, isWritten, reason);
        }
        transcript.reset();
        isBusy = false;
    });
    pthread_sigmask(SIG_SETMASK, &found, nullptr);
}

void Keeper::Finish() {
    if (worker.joinable()) worker.join();
}

void Keeper::SaveSettings(const std::string& text) {
    Write(text, "");
    Finish();
}

void Keeper::SaveDefinitions(const ZqCalculator& calc) {
    Forget();
    SaveBoth(calc, "");
    Finish();
}

void Keeper::SaveBoth(const ZqCalculator& calc, const std::string& settings) {
    if (folder.empty()) return;
    Write(settings, isRunning ? std::exchange(textBefore, "") : TextOf(calc));
    if (!isRunning) Forget();
}

void Keeper::EntryWillRun(const ZqCalculator& calc, bool isReplaying) {
    isRunning = true;
    if (!isChanged || definitionsFile.path.empty()) return;
    const System::Time now = system.Now();
    if (isReplaying && now - textTime < 20 * textCost) return;
    textBefore = TextOf(calc);
    textTime = system.Now();
    textCost = textTime - now;
}

bool Keeper::NoteChange() {
    if (isChanged) return false;
    changeTime = system.Now();
    return isChanged = true;
}

// A timer may fire a little early.
bool Keeper::IsDue(double delay) const {
    const std::chrono::duration<double> age = system.Now() - changeTime;
    return isChanged && age.count() >= 0.9 * delay && !(isRunning && textBefore.empty());
}

// --- What could not be written ---

void Keeper::File::SetFailed(std::error_code reason) {
    isTold = isTold && failure == reason;
    failure = reason;
}

std::string Keeper::TakeNews() {
    Finish();
    std::map<std::string, std::string> names; // by reasons
    for (File* const file : {&definitionsFile, &settingsFile, &transcriptFile}) {
        if (!file->failure || std::exchange(file->isTold, true)) continue;
        std::string& text = names[file->failure.message()];
        text += (text.empty() ? "" : ", ") + file->path.substr(folder.size() + 1);
    }
    std::string news;
    for (const auto& [reason, text] : names) {
        news += news.empty() ? "Not saved: " : ", ";
        news.append(text).append(" (").append(reason).append(")");
    }
    return news;
}

std::string Keeper::TakeFailures() {
    Finish();
    definitionsFile.isTold = settingsFile.isTold = transcriptFile.isTold = false;
    std::string all = TakeNews();
    definitionsFile.failure = settingsFile.failure = transcriptFile.failure = {};
    return all;
}
