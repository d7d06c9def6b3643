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
        SetDefault(@"QuerySeconds", @"10");
    }

    void TearDown() override {
        SetDefault(@"QueryServiceURL", @"");
        SetDefault(@"QuerySeconds", @"0");
        ConsoleTest::TearDown();
    }

    void SetDefault(NSString* key, NSString* value) {
        NSDictionary* const defaults = [NSDictionary dictionaryWithObject:value forKey:key];
        [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
    }

    std::string Ask(const std::string& service, const char* query = "convert+5+miles+to+km") {
        SetDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.c_str()]);
        NSString* const answer = [console QueryWAConvert:query];
        return answer ? [answer UTF8String] : "(nil)";
    }

    // What comes of a page that the service sends.
    std::string AnswerTo(const std::string& bytes) {
        const Service service(bytes);
        return Ask(service.Address());
    }

    // The first line of the request.
    std::string RequestOf(const char* query, const char* path = "") {
        const Service service(page(RESULT));
        Ask(service.Address() + path, query);
        return service.Request();
    }
};

// --- What is asked ---

TEST_F(Query, TheMobilePageIsAskedForTheQuery) {
    EXPECT_EQ(RequestOf("convert+5+miles+to+km"), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    EXPECT_EQ(RequestOf("convert+1", "/"), "GET /input/?i=convert+1 HTTP/1.1");
    EXPECT_EQ(RequestOf("convert+1", "/m/"), "GET /m/input/?i=convert+1 HTTP/1.1");
}

TEST_F(Query, WhatAnAddressCannotHoldIsEncoded) {
    EXPECT_EQ(RequestOf("a-b.c_d~e+50%&f#g/h?i=\"j\" k"),
              "GET /input/?i=a-b.c_d~e+50%25%26f%23g%2Fh%3Fi%3D%22j%22%20k HTTP/1.1");
    EXPECT_EQ(RequestOf("20+\xb0"
                        "C"),
              "GET /input/?i=20+%C2%B0C HTTP/1.1");
}

// --- What comes of it ---

TEST_F(Query, TheTitleOfTheResultIsTheAnswer) {
    EXPECT_EQ(AnswerTo(page(RESULT)), RESULT_TITLE);
    EXPECT_EQ(AnswerTo(page("pod_0200 title=\"\u2248 8 km\u00b2\"")), "\u2248 8 km\u00b2");
    EXPECT_EQ(AnswerTo(page("<img title=\"8.047 km\">")), "(nil)");
}

TEST_F(Query, AnErrorOfTheServiceIsNoAnswer) {
    for (const char* status : {"404 Not Found", "500 Internal Server Error", "503 Service Unavailable"}) {
        EXPECT_EQ(AnswerTo(response(status, RESULT)), "(nil)") << status;
    }
    EXPECT_EQ(AnswerTo(std::string("this is not HTTP\r\n\r\n") + RESULT), "(nil)");
}

TEST_F(Query, AnAddressThatIsNoneIsNoAnswer) {
    for (const char* service : {"", "127.0.0.1", "file:///etc", "ftp://127.0.0.1", "http://a b", "::"}) {
        EXPECT_EQ(Ask(service), "(nil)") << service;
    }
}

TEST_F(Query, AServiceThatNeverAnswersIsWaitedForSoLong) {
    static_assert(QUERY_SECONDS == 20, "as documented");
    SetDefault(@"QuerySeconds", @"1");
    const Service service("", Service::Manner::NeverAnswers);
    EXPECT_EQ(Ask(service.Address()), "(nil)"); // nothing else ends the wait
    EXPECT_FALSE(scriptInterrupted);
}

TEST_F(Query, EscapeEndsTheWaitAndLeavesNoProcessBehind) {
    const Service service("", Service::Manner::NeverAnswers);
    Post(@"\033");
    EXPECT_EQ(Ask(service.Address()), "(nil)");
    EXPECT_TRUE(scriptInterrupted);
    EXPECT_FALSE(hasChildren());
}

TEST_F(Query, AnEarlierInterruptionEndsNoWait) {
    const Service service(page(RESULT));
    scriptInterrupted = true;
    EXPECT_EQ(Ask(service.Address()), RESULT_TITLE);
    scriptInterrupted = false;
}

TEST_F(Query, ATimeOutOfRangeIsTheUsualOne) {
    // Escape ends a wait that a limit of no seconds would have ended by itself.
    for (NSString* limit : {@"0", @"-1", @"61", @"soon"}) {
        SetDefault(@"QuerySeconds", limit);
        scriptInterrupted = false;
        const Service service("", Service::Manner::NeverAnswers);
        Post(@"\033");
        EXPECT_EQ(Ask(service.Address()), "(nil)");
        EXPECT_TRUE(scriptInterrupted) << [limit UTF8String];
    }
}

TEST_F(Query, OtherKeysPressedMeanwhileAreNotTyped) {
    SetDefault(@"QuerySeconds", @"1");
    const Service service("", Service::Manner::NeverAnswers);
    Post(@"x");
    EXPECT_EQ(Ask(service.Address()), "(nil)");
    EXPECT_EQ(Text(), "> ");
    EXPECT_FALSE(scriptInterrupted);
}

// --- In the console ---

TEST_F(Query, TheAnswerStandsAboveTheNewPrompt) {
    const Service service(page("pod_0200 title=\"8.047 km\u00b2\""));
    SetDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.Address().c_str()]);
    Enter("convert 5 miles to km");
    EXPECT_EQ(service.Request(), "GET /input/?i=convert+5+miles+to+km HTTP/1.1");
    EXPECT_EQ(Text(), "> convert 5 miles to km\n ...checking...\n8.047 km\u00b2\n\n> ");
    EXPECT_EQ(Entry(), "");
    Enter("1+1");
    EXPECT_NE(Text().find("\n\n> 1+1\nans = 2\n\n> "), std::string::npos);
}

TEST_F(Query, WithoutAnAnswerTheConsoleSaysNotFound) {
    const Service service(response("404 Not Found", RESULT));
    SetDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.Address().c_str()]);
    Enter("convert 5 miles to kg");
    EXPECT_EQ(Text(), "> convert 5 miles to kg\n ...checking...\nNot found.\n\n> ");
    SetDefault(@"QueryServiceURL", @"");
    [console clearConsole];
    Enter("convert 1");
    EXPECT_EQ(Text(), "> convert 1\n ...checking...\nNot found.\n\n> ");
}

TEST_F(Query, TheAnswerIsShownWithoutControlCharacters) {
    const Service service(page("pod_0200 title=\"\x1B]0;x\x07"
                               "8 km\u009b2J\""));
    SetDefault(@"QueryServiceURL", [NSString stringWithUTF8String:service.Address().c_str()]);
    Enter("convert 5 miles to km");
    EXPECT_EQ(Text(), "> convert 5 miles to km\n ...checking...\n?]0;x?8 km?2J\n\n> ");
}

} // namespace
