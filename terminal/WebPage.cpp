// SPDX-License-Identifier: MIT
#include "WebPage.h"

#include "ChildProcess.h"

#include <cstdlib>
#include <string>

bool openPage(System& system) {
#ifdef __APPLE__
    const std::string browser = "open";
#else
    const std::string browser = "xdg-open";
#endif
    const char* const page = std::getenv("TALLYQUILL_WEB_URL");
    if (!page || *page == '\0' || *page == '-') return false;
    // The shell in between ends at once and leaves the browser to the system. It fails without one.
    const pid_t process = startProgram(
        {"/bin/sh", "-c", "command -v \"$1\" >/dev/null || exit 1; \"$@\" &", "sh", browser, page}, -1,
        system);
    return process >= 0 && waitForProgram(process, system) == 0;
}
