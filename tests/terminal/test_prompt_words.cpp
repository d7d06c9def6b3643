// SPDX-License-Identifier: MIT
#include "PromptWords.h"

#include "Functions.h"

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <sstream>
#include <string>

namespace {

class PromptWordsTest : public testing::Test {
protected:
    PromptWordsTest() {
        while (const Function* function = funcs.Get(0)) funcs.DeleteFunction(function);
        calc->InitializeFunctionsAndVars();
    }

    PromptReply Run(std::string_view line) { return runPromptWord({*calc, settings, history, 80}, line); }

    // The reply's text, which is no error.
    std::string Text(std::string_view line) {
        const PromptReply reply = Run(line);
        EXPECT_EQ(reply.kind, PromptReply::TEXT) << line << ": " << reply.text;
        return reply.text;
    }

    std::string Error(std::string_view line) {
        const PromptReply reply = Run(line);
        EXPECT_EQ(reply.kind, PromptReply::ERROR) << line << ": " << reply.text;
        return reply.text;
    }

    static bool Contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    std::unique_ptr<ZqCalculator> calc = std::make_unique<ZqCalculator>();
    KeptSettings settings; // none was changed yet
    std::vector<std::string> history = {"1+1", "y=SIN(30)", "sin(60)"};
};

TEST_F(PromptWordsTest, HelpNamesEveryWordWithALineAndTheTopics) {
    const std::string help = Text(":help");
    for (const PromptWord& word : promptWords())
        EXPECT_TRUE(Contains(help, std::string("  ") + word.word)) << word.word;
    EXPECT_TRUE(Contains(help, "Command words,"));
}

TEST_F(PromptWordsTest, TheGuideHasTheSameWords) {
    const std::string section = Text(":help words of the prompt");
    for (const PromptWord& word : promptWords()) {
        const std::string left = word.word + std::string(*word.argument ? " " : "") + word.argument;
        EXPECT_TRUE(Contains(section, "  " + left + " ")) << left;
        EXPECT_TRUE(Contains(section, word.help)) << left;
    }
}

TEST_F(PromptWordsTest, HelpOnATopicIsThatPartOfTheGuide) {
    EXPECT_TRUE(Contains(Text(":help bases"), "Bases\n"));
    EXPECT_EQ(Error(":help exponent").rfind("no help on 'exponent'; these topics tell of it: How", 0), 0U)
        << Error(":help exponent");
    EXPECT_EQ(Error(":help nonsense"), "no help on 'nonsense'; :help lists the topics\n");
}

TEST_F(PromptWordsTest, HelpOnAWordIsWhatTheGuideSaysOfIt) {
    EXPECT_TRUE(Contains(Text(":help XOR"), "Precedence\n  @  exclusive or (xor), bit by bit\n"))
        << Text(":help XOR");
    const std::string text = Text(":help rlwrap");
    EXPECT_EQ(text.rfind("The prompt of the terminal\n--plain reads lines without an editor", 0), 0U) << text;
    EXPECT_TRUE(Contains(text, "programs such as rlwrap;")) << text;
}

TEST_F(PromptWordsTest, HelpOnANameIsTheLineAboutIt) {
    EXPECT_EQ(Text(":help sqrt"), "  sqrt(x)                   square root\n");
    EXPECT_TRUE(Contains(Text(":help sigfigs"), "shows so many significant figures"));
}

TEST_F(PromptWordsTest, VarsShowsTheVariablesInTheSettingsOfNow) {
    calc->ProcessEntry("width=2/3; sigfigs 3", false);
    EXPECT_TRUE(Contains(Text(":vars"), "width = 0.667\n"));
    EXPECT_EQ(Text(":vars").substr(0, 4), "ans ");
}

TEST_F(PromptWordsTest, FuncsShowsAPersonsOwnThenThePredefinedOnesWithALineEach) {
    calc->ProcessEntry("double(x)=x*2", false);
    const std::string text = Text(":funcs");
    EXPECT_TRUE(Contains(text, "double(x)=x*2\n"));
    EXPECT_LT(text.find("double(x)"), text.find("sqrt(x)"));
    EXPECT_TRUE(Contains(text, "  sqrt(x)                   square root\n"));
    calc->ProcessEntry("del sqrt", false);
    EXPECT_FALSE(Contains(Text(":funcs"), "sqrt(x)"));
}

TEST_F(PromptWordsTest, UnitsShowsThoseWithAPartInTheirNamesAndThoseThatAUnitConvertsTo) {
    EXPECT_EQ(Text(":units teasp"), "  teaspoon                  4.928921583e-06 meter^3\n");
    const std::string text = Text(":units gallon");
    EXPECT_TRUE(Contains(text, "Units that gallon can be converted to:\n"));
    EXPECT_TRUE(Contains(text, "\n  liter"));
    EXPECT_FALSE(Contains(text, "\n  second"));
    EXPECT_TRUE(Contains(Text(":units"), "Prefixes: yotta"));
    EXPECT_EQ(Text(":units km/hr"), "no named unit is its equal; km/hr can be converted\n");
    EXPECT_EQ(Error(":units zzz"), "no unit's name contains 'zzz'\n");
}

TEST_F(PromptWordsTest, SetShowsAllSettingsOneOfThemAndChangesIt) {
    EXPECT_EQ(Text(":set sigfigs"),
              "  sigfigs = 10              shows so many significant figures, 1 to 100\n");
    EXPECT_TRUE(Contains(Text(":set sigfigs 4"), "sigfigs = 4 "));
    EXPECT_EQ(calc->sigFigs, 4);
    EXPECT_EQ(settings.numbers["sigfigs"], 4);
    EXPECT_TRUE(Contains(Text(":set display=hex"), "dispbase = hex"));
    EXPECT_EQ(calc->displayBase, 16);
    EXPECT_TRUE(Contains(Text(":Set Display Bin"), "dispbase = bin"));
    EXPECT_TRUE(Contains(Text(":set twoscomp ON"), "twoscomp = on"));
    EXPECT_TRUE(calc->twosComp);
    const std::string all = Text(":set");
    for (const Setting& setting : SETTINGS)
        EXPECT_TRUE(Contains(all, std::string(setting.key) + " = ")) << setting.key;
    EXPECT_EQ(Text(":set autoeval"),
              "  autoeval = on             shows the answer below the line while you type at\n"
              "                            the prompt\n");
    std::istringstream lines(all);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(std::regex_match(line, std::regex("  (\\w+ = .*| {25}) \\w[^=]*"))) << line;
        EXPECT_LE(line.size(), 80U);
    }
}

TEST_F(PromptWordsTest, SetRefusesWhatIsNoSettingAndNoValue) {
    EXPECT_EQ(Error(":set color red"), "no setting is called 'color'; :set lists them\n");
    EXPECT_EQ(Error(":set sigfigs 0"), "'0' is no value of sigfigs\n");
    EXPECT_EQ(Error(":set sigfigs 5x"), "'5x' is no value of sigfigs\n");
    EXPECT_EQ(Error(":set dispbase oct"), "'oct' is no value of dispbase\n");
    calc->degreeMode = true;
    EXPECT_EQ(Error(":set degmode off"), "'off' is no value of degmode\n");
    EXPECT_EQ(Error(":set twoscomp maybe"), "'maybe' is no value of twoscomp\n");
    EXPECT_TRUE(calc->degreeMode);
    EXPECT_EQ(Error(":set schar ."), "'.' is the decimal mark\n");
    EXPECT_TRUE(Contains(Text(":set european on"), "european = on"));
    EXPECT_EQ(Error(":set schar ,"), "',' is the decimal mark\n");
    EXPECT_TRUE(Contains(Text(":set schar ."), "schar = ."));
    EXPECT_EQ(Error(":set schar 5"), "'5' is no value of schar\n");
    EXPECT_EQ(Error(":set bgcolor red"), "'red' is no value of bgcolor\n");
    EXPECT_EQ(calc->sigFigs, 10);
}

TEST_F(PromptWordsTest, HistoryShowsTheEntriesThatContainAPart) {
    EXPECT_EQ(Text(":history"), "1+1\ny=SIN(30)\nsin(60)\n");
    EXPECT_EQ(Text(":history sin"), "y=SIN(30)\nsin(60)\n");
}

TEST_F(PromptWordsTest, BaseShowsTheLastAnswerAgainAndChangesNoSetting) {
    EXPECT_EQ(Error(":base hex"), "there is no answer yet\n");
    calc->ProcessEntry("mask = 5", false);
    EXPECT_EQ(Text(":base bin"), "mask = 0b 0101\n");
    EXPECT_EQ(Text(":Base HEX"), "mask = 0x0005\n");
    EXPECT_EQ(calc->displayBase, 10);
    EXPECT_EQ(Error(":base oct"), ":base takes bin, dec or hex\n");
}

TEST_F(PromptWordsTest, QuitEndsTheProgram) {
    EXPECT_EQ(Run(":quit").kind, PromptReply::END);
}

TEST_F(PromptWordsTest, AWordMayBeShortenedAsLongAsItIsOneWord) {
    EXPECT_EQ(Run(":q").kind, PromptReply::END);
    EXPECT_EQ(Error(":h"), "':h' may be :help or :history\n");
    EXPECT_EQ(Error(":x"), "no word of the prompt is called ':x'; :help lists them\n");
    EXPECT_EQ(Error(": 5"), "no word of the prompt is called ':'; :help lists them\n");
    EXPECT_EQ(Error(":quit now"), ":quit takes nothing behind it\n");
}

} // namespace
