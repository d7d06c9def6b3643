// SPDX-License-Identifier: MIT
#include "program.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#include <utmp.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;

constexpr int NO_DESCRIPTOR = -1;

struct Pipe {
    int readEnd = NO_DESCRIPTOR;
    int writeEnd = NO_DESCRIPTOR;

    Pipe() {
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        readEnd = ends[0];
        writeEnd = ends[1];
        fcntl(readEnd, F_SETFD, FD_CLOEXEC);
        fcntl(writeEnd, F_SETFD, FD_CLOEXEC);
    }
    ~Pipe() {
        Shut(readEnd);
        Shut(writeEnd);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    static void Shut(int& descriptor) {
        if (descriptor != NO_DESCRIPTOR) close(descriptor);
        descriptor = NO_DESCRIPTOR;
    }
};

void setNonBlocking(int descriptor) {
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

// In the child: becomes the program at `path`, with all signals as usual but one. Does not return.
void become(const char* path, std::vector<std::string> arguments, int ignoredSignal) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE, SIGTSTP})
        std::signal(signal, SIG_DFL);
    if (ignoredSignal != 0) std::signal(ignoredSignal, SIG_IGN);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    execv(path, argv.data());
    _exit(127);
}

void becomeProgram(const std::string& program, std::vector<std::string> arguments, int ignoredSignal) {
    arguments.insert(arguments.begin(), "tallyquill");
    become(program.c_str(), std::move(arguments), ignoredSignal);
}

int openForWriting(const std::string& path) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

// In the child: puts the pipes' ends where the program expects them.
void arrangeDescriptors(const Invocation& invocation, const Pipe& in, const Pipe& out, const Pipe& err) {
    dup2(in.readEnd, STDIN_FILENO);
    dup2(invocation.outputFile.empty() ? out.writeEnd : openForWriting(invocation.outputFile), STDOUT_FILENO);
    dup2(invocation.joinErrors ? STDOUT_FILENO : err.writeEnd, STDERR_FILENO);
    if (invocation.closeInput) close(STDIN_FILENO);
    if (invocation.closeOutput) close(STDOUT_FILENO);
    if (invocation.closeErrors) close(STDERR_FILENO);
}

// Feeds the program's input from the parent's side.
class Feeder {
public:
    Feeder(const Invocation& invocation, int& writeEnd)
        : chunk(invocation.input), times(invocation.input.empty() ? 0 : invocation.inputTimes),
          descriptor(writeEnd) {
        setNonBlocking(descriptor);
        if (times == 0) Pipe::Shut(descriptor);
    }

    void Feed() {
        const ssize_t count = write(descriptor, chunk.data() + offset, chunk.size() - offset);
        if (count < 0) {
            if (errno != EAGAIN && errno != EINTR) Pipe::Shut(descriptor); // the program has ended
            return;
        }
        offset += static_cast<size_t>(count);
        if (offset < chunk.size()) return;
        offset = 0;
        if (--times == 0) Pipe::Shut(descriptor);
    }

private:
    const std::string& chunk;
    size_t times;
    int& descriptor;
    size_t offset = 0;
};

// Takes what is there; closes the descriptor at its end.
void collect(int& descriptor, std::string& to) {
    char block[65536];
    const ssize_t count = read(descriptor, block, sizeof block);
    if (count > 0) {
        to.append(block, static_cast<size_t>(count));
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        Pipe::Shut(descriptor);
    }
}

// Feeds and collects until the program has closed its outputs or a minute has passed.
bool converse(const Invocation& invocation, Pipe& in, Pipe& out, Pipe& err, Result& result) {
    Feeder feeder(invocation, in.writeEnd);
    const auto deadline = Clock::now() + std::chrono::minutes(1);
    while (out.readEnd != NO_DESCRIPTOR || err.readEnd != NO_DESCRIPTOR) {
        if (Clock::now() > deadline) return false;
        pollfd waiting[3] = {{in.writeEnd, POLLOUT, 0}, {out.readEnd, POLLIN, 0}, {err.readEnd, POLLIN, 0}};
        poll(waiting, 3, 1000); // negative descriptors are passed over
        if (waiting[0].revents != 0) feeder.Feed();
        if (waiting[1].revents != 0) collect(out.readEnd, result.out);
        if (waiting[2].revents != 0) collect(err.readEnd, result.err);
    }
    return true;
}

int exitStatus(int waited) {
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : -1;
}

} // namespace

void cleanEnvironment(const std::vector<std::string>& changes) {
    for (const char* const name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) unsetenv(name);
    setenv("HOME", "/nonexistent", 1);
    for (const std::string& change : changes) {
        const size_t equals = change.find('=');
        setenv(change.substr(0, equals).c_str(), change.substr(equals + 1).c_str(), 1);
    }
}

Result runProgram(const Invocation& invocation) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe in;
    Pipe out;
    Pipe err;
    if (invocation.abandonOutput) Pipe::Shut(out.readEnd);
    const pid_t child = fork();
    if (child == 0) {
        arrangeDescriptors(invocation, in, out, err);
        cleanEnvironment(invocation.environment);
        becomeProgram(invocation.program, invocation.arguments, invocation.ignoredSignal);
    }
    Pipe::Shut(in.readEnd);
    Pipe::Shut(out.writeEnd);
    Pipe::Shut(err.writeEnd);
    Result result;
    if (!converse(invocation, in, out, err, result)) kill(child, SIGKILL);
    int waited = 0;
    rusage usage = {};
    wait4(child, &waited, 0, &usage);
    result.status = exitStatus(waited);
    result.peakMemory = usage.ru_maxrss;
    return result;
}

void expectRun(const Result& run, int status, const std::string& out, const std::string& err) {
    EXPECT_EQ(run.status, status) << run.err;
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, err);
}

Result evaluate(const std::vector<std::string>& arguments) {
    Invocation invocation;
    invocation.arguments = arguments;
    return runProgram(invocation);
}

Result pipeThrough(const std::string& input) {
    Invocation invocation;
    invocation.input = input;
    return runProgram(invocation);
}

TerminalSetup withEcho() {
    TerminalSetup setup;
    setup.echo = true;
    return setup;
}

Terminal::Terminal(const std::vector<std::string>& arguments, const TerminalSetup& setup) {
    home = (std::filesystem::temp_directory_path() / "tallyquill-home-XXXXXX").string();
    if (mkdtemp(home.data()) == nullptr) std::abort();
    int slave = NO_DESCRIPTOR;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) std::abort();
    fcntl(master, F_SETFD, FD_CLOEXEC);
    termios modes = {};
    tcgetattr(slave, &modes);
    if (!setup.echo) modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(slave, TCSANOW, &modes);
    child = fork();
    if (child == 0) {
        login_tty(slave);
        setenv("TERM", "dumb", 1); // without the editor, whose screens tests/terminal/screen compares
        if (!setup.outputFile.empty()) dup2(openForWriting(setup.outputFile), STDOUT_FILENO);
        if (!setup.inputFile.empty()) dup2(open(setup.inputFile.c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        if (setup.nonBlocking) setNonBlocking(STDIN_FILENO);
        std::vector<std::string> environment = {"HOME=" + home}; // the prompt keeps files
        environment.insert(environment.end(), setup.environment.begin(), setup.environment.end());
        cleanEnvironment(environment);
        if (!setup.shellScript.empty())
            become("/bin/sh", {"sh", "-mc", setup.shellScript, TALLYQUILL_PROGRAM}, setup.ignoredSignal);
        becomeProgram(TALLYQUILL_PROGRAM, arguments, setup.ignoredSignal);
    }
    close(slave);
}

Terminal::~Terminal() {
    if (child > 0) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    close(master);
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
}

void Terminal::Type(const std::string& keys) {
    EXPECT_EQ(write(master, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

std::string Terminal::ReadUntil(const std::string& end, int patience) {
    std::string shown;
    const auto deadline = Clock::now() + std::chrono::milliseconds(patience);
    const auto complete = [&] {
        return shown.size() >= end.size() && shown.compare(shown.size() - end.size(), end.size(), end) == 0;
    };
    while (!complete() && Clock::now() < deadline) {
        pollfd waiting = {master, POLLIN, 0};
        if (poll(&waiting, 1, 20) <= 0) continue;
        char block[4096];
        const ssize_t count = read(master, block, sizeof block);
        if (count <= 0) break; // the program has left the terminal
        shown.append(block, static_cast<size_t>(count));
    }
    return shown;
}

std::string Terminal::InterruptUntil(const std::string& end) {
    std::string shown;
    for (int i = 0; i < 200 && shown.find(end) == std::string::npos; ++i) {
        Type("\x03");
        shown += ReadUntil(end, 50);
    }
    return shown;
}

void Terminal::Signal(int number) {
    kill(child, number);
}

void Terminal::StopAndContinue() {
    kill(child, SIGSTOP);
    int waited = 0;
    EXPECT_EQ(waitpid(child, &waited, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(waited));
    kill(child, SIGCONT);
}

int Terminal::Wait() {
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    int waited = 0;
    while (waitpid(child, &waited, WNOHANG) == 0) {
        if (Clock::now() > deadline) return -1; // the destructor ends it
        usleep(5000);
    }
    child = -1;
    return exitStatus(waited);
}

TemporaryFile::TemporaryFile() {
    const char* const folder = std::getenv("TMPDIR");
    path = std::string(folder == nullptr ? "/tmp" : folder) + "/tallyquill-test-XXXXXX";
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) std::abort();
    close(descriptor);
}

TemporaryFile::~TemporaryFile() {
    std::remove(path.c_str());
}

std::string TemporaryFile::Content() const {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
