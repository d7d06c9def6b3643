// SPDX-License-Identifier: MIT
//
// What a script takes from a person's files, and what it leaves there.
#include "program.h"
#include "temporary_folder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// A person with files.
class OwnFiles : public testing::Test {
protected:
    OwnFiles() {
        for (const char* const name : {"Tallyquill", "tallyquill"}) mkdir(folder.File(name).c_str(), 0700);
    }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder.File(name)) << text;
    }

    Result Evaluate(const std::vector<std::string>& arguments, const std::string& input = "") const {
        Invocation invocation;
        invocation.arguments = arguments;
        invocation.input = input;
        invocation.environment = {"XDG_DATA_HOME=" + folder.Path(), "XDG_CONFIG_HOME=" + folder.Path()};
        return runProgram(invocation);
    }

    const std::string definitions = "Tallyquill/pelmo_functions.txt";
    const std::string settings = "Tallyquill/pelmo_settings.plist";
    const std::string init = "tallyquill/init";
    const TemporaryFolder folder;
};

constexpr const char* DEFINITIONS = "### FUNCTIONS ###\ndouble(x)=2*x\n### VARIABLES ###\nans=49\nrate=1.19\n"
                                    "### CUSTOM UNITS ###\nunit smoot=67 inch\n### HISTORY ###\nx=7\n";

TEST_F(OwnFiles, DefinitionsAreThereForArgumentsFilesAndStandardInput) {
    Write(definitions, DEFINITIONS);
    expectRun(Evaluate({"-q", "double(4)", "rate", "2 smoot->inch"}), 0, "8\n1.19\n134\n", "");
    expectRun(Evaluate({"-q"}, "double(rate)\n"), 0, "2.38\n", "");
    Write("script", "double(5)\n");
    expectRun(Evaluate({"-q", "-f", folder.File("script")}), 0, "10\n", "");
}

TEST_F(OwnFiles, TheLastAnswerIsNoDefinition) {
    Write(definitions, DEFINITIONS);
    Write(init, "6*7\n");
    expectRun(Evaluate({"ans+1"}), 0, "ans = 1\n", "");
}

TEST_F(OwnFiles, NoFilesReadsNone) {
    Write(definitions, DEFINITIONS);
    Write(init, "other=3\n");
    expectRun(Evaluate({"--no-files", "double(4)", "other"}), 1, "",
              "** ERROR: unrecognized function 'double' **\n** ERROR 7: invalid term = other **\n");
}

TEST_F(OwnFiles, NothingIsWritten) {
    Write(definitions, DEFINITIONS);
    ASSERT_EQ(Evaluate({"new=5", "del rate", "f(x)=x", "unit u=5 m", "sigfigs 20"}).status, 0);
    const auto read = [this](const std::string& name) {
        std::ifstream file(folder.File(name));
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_EQ(read(definitions), DEFINITIONS);
    EXPECT_NE(access(folder.File(settings).c_str(), F_OK), 0);
    EXPECT_EQ(rmdir(folder.File("tallyquill").c_str()), 0) << "it is empty";
    Invocation invocation;
    invocation.arguments = {"1+1"};
    invocation.environment = {"XDG_DATA_HOME=" + folder.File("new"), "XDG_CONFIG_HOME=" + folder.File("new")};
    expectRun(runProgram(invocation), 0, "ans = 2\n", "");
    EXPECT_NE(access(folder.File("new").c_str(), F_OK), 0);
}

constexpr const char* SETTINGS_FILE =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
    "<key>dispbase</key><integer>16</integer>\n<key>degmode</key><integer>0</integer>\n</dict>\n</plist>\n";

TEST_F(OwnFiles, SettingsCountWithUserOnlyAndOptionsComeAfterThem) {
    Write(settings, SETTINGS_FILE);
    expectRun(Evaluate({"-q", "255", "cos(60)*2"}), 0, "255\n1\n", "");
    expectRun(Evaluate({"-q", "--user", "255", "cos(pi)"}), 0, "0x00FF\n-0x0001\n", "");
    expectRun(Evaluate({"-q", "--base=dec", "--user", "255", "cos(pi)"}), 0, "255\n-1\n", "");
    expectRun(Evaluate({"-q", "--user", "--no-files", "255"}), 0, "255\n", "");
}

TEST_F(OwnFiles, SettingsThatCannotBeReadMakeTheStatusThree) {
    expectRun(Evaluate({"--user", "1"}), 0, "ans = 1\n", "");
    Write(settings, "<?xml");
    expectRun(Evaluate({"--user", "1"}), 3, "ans = 1\n",
              "tallyquill: " + folder.File(settings) + ": cannot be read\n");
}

TEST_F(OwnFiles, DamageIsToldAndTheRestIsRead) {
    Write(definitions, std::string(DEFINITIONS).replace(18, 6, "??????"));
    expectRun(Evaluate({"rate"}), 0, "ans = 1.19\n",
              "tallyquill: " + folder.File(definitions) + ": not all of it could be read\n");
}

TEST_F(OwnFiles, OneThatCannotBeReadMakesTheStatusThree) {
    mkdir(folder.File(definitions).c_str(), 0700);
    const std::string complaint = "tallyquill: " + folder.File(definitions) + ": cannot be read\n";
    expectRun(Evaluate({"1+1"}), 3, "ans = 2\n", complaint);
    expectRun(Evaluate({"1/0"}), 3, "", complaint + "** ERROR: divide by zero **\n");
    expectRun(Evaluate({"--no-files", "1+1"}), 0, "ans = 2\n", "");
    rmdir(folder.File(definitions).c_str());
    mkdir(folder.File(init).c_str(), 0700);
    expectRun(Evaluate({"1+1"}), 3, "ans = 2\n", "tallyquill: " + folder.File(init) + ": cannot be read\n");
    rmdir(folder.File(init).c_str());
}

TEST_F(OwnFiles, TheInitFileDefinesWhatIsNotKeptAndSaysNothing) {
    Write(definitions, DEFINITIONS);
    Write(init, "# mine\r\n\nrate=1.07; triple(x)=3*x;double(x)=triple(x)\necho hello\ndouble(rate)\n"
                "unit smoot=70 inch\n");
    expectRun(Evaluate({"-q", "rate", "triple(2)", "double(2)", "smoot->inch"}), 0, "1.19\n6\n4\n67\n", "");
}

TEST_F(OwnFiles, WhatIsKeptCountsOverWhatShipsAndMayUseIt) {
    Write(definitions, "### FUNCTIONS ###\naddVat(x,y)=x+y\n### VARIABLES ###\nans=1\n"
                       "### CUSTOM UNITS ###\nunit psi=2 pascal\nunit foo=3 mph\n### HISTORY ###\n");
    expectRun(Evaluate({"-q", "--with=everyday,money", "addVat(1,2)", "psi->pascal", "foo->mph"}), 0,
              "3\n2\n3\n", "");
}

TEST_F(OwnFiles, SettingsAndCommandsOfTheInitFileEndWithIt) {
    Write(init, "european on\ndisplay hex; mode rad; sigfigs 3\nexit\na=16,5\n");
    expectRun(Evaluate({"-q", "a", "sin(30)", "1/3"}), 0, "16.5\n0.5\n0.3333333333\n", "");
    expectRun(Evaluate({"-q", "--base=hex", "a"}), 0, "0x0010\n", "");
}

TEST_F(OwnFiles, ErrorsOfTheInitFileAreToldWithTheirLines) {
    Write(init, "a=1\n1/0\nb=2\n(\xff\n");
    expectRun(Evaluate({"-q", "a+b"}), 0, "3\n",
              "tallyquill: " + folder.File(init) + ":2: ** ERROR: divide by zero **\n" + folder.File(init) +
                  ":4: ** Invalid character/encoding used. **\n");
}

TEST_F(OwnFiles, WhatShipsOrIsInTheInitFileIsNotKeptByThePromptUnlessItChanges) {
    Write(definitions, DEFINITIONS);
    Write(init, "a=17\nc=3\nrate=1.07\n");
    TerminalSetup setup;
    setup.environment = {"XDG_DATA_HOME=" + folder.Path(), "XDG_CONFIG_HOME=" + folder.Path(),
                         "XDG_STATE_HOME=" + folder.Path()};
    Terminal terminal({"--plain", "--with", "everyday,money"}, setup);
    terminal.ReadUntil("> ");
    for (const char* const entry : {"c=4\n", "d=5\n", "exit\n"}) terminal.Type(entry);
    EXPECT_EQ(terminal.Wait(), 0);
    std::ifstream file(folder.File(definitions));
    const std::string kept(std::istreambuf_iterator<char>(file), {});
    for (const char* const line :
         {"\nc=4\n", "\nd=5\n", "\nrate=1.19\n", "\ndouble(x)=2*x\n", "\nunit smoot=67 inch\n"})
        EXPECT_NE(kept.find(line), std::string::npos) << line << kept;
    for (const char* const line : {"a=17", "payment", "unit psi", "unit bit"})
        EXPECT_EQ(kept.find(line), std::string::npos) << line << kept;
}

TEST_F(OwnFiles, WhatIsSetAtThePromptIsThereInTheNextRunWhateverTheInitFileSays) {
    TerminalSetup setup;
    setup.environment = {"XDG_DATA_HOME=" + folder.Path(), "XDG_CONFIG_HOME=" + folder.Path(),
                         "XDG_STATE_HOME=" + folder.Path()};
    const auto run = [&setup](const std::vector<std::string>& entries) {
        Terminal terminal({"--plain", "--with=everyday"}, setup);
        std::string shown = terminal.ReadUntil("> ");
        for (const std::string& entry : entries) {
            terminal.Type(entry + "\n");
            shown += terminal.ReadUntil("> ");
        }
        terminal.Type("exit\n");
        EXPECT_EQ(terminal.Wait(), 0);
        return shown;
    };
    Write(init, "a=17\nb=1\n");
    EXPECT_EQ(run({"a=18", "unit foo=3 psi"}), "> a = 18\n> new unit defined: foo\n> ");
    EXPECT_EQ(run({"a", "b", "foo->psi"}), "> ans = 18\n> ans = 1\n> ans = 3\n> ");
    Write(init, "a=19\nb=2\n");
    EXPECT_EQ(run({"a", "b", "del a"}), "> ans = 18\n> ans = 2\n> ** deleted a **\n> ");
    EXPECT_EQ(run({"a"}), "> ans = 19\n> ");
}

TEST_F(OwnFiles, TheInitFileIsReadForThePromptToo) {
    Write(init, "a=17\n");
    TerminalSetup setup;
    setup.environment = {"XDG_DATA_HOME=" + folder.Path(), "XDG_CONFIG_HOME=" + folder.Path()};
    Terminal terminal({}, setup);
    terminal.ReadUntil("> ");
    terminal.Type("a\n");
    EXPECT_NE(terminal.ReadUntil("ans = 17\n> ").find("ans = 17"), std::string::npos);
}

} // namespace
