// SPDX-License-Identifier: MIT
#include "Folder.h"

#include <algorithm>
#include <pwd.h>

namespace {

std::string absolute(const char* path) {
    return path && path[0] == '/' ? path : "";
}

std::string homeFolder() {
    std::string home = absolute(getenv("HOME"));
    if (!home.empty()) return home;
    const passwd* const person =
        getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): before there is a thread
    return person ? absolute(person->pw_dir) : "";
}

// The folder that the variable names or the one below the home folder, with a '/' at its end; or nothing.
std::string chosenFolder(const char* variable, const std::string& below) {
    const std::string chosen = variable ? absolute(getenv(variable)) : "";
    if (!chosen.empty()) return chosen + "/";
    const std::string home = homeFolder();
    return home.empty() ? "" : home + below;
}

} // namespace

std::string ownFolder() {
#ifndef __APPLE__
    return chosenFolder("XDG_DATA_HOME", "/.local/share/") + "Tallyquill";
#else
    return chosenFolder(nullptr, "/Library/Application Support/") + "Tallyquill";
#endif
}

std::string settingsPath(const std::string& folder) {
    return folder + "/pelmo_settings.plist";
}

std::string definitionsPath(const std::string& folder) {
    return folder + "/pelmo_functions.txt";
}

std::string transcriptPath(const std::string& folder) {
    return folder + "/transcript.txt";
}

std::string configFolder() {
    return chosenFolder("XDG_CONFIG_HOME", "/.config/") + "tallyquill";
}

std::string historyPath() {
    return chosenFolder("XDG_STATE_HOME", "/.local/state/") + "tallyquill/history";
}

void makeFolder(const std::string& path, System& system) {
    for (size_t end = 0; end < path.size();) {
        end = std::min(path.find('/', end + 1), path.size());
        system.MakeFolder(path.substr(0, end).c_str(), 0700); // fails for those that are there
    }
}
