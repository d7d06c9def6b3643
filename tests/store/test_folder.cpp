// SPDX-License-Identifier: MIT
#include "Folder.h"

#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

// An environment variable with another value, or none, for one test.
class Environment {
public:
    Environment(const char* key, const char* value) : name(key) {
        if (const char* const present = getenv(key)) before = present;
        Set(value);
    }
    ~Environment() { Set(before ? before->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void Set(const char* value) const { value ? setenv(name, value, 1) : unsetenv(name); }

    const char* name;
    std::optional<std::string> before;
};

} // namespace

#ifndef __APPLE__

TEST(Folder, IsTheOneForDataThatThePersonChose) {
    const Environment home("HOME", "/home/someone");
    const Environment data("XDG_DATA_HOME", "/elsewhere/data");
    EXPECT_EQ("/elsewhere/data/Tallyquill", ownFolder());
}

TEST(Folder, IsBelowTheHomeFolderWhenNoneOrARelativeOneWasChosen) {
    const Environment home("HOME", "/home/someone");
    for (const char* chosen : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Environment data("XDG_DATA_HOME", chosen);
        EXPECT_EQ("/home/someone/.local/share/Tallyquill", ownFolder());
    }
}

TEST(Folder, IsBelowTheHomeFolderThatTheSystemKnowsWhenTheEnvironmentNamesNone) {
    const Environment data("XDG_DATA_HOME", nullptr);
    for (const char* named : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Environment home("HOME", named);
        const std::string found = ownFolder();
        const std::string end = "/.local/share/Tallyquill";
        ASSERT_GT(found.size(), end.size());
        EXPECT_EQ('/', found[0]);
        EXPECT_EQ(end, found.substr(found.size() - end.size()));
    }
}

TEST(Folder, MayHaveANameThatIsNoText) {
    const Environment data("XDG_DATA_HOME", "/\xff\xfe");
    EXPECT_EQ("/\xff\xfe/Tallyquill", ownFolder());
}

#endif

TEST(Folder, OfConfigurationIsTheOneThatThePersonChoseOrBelowTheHomeFolder) {
    const Environment home("HOME", "/home/someone");
    for (const char* chosen : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Environment config("XDG_CONFIG_HOME", chosen);
        EXPECT_EQ("/home/someone/.config/tallyquill", configFolder());
    }
    const Environment config("XDG_CONFIG_HOME", "/elsewhere/config");
    EXPECT_EQ("/elsewhere/config/tallyquill", configFolder());
}

TEST(Folder, OfTheHistoryIsTheOneThatThePersonChoseOrBelowTheHomeFolder) {
    const Environment home("HOME", "/home/someone");
    for (const char* chosen : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Environment state("XDG_STATE_HOME", chosen);
        EXPECT_EQ("/home/someone/.local/state/tallyquill/history", historyPath());
    }
    const Environment state("XDG_STATE_HOME", "/elsewhere/state");
    EXPECT_EQ("/elsewhere/state/tallyquill/history", historyPath());
}

TEST(Folder, IsMadeWithThoseAboveItForItsOwnerAlone) {
    const TemporaryFolder folder;
    makeFolder(folder.File("one/two/three"));
    for (const char* name : {"one", "one/two", "one/two/three"})
        EXPECT_EQ(0700U, permissions(folder.File(name)));
}

TEST(Folder, ThatIsThereStaysWithWhatIsInIt) {
    const TemporaryFolder folder;
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0750));
    putContent(folder.File("file"), "text");
    makeFolder(folder.Path());
    EXPECT_EQ(0750U, permissions(folder.Path()));
    EXPECT_EQ("text", contentOf(folder.File("file")));
}

TEST(Folder, WithAFileInItsPlaceIsNotMade) {
    const TemporaryFolder folder;
    putContent(folder.File("file"), "text");
    makeFolder(folder.File("file/below"));
    EXPECT_EQ("text", contentOf(folder.File("file")));
}
