// SPDX-License-Identifier: MIT
//
// The online query, against a service of our own on the loopback interface. The page is the subject of
// tests/web.
#import "console_fixture.h"

#include "Query.h"
#include "service.h"

namespace {

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
        return ask(service.address());
    }

    // The first line of the request.
    std::string requestOf(const char* query, const char* path = "") {
        const Service service(page(kResult));
        ask(service.address() + path, query);
        return service.request();
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

// --- What comes of it ---

TEST_F(Query, theTitleOfTheResultIsTheAnswer) {
    EXPECT_EQ(answerTo(page(kResult)), kResultTitle);
    EXPECT_EQ(answerTo(page("pod_0200 title=\"\u2248 8 km\u00b2\"")), "\u2248 8 km\u00b2");
    EXPECT_EQ(answerTo(page("<img title=\"8.047 km\">")), "(nil)");
}

TEST_F(Query, anErrorOfTheServiceIsNoAnswer) {
    for (const char* status : {"404 Not Found", "500 Internal Server Error", "503 Service Unavailable"}) {
        EXPECT_EQ(answerTo(response(status, kResult)), "(nil)") << status;
    }
    EXPECT_EQ(answerTo(std::string("this is not HTTP\r\n\r\n") + kResult), "(nil)");
}

TEST_F(Query, anAddressThatIsNoneIsNoAnswer) {
    for (const char* service : {"", "127.0.0.1", "file:///etc", "ftp://127.0.0.1", "http://a b", "::"}) {
        EXPECT_EQ(ask(service), "(nil)") << service;
    }
}

TEST_F(Query, aServiceThatNeverAnswersIsWaitedForSoLong) {
    static_assert(QUERY_SECONDS == 20, "as documented");
    setDefault(@"QuerySeconds", @"1");
    const Service service("", Service::Manner::NeverAnswers);
    EXPECT_EQ(ask(service.address()), "(nil)"); // nothing else ends the wait
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Query, escapeEndsTheWaitAndLeavesNoProcessBehind) {
    const Service service("", Service::Manner::NeverAnswers);
    post(@"\033");
    EXPECT_EQ(ask(service.address()), "(nil)");
    EXPECT_TRUE(scriptInterrupted);
    EXPECT_FALSE(hasChildren());
}

TEST_F(Query, anEarlierInterruptionEndsNoWait) {
    const Service service(page(kResult));
    scriptInterrupted = true;
    EXPECT_EQ(ask(service.address()), kResultTitle);
    scriptInterrupted = false;
}

TEST_F(Query, aTimeOutOfRangeIsTheUsualOne) {
    // Escape ends a wait that a limit of no seconds would have ended by itself.
    for (NSString* limit : {@"0", @"-1", @"61", @"soon"}) {
        setDefault(@"QuerySeconds", limit);
        scriptInterrupted = false;
        const Service service("", Service::Manner::NeverAnswers);
        post(@"\033");
        EXPECT_EQ(ask(service.address()), "(nil)");
        EXPECT_TRUE(scriptInterrupted) << [limit UTF8String];
    }
}

TEST_F(Query, otherKeysPressedMeanwhileAreNotTyped) {
    setDefault(@"QuerySeconds", @"1");
    const Service service("", Service::Manner::NeverAnswers);
    post(@"x");
    EXPECT_EQ(ask(service.address()), "(nil)");
    EXPECT_EQ(text(), "> ");
    EXPECT_FALSE(scriptInterrupted);
}

// --- In the console ---

TEST_F(Query, theAnswerStandsAboveTheNewPrompt) {
    const Service service(page("pod_0200 title=\"8.047 km\u00b2\""));
    setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.address().c_str()]);
    enter("convert 5 miles to km");
    EXPECT_EQ(service.request(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    EXPECT_EQ(text(), "> convert 5 miles to km\n ...checking...\n8.047 km\u00b2\n\n> ");
    EXPECT_EQ(entry(), "");
    enter("1+1");
    EXPECT_NE(text().find("\n\n> 1+1\nans = 2\n\n> "), std::string::npos);
}

TEST_F(Query, withoutAnAnswerTheConsoleSaysNotFound) {
    const Service service(response("404 Not Found", kResult));
    setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.address().c_str()]);
    enter("convert 5 miles to kg");
    EXPECT_EQ(text(), "> convert 5 miles to kg\n ...checking...\nNot found.\n\n> ");
    setDefault(@"QueryServiceURL", @"");
    [console clearConsole];
    enter("convert 1");
    EXPECT_EQ(text(), "> convert 1\n ...checking...\nNot found.\n\n> ");
}

TEST_F(Query, theAnswerIsShownWithoutControlCharacters) {
    const Service service(page("pod_0200 title=\"\x1B]0;x\x07"
                               "8 km\u009b2J\""));
    setDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.address().c_str()]);
    enter("convert 5 miles to km");
    EXPECT_EQ(text(), "> convert 5 miles to km\n ...checking...\n?]0;x?8 km?2J\n\n> ");
}

} // namespace
