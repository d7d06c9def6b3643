// SPDX-License-Identifier: MIT
#include "Ending.h"

#include "Descriptor.h"
#include "ShownText.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

void complain(const std::string& text) {
    writeAll(STDERR_FILENO, shownText("tallyquill: " + text + "\n"));
}

int outputLost(int error) {
    if (error != EPIPE) complain(std::string("standard output: ") + std::strerror(error));
    return FILE_LOST;
}

int inputLost(const std::string& name) {
    complain(name + ": " + std::strerror(errno));
    return FILE_LOST;
}
