// SPDX-License-Identifier: MIT
//
// The query and its answer, with the program curl and a service on the loopback interface.
#include "Query.h"

#include "service.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* QUERY = "convert+5+miles+to+km";

bool never() {
    return false;
}

std::string ask(const std::string& address, int seconds = 10) {
    std::string answer = askService(address, QUERY, seconds, never);
    EXPECT_FALSE(hasChildren());
    return answer;
}

// What comes of the bytes that a service sends.
std::string answerTo(const std::string& bytes) {
    const Service service(bytes);
    std::string answer = ask(service.Address());
    EXPECT_EQ(service.Request(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    return answer;
}

// A variable of the environment that has another value for a while.
class Variable {
public:
    Variable(const char* variable, const std::string& value) : name(variable) {
        const char* const found = std::getenv(name);
        existed = found != nullptr;
        if (existed) before = found;
        setenv(name, value.c_str(), 1);
    }
    ~Variable() { existed ? setenv(name, before.c_str(), 1) : unsetenv(name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name;
    bool existed;
    std::string before;
};

// --- The answer in the page ---

TEST(Query, TheTitleOfTheResultIsTheAnswer) {
    EXPECT_EQ(answerTo(page(RESULT)), RESULT_TITLE);
    EXPECT_EQ(answerTo(page(std::string("<img title=\"the input\">") + RESULT + "<img title=\"later\">")),
              RESULT_TITLE);
}

TEST(Query, TheFirstTitleBehindTheMarkCounts) {
    EXPECT_EQ(answerInPage("title=\"a\" pod_0200 x title=\"b\" title=\"c\""), "b");
    EXPECT_EQ(answerInPage("pod_0200 title \"x\""), "x");
    EXPECT_EQ(answerInPage("pod_0200 title=\"cut"), "cut");
}

TEST(Query, WithoutTheMarksThereIsNoAnswer) {
    for (const char* const text : {"", "title=\"a\"", "pod_0200", "pod_0200 title", "pod_0200 title=8.047",
                                   "pod_0200 title=\"", "pod_0200 title=\"\" alt=\"x\""}) {
        EXPECT_EQ(answerInPage(text), "") << text;
    }
    EXPECT_EQ(answerTo(page("<img title=\"8.047 km\">")), "");
    EXPECT_EQ(answerTo(response("200 OK", "")), "");
}

TEST(Query, AnAnswerIsOneLineWithoutControlCharacters) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"8 km\n= 8000 m\r\n(about)\"")), "8 km = 8000 m  (about)");
    EXPECT_EQ(answerTo(page("pod_0200 title=\"\x1B]0;x\x07"
                            "8\tkm\xC2\x9B"
                            "2J\x7F\"")),
              "?]0;x?8 km?2J?");
}

TEST(Query, AnAnswerMayHaveAnyOtherCharacters) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"\xE2\x89\x88 8 km\xC2\xB2\"")), "\xE2\x89\x88 8 km\xC2\xB2");
}

TEST(Query, APageThatIsNotUtf8HoldsNoAnswer) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"8 km\xB2\"")), "");
    EXPECT_EQ(answerTo(page(std::string(RESULT) + "\xFF\xFE")), "");
}

TEST(Query, APageIsReadUpToItsLimit) {
    const std::string result = RESULT;
    const std::string longest = result + std::string(LONGEST_PAGE - result.size(), 'x');
    EXPECT_EQ(answerTo(response("200 OK", longest)), RESULT_TITLE);
    EXPECT_EQ(answerTo(response("200 OK", longest + "x")), "");
}

// --- What goes wrong ---

TEST(Query, APageWithAnErrorStatusHoldsNoAnswer) {
    for (const char* const status : {"404 Not Found", "500 Internal Server Error", "503 Service Unavailable",
                                     "300 Multiple Choices", "401 Unauthorized"}) {
        EXPECT_EQ(answerTo(response(status, RESULT)), "") << status;
    }
    EXPECT_EQ(answerTo(std::string("this is not HTTP\r\n\r\n") + RESULT), "");
}

TEST(Query, APageThatIsCutHoldsNoAnswer) {
    EXPECT_EQ(answerTo("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(RESULT)), "");
}

TEST(Query, ARedirectionIsFollowed) {
    const Service target(page(RESULT));
    const std::string head = "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nConnection: close\r\nLocation: ";
    const Service service(head + target.Address() + "/m\r\n\r\n");
    EXPECT_EQ(ask(service.Address()), RESULT_TITLE);
    EXPECT_EQ(target.Request(), "GET /m HTTP/1.1");
}

TEST(Query, ARedirectionThatLeadsNowhereIsNoAnswer) {
    const std::string head =
        "HTTP/1.1 302 Found\r\nContent-Length: " + std::to_string(std::string(RESULT).size()) +
        "\r\nConnection: close\r\nLocation: ";
    for (const char* const place : {"file:///etc/passwd", "/input/?i=convert+5+miles+to+km"}) {
        EXPECT_EQ(answerTo(head + place + "\r\n\r\n" + RESULT), "") << place;
    }
}

TEST(Query, AnAddressThatIsNoneIsNoAnswer) {
    for (const char* const address : {"", "127.0.0.1", "file:///etc/passwd", "ftp://127.0.0.1", "http://a b",
                                      "::", "--version", "http:/127.0.0.1", "http://127.0.0.1:1"}) {
        EXPECT_EQ(ask(address), "") << address;
    }
}

TEST(Query, AConnectionThatIsHungUpIsNoAnswer) {
    const Service service("", Service::Manner::HangsUp);
    EXPECT_EQ(ask(service.Address()), "");
}

// Nothing else would end these waits.
TEST(Query, AServiceIsWaitedForOnlySoLong) {
    const Service silent("", Service::Manner::NeverAnswers);
    EXPECT_EQ(ask(silent.Address(), 1), "");
    const Service endless("HTTP/1.1 200 OK\r\n\r\n" + std::string(RESULT), Service::Manner::Drips);
    EXPECT_EQ(ask(endless.Address(), 1), "");
}

TEST(Query, WhoeverGivesUpIsAskedMeanwhileAndLeavesNoProcessBehind) {
    const Service service("", Service::Manner::NeverAnswers);
    int questions = 0;
    EXPECT_EQ(askService(service.Address(), QUERY, 60, [&] { return ++questions == 3; }), "");
    EXPECT_EQ(questions, 3);
    EXPECT_FALSE(hasChildren());
}

TEST(Query, WithoutTheProgramThereIsNoAnswer) {
    const Service service(page(RESULT));
    const Variable path("PATH", "/nonexistent");
    EXPECT_EQ(ask(service.Address()), "");
}

// --- What must not matter ---

TEST(Query, APersonsSettingsOfTheProgramDoNotMatter) {
    std::string folder = "/tmp/tallyquill-test-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const std::string settings = folder + "/.curlrc";
    std::ofstream(settings) << "include\noutput = /dev/null\n";
    {
        const Variable home("HOME", folder);
        const Variable curlHome("CURL_HOME", folder);
        EXPECT_EQ(answerTo(page(RESULT)), RESULT_TITLE);
    }
    std::remove(settings.c_str());
    rmdir(folder.c_str());
}

TEST(Query, AProcessThatIgnoresItsChildrenGetsTheAnswer) {
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(answerTo(page(RESULT)), RESULT_TITLE);
    std::signal(SIGCHLD, before);
}

// --- The address ---

TEST(Query, WhatAnAddressDoesNotAllowIsEncoded) {
    EXPECT_EQ(queryAddress("http://a/", "convert+5+m"), "http://a/input/?i=convert+5+m");
    EXPECT_EQ(queryAddress("http://a/m/", "1"), "http://a/m/input/?i=1");
    EXPECT_EQ(queryAddress("http://a", "1/2&x=\"#%\xC3\xA9"),
              "http://a/input/?i=1%2F2%26x%3D%22%23%25%C3%A9");
}

} // namespace
