// SPDX-License-Identifier: MIT
#include "Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// Whether the call that just failed is worth another try; waits until the descriptor is ready for it.
bool shallRetry(int descriptor, short events) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    pollfd waiting = {descriptor, events, 0};
    return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

} // namespace

long readSome(int descriptor, char* to, size_t size) {
    for (;;) {
        const ssize_t count = read(descriptor, to, size);
        if (count >= 0 || !shallRetry(descriptor, POLLIN)) return count;
    }
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<size_t>(count));
        } else if (!shallRetry(descriptor, POLLOUT)) {
            return false;
        }
    }
    return true;
}

int setAnswersAside(bool trace) {
    // Above the standard descriptors: with standard input closed a plain dup() would become descriptor 0.
    const int answers = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (answers < 0) return -1;
    if (trace && dup2(STDERR_FILENO, STDOUT_FILENO) == STDOUT_FILENO) return answers;
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const bool turned = nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) == STDOUT_FILENO;
    if (nowhere > STDERR_FILENO) close(nowhere);
    return turned ? answers : -1;
}
