// SPDX-License-Identifier: MIT
#include "Options.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <set>
#include <sstream>

namespace {

Options parse(std::initializer_list<const char*> arguments) {
    std::vector<const char*> argv = {"tallyquill"};
    argv.insert(argv.end(), arguments);
    return parseOptions(static_cast<int>(argv.size()), argv.data());
}

using Entries = std::vector<std::string_view>;

// The inputs, all of which are entries.
Entries entriesOf(const Options& options) {
    Entries entries;
    for (const Options::Input& input : options.inputs) {
        EXPECT_FALSE(input.isFile) << input.text;
        entries.push_back(input.text);
    }
    return entries;
}

std::string refusalOf(std::initializer_list<const char*> arguments) {
    const Options options = parse(arguments);
    EXPECT_EQ(options.action, Options::Action::RefuseUsage);
    return options.refusal;
}

TEST(Options, NothingGivenMeansEvaluateNothing) {
    const Options options = parse({});
    EXPECT_EQ(options.action, Options::Action::Evaluate);
    EXPECT_TRUE(options.inputs.empty());
    EXPECT_FALSE(options.trace);
}

TEST(Options, EveryOperandIsAnEntry) {
    EXPECT_EQ(entriesOf(parse({"1+1", "", "x=2"})), (Entries{"1+1", "", "x=2"}));
}

TEST(Options, OptionsMayFollowEntries) {
    const Options options = parse({"1+1", "--trace", "2+2"});
    EXPECT_TRUE(options.trace);
    EXPECT_EQ(entriesOf(options), (Entries{"1+1", "2+2"}));
}

TEST(Options, BehindTwoDashesEverythingIsAnEntry) {
    const Options options = parse({"--", "-2^2", "--help", "--"});
    EXPECT_EQ(options.action, Options::Action::Evaluate);
    EXPECT_EQ(entriesOf(options), (Entries{"-2^2", "--help", "--"}));
}

TEST(Options, HelpAndVersionAreAnsweredAtOnce) {
    EXPECT_EQ(parse({"--help"}).action, Options::Action::ShowHelp);
    EXPECT_EQ(parse({"1+1", "--version"}).action, Options::Action::ShowVersion);
    EXPECT_EQ(parse({"-h"}).action, Options::Action::ShowHelp);
    EXPECT_EQ(parse({"1+1", "-qV"}).action, Options::Action::ShowVersion);
}

TEST(Options, TheFirstDecidingOptionWins) {
    EXPECT_EQ(parse({"--help", "--wrong"}).action, Options::Action::ShowHelp);
    EXPECT_EQ(parse({"--wrong", "--help"}).action, Options::Action::RefuseUsage);
    EXPECT_EQ(parse({"--version", "--help"}).action, Options::Action::ShowVersion);
}

TEST(Options, AnUnknownOptionIsRefusedByName) {
    for (const char* const wrong : {"-5+3", "-", "-H", "--hel", "--trac=yes", "---", "-q5", "-\xff"}) {
        EXPECT_EQ(refusalOf({wrong}).rfind("unknown option '" + std::string(wrong) + "'\n", 0), 0U) << wrong;
    }
}

TEST(Options, AFlagTakesNoValueAndAnArgumentMayNotLack) {
    EXPECT_EQ(refusalOf({"--help=1"}), "option '--help' takes no value");
    EXPECT_EQ(refusalOf({"1", "--figures"}), "option '--figures' needs a value: N");
    EXPECT_EQ(refusalOf({"-qf"}), "option '-qf' needs a value: FILE");
}

TEST(Options, AValueStandsBehindAnEqualsSignOrIsTheNextArgument) {
    for (const Options& options : {parse({"--file=-", "1"}), parse({"--file", "-", "1"}), parse({"-f-", "1"}),
                                   parse({"-f", "-", "1"}), parse({"-qf-", "1"}), parse({"-qf", "-", "1"})}) {
        ASSERT_EQ(options.inputs.size(), 2U) << options.refusal;
        EXPECT_TRUE(options.inputs[0].isFile);
        EXPECT_EQ(options.inputs[0].text, "-");
        EXPECT_FALSE(options.inputs[1].isFile);
        EXPECT_EQ(options.inputs[1].text, "1");
    }
    EXPECT_EQ(parse({"--file=a=b"}).inputs.at(0).text, "a=b");
}

TEST(Options, EveryNameAndLetterIsThereOnceAndHelpShowsIt) {
    std::set<std::string> names;
    const std::string help = helpText();
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
        EXPECT_TRUE(names.insert(row->name).second) << row->name;
        EXPECT_TRUE(row->letter == 0 || names.insert(std::string(1, row->letter)).second) << row->name;
        const std::string letter = row->letter == 0 ? "      --" : std::string("  -") + row->letter + ", --";
        EXPECT_NE(help.find("\n" + letter + row->name), std::string::npos) << row->name;
        std::istringstream lines(row->help);
        for (std::string line; std::getline(lines, line);)
            EXPECT_NE(help.find(" " + line + "\n"), std::string::npos) << row->name;
    }
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

// The fields that an entry uses, but whether it is recorded, which means nothing to a script.
TEST(Options, EverySettingOfAnEntryHasAnOption) {
    for (const Setting& setting : SETTINGS) {
        bool isThere = setting.entry.field.index() == 0;
        for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
            const auto* const one = std::get_if<SettingOption>(&row->use);
            isThere = isThere || (one != nullptr && one->key == std::string(setting.key));
        }
        EXPECT_TRUE(isThere) << setting.key;
    }
}

TEST(Options, ASettingTakesTheWordsThatItsCommandTakes) {
    for (const OptionRow* row = optionTable(); row->name != nullptr; ++row) {
        const auto* const one = std::get_if<SettingOption>(&row->use);
        if (one == nullptr || row->argument == nullptr || findSetting(one->key)->choices.begin() == nullptr)
            continue;
        std::set<std::string> offered;
        std::istringstream words(row->argument);
        for (std::string word; std::getline(words, word, '|');) offered.insert(word);
        std::set<std::string> known;
        for (const SettingChoice& choice : findSetting(one->key)->choices) known.insert(choice.word);
        EXPECT_EQ(offered, known) << row->name;
    }
}

TEST(Options, SettingsAreReadFromTheTableOfSettings) {
    const Options options = parse({"--rad", "--base", "hex", "--figures=50", "--mark", "'"});
    ASSERT_EQ(options.settings.size(), 4U) << options.refusal;
    const std::vector<std::pair<std::string, int>> expected = {
        {"degmode", 0}, {"dispbase", 16}, {"sigfigs", 50}, {"schar", '\''}};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(options.settings[i].first->key, expected[i].first);
        EXPECT_EQ(options.settings[i].second, expected[i].second);
    }
}

TEST(Options, ColorIsAlwaysNeverOrByTheTerminal) {
    for (const char* const choice : {"auto", "always", "never"})
        EXPECT_EQ(parse({"--color", choice}).color, choice);
    EXPECT_EQ(refusalOf({"--color=red"}), "'red' is no value of option '--color': auto|always|never");
    EXPECT_EQ(refusalOf({"--color=auto|always"}),
              "'auto|always' is no value of option '--color': auto|always|never");
    EXPECT_TRUE(parse({"--plain"}).plain);
}

TEST(Options, AValueThatASettingCannotHaveIsRefused) {
    EXPECT_EQ(refusalOf({"--base=8"}), "'8' is no value of option '--base': bin|dec|hex");
    for (const char* const wrong : {"0", "101", "ten", "", "1.5", "10x", "nan"}) {
        EXPECT_EQ(refusalOf({"--figures", wrong}),
                  "'" + std::string(wrong) + "' is no value of option '--figures': 1 to 100");
    }
    for (const char* const wrong : {"", "5", "a", "(", "ab"}) refusalOf({"--mark", wrong});
}

TEST(Options, ASeparatorWithoutFieldsIsRefused) {
    EXPECT_EQ(refusalOf({"-F,", "1+1"}), "option '--separator' goes with '--each'");
    EXPECT_EQ(parse({"-F,", "--each", "x"}).refusal, "");
}

TEST(Options, TheDecimalMarkIsNoMarkBetweenGroups) {
    EXPECT_EQ(refusalOf({"--mark", "."}), "'.' is the decimal mark and no value of option '--mark'");
    EXPECT_EQ(refusalOf({"--comma", "--mark", ","}),
              "',' is the decimal mark and no value of option '--mark'");
    EXPECT_EQ(refusalOf({"--mark=,", "--comma"}), "',' is the decimal mark and no value of option '--mark'");
    EXPECT_EQ(parse({"--mark", ".", "--comma"}).refusal, "");
    EXPECT_EQ(parse({"--mark", ","}).refusal, "");
}

} // namespace
