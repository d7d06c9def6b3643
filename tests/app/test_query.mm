// SPDX-License-Identifier: MIT
//
// The online query, against a service of our own on the loopback interface.
#import "console_fixture.h"

#import "WebQuery.h"

#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <mutex>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// Accepts one connection after the other, reads the head of the request and sends its answer.
class Service {
public:
    enum Manner { ANSWERS, HANGS_UP, NEVER_ANSWERS, DRIPS };

    explicit Service(std::string answer, Manner manner = ANSWERS) : bytes(std::move(answer)), way(manner) {
        listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        sockaddr* const any = reinterpret_cast<sockaddr*>(&address);
        if (listener < 0 || bind(listener, any, size) != 0 || listen(listener, 8) != 0 ||
            getsockname(listener, any, &size) != 0) {
            ADD_FAILURE() << "no loopback socket";
            return;
        }
        port = ntohs(address.sin_port);
        worker = std::thread([this] { Serve(); });
    }

    ~Service() {
        ends = true;
        shutdown(listener, SHUT_RDWR); // accept returns
        if (worker.joinable()) worker.join();
        close(listener);
    }

    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port); }

    // The first line of the last request.
    std::string Request() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return request;
    }

private:
    void Serve() {
        while (!ends) {
            const int connection = accept(listener, nullptr, nullptr);
            if (connection < 0) return;
            Answer(connection);
            close(connection);
        }
    }

    void Answer(int connection) {
        std::string head;
        char buffer[1000];
        while (head.find("\r\n\r\n") == std::string::npos) {
            const ssize_t count = recv(connection, buffer, sizeof buffer, 0);
            if (count <= 0) return;
            head.append(buffer, static_cast<size_t>(count));
        }
        {
            const std::lock_guard<std::mutex> lock(mutex);
            request = head.substr(0, head.find("\r\n"));
        }
        if (way == ANSWERS || way == DRIPS) send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        while (way == NEVER_ANSWERS || way == DRIPS) {
            if (ends) return;
            usleep(20000);
            if (way == DRIPS && send(connection, " ", 1, MSG_NOSIGNAL) < 0) return;
        }
    }

    const std::string bytes;
    const Manner way;
    mutable std::mutex mutex;
    std::string request;
    int listener = -1;
    int port = 0;
    std::atomic<bool> ends{false};
    std::thread worker;
};

std::string response(const std::string& status, const std::string& body) {
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

std::string page(const std::string& body) {
    return response("200 OK", "<html>" + body + "</html>");
}

const char* const RESULT = "<div id=\"pod_0200\"><img title=\"8.047 km (kilometers)\" alt=\"other\"></div>";

class Query : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        setDefault(@"QuerySeconds", @"10");
    }

    void TearDown() override {
        setDefault(@"QueryServiceURL", @"");
        setDefault(@"QuerySeconds", @"0");
        ConsoleTest::TearDown();
    }

    void setDefault(NSString* key, NSString* value) {
        NSDictionary* const defaults = [NSDictionary dictionaryWithObject:value forKey:key];
        [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
    }

    std::string ask(const std::string& service, const char* query = "convert+5+miles+to+km") {
        setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.c_str()]);
        NSString* const answer = [console QueryWAConvert:query];
        return answer ? [answer UTF8String] : "(nil)";
    }

    // What comes of a page that the service sends.
    std::string answerTo(const std::string& bytes) {
        const Service service(bytes);
        return ask(service.Address());
    }

    // The first line of the request.
    std::string requestOf(const char* query, const char* path = "") {
        const Service service(page(RESULT));
        ask(service.Address() + path, query);
        return service.Request();
    }

    double seconds(const Service& service) {
        const Clock::time_point begin = Clock::now();
        EXPECT_EQ(ask(service.Address()), "(nil)");
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }
};

// --- What is asked ---

TEST_F(Query, theMobilePageIsAskedForTheQuery) {
    EXPECT_EQ(requestOf("convert+5+miles+to+km"), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    EXPECT_EQ(requestOf("convert+1", "/"), "GET /input/?i=convert+1 HTTP/1.1");
    EXPECT_EQ(requestOf("convert+1", "/m/"), "GET /m/input/?i=convert+1 HTTP/1.1");
}

TEST_F(Query, whatAnAddressCannotHoldIsEncoded) {
    EXPECT_EQ(requestOf("a-b.c_d~e+50%&f#g/h?i=\"j\" k"),
              "GET /input/?i=a-b.c_d~e+50%25%26f%23g%2Fh%3Fi%3D%22j%22%20k HTTP/1.1");
    EXPECT_EQ(requestOf("20+\xb0"
                        "C"),
              "GET /input/?i=20+%C2%B0C HTTP/1.1");
}

// --- What is found in the page ---

TEST_F(Query, theTitleBehindTheMarkIsTheAnswer) {
    EXPECT_EQ(answerTo(page(RESULT)), "8.047 km (kilometers)");
    EXPECT_EQ(answerTo(page(std::string("<img title=\"the input\">") + RESULT + "<img title=\"later\">")),
              "8.047 km (kilometers)");
    EXPECT_EQ(answerTo(page("pod_0200 title \"x\"")), "x");
}

TEST_F(Query, withoutTheMarksThereIsNoAnswer) {
    EXPECT_EQ(answerTo(page("<img title=\"8.047 km\">")), "(nil)");
    EXPECT_EQ(answerTo(page("<img title=\"8.047 km\"><div id=\"pod_0200\">")), "(nil)");
    EXPECT_EQ(answerTo(page("<div id=\"pod_0200\"><img alt=\"8.047 km\">")), "(nil)");
    EXPECT_EQ(answerTo(page("pod_0200 title=8.047")), "(nil)");
    EXPECT_EQ(answerTo(page("")), "(nil)");
    EXPECT_EQ(answerTo(response("200 OK", "")), "(nil)");
}

TEST_F(Query, anEmptyTitleIsNoAnswer) {
    EXPECT_EQ(answerTo(page("<div id=\"pod_0200\"><img title=\"\" alt=\"x\">")), "(nil)");
}

TEST_F(Query, anAnswerOfSeveralLinesBecomesOne) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"8 km\n= 8000 m\r\n(about)\"")), "8 km = 8000 m  (about)");
}

TEST_F(Query, theAnswerMayHaveAnyCharacters) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"\u2248 8 km\u00b2\"")), "\u2248 8 km\u00b2");
}

TEST_F(Query, aPageThatIsNotUtf8IsNoAnswer) {
    EXPECT_EQ(answerTo(page("pod_0200 title=\"8 km\xb2\"")), "(nil)");
    EXPECT_EQ(answerTo(page(std::string(RESULT) + "\xff\xfe")), "(nil)");
}

TEST_F(Query, aLongPageIsReadWhole) {
    const std::string filling(3000000, 'x');
    EXPECT_EQ(answerTo(page(filling + RESULT + filling)), "8.047 km (kilometers)");
}

// --- What goes wrong ---

TEST_F(Query, anErrorOfTheServiceIsNoAnswer) {
    for (const char* status : {"404 Not Found", "500 Internal Server Error", "503 Service Unavailable"}) {
        EXPECT_EQ(answerTo(response(status, "<html><title>\"sorry\"</title></html>")), "(nil)") << status;
    }
    EXPECT_EQ(answerTo("this is not HTTP\r\n\r\n"), "(nil)");
}

TEST_F(Query, aRefusedConnectionIsNoAnswer) {
    std::string address;
    {
        const Service closed("");
        address = closed.Address();
    }
    EXPECT_EQ(ask(address), "(nil)");
}

TEST_F(Query, aConnectionThatIsHungUpIsNoAnswer) {
    const Service service("", Service::HANGS_UP);
    EXPECT_EQ(ask(service.Address()), "(nil)");
}

TEST_F(Query, anAddressThatIsNoneIsNoAnswer) {
    for (const char* service : {"", "127.0.0.1", "file:///etc", "ftp://127.0.0.1", "http://a b", "::"}) {
        EXPECT_EQ(ask(service), "(nil)") << service;
    }
}

TEST_F(Query, aServiceThatNeverAnswersIsWaitedForSoLong) {
    static_assert(QUERY_SECONDS == 20, "as documented");
    setDefault(@"QuerySeconds", @"1");
    const Service service("", Service::NEVER_ANSWERS);
    const double time = seconds(service);
    EXPECT_GE(time, 1.0);
    EXPECT_LT(time, 5.0);
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Query, anAnswerWithoutAnEndIsWaitedForSoLong) {
    setDefault(@"QuerySeconds", @"1");
    const Service service("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n", Service::DRIPS);
    const double time = seconds(service);
    EXPECT_GE(time, 1.0);
    EXPECT_LT(time, 5.0);
}

TEST_F(Query, escapeEndsTheWait) {
    const Service service("", Service::NEVER_ANSWERS);
    post(@"\033");
    EXPECT_LT(seconds(service), 5.0);
    EXPECT_TRUE(scriptInterrupted);
}

TEST_F(Query, aTimeOutOfRangeIsTheUsualOne) {
    // Escape ends a wait that a limit of no seconds would have ended by itself.
    for (NSString* limit : {@"0", @"-1", @"61", @"soon"}) {
        setDefault(@"QuerySeconds", limit);
        scriptInterrupted = false;
        const Service service("", Service::NEVER_ANSWERS);
        post(@"\033");
        EXPECT_LT(seconds(service), 5.0);
        EXPECT_TRUE(scriptInterrupted) << [limit UTF8String];
    }
}

TEST_F(Query, otherKeysPressedMeanwhileAreNotTyped) {
    setDefault(@"QuerySeconds", @"1");
    const Service service("", Service::NEVER_ANSWERS);
    post(@"x");
    EXPECT_GE(seconds(service), 1.0);
    EXPECT_EQ(text(), "> ");
    EXPECT_FALSE(scriptInterrupted);
}

// --- In the console ---

TEST_F(Query, theAnswerStandsAboveTheNewPrompt) {
    const Service service(page("pod_0200 title=\"8.047 km\u00b2\""));
    setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.Address().c_str()]);
    enter("convert 5 miles to km");
    EXPECT_EQ(service.Request(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    EXPECT_EQ(text(), "> convert 5 miles to km\n ...checking...\n8.047 km\u00b2\n\n> ");
    EXPECT_EQ(entry(), "");
    enter("1+1");
    EXPECT_NE(text().find("\n\n> 1+1\nans = 2\n\n> "), std::string::npos);
}

TEST_F(Query, withoutAnAnswerTheConsoleSaysNotFound) {
    const Service service(response("404 Not Found", ""));
    setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.Address().c_str()]);
    enter("convert 5 miles to kg");
    EXPECT_EQ(text(), "> convert 5 miles to kg\n ...checking...\nNot found.\n\n> ");
    setDefault(@"QueryServiceURL", @"");
    [console clearConsole];
    enter("convert 1");
    EXPECT_EQ(text(), "> convert 1\n ...checking...\nNot found.\n\n> ");
}

} // namespace
