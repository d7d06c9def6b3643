// SPDX-License-Identifier: MIT
#include "Ending.h"

#include "Descriptor.h"
#include "ShownText.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

void complain(const std::string& text, System& system) {
    writeAll(STDERR_FILENO, shownText("tallyquill: " + text + "\n"), system);
}

int outputLost(int error, System& system) {
    if (error != EPIPE) complain(std::string("standard output: ") + std::strerror(error), system);
    return FILE_LOST;
}

int inputLost(const std::string& name, System& system) {
    complain(name + ": " + std::strerror(errno), system);
    return FILE_LOST;
}
