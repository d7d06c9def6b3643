// SPDX-License-Identifier: MIT
#include "Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// Whether the call that just failed is worth another try; waits until the descriptor is ready for it.
bool shallRetry(System& system, int descriptor, short events) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd waiting = {descriptor, events, 0};
    return system.Poll(waiting, -1) >= 0 || errno == EINTR;
}

} // namespace

long readSome(int descriptor, char* to, size_t size, System& system) {
    for (;;) {
        const ssize_t count = system.Read(descriptor, to, size);
        if (count >= 0 || !shallRetry(system, descriptor, POLLIN)) return count;
    }
}

bool writeAll(int descriptor, std::string_view text, System& system) {
    while (!text.empty()) {
        const ssize_t count = system.Write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<size_t>(count));
        } else if (!shallRetry(system, descriptor, POLLOUT)) {
            return false;
        }
    }
    return true;
}

int setAnswersAside(bool trace, System& system) {
    // Above the standard descriptors: with standard input closed a plain dup() would become descriptor 0.
    const int answers = system.Duplicate(STDOUT_FILENO, 3);
    if (answers < 0) return -1;
    if (trace && system.DuplicateTo(STDERR_FILENO, STDOUT_FILENO) == STDOUT_FILENO) return answers;
    const int nowhere = system.Open("/dev/null", O_WRONLY | O_CLOEXEC);
    const bool turned = nowhere >= 0 && system.DuplicateTo(nowhere, STDOUT_FILENO) == STDOUT_FILENO;
    if (nowhere > STDERR_FILENO) system.Close(nowhere);
    return turned ? answers : -1;
}
