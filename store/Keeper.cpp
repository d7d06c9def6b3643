// SPDX-License-Identifier: MIT
#include "Keeper.h"

#include "DefinitionsFile.h"
#include "Folder.h"
#include "TranscriptFile.h"

#include <cerrno>
#include <csignal>
#include <map>
#include <new>
#include <utility>

namespace {

// The name of a file without its folder.
std::string nameIn(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

} // namespace

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

std::string Keeper::Settings(std::error_code* reason) {
    Finish();
    std::string text;
    readWholeFile(settingsFile.path, text, system, reason);
    return text;
}

std::string Keeper::KeepSettingsBeside() {
    const std::string copy = KeepBeside(settingsFile);
    return copy.empty() ? "" : "pelmo_settings.plist could not be read: see " + nameIn(copy);
}

std::string Keeper::ReadDefinitions(ZqCalculator& calc) {
    if (definitionsFile.path.empty()) return "";
    Finish();
    definitionsStamp = FileStamp(definitionsFile.path, system);
    const DefinitionsRead read = readDefinitions(calc, definitionsFile.path, system);
    if (!read.opened) definitionsStamp = {}; // the next reading may do better
    const std::string copy = read.opened && !read.damaged ? "" : KeepBeside(definitionsFile);
    const bool leavesHistory = merge.leavesHistory;
    merge = {};
    merge.leavesHistory = leavesHistory;
    merge.Know(read.text, TextOf(calc), read.refused); // what was refused is in the copy
    if (read.unread > 0) return "Some of pelmo_functions.txt takes too long to read; it stays in the file";
    const std::string where = copy.empty() ? "" : ": see " + nameIn(copy);
    if (read.damaged) return "Not all of pelmo_functions.txt could be read" + where;
    return copy.empty() ? "" : "pelmo_functions.txt could not be read" + where;
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
    std::error_code reason;
    readWholeFile(transcriptFile.path, text, system, &reason);
    if (reason)
        transcriptFile.SetFailed(reason);
    else
        transcriptKept = text;
    return endOfTranscript(text);
}

// No reason is given when there is nothing to keep, or when there are ten copies already.
// Returns the path of the copy, or nothing.
std::string Keeper::KeepBeside(File& file) {
    if (file.path.empty()) return "";
    std::error_code reason;
    std::string copy = keepUnreadable(file.path, &reason, system);
    file.isOnlyCopy = static_cast<bool>(reason);
    if (file.isOnlyCopy) file.SetFailed(reason);
    return copy;
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
    settingsDue = std::move(settings);
    definitionsDue = std::move(definitions);
    isBusy = true;
    // Signals are for whoever waits for them, not for this thread: it takes over the mask.
    sigset_t all, found;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &found);
    try {
        worker = system.StartThread([this] { WriteTexts(); });
    } catch (const std::exception&) {
        WriteTexts(); // there can be no other thread: the person waits
    }
    pthread_sigmask(SIG_SETMASK, &found, nullptr);
}

void Keeper::WriteTexts() {
    const auto write = [](File& file, auto action) {
        std::error_code reason = std::make_error_code(std::errc::not_enough_memory);
        bool isWritten = false;
        try {
            isWritten = action(reason);
        } catch (const std::bad_alloc&) { // a thread must not end with it
        }
        if (!isWritten) return file.SetFailed(reason);
        file.failure.clear();
    };
    if (!settingsDue.empty())
        write(settingsFile, [this](std::error_code& reason) {
            return writeFileAtomically(settingsFile.path, settingsDue, &reason, system);
        });
    if (!definitionsDue.empty())
        write(definitionsFile, [this](std::error_code& reason) {
            return merge.Write(definitionsFile.path, definitionsDue, reason, system);
        });
    if (transcript)
        write(transcriptFile, [this](std::error_code& reason) {
            if (!WriteTranscript(*transcript, reason)) return false;
            transcriptKept = std::move(transcript);
            return true;
        });
    transcript.reset();
    isBusy = false;
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

bool Keeper::IsAnyUnsaved() {
    Finish();
    return settingsFile.failure || definitionsFile.failure || transcriptFile.failure;
}

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
        text += (text.empty() ? "" : ", ") + nameIn(file->path);
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
