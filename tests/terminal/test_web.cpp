// SPDX-License-Identifier: MIT
//
// The online service, played by a server on the loopback interface, and the web page.
#include "Interrupt.h"
#include "Session.h"
#include "WebPage.h"
#include "failing_system.h"
#include "program.h"
#include "service.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// A service that the program is told of.
class Asked {
public:
    explicit Asked(const std::string& answer, Service::Manner manner = Service::Manner::Answers)
        : service(answer, manner) {
        setenv("TALLYQUILL_QUERY_URL", service.Address().c_str(), 1);
    }
    ~Asked() { unsetenv("TALLYQUILL_QUERY_URL"); }
    Asked(const Asked&) = delete;
    Asked& operator=(const Asked&) = delete;

    const Service service;
};

TEST(Web, AsksTheServiceAndShowsItsAnswer) {
    const Asked asked(page(RESULT));
    EXPECT_EQ(evaluate({"convert 5 miles to km"}).out, "8.047 km (kilometers)\n");
    EXPECT_EQ(asked.service.Request(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
}

TEST(Web, ShowsNoControlCharacterOfThePage) {
    const Asked asked(page("pod_0200 title=\"\x1B]0;x\x07"
                           "8 km\xC2\x9B"
                           "2J\""));
    EXPECT_EQ(evaluate({"convert 5 miles to km"}).out, "?]0;x?8 km?2J\n");
}

TEST(Web, APageWithAnErrorStatusIsNoAnswer) {
    const Asked asked(response("404 Not Found", RESULT));
    EXPECT_EQ(evaluate({"convert 5 miles to km"}).out, "Not found.\n");
}

TEST(Web, OpensNoPageWithoutAnAddress) {
    unsetenv("TALLYQUILL_WEB_URL");
    EXPECT_FALSE(openPage());
    for (const char* const address : {"", "--help"}) {
        setenv("TALLYQUILL_WEB_URL", address, 1);
        EXPECT_FALSE(openPage()) << address;
    }
    unsetenv("TALLYQUILL_WEB_URL");
}

// --- Ctrl-C, the terminal and the browser ---

TEST(Web, ControlCEndsAQueryThatNobodyAnswers) {
    const Asked asked("", Service::Manner::NeverAnswers);
    int answers[2];
    ASSERT_EQ(pipe(answers), 0);
    Session session(answers[1], answers[1]);
    std::thread person([&] {
        asked.service.WaitForRequest();
        kill(getpid(), SIGINT); // this process alone: curl has to be ended by it
    });
    EXPECT_EQ(session.Run("convert 5 miles to km"), Session::Outcome::Interrupted);
    person.join();
    forgetInterrupt();
    EXPECT_FALSE(hasChildren());
    close(answers[1]);
    char byte = 0;
    EXPECT_EQ(read(answers[0], &byte, 1), 0); // nothing was shown
    close(answers[0]);
}

TEST(Web, ATerminalSaysThatItChecksAndReturnsToThePromptOnControlC) {
    const Asked asked("", Service::Manner::NeverAnswers);
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("convert 5 miles to km\n");
    EXPECT_EQ(terminal.ReadUntil("...checking...\n"), "...checking...\n");
    asked.service.WaitForRequest();
    terminal.Type("\x03");
    EXPECT_EQ(terminal.ReadUntil("> "), "> ");
    terminal.Type("1+1\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "ans = 2\n> ");
}

TEST(Web, ATerminalSaysThatItChecksThenTheAnswer) {
    const Asked asked(page(RESULT));
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("convert 5 miles to km\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "...checking...\n8.047 km (kilometers)\n> ");
}

// A folder that is all of PATH's beginning, with a browser in it that writes down what it is given and the
// signals that it ignores.
class Browser {
public:
    explicit Browser(bool exists) : path(getenv("PATH")) {
        std::string name = "/tmp/tallyquill-test-XXXXXX";
        folder = mkdtemp(name.data());
        if (exists) {
            std::ofstream(Program()) << "#!/bin/sh\nPATH='" << path << "'\n{ echo \"$@\"\n"
                                     << "grep SigIgn /proc/$$/status; } >" << folder << "/new\n"
                                     << "mv " << folder << "/new " << folder << "/opened\n";
            chmod(Program().c_str(), 0700);
        }
        setenv("PATH", folder.c_str(), 1);
        setenv("TALLYQUILL_WEB_URL", "http://example.org/?a=1&b=$HOME", 1);
    }
    ~Browser() {
        setenv("PATH", path.c_str(), 1);
        unsetenv("TALLYQUILL_WEB_URL");
        std::remove(Program().c_str());
        std::remove((folder + "/opened").c_str());
        rmdir(folder.c_str());
    }
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    // What it wrote down, at most ten seconds later.
    std::string Opened() const {
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        std::ostringstream text;
        while (text.str().empty() && Clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            std::ifstream file(folder + "/opened");
            if (file) text << file.rdbuf();
        }
        return text.str();
    }

private:
    std::string Program() const {
#ifdef __APPLE__
        return folder_ + "/open";
#else
        return folder + "/xdg-open";
#endif
    }

    std::string path;
    std::string folder;
};

TEST(Web, ABrowserIsNoChild) {
    const Browser browser(true);
    EXPECT_TRUE(openPage());
    EXPECT_FALSE(hasChildren());
    const std::string opened = browser.Opened();
    EXPECT_EQ(opened.substr(0, opened.find('\n')), "http://example.org/?a=1&b=$HOME");
}

TEST(Web, ACallThatFailsOpensThePageOrSaysNo) {
    const size_t count = failEveryCall([](FailingSystem& system) {
        const Browser browser(true);
        const bool isOpened = openPage(system);
        const std::string& what = system.WhatFailed();
        EXPECT_EQ(isOpened, what.empty() || (what == "waitpid " && system.Failure() == EINTR)) << what;
        EXPECT_TRUE(!isOpened || browser.Opened() != "") << what;
        if (what == "waitpid " && !isOpened)
            waitpid(-1, nullptr, 0); // a failure of waitpid itself leaves the child
        EXPECT_FALSE(hasChildren()) << what;
    });
    EXPECT_EQ(count, 8U);
}

#ifdef __linux__
// Whether a browser that the program opens ignores broken pipes.
bool ignoresBrokenPipes(int ignoredSignal) {
    const Browser browser(true);
    Invocation invocation;
    invocation.arguments = {"gospel", "gospel"};
    invocation.ignoredSignal = ignoredSignal;
    EXPECT_EQ(runProgram(invocation).status, 0);
    const std::string opened = browser.Opened();
    const size_t ignored = opened.find("SigIgn:");
    if (ignored == std::string::npos) ADD_FAILURE() << opened;
    const unsigned long ignoredOnes = std::stoul(opened.substr(ignored + 7), nullptr, 16);
    return (ignoredOnes & (1UL << (SIGPIPE - 1))) != 0;
}

TEST(Web, ABrowserIgnoresBrokenPipesOnlyIfThisProgramWasToldTo) {
    EXPECT_FALSE(ignoresBrokenPipes(0));
    EXPECT_TRUE(ignoresBrokenPipes(SIGPIPE));
}
#endif

TEST(Web, ATerminalSaysThatThePageIsBeingOpened) {
    const Browser browser(true);
    Terminal terminal({});
    terminal.ReadUntil("> ");
    terminal.Type("gospel\n");
    terminal.ReadUntil("> ");
    terminal.Type("gospel\n");
    EXPECT_EQ(terminal.ReadUntil("> "), "<<< opening URL >>>\n> ");
    EXPECT_NE(browser.Opened(), "");
}

TEST(Web, OpensNoPageWithoutABrowser) {
    const Browser browser(false);
    EXPECT_FALSE(openPage());
    EXPECT_FALSE(hasChildren());
    const Result run = evaluate({"gospel", "gospel"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("\nThere is no web page to open.\n"), std::string::npos) << run.out;
}

} // namespace
