// SPDX-License-Identifier: MIT
//
// What a front end keeps from one run to the next: the settings, the definitions and the end of the window's
// transcript, in files of one folder. It knows what is due to be written, writes it while the person goes on
// (flushing a file takes milliseconds, at times tenths of a second), and what could not be written, and why.
#pragma once

#include "DefinitionsMerge.h"
#include "FileKeeping.h"
#include "System.h"

#include <atomic>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

class ZqCalculator;

// One thread calls it, the one of the calculator. Nothing is written before Open and after Close.
class Keeper {
public:
    explicit Keeper(System& calls = System::Real()) : system(calls) {}
    ~Keeper() { Finish(); }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

    // The files are in this folder now, which is made when it is missing, then and before each write. What
    // killed programs left of the files is removed.
    void Open(const std::string& path);

    // Returns when all is written. There are no files any more.
    void Close();

    // --- Reading ---

    // The bytes of the settings file, or nothing when it cannot be read. `reason`, when given, receives why;
    // nothing when there is none.
    std::string Settings(std::error_code* reason = nullptr);

    // It could be read but not understood, or not be read: it is kept beside (FileKeeping.h). Where that
    // fails, it is tried again before the file is written, which waits for it. Nothing happens when there is
    // none. Returns what is to be said to the person, or nothing.
    std::string KeepSettingsBeside();

    // The settings could not be written the last time, or could not be read by whoever wanted to write them.
    void NoteUnsavedSettings(std::error_code reason) { settingsFile.SetFailed(reason); }
    bool AreSettingsUnsaved() const { return static_cast<bool>(settingsFile.failure); }

    // Reads the definitions file into a calculator (DefinitionsFile.h). A damaged one is kept beside in the
    // same way. Returns what is to be said to the person, or nothing.
    std::string ReadDefinitions(ZqCalculator& calc);

    // Takes what other programs have defined, changed or deleted in that file since then into the
    // calculator, except names that were changed here, too. Call it before an entry. Does nothing while
    // something is being written, and reads the file only when it has changed since then.
    void TakeForeignDefinitions(ZqCalculator& calc);

    // The history in that file is other programs', and stays as it is.
    void LeaveHistory() { merge.leavesHistory = true; }

    // What the calculator has now besides the definitions in `before`, a text as definitionsText makes it, is
    // kept elsewhere and is not written, unless the file had it or it changes. Call it behind
    // ReadDefinitions.
    void LeaveOut(const std::string& before, const ZqCalculator& calc);

    // The end of the transcript (TranscriptFile.h), or nothing when there is none. One that cannot be read
    // stays as it is.
    std::string ReadTranscript();

    // --- Writing ---

    // The end of this transcript is written with the next of the files; an empty one removes the file.
    // Nothing before ReadTranscript.
    void SetTranscript(const std::string& text);

    // At once: return when it is written, or has failed. An empty text of settings is not written.
    void SaveSettings(const std::string& text);
    void SaveDefinitions(const ZqCalculator& calc);

    // Starts to write both. While an entry runs the definitions are those before it, if they are known.
    void SaveBoth(const ZqCalculator& calc, const std::string& settings);

    // Before and after an entry, which may change what is kept. `isReplaying`: one of many, so that no more
    // than a twentieth of the time goes into keeping what there was before it.
    void EntryWillRun(const ZqCalculator& calc, bool isReplaying);
    void EntryDidRun() { isRunning = false; }
    bool IsEntryRunning() const { return isRunning; }

    // Something has changed. True when all was written before: SaveBoth is due in DELAY seconds.
    bool NoteChange();
    static constexpr double DELAY = 1;

    // Whether it is due now. Of a running entry it is so once. Among entries that come without a rest it may
    // wait for longer, so that not as much is written again and again; always less than two seconds.
    bool IsDue(double delay = DELAY) const;
    static constexpr double DELAY_WITHOUT_REST = 1.75;

    // --- What could not be written ---

    bool IsBusy() const { return isBusy; } // something is still being written
    void Finish();                         // returns when nothing is
    bool IsAnyUnsaved();                   // the last write of a file failed; waits for what is being written

    // The failures that nobody was told of, as one line without an end, "Not saved: NAME, NAME (reason), NAME
    // (other reason)" in UTF-8, or nothing. They count as told then, until the file has been written or fails
    // for another reason. Waits for what is being written.
    std::string TakeNews();

    // The same for all files whose last write failed, which are forgotten then.
    std::string TakeFailures();

private:
    struct File {
        std::string path;        // empty: there is none
        bool isOnlyCopy = false; // it is damaged and could not be kept beside
        std::error_code failure; // why it could not be written, the last time; the worker's until Finish
        bool isTold = false;     // of that

        void SetFailed(std::error_code reason);
    };

    std::string TextOf(const ZqCalculator& calc) const;
    std::string KeepBeside(File& file);
    bool MayWrite(File& file);
    void Write(std::string settings, std::string definitions);
    void WriteTexts();
    bool WriteTranscript(const std::string& text, std::error_code& reason);
    void Forget();

    System& system;
    std::string folder;
    File settingsFile;
    File definitionsFile;
    File transcriptFile;
    std::optional<std::string> transcript; // to be written
    std::optional<std::string>
        transcriptKept;     // what the file holds, once it was read; the worker's until Finish
    DefinitionsMerge merge; // another copy of the program may have written the file meanwhile

    // What entries have changed since the files were written.
    bool isChanged = false;
    bool isRunning = false;
    System::Time changeTime;
    FileStamp definitionsStamp; // of the file when it was last taken in
    std::string textBefore;     // of the definitions before the running entry
    System::Time textTime;
    System::Time::duration textCost{};

    std::thread worker;                      // writes
    std::string settingsDue, definitionsDue; // what it writes, unless empty; its own until Finish
    std::atomic<bool> isBusy{false};
};
