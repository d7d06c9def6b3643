// SPDX-License-Identifier: MIT
//
// A second start of the program finds the first.
#import "gnustep/OneWindow.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <future>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using Paths = std::vector<std::string>;

class OneWindowTest : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/tallyquill-test-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = name;
        place = folder + "/place";
    }
    void TearDown() override {
        unlink(place.c_str());
        unlink((folder + "/.place.lock").c_str());
        EXPECT_EQ(rmdir(folder.c_str()), 0);
    }

    // What a start with these paths does while the first window answers it.
    bool Start(const OneWindow& first, const Paths& paths, Paths& taken) const {
        std::future<bool> second =
            std::async(std::launch::async, [&] { return OneWindow(place).HandOver(paths, false); });
        pollfd call = {first.Listener(), POLLIN, 0};
        EXPECT_EQ(poll(&call, 1, 10000), 1);
        EXPECT_TRUE(first.Answer(taken));
        return second.get();
    }

    // A program that calls the window by itself.
    int Call() const {
        const int caller = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        place.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(connect(caller, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return caller;
    }

    std::string folder, place;
};

} // namespace

TEST_F(OneWindowTest, TheFirstListensAndIsToldOfTheSecond) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({"/own.script"}, false));
    ASSERT_GE(first.Listener(), 0);
    struct stat info = {};
    ASSERT_EQ(stat(place.c_str(), &info), 0);
    EXPECT_TRUE(S_ISSOCK(info.st_mode));
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
    Paths taken;
    EXPECT_TRUE(Start(first, {}, taken));
    EXPECT_EQ(taken, Paths());
    const Paths many = {"/a b.script", std::string(20000, 'x'), "/\xc3\xa4.txt"};
    EXPECT_TRUE(Start(first, many, taken));
    EXPECT_EQ(taken, many);
}

TEST_F(OneWindowTest, AnotherWindowThatIsWantedIsOpenedAndDisturbsNobody) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, true));
    EXPECT_GE(first.Listener(), 0) << "nobody was there";
    OneWindow second(place);
    EXPECT_FALSE(second.HandOver({}, true));
    EXPECT_LT(second.Listener(), 0);
    Paths taken;
    EXPECT_FALSE(first.Answer(taken));
    EXPECT_TRUE(Start(first, {"/a"}, taken)) << "it listens still";
}

TEST_F(OneWindowTest, WhatAKilledProgramLeftIsReplaced) {
    { EXPECT_FALSE(OneWindow(place).HandOver({}, false)); }
    struct stat info = {};
    ASSERT_EQ(stat(place.c_str(), &info), 0) << "the socket stays behind";
    OneWindow next(place);
    EXPECT_FALSE(next.HandOver({}, false));
    Paths taken;
    EXPECT_TRUE(Start(next, {"/a"}, taken));
    EXPECT_EQ(taken, Paths({"/a"}));
}

TEST_F(OneWindowTest, WhoDoesNotWaitForTheAnswerIsNotServed) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    const int caller = Call();
    ASSERT_EQ(send(caller, "y/a", 3, 0), 3);
    close(caller);
    Paths taken;
    EXPECT_FALSE(first.Answer(taken));
}

TEST_F(OneWindowTest, WhoComesToNoEndHoldsTheWindowForALimitedTime) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    const int caller = Call();
    std::future<bool> isGivenUp = std::async(std::launch::async, [caller] {
        for (int i = 0; i < 200; ++i, usleep(50000))
            if (send(caller, "y", 1, MSG_NOSIGNAL) < 0) return true;
        shutdown(caller, SHUT_WR);
        return false;
    });
    Paths taken;
    EXPECT_FALSE(first.Answer(taken));
    EXPECT_TRUE(isGivenUp.get()) << "it could go on for ten seconds";
    close(caller);
    EXPECT_TRUE(Start(first, {"/a"}, taken)) << "it listens still";
}

// Only root can be somebody else.
TEST_F(OneWindowTest, NobodyElseIsServedOrAsked) {
    if (geteuid() != 0) return;
    const uid_t nobody = 65534;
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    {
        OneWindow first(place);
        EXPECT_FALSE(first.HandOver({}, false));
        ASSERT_EQ(chmod(place.c_str(), 0666), 0);
        ASSERT_EQ(seteuid(nobody), 0);
        const int caller = Call();
        ASSERT_EQ(seteuid(0), 0);
        ASSERT_EQ(send(caller, "y/a", 3, 0), 3);
        ASSERT_EQ(shutdown(caller, SHUT_WR), 0);
        Paths taken;
        EXPECT_FALSE(first.Answer(taken));
        EXPECT_EQ(taken, Paths());
        close(caller);
    }
    ASSERT_EQ(unlink(place.c_str()), 0);
    ASSERT_EQ(unlink((folder + "/.place.lock").c_str()), 0);
    ASSERT_EQ(seteuid(nobody), 0);
    OneWindow theirs(place);
    EXPECT_FALSE(theirs.HandOver({}, false));
    ASSERT_EQ(seteuid(0), 0);
    ASSERT_GE(theirs.Listener(), 0);
    OneWindow ours(place);
    EXPECT_FALSE(ours.HandOver({"/a"}, false));
    EXPECT_GE(ours.Listener(), 0) << "it does without the other one";
}

TEST_F(OneWindowTest, WhoSaysNothingOrGoesOnForEverIsNotServed) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    Paths taken;
    const int silent = Call();
    shutdown(silent, SHUT_WR);
    EXPECT_FALSE(first.Answer(taken));
    close(silent);
    const std::string much(2000000, 'y');
    const int endless = Call();
    std::future<ssize_t> sent =
        std::async(std::launch::async, [&] { return send(endless, much.data(), much.size(), MSG_NOSIGNAL); });
    EXPECT_FALSE(first.Answer(taken));
    EXPECT_LT(sent.get(), static_cast<ssize_t>(much.size())) << "nobody takes the rest";
    close(endless);
}

// The first window is gone in the middle: the second one opens the files itself.
TEST_F(OneWindowTest, WhereTheFirstHangsUpTheSecondIsOnItsOwn) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    const Paths much = {std::string(2000000, 'x')};
    std::future<bool> second =
        std::async(std::launch::async, [&] { return OneWindow(place).HandOver(much, false); });
    const int caller = accept(first.Listener(), nullptr, nullptr);
    close(caller);
    EXPECT_FALSE(second.get());
}

// Another program that listens there, say.
TEST_F(OneWindowTest, WhatDoesNotAnswerAsAWindowTakesNothing) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    for (const std::string answer : {"", "n"}) {
        std::future<bool> second =
            std::async(std::launch::async, [&] { return OneWindow(place).HandOver({"/a"}, false); });
        const int caller = accept(first.Listener(), nullptr, nullptr);
        char bytes[100];
        while (recv(caller, bytes, sizeof bytes, 0) > 0) {
        }
        EXPECT_EQ(send(caller, answer.data(), answer.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(answer.size()));
        close(caller);
        EXPECT_FALSE(second.get()) << answer;
    }
}

// So many files more than now can be opened as long as this lives.
class FewFiles {
public:
    explicit FewFiles(int count) {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
        const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(lowest);
        rlimit few = before;
        few.rlim_cur = static_cast<rlim_t>(lowest + count);
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    ~FewFiles() { setrlimit(RLIMIT_NOFILE, &before); }
    FewFiles(const FewFiles&) = delete;
    FewFiles& operator=(const FewFiles&) = delete;

private:
    rlimit before = {};
};

TEST_F(OneWindowTest, InASystemOutOfSocketsEveryWindowIsOnItsOwn) {
    for (const int count : {0, 1}) { // the first one would be the lock's
        const FewFiles left(count);
        OneWindow window(place);
        EXPECT_FALSE(window.HandOver({}, false)) << count;
        EXPECT_LT(window.Listener(), 0) << count;
    }
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    ASSERT_GE(first.Listener(), 0);
    for (const int count : {0, 1}) {
        const FewFiles left(count);
        OneWindow window(place);
        EXPECT_FALSE(window.HandOver({"/a"}, false)) << count;
        EXPECT_LT(window.Listener(), 0) << count;
    }
    Paths taken;
    EXPECT_TRUE(Start(first, {"/b"}, taken)) << "it listens still";
}

TEST_F(OneWindowTest, WhoCallsASystemOutOfSocketsIsServedLater) {
    OneWindow first(place);
    EXPECT_FALSE(first.HandOver({}, false));
    const int caller = Call();
    ASSERT_EQ(send(caller, "y/a", 3, 0), 3);
    ASSERT_EQ(shutdown(caller, SHUT_WR), 0);
    Paths taken;
    {
        const FewFiles none(0);
        EXPECT_FALSE(first.Answer(taken));
    }
    EXPECT_TRUE(first.Answer(taken));
    EXPECT_EQ(taken, Paths({"/a"}));
    close(caller);
}

TEST_F(OneWindowTest, WhereNothingCanBeMadeEveryWindowIsOnItsOwn) {
    OneWindow window(folder + "/missing/place");
    EXPECT_FALSE(window.HandOver({}, false));
    EXPECT_LT(window.Listener(), 0);
}

TEST_F(OneWindowTest, WithoutAPlaceEveryWindowIsOnItsOwn) {
    OneWindow window("");
    EXPECT_FALSE(window.HandOver({}, false));
    EXPECT_LT(window.Listener(), 0);
}

TEST(MeetingPlace, IsAnotherOneForEachFolderAndDisplay) {
    const std::string one = meetingPlace("/home/a/Tallyquill", ":0");
    EXPECT_EQ(one, meetingPlace("/home/a/Tallyquill", ":0"));
    EXPECT_NE(one, meetingPlace("/home/a/Tallyquill", ":1"));
    EXPECT_NE(one, meetingPlace("/home/b/Tallyquill", ":0"));
    EXPECT_EQ(one.compare(0, 5, getenv("XDG_RUNTIME_DIR"), 5), 0);
}

TEST(MeetingPlace, IsInTheFolderWhereTheSystemHasNoneForTheRun) {
    const std::string before = getenv("XDG_RUNTIME_DIR");
    for (const char* const none : {"", "relative"}) {
        setenv("XDG_RUNTIME_DIR", none, 1);
        EXPECT_EQ(meetingPlace("/home/a/Tallyquill", ":0").rfind("/home/a/Tallyquill/tallyquill-", 0), 0u);
    }
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(meetingPlace("/home/a/Tallyquill", ":0").rfind("/home/a/Tallyquill/tallyquill-", 0), 0u);
    EXPECT_EQ(meetingPlace(std::string(100, 'x'), ":0"), "") << "longer than the address of a socket";
    setenv("XDG_RUNTIME_DIR", before.c_str(), 1);
}
