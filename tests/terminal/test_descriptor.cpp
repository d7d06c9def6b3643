// SPDX-License-Identifier: MIT
#include "Descriptor.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

class DescriptorTest : public testing::Test {
protected:
    DescriptorTest() { EXPECT_EQ(pipe(ends), 0); }
    ~DescriptorTest() override {
        CloseEnd(0);
        CloseEnd(1);
    }

    void CloseEnd(int i) {
        if (ends[i] >= 0) close(ends[i]);
        ends[i] = -1;
    }
    void SetNonBlocking(int i) const { fcntl(ends[i], F_SETFL, O_NONBLOCK); }

    // Everything up to the end, each time as late as can be: when the pipe is full or nothing more comes.
    std::string DrainLate(const std::atomic<bool>& isOver) const {
        std::string all;
        char block[40000];
        for (;;) {
            while (!isOver && IsWritable()) std::this_thread::yield();
            const ssize_t count = read(ends[0], block, sizeof block);
            if (count <= 0) return all;
            all.append(block, static_cast<size_t>(count));
        }
    }

    // Whether the pipe has room.
    bool IsWritable() const {
        pollfd end = {ends[1], POLLOUT, 0};
        return poll(&end, 1, 0) == 1 && (end.revents & POLLOUT) != 0;
    }

    int ends[2] = {-1, -1};
};

volatile std::sig_atomic_t signalsCaught = 0;

void countSignal(int) {
    signalsCaught = signalsCaught + 1;
}

std::string manyDigits() {
    std::string digits;
    for (int i = 0; i < 200000; ++i) digits += std::to_string(i);
    return digits;
}

TEST_F(DescriptorTest, WritesEverythingIntoAPipeThatFillsUp) {
    SetNonBlocking(1);
    const std::string text = manyDigits(); // a megabyte; a pipe takes 64 KiB
    std::string read;
    std::atomic<bool> isOver{false};
    std::thread reader([&] { read = DrainLate(isOver); });
    EXPECT_TRUE(writeAll(ends[1], text));
    isOver = true;
    CloseEnd(1);
    reader.join();
    EXPECT_TRUE(read == text);
}

TEST_F(DescriptorTest, WaitsForInputThatIsNotThereYet) {
    SetNonBlocking(0);
    std::thread writer([&] {
        // Time for the read to begin. When that comes later, the byte is there already, and the read has it
        // too.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(write(ends[1], "x", 1), 1);
    });
    char byte = 0;
    EXPECT_EQ(readSome(ends[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    writer.join();
}

TEST_F(DescriptorTest, AnInterruptedReadGoesOn) {
    struct sigaction action = {};
    action.sa_handler = countSignal; // without SA_RESTART: the read comes back with EINTR
    sigaction(SIGUSR1, &action, nullptr);
    const pthread_t reader = pthread_self();
    std::thread writer([&] {
        while (signalsCaught < 5) {
            pthread_kill(reader, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_EQ(write(ends[1], "x", 1), 1);
    });
    char byte = 0;
    EXPECT_EQ(readSome(ends[0], &byte, 1), 1);
    writer.join();
}

TEST_F(DescriptorTest, TheEndOfInputReadsAsZeroBytes) {
    CloseEnd(1);
    char byte = 0;
    EXPECT_EQ(readSome(ends[0], &byte, 1), 0);
}

TEST_F(DescriptorTest, FailuresAreReportedWithTheirReason) {
    char byte = 0;
    EXPECT_EQ(readSome(-1, &byte, 1), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_FALSE(writeAll(-1, "x"));
    EXPECT_EQ(errno, EBADF);
}

TEST_F(DescriptorTest, WritingNothingAlwaysWorks) {
    EXPECT_TRUE(writeAll(-1, ""));
}

// A descriptor that is never ready, and a wait that is interrupted once and then fails for good.
TEST_F(DescriptorTest, AnInterruptedWaitGoesOnAndOneThatFailsEndsTheCall) {
    class NeverReady : public System {
    public:
        ssize_t Read(int, void*, size_t) override {
            errno = EAGAIN;
            return -1;
        }
        ssize_t Write(int, const void*, size_t) override {
            errno = EAGAIN;
            return -1;
        }
        int Poll(pollfd& file, int) override {
            waited.push_back(file.events);
            errno = waited.size() % 2 == 1 ? EINTR : ENOMEM;
            return -1;
        }
        std::vector<short> waited;
    } system;
    char byte = 0;
    EXPECT_EQ(-1, readSome(ends[0], &byte, 1, system));
    EXPECT_EQ(ENOMEM, errno);
    EXPECT_FALSE(writeAll(ends[1], "text", system));
    EXPECT_EQ(ENOMEM, errno);
    EXPECT_EQ(std::vector<short>({POLLIN, POLLIN, POLLOUT, POLLOUT}), system.waited);
}

} // namespace
