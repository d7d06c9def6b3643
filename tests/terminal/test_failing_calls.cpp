// SPDX-License-Identifier: MIT
//
// Every call of the system fails once while entries are read, answered and kept: what could not be read or
// written is told, and a run that succeeds has answered everything.
#include "Console.h"
#include "Ending.h"
#include "Prompt.h"
#include "PromptFiles.h"
#include "Session.h"
#include "TerminalModes.h"
#include "failing_system.h"
#include "temporary_folder.h"
#include "typed_keys.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

// A descriptor that is another one as long as this lives.
class Redirection {
public:
    Redirection(int descriptor, const std::string& path, int flags)
        : number(descriptor), before(fcntl(descriptor, F_DUPFD_CLOEXEC, 10)) {
        const int file = open(path.c_str(), flags | O_CLOEXEC, 0600);
        EXPECT_EQ(number, dup2(file, number));
        close(file);
    }
    ~Redirection() {
        EXPECT_EQ(number, dup2(before, number));
        close(before);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

private:
    int number;
    int before;
};

class FailingCallsOfARun : public testing::Test {
protected:
    FailingCallsOfARun() {
        for (const char* const name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            setenv(name, folder.Path().c_str(), 1);
        std::filesystem::create_directory(folder.File("Tallyquill"));
        std::filesystem::create_directory(folder.File("tallyquill"));
    }
    ~FailingCallsOfARun() override {
        for (const char* const name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) unsetenv(name);
    }

    // One run of the program. Returns its exit status; answers and errors are in the files.
    int RunWith(std::vector<std::string> arguments, System& system) const {
        arguments.insert(arguments.begin(), "tallyquill");
        std::vector<char*> argv;
        for (std::string& argument : arguments) argv.push_back(argument.data());
        const Redirection in(STDIN_FILENO, folder.File("in"), O_RDONLY);
        const Redirection out(STDOUT_FILENO, folder.File("out"), O_WRONLY | O_CREAT | O_TRUNC);
        const Redirection err(STDERR_FILENO, folder.File("err"), O_WRONLY | O_CREAT | O_TRUNC);
        return runConsole(static_cast<int>(argv.size()), argv.data(), system);
    }

    std::string Out() const { return contentOf(folder.File("out")); }
    std::string Err() const { return contentOf(folder.File("err")); }

    // The run answers everything, or says what it could not do and has the status for that.
    void ExpectAllOrTold(const std::vector<std::string>& arguments, const std::string& answers) {
        const size_t count = failEveryCall([&](FailingSystem& system) {
            const int status = RunWith(arguments, system);
            const std::string out = Out();
            const std::string err = Err();
            const std::string what = system.WhatFailed() + ": " + out + err;
            if (status == ALL_ANSWERED) {
                EXPECT_EQ(answers, out) << what;
                EXPECT_EQ("", err) << what;
            } else {
                EXPECT_NE("", err) << what;
                EXPECT_EQ(FILE_LOST, status) << what;
            }
        });
        EXPECT_GT(count, 20U);
        FailingSystem whole;
        EXPECT_EQ(ALL_ANSWERED, RunWith(arguments, whole));
        EXPECT_EQ(answers, Out());
    }

    TemporaryFolder folder;
};

TEST_F(FailingCallsOfARun, OfAScriptAndAPersonsFilesAreTold) {
    putContent(folder.File("in"), "");
    putContent(folder.File("script"), "#!/usr/bin/tallyquill -f\ndouble(4)\nx=3\nx*tax\n");
    putContent(folder.File("tallyquill/init"), "tax=2\n");
    putContent(
        folder.File("Tallyquill/pelmo_functions.txt"),
        "### FUNCTIONS ###\ndouble(x)=2*x\n### VARIABLES ###\nans=1\n### CUSTOM UNITS ###\n### HISTORY "
        "###\n");
    ExpectAllOrTold({"-f", folder.File("script"), "1+1"}, "ans = 8\nx = 3\nans = 6\nans = 2\n");
}

TEST_F(FailingCallsOfARun, OfStandardInputAreTold) {
    putContent(folder.File("in"), "1+1\n2+2\n");
    ExpectAllOrTold({}, "ans = 2\nans = 4\n");
}

TEST_F(FailingCallsOfARun, OfLinesOfDataAreTold) {
    putContent(folder.File("in"), "1 2\n3 4\n");
    ExpectAllOrTold({"--each", "x1*x2"}, "ans = 2\nans = 12\n");
}

// The message itself may be what cannot be written. The status tells all the same.
TEST_F(FailingCallsOfARun, OfAMessageLeaveTheStatus) {
    putContent(folder.File("in"), "");
    const std::vector<std::pair<std::vector<std::string>, int>> runs = {
        {{"--unknown"}, BAD_USAGE}, {{"-f", folder.File("none")}, FILE_LOST}};
    for (const auto& run : runs) {
        size_t unwritten = 0;
        failEveryCall([&](FailingSystem& system) {
            EXPECT_EQ(run.second, RunWith(run.first, system)) << system.WhatFailed();
            const bool isUnwritten = Err().empty();
            EXPECT_TRUE(!isUnwritten || system.WhatFailed() == "write ") << system.WhatFailed();
            unwritten += isUnwritten ? 1U : 0U;
        });
        EXPECT_EQ(3U, unwritten) << "a full disk, a broken one and a refusal";
    }
}

TEST_F(FailingCallsOfARun, OfTheVersionAreTold) {
    FailingSystem whole;
    putContent(folder.File("in"), "");
    ASSERT_EQ(ALL_ANSWERED, RunWith({"--version"}, whole));
    const std::string version = Out();
    failEveryCall([&](FailingSystem& system) {
        const int status = RunWith({"--version"}, system);
        EXPECT_EQ(status == ALL_ANSWERED ? version : "", Out()) << system.WhatFailed();
        EXPECT_EQ(status == ALL_ANSWERED, Err().empty()) << system.WhatFailed();
        EXPECT_TRUE(status == ALL_ANSWERED || status == FILE_LOST) << system.WhatFailed();
    });
}

// A name of a file in the place of an entry, told to a person.
TEST_F(FailingCallsOfARun, OfAHintCostTheHintAlone) {
    class PersonReads : public FailingSystem {
    public:
        using FailingSystem::FailingSystem;
        int IsTerminal(int file) override {
            return file == STDERR_FILENO ? 1 : FailingSystem::IsTerminal(file);
        }
    };
    const std::string script = folder.File("script");
    putContent(folder.File("in"), "");
    putContent(script, "1+1\n");
    size_t without = 0;
    failEveryCall<PersonReads>([&](PersonReads& system) {
        const int status = RunWith({"--no-files", script}, system);
        EXPECT_TRUE(status == SOME_REFUSED || (status == FILE_LOST && !system.WhatFailed().empty()))
            << system.WhatFailed();
        if (status != SOME_REFUSED || system.WhatFailed() == "write ") return;
        EXPECT_NE(std::string::npos, Err().find("ERROR")) << system.WhatFailed();
        const bool isHinted = Err().find("is a file: tallyquill -f") != std::string::npos;
        EXPECT_EQ(isHinted, system.WhatFailed() != "stat " + script) << Err();
        without += isHinted ? 0U : 1U;
    });
    EXPECT_EQ(4U, without) << "one for each error";
}

// --- The prompt's files ---

class FailingCallsOfThePrompt : public FailingCallsOfARun {
protected:
    const std::string definitions = folder.File("Tallyquill/pelmo_functions.txt");
    const std::string settings = folder.File("Tallyquill/pelmo_settings.plist");
    const std::string history = folder.File("tallyquill/history");

    // A prompt at which a person changes a setting, defines a variable and leaves. Returns all that was said.
    static std::string Use(System& system, int figures, const std::string& entry) {
        Session session(-1, -1);
        PromptFiles files(session.Calculator(), system);
        std::string news = files.Open();
        files.Settings().numbers["sigfigs"] = figures;
        files.NoteChange();
        files.AddToHistory(entry);
        files.EntryWillRun(false);
        session.Run(entry);
        files.EntryDidRun();
        return news + files.TakeNews() + files.Close();
    }

    bool Holds(const std::string& path, const std::string& text) const {
        return contentOf(path).find(text) != std::string::npos;
    }
};

TEST_F(FailingCallsOfThePrompt, AreToldAndNothingIsLost) {
    const std::string key = "<key>sigfigs</key>\n\t<integer>";
    const size_t count = failEveryCall([&](FailingSystem& system) {
        for (const std::string& file : {definitions, settings, history}) std::filesystem::remove(file);
        for (const std::string& file : {definitions, settings})
            for (const auto* const end : {".unreadable", ".unreadable.1"})
                std::filesystem::remove(file + end);
        FailingSystem whole;
        EXPECT_EQ("", Use(whole, 11, "first=1"));
        const std::string news = Use(system, 12, "second=2");
        const std::string what = system.WhatFailed() + ": " + news;
        EXPECT_TRUE(Holds(definitions, "\nfirst=1\n")) << what;
        EXPECT_TRUE(Holds(definitions, "\nsecond=2\n") || !news.empty()) << what;
        EXPECT_TRUE(Holds(settings, key + "12<") || (Holds(settings, key + "11<") && !news.empty()))
            << what << contentOf(settings);
        EXPECT_TRUE(Holds(history, "first=1\n")) << what;
        EXPECT_TRUE(Holds(history, "second=2\n") || !news.empty()) << what;
        EXPECT_EQ("", Use(whole, 13, "third=3")) << what;
        EXPECT_TRUE(Holds(definitions, "\nfirst=1\n") && Holds(definitions, "\nthird=3\n")) << what;
        EXPECT_TRUE(Holds(settings, key + "13<")) << what;
        EXPECT_TRUE(Holds(history, "third=3\n")) << what;
    });
    EXPECT_GT(count, 200U);
}

// A disk that is full for one write.
TEST_F(FailingCallsOfThePrompt, ASettingThatCouldNotBeWrittenIsWrittenWithTheNextOne) {
    class FullOnce : public FailingSystem {
    public:
        std::atomic<bool> isFull{true};
        Time now{};
        Time Now() override { return now; }
        int MakeTemporary(char* name) override {
            if (std::string(name).find("settings") == std::string::npos || !isFull.exchange(false))
                return System::MakeTemporary(name);
            errno = ENOSPC;
            return -1;
        }
    } disk;
    Session session(-1, -1);
    PromptFiles files(session.Calculator(), disk);
    EXPECT_EQ("", files.Open());
    files.Settings().numbers["sigfigs"] = 12;
    files.NoteChange();
    disk.now += std::chrono::seconds(2);
    EXPECT_EQ(-1, files.DoDue());
    EXPECT_EQ("", files.Close());
    EXPECT_FALSE(disk.isFull);
    EXPECT_TRUE(Holds(settings, "<key>sigfigs</key>\n\t<integer>12<"));
}

TEST_F(FailingCallsOfThePrompt, TheHistoryOfALongSessionKeepsItsNewestEntries) {
    Session session(-1, -1);
    PromptFiles files(session.Calculator()); // not open: none is written
    for (size_t i = 1; i <= 5 * HistoryFile::LINES; ++i) files.AddToHistory(std::to_string(i));
    EXPECT_GE(files.History().size(), HistoryFile::LINES);
    EXPECT_LE(files.History().size(), 2 * HistoryFile::LINES);
    EXPECT_EQ("50000", files.History().back());
}

// --- The terminal ---

// Reads a key as the prompt does, which tries again after what is no failure. Without one, `error` is that of
// the call that ended the input.
char readKey(TerminalModes& terminal, int& error) {
    char key = '\0';
    for (int i = 0; i < 3; ++i) {
        errno = 0;
        const TerminalModes::Event event = terminal.Wait(1000);
        error = errno;
        if (event == TerminalModes::Event::Failed) return key;
        if (event != TerminalModes::Event::Input) continue;
        errno = 0;
        const long count = terminal.Read(&key, 1);
        error = count == 0 ? EIO : errno; // which is the end of a terminal that is gone
        if (count >= 0 || errno != EAGAIN) return key;
    }
    return key;
}

TEST_F(FailingCallsOfARun, OfTheTerminalEndItsInputOrAreTriedAgain) {
    const size_t count = failEveryCall([](FailingSystem& system) {
        int ends[2];
        ASSERT_EQ(0, pipe(ends));
        ASSERT_EQ(1, write(ends[1], "k", 1));
        {
            TerminalModes terminal(ends[0], -1, TerminalModes::Use::Plain, system);
            int error = 0;
            const char key = readKey(terminal, error);
            EXPECT_TRUE(key == 'k' || (error != 0 && error == system.Failure()))
                << system.WhatFailed() << error;
        }
        close(ends[0]);
        close(ends[1]);
    });
    EXPECT_GT(count, 5U);
}

// A pseudo-terminal at which keys were typed.
class TypedAt {
public:
    explicit TypedAt(const std::string& keys) : person(posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_EQ(0, grantpt(person));
        EXPECT_EQ(0, unlockpt(person));
        path = ptsname(person);
        program = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_EQ(static_cast<ssize_t>(keys.size()), write(person, keys.data(), keys.size()));
    }
    ~TypedAt() {
        close(program);
        close(person);
    }
    TypedAt(const TypedAt&) = delete;
    TypedAt& operator=(const TypedAt&) = delete;

    // Whether lines are edited and shown by the terminal, as one finds it.
    bool HasLineMode() const {
        termios modes = {};
        EXPECT_EQ(0, tcgetattr(program, &modes));
        return (modes.c_lflag & ICANON) != 0 && (modes.c_lflag & ECHO) != 0;
    }

    // What is on the screen.
    std::string Screen() const {
        std::string all;
        char block[4096];
        for (pollfd waiting = {person, POLLIN, 0};
             poll(&waiting, 1, 0) > 0 && (waiting.revents & POLLIN) != 0;) {
            const ssize_t count = read(person, block, sizeof block);
            if (count <= 0) break;
            all.append(block, static_cast<size_t>(count));
        }
        return all;
    }

    std::string path;
    int program = -1;

private:
    int person;
};

TEST_F(FailingCallsOfARun, OfATerminalLeaveItAsItWas) {
    const size_t count = failEveryCall([](FailingSystem& system) {
        const TypedAt terminal("k\n");
        char key = '\0';
        int error = 0;
        {
            TerminalModes modes(terminal.program, terminal.program, TerminalModes::Use::Editing, system);
            key = readKey(modes, error);
        }
        EXPECT_TRUE(key == 'k' || (error != 0 && error == system.Failure())) << system.WhatFailed() << error;
        // It can only be given back by that call.
        EXPECT_TRUE(terminal.HasLineMode() || system.WhatFailed() == "tcsetattr ") << system.WhatFailed();
    });
    EXPECT_GT(count, 20U);
    for (size_t number = 0; number < 20; ++number) {
        FailingSystem system(number, EINTR);
        const TypedAt terminal("");
        { const TerminalModes modes(terminal.program, -1, TerminalModes::Use::Plain, system); }
        EXPECT_TRUE(terminal.HasLineMode()) << number;
    }
}

// At a terminal, with the editor and without: the entry is answered, or the end says why it is not.
class FailingCallsAtATerminal : public FailingCallsOfThePrompt, public testing::WithParamInterface<bool> {};

TEST_P(FailingCallsAtATerminal, AreToldOrCostNoAnswer) {
    setenv("TERM", "xterm", 1);
    setenv("INPUTRC", "/dev/null", 1);
    const size_t count = failEveryCall([](FailingSystem& system) {
        const TypedAt terminal("1+1\nexit\n");
        PromptEnd end = PromptEnd::Ended;
        {
            const Redirection in(STDIN_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            const Redirection out(STDOUT_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            const Redirection err(STDERR_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            Session session(STDOUT_FILENO, STDERR_FILENO, Session::Style(), system);
            session.Calculator().traced = false;
            PromptFiles files(session.Calculator()); // not open
            PromptOptions options;
            options.isPlain = GetParam();
            end = runPrompt(session, files, STDOUT_FILENO, options, system);
        }
        const std::string screen = terminal.Screen();
        const bool isGone = system.WhatFailed() == "read " && system.Failure() == EIO; // which is the end
        EXPECT_TRUE(end != PromptEnd::Ended || isGone || screen.find("ans = 2") != std::string::npos)
            << system.WhatFailed() << ": " << screen;
        EXPECT_TRUE(end == PromptEnd::Ended || !system.WhatFailed().empty()) << system.WhatFailed();
        EXPECT_TRUE(terminal.HasLineMode() || system.WhatFailed() == "tcsetattr ") << system.WhatFailed();
    });
    EXPECT_GT(count, 40U);
}

// From the options to the exit status.
TEST_P(FailingCallsAtATerminal, OfAWholeRunAreToldOrCostNoAnswer) {
    setenv("TERM", "xterm", 1);
    setenv("INPUTRC", "/dev/null", 1);
    const size_t count = failEveryCall([this](FailingSystem& system) {
        for (const std::string& file : {definitions, settings, history}) std::filesystem::remove(file);
        const TypedAt terminal("kept=1+1\nexit\n");
        std::vector<std::string> arguments = {"tallyquill", GetParam() ? "--plain" : "--color=never"};
        char* argv[] = {arguments[0].data(), arguments[1].data()};
        int status = -1;
        {
            const Redirection in(STDIN_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            const Redirection out(STDOUT_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            const Redirection err(STDERR_FILENO, terminal.path, O_RDWR | O_NOCTTY);
            status = runConsole(2, argv, system);
        }
        const std::string screen = terminal.Screen();
        const std::string what = system.WhatFailed() + ": " + screen;
        const bool isGone = system.WhatFailed() == "read " && system.Failure() == EIO; // which is the end
        const bool isAnswered = screen.find("kept = 2") != std::string::npos;
        EXPECT_TRUE(status == ALL_ANSWERED || status == FILE_LOST) << what;
        EXPECT_TRUE(status != ALL_ANSWERED || isAnswered || isGone) << what;
        EXPECT_TRUE(status == ALL_ANSWERED || screen.find("tallyquill: ") != std::string::npos) << what;
        EXPECT_TRUE(terminal.HasLineMode() || system.WhatFailed() == "tcsetattr ") << what;
        // Where the terminal is taken for none, the entries are a script.
        const bool isScript = system.WhatFailed() == "isatty " && screen.find("> ") == std::string::npos;
        const bool isKept = Holds(definitions, "\nkept=2\n") || isScript;
        EXPECT_TRUE(!isAnswered || isKept || screen.find("Not saved") != std::string::npos) << what;
    });
    EXPECT_GT(count, 100U);
}

INSTANTIATE_TEST_SUITE_P(Editors, FailingCallsAtATerminal, testing::Bool());

// --- Between a line and its answer ---

// What the prompt says to these keys, and how it ends. Without an editor, whose screen is another descriptor.
class KeysOfThePrompt : public FailingCallsOfThePrompt {
protected:
    PromptEnd Type(System& keys) {
        Session session(STDOUT_FILENO, STDOUT_FILENO, Session::Style(), keys);
        session.Calculator().traced = false;
        PromptFiles files(session.Calculator()); // not open
        PromptOptions options;
        options.isPlain = true;
        const std::string path = folder.File("said");
        PromptEnd end = PromptEnd::Ended;
        {
            const Redirection out(STDOUT_FILENO, path, O_WRONLY | O_CREAT | O_TRUNC);
            end = runPrompt(session, files, STDOUT_FILENO, options, keys);
        }
        said = contentOf(path);
        return end;
    }

    std::string said;
};

TEST_F(KeysOfThePrompt, ControlCBetweenALineAndItsAnswerInterruptsIt) {
    TypedKeys keys({{"6*7\n", 0, {}, SIGINT}, {"6*8\n"}});
    EXPECT_EQ(PromptEnd::Ended, Type(keys));
    EXPECT_EQ(std::string::npos, said.find("42")) << said;
    EXPECT_NE(std::string::npos, said.find("** ERROR: interrupted **\n")) << said;
    EXPECT_NE(std::string::npos, said.find("ans = 48\n")) << "the next one is answered: " << said;
}

// Gone behind the answer, before the hint below it.
class TerminalThatGoes : public TypedKeys {
public:
    using TypedKeys::TypedKeys;
    ssize_t Write(int file, const void* bytes, size_t size) override {
        const std::string text(static_cast<const char*>(bytes), size);
        isGone = isGone || text.find("powers are taken") != std::string::npos;
        if (!isGone) return System::Write(file, bytes, size);
        errno = EIO;
        return -1;
    }

private:
    bool isGone = false;
};

TEST_F(KeysOfThePrompt, ATerminalThatGoesBehindAnAnswerIsTheEnd) {
    TerminalThatGoes keys({{"2^3^2\n"}, {"never=1\n"}});
    EXPECT_EQ(PromptEnd::OutputLost, Type(keys));
    EXPECT_NE(std::string::npos, said.find("ans = 64\n")) << said;
    EXPECT_EQ(std::string::npos, said.find("never")) << said;
}

} // namespace
