// SPDX-License-Identifier: MIT
//
// Every call of the system fails once while the service is asked.
#include "ChildProcess.h"
#include "Query.h"
#include "failing_system.h"
#include "service.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string ask(const Service& service, System& system) {
    return askService(
        service.Address(), "convert+5+miles+to+km", 10, [] { return false; }, system);
}

// The lowest descriptor that is free: what is left open makes it higher.
int freeDescriptor() {
    const int descriptor = dup(STDIN_FILENO);
    close(descriptor);
    return descriptor;
}

TEST(FailingCallsOfAQuery, GiveTheAnswerOrNoneAndLeaveNothingBehind) {
    const Service service(page(RESULT));
    const int before = freeDescriptor();
    const size_t count = failEveryCall([&](FailingSystem& system) {
        const std::string answer = ask(service, system);
        const std::string& what = system.WhatFailed();
        EXPECT_TRUE(answer.empty() || answer == RESULT_TITLE) << what << ": " << answer;
        EXPECT_TRUE(!answer.empty() || !what.empty());
        EXPECT_EQ(before, freeDescriptor()) << what;
        // Such a failure of waitpid itself, which no system knows, leaves the child to its parent's end.
        if (what == "waitpid ") waitpid(-1, nullptr, 0);
        EXPECT_FALSE(hasChildren()) << what;
    });
    EXPECT_GT(count, 40U);
    EXPECT_EQ(RESULT_TITLE, ask(service, System::Real()));
}

// An interruption, as by a window that changes its size, is no failure.
TEST(FailingCallsOfAQuery, AnInterruptionDoesNotCostTheAnswer) {
    const Service service(page(RESULT));
    size_t count = 0;
    for (size_t number = 0;; ++number) {
        FailingSystem system(number, EINTR);
        const std::string answer = ask(service, system);
        if (!system.IsReached()) break;
        const std::string& what = system.WhatFailed();
        const bool isWait = what == "poll " || what == "read " || what == "waitpid ";
        EXPECT_TRUE(!isWait || answer == RESULT_TITLE) << what;
        count += isWait ? 1 : 0;
    }
    EXPECT_GT(count, 3U);
}

// Where waiting for the page fails for good, nobody waits until the service ends.
TEST(FailingCallsOfAQuery, AWaitThatIsNotPossibleEndsAtOnce) {
    class NoPoll : public System {
    public:
        int Poll(pollfd&, int) override {
            errno = ENOMEM;
            return -1;
        }
        ssize_t Read(int, void*, size_t) override {
            ADD_FAILURE() << "this read may last for ever";
            return -1;
        }
    } system;
    const Service service("", Service::Manner::NeverAnswers);
    EXPECT_EQ("", ask(service, system));
    EXPECT_FALSE(hasChildren());
}

TEST(FailingCallsOfAQuery, AProgramThatCannotBeStartedIsTold) {
    FailingSystem system(0, EACCES);
    EXPECT_EQ(-1, startProgram({"true"}, -1, system));
    EXPECT_EQ("posix_spawn true", system.WhatFailed());
    EXPECT_EQ(0, waitForProgram(startProgram({"true"}, -1)));
}

} // namespace
