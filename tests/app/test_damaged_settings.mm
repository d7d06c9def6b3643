// SPDX-License-Identifier: MIT
//
// Settings files that are damaged, and folders that cannot be had: the program starts and can be used.
#import "settings_fixture.h"

#include "../seed.h"
#include "damage.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

class DamagedSettings : public Settings {};

// --- Keys ---

TEST_F(DamagedSettings, AMissingKeyStaysMissingAndNothingBreaks) {
    for (const Setting& left : NUMBERS) {
        SCOPED_TRACE(left.key);
        std::string text = HEAD;
        for (const Setting& one : NUMBERS) {
            const int value = strcmp(one.key, "firstrun") == 0 ? 5 : one.standard;
            if (one.key != left.key) text += pair(one.key, integer(value));
        }
        Write(SettingsPath(), text + END);
        Restart();
        const std::string key = left.key;
        // A start counts itself, and it shows base and angle mode, which stores them.
        const bool isStored = key == "firstrun" || key == "dispbase" || key == "degmode";
        EXPECT_EQ(SettingOf(left.key) != nil, isStored);
        if (key == "cx") EXPECT_EQ([window frame].size.width, 450);
        if (key == "cy") EXPECT_EQ([window frame].size.height, 250);
        if (key == "sigfigs") EXPECT_EQ(calc.sigFigs, 10);
        if (key == "dispbase") EXPECT_EQ(calc.displayBase, 10);
        if (key == "schar") EXPECT_EQ(calc.separatorChar, ',');
        if (key == "histsz") EXPECT_EQ(calc.history.maxEntries, 30);
        ExpectUsable();
    }
}

TEST_F(DamagedSettings, AnEmptyDictionaryStarts) {
    StartOver(std::string(HEAD) + END);
    Enter("1/3");
    EXPECT_STREQ(calc.lastAnswer, "0.3333333333");
    Terminate();
    Restart();
    ExpectUsable();
}

TEST_F(DamagedSettings, AValueOfAnotherKindGivesTheKeysDefault) {
    const char* const values[] = {"<string>abc</string>",
                                  "<string>7</string>",
                                  "<array/>",
                                  "<dict/>",
                                  "<data>MTA=</data>",
                                  "<real>1.5</real>",
                                  "<real>nan</real>",
                                  "<real>inf</real>",
                                  "<date>2020-01-01T00:00:00Z</date>"};
    for (const Setting& one : NUMBERS) {
        for (const char* const value : values) {
            SCOPED_TRACE(one.key + std::string(value));
            const id found = [settingsOf(fileWith(one.key, value)) objectForKey:string(one.key)];
            ASSERT_TRUE([found isKindOfClass:[NSNumber class]]);
            EXPECT_EQ([found doubleValue], one.standard);
        }
    }
}

TEST_F(DamagedSettings, AnImpossibleNumberGivesTheKeysDefault) {
    const std::map<std::string, std::vector<long long>> more = {
        {"scimode", {6}},          {"schar", {0, 10, 31, 256, '0', '7', 'a', 'Z', '-', '+', 127}},
        {"histsz", {0, 1000}},     {"dispbase", {0, 1, 3, 8, 11, 17}},
        {"sigfigs", {0, 101}},     {"cx", {0, 99, 10001}},
        {"cy", {0, 99, 10001}},    {"trans", {101}},
        {"european", {2}},         {"degmode", {2}},
        {"firstrun", {0x7fffffff}}};
    for (const Setting& one : NUMBERS) {
        std::vector<long long> values = {-40000, 1LL << 31, 1LL << 32, (1LL << 32) + 10, -(1LL << 62)};
        const auto found = more.find(one.key);
        if (found != more.end()) values.insert(values.end(), found->second.begin(), found->second.end());
        for (const long long value : values) {
            NSDictionary* const settings = settingsOf(fileWith(one.key, integer(value)));
            EXPECT_EQ([[settings objectForKey:string(one.key)] doubleValue], one.standard)
                << one.key << value;
        }
    }
}

TEST_F(DamagedSettings, TheLeastAndTheMostOfARangeAreTaken) {
    const std::map<std::string, std::vector<int>> ends = {
        {"scimode", {0, 5}},    {"schar", {' ', '.', '\'', 255}},
        {"histsz", {1, 999}},   {"dispbase", {2, 10, 16}},
        {"sigfigs", {1, 100}},  {"cx", {100, 10000}},
        {"x", {-30000, 30000}}, {"trans", {0, 100}},
        {"tenkey", {0, 1}}};
    for (const auto& [key, values] : ends) {
        for (const int value : values) {
            NSDictionary* const settings = settingsOf(fileWith(key, integer(value)));
            EXPECT_EQ([[settings objectForKey:string(key.c_str())] intValue], value) << key;
        }
    }
}

// The text as a property list's data.
static std::string asData(const std::string& text) {
    const char* const digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string coded;
    for (size_t i = 0; i < text.size(); i += 3) {
        const size_t count = std::min<size_t>(text.size() - i, 3);
        uint32_t bits = 0;
        for (size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (k < count ? static_cast<uint8_t>(text[i + k]) : 0U);
        for (size_t k = 0; k < 4; ++k) coded += k <= count ? digits[bits >> (18 - 6 * k) & 63] : '=';
    }
    return "<data>" + coded + "</data>";
}

TEST_F(DamagedSettings, ADamagedColorGivesTheDefault) {
    const std::string values[] = {integer(3),
                                  "<string>0.5 0.5 0.5 1</string>",
                                  asData(""),
                                  asData("a b c d"),
                                  asData("0.5 0.5 0.5"),
                                  asData("2 0 0 1"),
                                  asData("-1 0 0 1"),
                                  asData("nan 0 0 1"),
                                  asData("0.5 0.5 inf 1"),
                                  asData("\xff\xfe\x01")};
    for (const std::string& value : values) {
        SCOPED_TRACE(value);
        expectColor([settingsOf(fileWith("fgcolor", value)) objectForKey:@"fgcolor"], 0.1, 0.9, 0.9, 1);
        expectColor([settingsOf(fileWith("bgcolor", value)) objectForKey:@"bgcolor"], 0.1, 0.1, 0.1, 1);
    }
    expectColor([settingsOf(fileWith("fgcolor", asData("0.5 0.25 1 0"))) objectForKey:@"fgcolor"], 0.5, 0.25,
                1, 0);
}

TEST_F(DamagedSettings, ADamagedFontGivesTheDefault) {
    NSFont* const standard = [NSFont userFixedPitchFontOfSize:13];
    const std::string values[] = {integer(3),
                                  asData(""),
                                  asData("13"),
                                  asData("13 No Such Font"),
                                  asData("nan x"),
                                  asData("\xff\xfe"),
                                  asData("13 "),
                                  asData((std::string("0 ") + [[standard fontName] UTF8String]).c_str()),
                                  asData((std::string("1e9 ") + [[standard fontName] UTF8String]).c_str())};
    for (const std::string& value : values) {
        NSFont* const font = [settingsOf(fileWith("nsfont", value)) objectForKey:@"nsfont"];
        EXPECT_TRUE([font isEqual:standard]) << value;
    }
}

TEST_F(DamagedSettings, AFileThatCannotBeReadGivesDefaultsAndIsKeptBeside) {
    const std::string whole = Read(SettingsPath());
    const std::string files[] = {"",
                                 "\n",
                                 whole.substr(0, whole.size() / 2),
                                 whole.substr(0, whole.size() - 9),
                                 std::string("\0\1\2\xff\xfe", 5),
                                 "( a, b )",
                                 "<?xml version=\"1.0\"?><plist><array/></plist>",
                                 "bplist00\xff\xff",
                                 "nonsense"};
    for (const std::string& text : files) {
        SCOPED_TRACE(text);
        [console setSetting:@"sigfigs" to:20];
        Write(SettingsPath(), text);
        Restart();
        ExpectDefaults();
        EXPECT_EQ(Read(SettingsPath() + ".unreadable"), text);
        EXPECT_EQ(StoredNumber("sigfigs"), 10); // the defaults are written at once
        ExpectUsable();
        unlink((SettingsPath() + ".unreadable").c_str());
    }
}

TEST_F(DamagedSettings, AFolderInTheFilesPlaceIsMovedAside) {
    unlink(SettingsPath().c_str());
    [[NSFileManager defaultManager] createDirectoryAtPath:string(SettingsPath().c_str()) attributes:nil];
    Restart();
    ExpectDefaults();
    EXPECT_TRUE(Exists(SettingsPath() + ".unreadable"));
    EXPECT_EQ(StoredNumber("sigfigs"), 10);
    ExpectUsable();
}

TEST_F(DamagedSettings, APipeInTheFilesPlaceDoesNotHang) {
    unlink(SettingsPath().c_str());
    ASSERT_EQ(mkfifo(SettingsPath().c_str(), 0600), 0);
    Restart();
    ExpectDefaults();
    ExpectUsable();
}

TEST_F(DamagedSettings, DamageIsSaidInTheStatusLine) {
    Write(SettingsPath(), "nonsense");
    Restart();
    EXPECT_EQ(News(), "pelmo_settings.plist could not be read: see pelmo_settings.plist.unreadable");
}

TEST_F(DamagedSettings, DamageOfBothFilesIsSaid) {
    Write(SettingsPath(), "nonsense");
    Write(FunctionsPath(), "### FUNCTIONS ###\nf(x)=x+\x02\n### HISTORY ###\n");
    Restart();
    const std::string said = News();
    EXPECT_NE(said.find("pelmo_settings.plist.unreadable; "), std::string::npos) << said;
    EXPECT_NE(said.find("pelmo_functions.txt.unreadable"), std::string::npos) << said;
}

// --- Files that may not be read ---

// As a person without the rights of root, to whom no file is closed, while it lives. No window is opened
// meanwhile: GNUstep asks for the user's name then, and loses the one before.
class AsAnybody {
public:
    explicit AsAnybody(const std::string& home) {
        if (geteuid() != 0) return;
        const std::string own = "chown -R " + std::to_string(ANYBODY) + " '" + home + "'";
        EXPECT_EQ(std::system(own.c_str()), 0);
        EXPECT_EQ(seteuid(ANYBODY), 0);
    }
    ~AsAnybody() {
        if (getuid() == 0) EXPECT_EQ(seteuid(0), 0);
    }
    AsAnybody(const AsAnybody&) = delete;
    AsAnybody& operator=(const AsAnybody&) = delete;

private:
    static constexpr uid_t ANYBODY = 65534;
};

TEST_F(DamagedSettings, AFileThatMayNotBeReadIsNotWrittenOver) {
    const AsAnybody person(home);
    const std::string kept = Read(SettingsPath());
    ASSERT_NE(kept, "");
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0200), 0);
    [console setSetting:@"sigfigs" to:20];
    [console saveSettings];
    EXPECT_EQ(News(), std::string("Not saved: pelmo_settings.plist (") + strerror(EACCES) + ")");
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0600), 0);
    EXPECT_EQ(Read(SettingsPath()), kept);
    Terminate(); // writes what was not
    EXPECT_EQ(StoredNumber("sigfigs"), 20);
}

TEST_F(DamagedSettings, AFailedWritingDoesNotHideAFailedReading) {
    Write(FunctionsPath(), "### FUNCTIONS ###\nf(x)=x+\x02\n### HISTORY ###\n");
    Restart();
    const AsAnybody person(home);
    const std::string read = News();
    EXPECT_NE(read.find("pelmo_functions.txt.unreadable"), std::string::npos) << read;
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0200), 0);
    [console setSetting:@"sigfigs" to:20];
    [console saveSettings];
    for (int i = 0; i < 100 && StatusLine() == read; ++i) Run(0.05);
    EXPECT_EQ(StatusLine(), read + "; Not saved: pelmo_settings.plist (" + strerror(EACCES) + ")");
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0600), 0);
    Type("1"); // the preview
    EXPECT_EQ(StatusLine(), "ans = 1");
}

TEST_F(DamagedSettings, WhatWasNotSavedCountsAsSavedWhenTheFileHasIt) {
    const AsAnybody person(home);
    [console saveSettings];
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0200), 0);
    [console saveSettings];
    ASSERT_EQ(chmod(SettingsPath().c_str(), 0600), 0);
    testing::internal::CaptureStderr();
    Terminate();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// --- Folders that cannot be had ---

TEST_F(DamagedSettings, AFileInTheFoldersPlaceLetsTheProgramWorkWithoutSaving) {
    ASSERT_EQ(std::system(("rm -r '" + Folder() + "'").c_str()), 0);
    Write(Folder(), "mine");
    Restart();
    ExpectDefaults();
    ExpectUsable();
    WriteWhatIsDue();
    Terminate();
    EXPECT_EQ(Read(Folder()), "mine");
}

TEST_F(DamagedSettings, AFolderWhereNothingCanBeMadeLetsTheProgramWorkWithoutSaving) {
    ASSERT_EQ(std::system(("rm -r '" + Folder() + "'").c_str()), 0);
    ASSERT_EQ(symlink("/proc/self", Folder().c_str()), 0); // refuses new files to everybody
    Restart();
    ExpectDefaults();
    ExpectUsable();
    WriteWhatIsDue();
    Terminate();
    EXPECT_FALSE(Exists(SettingsPath()));
}

TEST_F(DamagedSettings, AHomeThatDoesNotExistLetsTheProgramWorkWithoutSaving) {
    const std::string before = getenv("HOME") ? getenv("HOME") : "/";
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", "/proc/nowhere", 1);
    Restart();
    ExpectDefaults();
    ExpectUsable();
    Terminate();
    setenv("HOME", before.c_str(), 1);
}

TEST_F(DamagedSettings, AFolderWhoseNameIsNoTextLetsTheProgramWork) {
    setenv("XDG_DATA_HOME", (home + "/\xff\xfe").c_str(), 1);
    ASSERT_EQ(chdir(home.c_str()), 0);
    Restart();
    ExpectDefaults();
    ExpectUsable();
    Terminate();
    ASSERT_EQ(chdir("/"), 0);
}

TEST_F(DamagedSettings, TheFolderIsMadeInTheHomeFolder) {
    const std::string before = getenv("HOME") ? getenv("HOME") : "/";
    setenv("HOME", (home + "/person").c_str(), 1);
    setenv("XDG_DATA_HOME", "relative", 1); // counts for nothing
    Restart();
    Terminate();
    setenv("HOME", before.c_str(), 1);
    EXPECT_TRUE(Exists(home + "/person/.local/share/Tallyquill/pelmo_settings.plist"));
    EXPECT_FALSE(Exists("relative"));
}

// --- Chance ---

// Whether every key has a value of its kind within its range.
static void expectSound(NSDictionary* settings) {
    for (const Setting& one : NUMBERS) {
        const id value = [settings objectForKey:string(one.key)];
        if (!value) continue;
        ASSERT_TRUE([value isKindOfClass:[NSNumber class]]) << one.key;
        EXPECT_EQ([value doubleValue], [value intValue]) << one.key;
    }
    const id font = [settings objectForKey:@"nsfont"];
    EXPECT_TRUE(!font || [font isKindOfClass:[NSFont class]]);
    for (const char* const key : {"fgcolor", "bgcolor"}) {
        const id color = [settings objectForKey:string(key)];
        EXPECT_TRUE(!color || [color isKindOfClass:[NSColor class]]) << key;
    }
}

TEST_F(DamagedSettings, DamageByChanceNeverKeepsTheProgramFromStarting) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    const std::string whole = Read(SettingsPath());
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        const std::string text = damaged(whole, random);
        expectSound(settingsOf(text));
        if (round % 20 == 0) StartOver(text);
        [inner release];
        if (HasFailure()) break;
    }
}
