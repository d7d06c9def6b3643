// SPDX-License-Identifier: MIT
//
// There is no memory for one allocation, or for all from one on: the program ends with a message, what was
// answered before is there, and the definitions file is whole.
#include "program.h"
#include "temporary_folder.h"

#include "../seed.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int TRIES = 150 / TALLYQUILL_CASES_DIVISOR; // in each of the two ways
// A program that ends for lack of memory need not give back what it has.
const std::string NO_LEAK_CHECK = "ASAN_OPTIONS=detect_leaks=0";
const std::string MESSAGE = "tallyquill: out of memory\n";

class LostMemory : public testing::Test {
protected:
    Result RunWith(const std::string& memory) const {
        Invocation invocation;
        invocation.program = TALLYQUILL_SHORT_OF_MEMORY;
        invocation.arguments = arguments;
        invocation.input = input;
        invocation.environment = {"TALLYQUILL_TEST_MEMORY=" + memory, NO_LEAK_CHECK,
                                  "XDG_DATA_HOME=" + folder.Path()};
        return runProgram(invocation);
    }

    // Allocations of the whole run, at random.
    void ExpectAnswersOrAMessage() {
        const Result whole = RunWith("count");
        ASSERT_EQ(0, whole.status) << whole.err;
        const size_t count = std::stoul(whole.err);
        std::mt19937 random = seededRandom();
        SCOPED_TRACE(seedText());
        int messages = 0;
        for (int i = 0; i < 2 * TRIES; ++i) {
            const std::string memory = std::to_string(random() % count) + (i % 2 == 0 ? "" : "+");
            const Result run = RunWith(memory);
            EXPECT_NE(-1, run.status) << memory << ": " << run.err;
            if (run.status == 0) {
                EXPECT_EQ(whole.out, run.out) << memory;
            } else if (run.err == MESSAGE) {
                ++messages;
                EXPECT_EQ(3, run.status) << memory;
                EXPECT_EQ(whole.out.substr(0, run.out.size()), run.out) << memory;
            } else {
                // The unit library answers by itself, with an error of the entry.
                EXPECT_EQ(1, run.status) << memory;
                EXPECT_EQ(0U, run.err.find("** ERROR")) << memory << ": " << run.err;
            }
        }
        EXPECT_GT(messages, TRIES / 10);
    }

    std::vector<std::string> arguments;
    std::string input;
    TemporaryFolder folder;
};

TEST_F(LostMemory, ThatRunsOutInEntriesIsTold) {
    arguments = {"1+1", "f(x)=x^2; f(12)", "total=3*4", "3 km->mi", "unit smoot=67 inch", "2 smoot->m",
                 "list"};
    ExpectAnswersOrAMessage();
}

TEST_F(LostMemory, ThatRunsOutWhileFilesAndLinesAreReadIsTold) {
    std::filesystem::create_directory(folder.File("Tallyquill"));
    putContent(folder.File("Tallyquill/pelmo_functions.txt"),
               "### FUNCTIONS ###\ndouble(x)=2*x\n### VARIABLES ###\nans=1\nrate=1.19\n### CUSTOM UNITS ###\n"
               "unit smoot=67 inch\n### HISTORY ###\n1+1\n");
    arguments = {"--each", "double(x1)*rate"};
    input = "1\n2\n3\n4\n";
    ExpectAnswersOrAMessage();
}

// A prompt at which memory runs out while files are read, entries answered and files written.
TEST_F(LostMemory, ThatRunsOutAtThePromptLeavesTheDefinitionsWhole) {
    const std::string path = folder.File("Tallyquill/pelmo_functions.txt");
    const auto use = [this](const std::string& memory) {
        TerminalSetup setup;
        setup.environment = {"TALLYQUILL_TEST_MEMORY=" + memory, NO_LEAK_CHECK, "HOME=" + folder.Path(),
                             "XDG_DATA_HOME=" + folder.Path(), "XDG_STATE_HOME=" + folder.Path()};
        setup.shellScript = std::string("exec ") + TALLYQUILL_SHORT_OF_MEMORY + " --plain";
        Terminal terminal({}, setup);
        terminal.Type("new=2\ndouble(new)\nexit\n");
        const std::string shown = terminal.ReadUntil("\n\n\n"); // to the end
        return std::make_pair(terminal.Wait(), shown);
    };
    const auto begin = [&] {
        std::filesystem::create_directory(folder.File("Tallyquill"));
        putContent(path, "### FUNCTIONS ###\ndouble(x)=2*x\n### VARIABLES ###\nans=1\n### CUSTOM UNITS ###\n"
                         "### HISTORY ###\n");
    };
    begin();
    const std::string counted = use("count").second;
    const size_t line = counted.find_last_not_of("\r\n0123456789") + 1;
    const size_t count = std::stoul(counted.substr(counted.find_first_of("0123456789", line)));
    std::mt19937 random = seededRandom();
    SCOPED_TRACE(seedText());
    for (int i = 0; i < TRIES; ++i) {
        begin();
        const std::string memory = std::to_string(random() % count) + (i % 2 == 0 ? "" : "+");
        const auto [status, shown] = use(memory);
        const std::string text = contentOf(path);
        const std::string what = memory + ": " + shown + text;
        EXPECT_NE(std::string::npos, text.find("\ndouble(x)=2*x\n")) << what;
        EXPECT_NE(std::string::npos, text.find("\n### HISTORY ###\n")) << what;
        EXPECT_NE(-1, status) << what;
        const bool isSaved = text.find("\nnew=2\n") != std::string::npos;
        EXPECT_TRUE(isSaved || shown.find("memory") != std::string::npos) << what;
        const bool isEnded = shown.find("tallyquill: out of memory") != std::string::npos;
        EXPECT_TRUE(!isEnded || status == 3) << what;
    }
}

} // namespace
