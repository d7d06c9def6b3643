// SPDX-License-Identifier: MIT
//
// Runs the built program through pipes or a pseudo-terminal.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

// How one run through pipes is set up.
struct Invocation {
    std::string program = TALLYQUILL_PROGRAM;
    std::vector<std::string> arguments;
    std::string input;          // fed to standard input ...
    size_t inputTimes = 1;      // ... this many times
    std::string outputFile;     // standard output goes there instead of a pipe
    bool closeInput = false;    // the program starts with descriptor 0 closed
    bool closeOutput = false;   // the program starts with descriptor 1 closed
    bool closeErrors = false;   // the program starts with descriptor 2 closed
    bool joinErrors = false;    // descriptor 2 goes where descriptor 1 goes
    bool abandonOutput = false; // standard output is a pipe that nobody reads
    int ignoredSignal = 0; // the program starts with this signal ignored; all others do what they usually do
    std::vector<std::string> environment; // "NAME=value"; see cleanEnvironment
};

// The environment of the program is this one's, except what tells where a person's files are: there are
// none unless `changes`, each a "NAME=value", says where. Call it in the child.
void cleanEnvironment(const std::vector<std::string>& changes);

// What came of it. `status` is the exit status, -1 when the program was ended by a signal (a run that takes
// more than a minute is).
struct Result {
    int status = -1;
    std::string out;
    std::string err;
    long peakMemory = 0; // the largest resident set, in KiB (bytes on macOS)
};

Result runProgram(const Invocation& invocation);

// Expects this of a run.
void expectRun(const Result& run, int status, const std::string& out, const std::string& err);

// The program with `arguments` and nothing on standard input.
Result evaluate(const std::vector<std::string>& arguments);

// The program with `input` on standard input.
Result pipeThrough(const std::string& input);

// How one run behind a pseudo-terminal is set up.
struct TerminalSetup {
    std::string outputFile;               // standard output goes there instead of to the terminal
    std::string inputFile;                // standard input comes from there instead of from the terminal
    bool echo = false;                    // the terminal shows what is typed
    bool nonBlocking = false;             // reading from the terminal does not wait
    std::string shellScript;              // a shell with job control runs this, in which "$0" is the program
    int ignoredSignal = 0;                // the program starts with this signal ignored
    std::vector<std::string> environment; // "NAME=value"; see cleanEnvironment
};

inline const std::string END_OF_INPUT = "\x04"; // Ctrl-D

// A terminal that shows what is typed.
TerminalSetup withEcho();

// A pseudo-terminal with the program behind it. The terminal neither echoes nor translates line ends, so that
// what is read is what the program wrote.
class Terminal {
public:
    explicit Terminal(const std::vector<std::string>& arguments, const TerminalSetup& setup = {});
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void Type(const std::string& keys);

    // Everything shown since the last call, read until it ends with `end` or so many milliseconds have
    // passed.
    std::string ReadUntil(const std::string& end, int patience = 10000);

    // Presses Ctrl-C, again and again, until what is shown ends with `end`. Returns all of that. One key may
    // come too early, before the entry that is to be interrupted runs; one more may come too late and show
    // another prompt.
    std::string InterruptUntil(const std::string& end);

    // Sends a signal to the program (to the shell, with one).
    void Signal(int number);

    // Stops the program from outside, waits until it stands still, and lets it go on.
    void StopAndContinue();

    // Waits for the program's end; the exit status, -1 after a signal.
    int Wait();

private:
    std::string home; // an empty home folder
    int master = -1;
    pid_t child = -1;
};

// A new name for a file in the temporary folder; the file is removed when the object goes.
class TemporaryFile {
public:
    TemporaryFile();
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return path; }
    std::string Content() const;

private:
    std::string path;
};
