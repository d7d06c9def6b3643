// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace {

// What becomes of the standard descriptors of a program that is started.
class Descriptors {
public:
    Descriptors() : error(posix_spawn_file_actions_init(&actions)) {}
    ~Descriptors() { posix_spawn_file_actions_destroy(&actions); }
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    void LeadNowhere(int number, int flags) {
        error |= posix_spawn_file_actions_addopen(&actions, number, "/dev/null", flags, 0);
    }
    void LeadTo(int descriptor, int number) {
        error |= posix_spawn_file_actions_adddup2(&actions, descriptor, number);
    }

    const posix_spawn_file_actions_t& Actions() const { return actions; }

    // False when there was no memory for one of them.
    bool AreGood() const { return error == 0; }

private:
    posix_spawn_file_actions_t actions = {};
    int error;
};

} // namespace

pid_t startProgram(std::vector<std::string> arguments, int output, System& system) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    Descriptors descriptors;
    descriptors.LeadNowhere(STDIN_FILENO, O_RDONLY);
    if (output >= 0)
        descriptors.LeadTo(output, STDOUT_FILENO);
    else
        descriptors.LeadNowhere(STDOUT_FILENO, O_WRONLY);
    descriptors.LeadNowhere(STDERR_FILENO, O_WRONLY);
    pid_t process = -1;
    const bool isStarted =
        descriptors.AreGood() && system.Start(process, descriptors.Actions(), argv.data(), environ) == 0;
    return isStarted ? process : -1;
}

int waitForProgram(pid_t process, System& system) {
    int status = 0;
    while (system.WaitForEnd(process, status) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
