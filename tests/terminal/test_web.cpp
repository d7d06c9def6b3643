// SPDX-License-Identifier: MIT
//
// The online service, played by a server on the loopback interface.
#include "Web.h"

#include "Session.h"
#include "program.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// Answers one request with a page and keeps the request.
class Server {
public:
    explicit Server(std::string page) : page_(std::move(page)) {
        listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(listen(listener_, 1), 0);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~Server() { stop(); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }

    // Waits for the request and returns its first line.
    std::string requestLine() {
        stop();
        return request_.substr(0, request_.find('\r'));
    }

private:
    void stop() {
        if (thread_.joinable()) thread_.join();
        if (listener_ >= 0) close(listener_);
        listener_ = -1;
    }

    void serve() {
        const int connection = accept(listener_, nullptr, nullptr);
        char block[4096];
        while (request_.find("\r\n\r\n") == std::string::npos) {
            const ssize_t count = read(connection, block, sizeof block);
            if (count <= 0) break;
            request_.append(block, static_cast<std::size_t>(count));
        }
        const std::string answer = page_.empty() ? "HTTP/1.0 404 Not Found\r\n\r\npod_0200 title=\"gone\""
                                                 : "HTTP/1.0 200 OK\r\n\r\n" + page_;
        EXPECT_EQ(write(connection, answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
        close(connection);
    }

    std::string page_;
    std::string request_;
    int listener_ = -1;
    int port_ = 0;
    std::thread thread_;
};

std::string ask(const std::string& url, const char* query) {
    setenv("TALLYQUILL_QUERY_URL", url.c_str(), 1);
    std::string answer = askService(query);
    unsetenv("TALLYQUILL_QUERY_URL");
    return answer;
}

TEST(Web, AsksTheServiceAndTakesTheTitleOfItsResult) {
    Server server(
        "<p id=\"pod_0100\" title=\"no\"><p id=\"pod_0200\"><img alt=\"\" title=\"8.047 km\" src=\"x\">");
    EXPECT_EQ(ask(server.url(), "convert+5+miles+to+km"), "8.047 km");
    EXPECT_EQ(server.requestLine(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
}

TEST(Web, HasNoAnswerFromAPageThatIsMissing) {
    Server server("");
    EXPECT_EQ(ask(server.url(), "convert+1"), "");
    EXPECT_EQ(server.requestLine(), "GET /input/?i=convert+1 HTTP/1.1");
}

TEST(Web, HasNoAnswerWhenNobodyListensOrTheAddressIsNoWebAddress) {
    EXPECT_EQ(ask("http://127.0.0.1:1", "convert+1"), "");
    EXPECT_EQ(ask("file:///etc/passwd", "convert+1"), "");
    EXPECT_EQ(ask("--version", "convert+1"), "");
}

TEST(Web, FindsTheFirstTitleBehindTheResultsMark) {
    EXPECT_EQ(answerInPage("title=\"a\" pod_0200 x title=\"b\" title=\"c\""), "b");
    EXPECT_EQ(answerInPage("pod_0200 title=\"\""), "");
    EXPECT_EQ(answerInPage("pod_0200 title=\"cut"), "cut");
    EXPECT_EQ(answerInPage("pod_0200 title"), "");
    EXPECT_EQ(answerInPage("pod_0200"), "");
    EXPECT_EQ(answerInPage("title=\"a\""), "");
    EXPECT_EQ(answerInPage(""), "");
}

TEST(Web, EncodesWhatAnAddressDoesNotAllow) {
    EXPECT_EQ(queryAddress("http://a/", "convert+5+m"), "http://a/input/?i=convert+5+m");
    EXPECT_EQ(queryAddress("http://a", "1/2&x=\"#%\xC3\xA9"),
              "http://a/input/?i=1%2F2%26x%3D%22%23%25%C3%A9");
}

TEST(Web, OpensNoPageWithoutAnAddress) {
    unsetenv("TALLYQUILL_WEB_URL");
    EXPECT_FALSE(openPage());
    setenv("TALLYQUILL_WEB_URL", "--help", 1);
    EXPECT_FALSE(openPage());
    unsetenv("TALLYQUILL_WEB_URL");
}

// --- Ctrl-C, the terminal and the browser ---

// Listens on the loopback interface and never says a word.
class SilentServer {
public:
    SilentServer() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(listen(listener_, 1), 0);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        const std::string url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        setenv("TALLYQUILL_QUERY_URL", url.c_str(), 1);
    }
    ~SilentServer() {
        unsetenv("TALLYQUILL_QUERY_URL");
        close(listener_);
    }
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;

private:
    int listener_;
};

using Clock = std::chrono::steady_clock;

bool hasChildren() {
    return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

TEST(Web, ControlCEndsAQueryThatNobodyAnswers) {
    const SilentServer server;
    int answers[2];
    ASSERT_EQ(pipe(answers), 0);
    Session session(answers[1], answers[1]);
    const auto start = Clock::now();
    std::thread person([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        kill(getpid(), SIGINT); // this process alone: curl has to be ended by it
    });
    EXPECT_EQ(session.run("convert 5 miles to km"), Session::Outcome::Interrupted);
    person.join();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_FALSE(hasChildren());
    close(answers[1]);
    char byte = 0;
    EXPECT_EQ(read(answers[0], &byte, 1), 0); // nothing was shown
    close(answers[0]);
}

TEST(Web, ATerminalSaysThatItChecksAndReturnsToThePromptOnControlC) {
    const SilentServer server;
    Terminal terminal({});
    terminal.readUntil("> ");
    terminal.type("convert 5 miles to km\n");
    EXPECT_EQ(terminal.readUntil("...checking...\n"), "...checking...\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    terminal.type("\x03");
    EXPECT_EQ(terminal.readUntil("> "), "> ");
    terminal.type("1+1\n");
    EXPECT_EQ(terminal.readUntil("> "), "ans = 2\n> ");
}

TEST(Web, ATerminalSaysThatItChecksThenTheAnswer) {
    Server server("pod_0200 title=\"8.047 km\"");
    setenv("TALLYQUILL_QUERY_URL", server.url().c_str(), 1);
    Terminal terminal({});
    unsetenv("TALLYQUILL_QUERY_URL");
    terminal.readUntil("> ");
    terminal.type("convert 5 miles to km\n");
    EXPECT_EQ(terminal.readUntil("> "), "...checking...\n8.047 km\n> ");
}

// A folder that is all of PATH's beginning, with a browser in it that writes down what it is given and the
// signals that it ignores.
class Browser {
public:
    explicit Browser(bool exists) : path_(getenv("PATH")) {
        std::string name = "/tmp/tallyquill-test-XXXXXX";
        folder_ = mkdtemp(name.data());
        if (exists) {
            std::ofstream(program()) << "#!/bin/sh\nPATH='" << path_ << "'\n{ echo \"$@\"\n"
                                     << "grep SigIgn /proc/$$/status; } >" << folder_ << "/new\n"
                                     << "mv " << folder_ << "/new " << folder_ << "/opened\n";
            chmod(program().c_str(), 0700);
        }
        setenv("PATH", folder_.c_str(), 1);
        setenv("TALLYQUILL_WEB_URL", "http://example.org/?a=1&b=$HOME", 1);
    }
    ~Browser() {
        setenv("PATH", path_.c_str(), 1);
        unsetenv("TALLYQUILL_WEB_URL");
        std::remove(program().c_str());
        std::remove((folder_ + "/opened").c_str());
        rmdir(folder_.c_str());
    }
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    // What it wrote down, at most ten seconds later.
    std::string opened() const {
        const auto deadline = Clock::now() + std::chrono::seconds(10);
        std::ostringstream text;
        while (text.str().empty() && Clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            std::ifstream file(folder_ + "/opened");
            if (file) text << file.rdbuf();
        }
        return text.str();
    }

private:
    std::string program() const {
#ifdef __APPLE__
        return folder_ + "/open";
#else
        return folder_ + "/xdg-open";
#endif
    }

    std::string path_;
    std::string folder_;
};

TEST(Web, ABrowserIsNoChildAndIgnoresNoBrokenPipe) {
    const Browser browser(true);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_TRUE(openPage());
    std::signal(SIGPIPE, before);
    EXPECT_FALSE(hasChildren());
    const std::string opened = browser.opened();
    EXPECT_EQ(opened.substr(0, opened.find('\n')), "http://example.org/?a=1&b=$HOME");
#ifdef __linux__
    const std::size_t ignored = opened.find("SigIgn:");
    ASSERT_NE(ignored, std::string::npos) << opened;
    const unsigned long signals = std::stoul(opened.substr(ignored + 7), nullptr, 16);
    EXPECT_EQ(signals & (1UL << (SIGPIPE - 1)), 0U) << opened;
#endif
}

TEST(Web, ATerminalSaysThatThePageIsBeingOpened) {
    const Browser browser(true);
    Terminal terminal({});
    terminal.readUntil("> ");
    terminal.type("gospel\n");
    terminal.readUntil("> ");
    terminal.type("gospel\n");
    EXPECT_EQ(terminal.readUntil("> "), "<<< opening URL >>>\n> ");
    EXPECT_NE(browser.opened(), "");
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
