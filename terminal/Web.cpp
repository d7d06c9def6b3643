// SPDX-License-Identifier: MIT
#include "Web.h"

#include "Interrupt.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace {

#ifdef __APPLE__
constexpr const char* kBrowser = "open";
#else
constexpr const char* kBrowser = "xdg-open";
#endif

constexpr std::size_t kPageLimit = std::size_t{4} << 20;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// Programs begin with the signals as usual: this one ignores SIGPIPE.
void useUsualSignals(posix_spawnattr_t& attributes) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
}

// Starts a program that is looked for in PATH, its standard output on `output`, without a shell. Returns its
// process, -1 when there is no such program.
pid_t start(std::vector<std::string> arguments, int output) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output >= 0)
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    useUsualSignals(attributes);
    pid_t process = -1;
    const int error = posix_spawnp(&process, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

// Waits for the end of a process; its exit status, -1 when a signal ended it.
int waitFor(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Reads up to the end, the limit or Ctrl-C.
std::string readPage(int descriptor) {
    std::string page;
    char block[4096];
    while (page.size() < kPageLimit && !isInterrupted()) {
        // The wait is short: a signal between the question and the wait would otherwise not be noticed.
        pollfd waiting = {descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, 50);
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        const ssize_t count = read(descriptor, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        page.append(block, static_cast<std::size_t>(count));
    }
    return page;
}

std::string fetch(const std::string& address) {
    int ends[2];
    if (pipe(ends) != 0) return "";
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    const pid_t process = start({"curl", "--silent", "--fail", "--globoff", "--max-time", "60", "--proto",
                                 "=http,https", "--", address},
                                ends[1]);
    close(ends[1]);
    std::string page = process < 0 ? "" : readPage(ends[0]);
    close(ends[0]);
    if (process < 0) return "";
    if (isInterrupted()) kill(process, SIGTERM);
    const bool isWhole = waitFor(process) == 0;
    return isWhole && !isInterrupted() ? page : "";
}

bool isPlain(char c) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return isLetter || (c >= '0' && c <= '9') || std::string_view("-._~+").find(c) != std::string_view::npos;
}

} // namespace

std::string queryAddress(std::string_view service, std::string_view query) {
    while (!service.empty() && service.back() == '/') service.remove_suffix(1);
    std::string address(service);
    address += "/input/?i=";
    for (const char c : query) {
        if (isPlain(c)) {
            address += c;
            continue;
        }
        const auto code = static_cast<unsigned char>(c);
        address += '%';
        address += "0123456789ABCDEF"[code >> 4U];
        address += "0123456789ABCDEF"[code & 0xFU];
    }
    return address;
}

std::string answerInPage(std::string_view page) {
    const std::size_t pod = page.find("pod_0200");
    if (pod == std::string_view::npos) return "";
    const std::size_t title = page.find("title", pod);
    if (title == std::string_view::npos) return "";
    const std::size_t open = page.find('"', title);
    if (open == std::string_view::npos) return "";
    const std::size_t close = page.find('"', open + 1);
    return std::string(page.substr(open + 1, close == std::string_view::npos ? close : close - open - 1));
}

std::string askService(std::string_view query) {
    const std::string service = variable("TALLYQUILL_QUERY_URL");
    return service.empty() ? "" : answerInPage(fetch(queryAddress(service, query)));
}

bool openPage() {
    const std::string page = variable("TALLYQUILL_WEB_URL");
    if (page.empty() || page.front() == '-') return false;
    // The shell in between ends at once and leaves the browser to the system. It fails without one.
    const pid_t process = start(
        {"/bin/sh", "-c", "command -v \"$1\" >/dev/null || exit 1; \"$@\" &", "sh", kBrowser, page}, -1);
    return process >= 0 && waitFor(process) == 0;
}
