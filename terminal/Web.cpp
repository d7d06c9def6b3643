// SPDX-License-Identifier: MIT
#include "Web.h"

#include "Descriptor.h"

#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace {

constexpr std::size_t kPageLimit = std::size_t{4} << 20;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
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
    pid_t process = -1;
    const int error = posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

std::string readPage(int descriptor) {
    std::string page;
    char block[4096];
    for (long count = 1; count > 0 && page.size() < kPageLimit;) {
        count = readSome(descriptor, block, sizeof block);
        if (count > 0) page.append(block, static_cast<std::size_t>(count));
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
    int status = 1;
    if (process >= 0) waitpid(process, &status, 0);
    return status == 0 ? page : "";
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
#ifdef __APPLE__
    return start({"open", page}, -1) >= 0;
#else
    return start({"xdg-open", page}, -1) >= 0;
#endif
}
