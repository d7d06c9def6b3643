// SPDX-License-Identifier: MIT
//
// The online service, played by a server on the loopback interface.
#include "Web.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
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

} // namespace
