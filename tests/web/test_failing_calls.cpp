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

namespace {

std::string ask(const Service& service, System& system) {
    return askService(
        service.Address(), "convert+5+miles+to+km", 10, [] { return false; }, system);
}

// Counts the descriptors that are open. The service, in a thread of its own, opens others.
class CountingSystem : public FailingSystem {
public:
    using FailingSystem::FailingSystem;

    int MakePipe(int* ends) override {
        const int result = FailingSystem::MakePipe(ends);
        if (result == 0) open += 2;
        return result;
    }
    int Close(int file) override {
        --open;
        return FailingSystem::Close(file);
    }

    int open = 0;
};

TEST(FailingCallsOfAQuery, GiveTheAnswerOrNoneAndLeaveNothingBehind) {
    const Service service(page(RESULT));
    const size_t count = failEveryCall<CountingSystem>([&](CountingSystem& system) {
        const std::string answer = ask(service, system);
        const std::string& what = system.WhatFailed();
        EXPECT_TRUE(answer.empty() || answer == RESULT_TITLE) << what << ": " << answer;
        EXPECT_TRUE(!answer.empty() || !what.empty());
        EXPECT_EQ(0, system.open) << what;
        // Such a failure of waitpid itself, which no system knows, leaves the child to its parent's end.
        if (what == "waitpid ") waitpid(-1, nullptr, 0);
        EXPECT_FALSE(hasChildren()) << what;
    });
    EXPECT_GT(count, 30U); // how often it waits is not always the same
    EXPECT_EQ(RESULT_TITLE, ask(service, System::Real()));
}

// As by a window that changes its size.
TEST(FailingCallsOfAQuery, AnInterruptionDoesNotCostTheAnswer) {
    class Interrupted : public System {
    public:
        int Poll(pollfd& file, int milliseconds) override {
            return polls++ == 0 ? Interrupt() : System::Poll(file, milliseconds);
        }
        ssize_t Read(int file, void* bytes, size_t size) override {
            return reads++ == 0 ? Interrupt() : System::Read(file, bytes, size);
        }
        pid_t WaitForEnd(pid_t process, int& status) override {
            return waits++ == 0 ? Interrupt() : System::WaitForEnd(process, status);
        }
        int polls = 0, reads = 0, waits = 0;

    private:
        static int Interrupt() {
            errno = EINTR;
            return -1;
        }
    } system;
    const Service service(page(RESULT));
    EXPECT_EQ(RESULT_TITLE, ask(service, system));
    for (const int count : {system.polls, system.reads, system.waits}) EXPECT_GE(count, 2);
    EXPECT_FALSE(hasChildren());
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
