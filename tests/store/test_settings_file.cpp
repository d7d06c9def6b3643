// SPDX-License-Identifier: MIT
#include "SettingsFile.h"

#include "../app/damage.h"
#include "../seed.h"
#include "../settings_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
const std::string END = "</dict>\n</plist>\n";

std::string fileWith(const std::string& key, const std::string& value) {
    return HEAD + "<key>" + key + "</key>" + value + "\n" + END;
}

// What a file with this value holds for the setting, as a text.
std::string readAs(const Setting& setting, const std::string& value) {
    KeptSettings kept;
    EXPECT_TRUE(readSettings(fileWith(setting.key, value), kept)) << value;
    EXPECT_EQ(kept.numbers.size() + kept.texts.size(), 1U);
    return setting.IsNumber() ? std::to_string(kept.numbers[setting.key]) : kept.texts[setting.key];
}

std::string standardOf(const Setting& setting) {
    return setting.IsNumber() ? std::to_string(setting.standard) : setting.text;
}

// Settings none of which has its default.
KeptSettings otherSettings() {
    KeptSettings kept;
    for (const Setting& setting : SETTINGS) {
        if (setting.IsNumber())
            kept.numbers[setting.key] = otherValue(setting);
        else
            kept.texts[setting.key] = setting.kind == Setting::FONT ? "13.5 DejaVu Sans" : "0.5 0.25 1 0";
    }
    return kept;
}

std::string textOf(const KeptSettings& kept) {
    std::string text;
    for (const auto& [key, number] : kept.numbers) text += key + "=" + std::to_string(number) + "\n";
    for (const auto& [key, description] : kept.texts) {
        if (!description.empty()) text += key + "=" + description + "\n"; // else the console's own font
    }
    return text;
}

} // namespace

TEST(SettingsFile, EverySettingComesBackAsItWasWritten) {
    for (const KeptSettings& kept : {defaultSettings(), otherSettings()}) {
        KeptSettings back;
        ASSERT_TRUE(readSettings(settingsText(kept, ""), back));
        KeptSettings expected = kept;
        if (expected.texts["nsfont"].empty()) expected.texts.erase("nsfont"); // that of the console
        EXPECT_EQ(textOf(back), textOf(expected));
        EXPECT_EQ(back.numbers.size() + expected.texts.size(),
                  numberSettings().size() + expected.texts.size());
    }
}

TEST(SettingsFile, NumbersAreIntegersAndColorsAreDataThatSpellThemOut) {
    const std::string text = settingsText(otherSettings(), "");
    EXPECT_EQ(text.substr(0, 5), "<?xml");
    EXPECT_NE(text.find("<key>x</key>\n\t<integer>451</integer>"), std::string::npos) << text;
    EXPECT_NE(text.find(">MC41IDAuMjUgMSAw<"), std::string::npos) << "0.5 0.25 1 0 in base 64\n" << text;
}

TEST(SettingsFile, SavedLoadedAndSavedAgainIsTheSameFile) {
    SCOPED_TRACE(seedText());
    std::mt19937 random = seededRandom();
    const std::string others =
        "<key>later</key><array><string>a &amp; b</string><real>0.1</real><dict/></array>";
    const std::string whole = settingsText(otherSettings(), HEAD + others + END);
    int taken = 0;
    for (int round = 0; round < 5000 && !HasFailure(); round++) {
        const std::string text = round == 0 ? whole : damaged(whole, random);
        KeptSettings first, second;
        if (!readSettings(text, first)) continue;
        taken++;
        const std::string saved = settingsText(first, text);
        ASSERT_TRUE(readSettings(saved, second)) << saved;
        EXPECT_EQ(textOf(second), textOf(first)) << text;
        EXPECT_EQ(settingsText(second, saved), saved) << text;
    }
    EXPECT_GT(taken, 50);
}

TEST(SettingsFile, KeysOfOtherVersionsStay) {
    const std::string present =
        HEAD + "<key>later</key><array><string>a</string></array><key>sigfigs</key><integer>3</integer>" +
        END;
    KeptSettings kept;
    ASSERT_TRUE(readSettings(present, kept));
    EXPECT_EQ(textOf(kept), "sigfigs=3\n") << "a key that is missing is not filled in";
    kept.numbers = {{"trans", 60}};
    const std::string text = settingsText(kept, present);
    EXPECT_NE(text.find("<key>later</key>\n\t<array>\n\t\t<string>a</string>\n\t</array>"), std::string::npos)
        << text;
    EXPECT_NE(text.find("<key>trans</key>\n\t<integer>60</integer>"), std::string::npos) << text;
    EXPECT_EQ(text.find("sigfigs"), std::string::npos) << text;
}

TEST(SettingsFile, CommentsMarksAndDataInLinesAreReadAsXmlHasThem) {
    KeptSettings kept;
    ASSERT_TRUE(readSettings(HEAD +
                                 "<!-- <key>x</key> --><key>&#x78;</key><!-- y -->\n<integer>\n 7</integer>" +
                                 "<key>fgcolor</key><data>\n\tMC41 IDAu\n\tMjUgMSAw\n</data><key>x</key>" +
                                 "<integer>8</integer>" + END,
                             kept));
    EXPECT_EQ(textOf(kept), "x=8\nfgcolor=0.5 0.25 1 0\n") << "of one key twice the second counts";
}

TEST(SettingsFile, AKeyWithoutAValueOrAValueWithoutAKeyIsDamage) {
    for (const std::string inside : {"<key>x</key>", "<integer>1</integer>", "<key>x</key><key>y</key>",
                                     "<key>x</key><integer>1</integer><integer>2</integer>",
                                     "<key>x</key><number>1</number>", "<key>x</key>1", "<key>x</KEY>"}) {
        KeptSettings kept;
        EXPECT_FALSE(readSettings(HEAD + inside + END, kept)) << inside;
        EXPECT_EQ(textOf(kept), "") << inside;
    }
}

TEST(SettingsFile, AFileOfTheEarlierFormIsRead) {
    const std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//GNUstep//DTD plist "
        "0.9//EN\" "
        "\"http://www.gnustep.org/plist-0_9.xml\">\n<plist version=\"0.9\">\n<dict>\n    <key>fgcolor</key>\n"
        "    <data>MC4xIDAuOSAwLjkgMQ==</data>\n    <key>nsfont</key>\n    "
        "<data>MTMgRGVqYVZ1U2Fuc01vbm8=</data>\n"
        "    <key>x</key>\n    <integer>-12</integer>\n</dict>\n</plist>\n";
    KeptSettings kept;
    ASSERT_TRUE(readSettings(text, kept));
    EXPECT_EQ(textOf(kept), "x=-12\nfgcolor=0.1 0.9 0.9 1\nnsfont=13 DejaVuSansMono\n");
}

TEST(SettingsFile, AValueOfAnotherKindOrBesideTheRangeGivesTheDefault) {
    for (const Setting& setting : SETTINGS) {
        for (const std::string value :
             {"<string>7</string>", "<array/>", "<dict/>", "<data>MTA=</data>", "<real>1.5</real>",
              "<real>nan</real>", "<real>inf</real>", "<date>2020-01-01T00:00:00Z</date>",
              "<integer>-40000</integer>", "<integer>4294967306</integer>",
              "<integer>9223372036854775807</integer>", "<integer></integer>"}) {
            const bool isZero =
                value == "<integer></integer>" && setting.IsNumber() && setting.IsPossible(0.0);
            EXPECT_EQ(readAs(setting, value), isZero ? "0" : standardOf(setting)) << setting.key << value;
        }
        if (!setting.IsNumber()) continue;
        EXPECT_EQ(readAs(setting, "<integer>" + std::to_string(setting.least - 1LL) + "</integer>"),
                  standardOf(setting));
        EXPECT_EQ(readAs(setting, "<integer>" + std::to_string(setting.most + 1LL) + "</integer>"),
                  standardOf(setting));
    }
    EXPECT_EQ(readAs(*findSetting("sigfigs"), "<real>20</real>"), "20");
    EXPECT_EQ(readAs(*findSetting("european"), "<true/>"), "1");
}

TEST(SettingsFile, WhatIsNoWholeXmlListOfADictionaryIsDamaged) {
    const std::string whole = settingsText(defaultSettings(), "");
    std::string binary = "bplist00\xd0\x08";
    binary += std::string("\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x09", 32);
    const std::vector<std::string> files = {"",
                                            "\n",
                                            whole.substr(0, whole.size() / 2),
                                            whole.substr(0, whole.size() - 9),
                                            std::string("\0\1\2\xff\xfe", 5),
                                            "( a, b )",
                                            "{ sigfigs = 3; }",
                                            binary,
                                            "<?xml version=\"1.0\"?><plist><array/></plist>",
                                            "nonsense",

                                            HEAD + std::string(300000, ' ') + END};
    for (const std::string& text : files) {
        KeptSettings kept = defaultSettings();
        EXPECT_FALSE(readSettings(text, kept)) << text.substr(0, 200);
        EXPECT_EQ(textOf(kept), "") << text.substr(0, 200);
        EXPECT_EQ(settingsText(defaultSettings(), text), whole) << "nothing of it is taken over";
    }
}

TEST(SettingsFile, MoreListsThanDictionariesAreNoDamage) {
    KeptSettings kept;
    const std::string lists = "<key>later</key><array><array/><array/></array>";
    ASSERT_TRUE(readSettings(HEAD + lists + "<key>sigfigs</key><integer>3</integer>" + END, kept));
    EXPECT_EQ(3, kept.numbers["sigfigs"]);
}

// The library goes down into lists by calling itself.
TEST(SettingsFile, TenThousandListsInsideEachOtherAreDamage) {
    for (const char* const list : {"<array>", "<dict><key>a</key>"}) {
        std::string text = HEAD + "<key>a</key>";
        for (int i = 0; i < 10000; i++) text += list;
        for (int i = 0; i < 10000; i++)
            text += std::string("</") + (list + 1 == std::string("array>") ? "array>" : "dict>");
        KeptSettings kept;
        EXPECT_FALSE(readSettings(text + END, kept));
    }
}
