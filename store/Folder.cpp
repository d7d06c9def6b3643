// SPDX-License-Identifier: MIT
#include "Folder.h"

#include <algorithm>
#include <pwd.h>

static std::string absolute(const char* path) {
    return path && path[0] == '/' ? path : "";
}

static std::string homeFolder() {
    std::string home = absolute(getenv("HOME"));
    if (!home.empty()) return home;
    const passwd* const person =
        getpwuid(getuid()); // NOLINT(concurrency-mt-unsafe): before there is a thread
    return person ? absolute(person->pw_dir) : "";
}

// With a '/' at its end, or nothing.
static std::string dataFolder() {
#ifndef __APPLE__
    const std::string data = absolute(getenv("XDG_DATA_HOME"));
    if (!data.empty()) return data + "/";
    const std::string below = "/.local/share/";
#else
    const std::string below = "/Library/Application Support/";
#endif
    const std::string home = homeFolder();
    return home.empty() ? "" : home + below;
}

std::string ownFolder() {
    return dataFolder() + "Tallyquill";
}

void makeFolder(const std::string& path, System& system) {
    for (size_t end = 0; end < path.size();) {
        end = std::min(path.find('/', end + 1), path.size());
        system.MakeFolder(path.substr(0, end).c_str(), 0700); // fails for those that are there
    }
}
