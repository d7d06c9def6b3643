// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace {

// What becomes of the standard descriptors of a program that is started.
class Descriptors {
public:
    Descriptors() { isGood = posix_spawn_file_actions_init(&actions) == 0; }
    ~Descriptors() { posix_spawn_file_actions_destroy(&actions); }
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    void LeadNowhere(int number) {
        const int flags = number == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        isGood = isGood && posix_spawn_file_actions_addopen(&actions, number, "/dev/null", flags, 0) == 0;
    }
    void LeadTo(int descriptor, int number) {
        isGood = isGood && posix_spawn_file_actions_adddup2(&actions, descriptor, number) == 0;
    }

    // Nothing when there was no memory for one of them.
    const posix_spawn_file_actions_t* Actions() const { return isGood ? &actions : nullptr; }

private:
    posix_spawn_file_actions_t actions = {};
    bool isGood = false;
};

} // namespace

pid_t startProgram(std::vector<std::string> arguments, int output, System& system) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    Descriptors descriptors;
    descriptors.LeadNowhere(STDIN_FILENO);
    if (output >= 0)
        descriptors.LeadTo(output, STDOUT_FILENO);
    else
        descriptors.LeadNowhere(STDOUT_FILENO);
    descriptors.LeadNowhere(STDERR_FILENO);
    pid_t process = -1;
    const auto* const actions = descriptors.Actions();
    return actions && system.Start(process, *actions, argv.data(), environ) == 0 ? process : -1;
}

int waitForProgram(pid_t process, System& system) {
    int status = 0;
    while (system.WaitForEnd(process, status) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
