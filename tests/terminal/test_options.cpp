// SPDX-License-Identifier: MIT
#include "Options.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace {

Options parse(std::initializer_list<const char*> arguments) {
    std::vector<const char*> argv = {"tallyquill"};
    argv.insert(argv.end(), arguments);
    return parseOptions(static_cast<int>(argv.size()), argv.data());
}

using Entries = std::vector<std::string_view>;

TEST(Options, NothingGivenMeansEvaluateNothing) {
    const Options options = parse({});
    EXPECT_EQ(options.action, Options::Action::Evaluate);
    EXPECT_TRUE(options.entries.empty());
    EXPECT_FALSE(options.trace);
}

TEST(Options, EveryOperandIsAnEntry) {
    EXPECT_EQ(parse({"1+1", "", "x=2"}).entries, (Entries{"1+1", "", "x=2"}));
}

TEST(Options, OptionsMayFollowEntries) {
    const Options options = parse({"1+1", "--trace", "2+2"});
    EXPECT_TRUE(options.trace);
    EXPECT_EQ(options.entries, (Entries{"1+1", "2+2"}));
}

TEST(Options, BehindTwoDashesEverythingIsAnEntry) {
    const Options options = parse({"--", "-2^2", "--help", "--"});
    EXPECT_EQ(options.action, Options::Action::Evaluate);
    EXPECT_EQ(options.entries, (Entries{"-2^2", "--help", "--"}));
}

TEST(Options, HelpAndVersion) {
    EXPECT_EQ(parse({"--help"}).action, Options::Action::ShowHelp);
    EXPECT_EQ(parse({"1+1", "--version"}).action, Options::Action::ShowVersion);
}

TEST(Options, TheFirstDecidingOptionWins) {
    EXPECT_EQ(parse({"--help", "--wrong"}).action, Options::Action::ShowHelp);
    EXPECT_EQ(parse({"--wrong", "--help"}).action, Options::Action::RefuseUsage);
    EXPECT_EQ(parse({"--version", "--help"}).action, Options::Action::ShowVersion);
}

TEST(Options, AnUnknownOptionIsRefusedByName) {
    for (const char* const wrong :
         {"-5+3", "-", "-h", "--hel", "--help=1", "--trace=yes", "--no-files", "---"}) {
        const Options options = parse({wrong});
        EXPECT_EQ(options.action, Options::Action::RefuseUsage) << wrong;
        EXPECT_EQ(options.refused, wrong);
    }
}

} // namespace
