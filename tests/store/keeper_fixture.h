// SPDX-License-Identifier: MIT
//
// A keeper with a folder of its own, a clock that stands, and calls that fail when they are told to.
#pragma once

#include "Keeper.h"

#include "definitions_file_fixture.h"

#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

// A clock that is set by hand, and calls that fail when they are told to.
class TestSystem : public System {
public:
    Time Now() override { return now; }
    int MakeTemporary(char* name) override { return Fails(writingError) ? -1 : System::MakeTemporary(name); }
    int Rename(const char* from, const char* to) override {
        return Fails(renamingError) ? -1 : System::Rename(from, to);
    }
    int Remove(const char* path) override { return Fails(removingError) ? -1 : System::Remove(path); }
    time_t WallTime() override { return wallTime; }
    int Open(const char* path, int flags, mode_t mode) override {
        const std::string name = path;
        readings += flags == (O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) &&
                    name.find("functions.txt") + 13 == name.size();
        return System::Open(path, flags, mode);
    }
    int Status(const char* path, struct stat& info) override {
        const int result = System::Status(path, info);
        if (isInOneTick) {
#ifdef __APPLE__
            info.st_mtimespec = info.st_ctimespec = {wallTime, 0};
#else
            info.st_mtim = info.st_ctim = {wallTime, 0};
#endif
        }
        return result;
    }
    void Wait(double seconds) {
        now += std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
    }

    int writingError = 0;
    int renamingError = 0;
    int removingError = 0;
    int readings = 0; // of the definitions file
    time_t wallTime = time(nullptr);
    bool isInOneTick = false; // all files were changed just now

private:
    static bool Fails(int error) {
        if (error != 0) errno = error;
        return error != 0;
    }

    Time now{};
};

class Kept : public DefinitionsFile {
protected:
    Kept() { keeper.Open(folder.File("Tallyquill")); }

    std::string File(const char* name) const { return folder.File("Tallyquill/" + std::string(name)); }
    std::string SettingsFile() const { return contentOf(File("pelmo_settings.plist")); }
    std::string Definitions() const { return contentOf(File("pelmo_functions.txt")); }
    bool Holds(const std::string& line) const { return Definitions().find(line) != std::string::npos; }
    static std::string Reason(int error) { return std::string(" (") + strerror(error) + ")"; }

    // An entry, as a front end carries it out.
    void EnterAndNote(const char* line) {
        keeper.EntryWillRun(*calc, false);
        Enter(line);
        keeper.EntryDidRun();
        keeper.NoteChange();
    }

    void SaveBoth() {
        keeper.SaveBoth(*calc, "settings");
        keeper.Finish();
    }

    TestSystem system;
    Keeper keeper{system};
};
