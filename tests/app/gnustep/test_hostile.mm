// SPDX-License-Identifier: MIT
//
// Texts that shells act on, pasted, in scripts and from the query service, while traps stand for programs.
#import "../script_fixture.h"

#include "../../hostile.h"
#include "service.h"

#include <cstdlib>
#include <sstream>

namespace {

NSDictionary* environment = nil;

id environmentOfPrograms(id, SEL) {
    return environment;
}

// While it lives, this process and what it starts find programs in one folder alone.
class PathOfPrograms {
public:
    explicit PathOfPrograms(const std::string& folder)
        : before(getenv("PATH")),
          replaced([NSProcessInfo class], @selector(environment), environmentOfPrograms) {
        setenv("PATH", folder.c_str(), 1);
        environment = @{@"PATH" : @(folder.c_str())};
    }
    ~PathOfPrograms() { setenv("PATH", before.c_str(), 1); }
    PathOfPrograms(const PathOfPrograms&) = delete;
    PathOfPrograms& operator=(const PathOfPrograms&) = delete;

private:
    const std::string before;
    const Replaced replaced;
};

// The program that asks the service is no trap.
std::string realCurl() {
    std::istringstream folders(getenv("PATH"));
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/curl").c_str(), X_OK) == 0) return folder + "/curl";
    return "";
}

class Hostile : public ScriptTest {
protected:
    static void SetDefault(NSString* key, const std::string& value) {
        [[NSUserDefaults standardUserDefaults] registerDefaults:@{key : @(value.c_str())}];
    }
    void TearDown() override {
        SetDefault(@"QueryServiceURL", "");
        SetDefault(@"WebPageURL", "");
        ScriptTest::TearDown();
    }

    void Paste(const std::string& text) {
        [console clearPrompt];
        SetPasteboard(text.c_str());
        [console paste:nil];
        Press(KEY_TAB);
        Press(KEY_RETURN);
    }

    // What the service answers to an entry, as the console shows it.
    void Ask(const std::string& text) {
        const Service service(page("pod_0200 title=\"bait " + text + "\""));
        SetDefault(@"QueryServiceURL", service.Address());
        [console clearPrompt];
        Enter("convert 5 miles to km");
        EXPECT_NE(Text().find("...checking...\nbait "), std::string::npos) << text;
        SetDefault(@"QueryServiceURL", "");
        [console clearConsole];
    }
};

TEST_F(Hostile, NoTextStartsAProgram) {
    const std::string curl = realCurl();
    ASSERT_NE(curl, "");
    SetPasteboard("1"); // starts the pasteboard's server, which is no trap either
    const Traps traps(home, curl);
    const PathOfPrograms path(traps.Bin());
    for (const HostileCommand& command : COMMANDS) {
        Paste(command.text);
        Replay(command.text + "\n1+1\n");
        Ask(command.text);
        EXPECT_EQ(traps.Sprung(), "") << command.text;
    }
    EXPECT_FALSE(hasChildren());
}

// The traps work: a shell of this process finds them, and so does what opens the page that the person has
// set.
TEST_F(Hostile, TheTrapsSpring) {
    const Traps traps(home);
    const PathOfPrograms path(traps.Bin());
    EXPECT_EQ(std::system("bait"), 0);
    EXPECT_EQ(traps.Sprung(), "bait\n");
    SetDefault(@"WebPageURL", "http://page.invalid/");
    [console RunGUICommand:"gospel"];
    std::string sprung;
    for (int i = 0; i < 200 && sprung.empty(); ++i) {
        Run(0.05);
        sprung = traps.Sprung();
    }
    EXPECT_EQ(sprung, "xdg-open\n");
}

} // namespace
