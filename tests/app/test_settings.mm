// SPDX-License-Identifier: MIT
#import "console_fixture.h"

#import "SettingsText.h"

#include "damage.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

struct Known {
    const char* key;
    int standard;
    int other; // another value that the key may have
};

const Known NUMBERS[] = {
    {"tipscode", 0, 1},     {"firstrun", 1, 7},   {"snaptoscreen", 1, 0}, {"transback", 1, 0},
    {"statusicon", 1, 0},   {"alwaystop", 0, 1},  {"mintotray", 0, 1},    {"autoeval", 1, 0},
    {"twoscomp", 0, 1},     {"european", 0, 1},   {"tenkey", 0, 1},       {"separator", 0, 1},
    {"doublenegans", 1, 0}, {"degmode", 1, 0},    {"scimode", 0, 3},      {"schar", 44, 39},
    {"histsz", 30, 999},    {"dispbase", 10, 16}, {"sigfigs", 10, 33},    {"financed", 2, 4},
    {"x", 450, 100},        {"y", 250, 120},      {"cx", 450, 500},       {"cy", 250, 300},
    {"trans", 25, 60},
};

const char* const OBJECTS[] = {"nsfont", "fgcolor", "bgcolor"};

NSString* string(const char* text) {
    return [NSString stringWithUTF8String:text];
}

NSData* data(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

std::string bytes(NSData* value) {
    return std::string(static_cast<const char*>([value bytes]), [value length]);
}

// A number as a property list's element.
std::string integer(long long value) {
    return "<integer>" + std::to_string(value) + "</integer>";
}

const char* const HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
const char* const END = "</dict>\n</plist>\n";

std::string pair(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key>" + value + "\n";
}

// A whole file with one key.
std::string fileWith(const std::string& key, const std::string& value) {
    return HEAD + pair(key, value) + END;
}

NSMutableDictionary* settingsOf(const std::string& text) {
    return settingsFromText(data(text), [NSFont userFixedPitchFontOfSize:13]);
}

void expectColor(NSColor* color, double red, double green, double blue, double alpha) {
    NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    ASSERT_NE(rgb, nil);
    EXPECT_NEAR([rgb redComponent], red, 1e-6);
    EXPECT_NEAR([rgb greenComponent], green, 1e-6);
    EXPECT_NEAR([rgb blueComponent], blue, 1e-6);
    EXPECT_NEAR([rgb alphaComponent], alpha, 1e-6);
}

} // namespace

class Settings : public ConsoleTest {
protected:
    NSDictionary* stored() const {
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        const id list = [NSPropertyListSerialization propertyListFromData:data(read(settingsPath()))
                                                         mutabilityOption:NSPropertyListImmutable
                                                                   format:&format
                                                         errorDescription:NULL];
        EXPECT_EQ(format, NSPropertyListXMLFormat_v1_0);
        EXPECT_TRUE([list isKindOfClass:[NSDictionary class]]);
        return list;
    }

    int storedNumber(const char* key) const { return [[stored() objectForKey:string(key)] intValue]; }
    id setting(const char* key) const { return [[console settings] objectForKey:string(key)]; }

    // The program starts over this text and can be used.
    void startOver(const std::string& text) {
        write(settingsPath(), text);
        restart();
        expectUsable();
    }

    void expectUsable() {
        enter("mode deg; 40+2");
        EXPECT_EQ(qtod(lastResult.value), 42);
    }

    void expectDefaults() {
        for (const Known& one : NUMBERS) {
            SCOPED_TRACE(one.key);
            const bool isFirstRun = strcmp(one.key, "firstrun") == 0; // counted by the start
            EXPECT_EQ([setting(one.key) intValue], isFirstRun ? 2 : one.standard);
        }
        expectColor(setting("bgcolor"), 0.1, 0.1, 0.1, 1);
        expectColor(setting("fgcolor"), 0.1, 0.9, 0.9, 1);
        EXPECT_TRUE([setting("nsfont") isEqual:[console font]]);
    }

    static double qtod(const qfloat value) {
        double number = 0;
        qtoe(value, &number);
        return number;
    }
};

// --- Defaults ---

TEST_F(Settings, firstStartMakesTheFolderAndWritesEveryDefault) {
    EXPECT_TRUE(exists(folder()));
    NSDictionary* const file = stored();
    EXPECT_EQ([file count], std::size(NUMBERS) + std::size(OBJECTS));
    for (const Known& one : NUMBERS) {
        SCOPED_TRACE(one.key);
        const id value = [file objectForKey:string(one.key)];
        ASSERT_TRUE([value isKindOfClass:[NSNumber class]]);
        EXPECT_EQ([value intValue], one.standard);
    }
    for (const char* const key : OBJECTS) {
        EXPECT_TRUE([[file objectForKey:string(key)] isKindOfClass:[NSData class]]) << key;
    }
}

TEST_F(Settings, settingsInMemoryHaveEveryDefault) {
    EXPECT_EQ([[console settings] count], std::size(NUMBERS) + std::size(OBJECTS));
    expectDefaults();
}

TEST_F(Settings, initSettingsDefaultDiscardsWhatWasThere) {
    for (const Known& one : NUMBERS) [console setSetting:string(one.key) to:one.other];
    [[console settings] setObject:@"x" forKey:@"unknown"];
    [console initSettingsDefault];
    [console setSetting:@"firstrun" to:2];
    expectDefaults();
    EXPECT_EQ(setting("unknown"), nil);
}

TEST_F(Settings, initColorsDefaultSetsColorsAndTransparencyAlone) {
    for (const Known& one : NUMBERS) [console setSetting:string(one.key) to:one.other];
    [[console settings] setObject:[NSColor redColor] forKey:@"fgcolor"];
    [[console settings] setObject:[NSColor redColor] forKey:@"bgcolor"];
    [console initColorsDefault];
    expectColor(setting("bgcolor"), 0.1, 0.1, 0.1, 1);
    expectColor(setting("fgcolor"), 0.1, 0.9, 0.9, 1);
    EXPECT_EQ([console setting:@"trans"], 25);
    EXPECT_EQ([console setting:@"sigfigs"], 33);
}

// --- Saving and loading ---

TEST_F(Settings, everyNumberComesBackAtTheNextStart) {
    for (const Known& one : NUMBERS) [console setSetting:string(one.key) to:one.other];
    [console saveSettings];
    for (const Known& one : NUMBERS) EXPECT_EQ(storedNumber(one.key), one.other) << one.key;
    restart();
    for (const Known& one : NUMBERS) {
        const bool isFirstRun = strcmp(one.key, "firstrun") == 0; // counted by the start
        EXPECT_EQ([setting(one.key) intValue], isFirstRun ? one.other + 1 : one.other) << one.key;
    }
}

TEST_F(Settings, theEngineAndTheWindowStartWithWhatTheFileSays) {
    startOver(HEAD + pair("firstrun", integer(5)) + pair("degmode", integer(0)) +
              pair("dispbase", integer(16)) + pair("european", integer(1)) + pair("sigfigs", integer(5)) +
              pair("separator", integer(1)) + pair("schar", integer(39)) + pair("twoscomp", integer(1)) +
              pair("histsz", integer(7)) + pair("x", integer(60)) + pair("y", integer(70)) +
              pair("cx", integer(600)) + pair("cy", integer(320)) + END);
    EXPECT_EQ(calc.displayBase, 16);
    EXPECT_TRUE(calc.european);
    EXPECT_EQ(calc.sigFigs, 5);
    EXPECT_TRUE(calc.useSeparator);
    EXPECT_EQ(calc.separatorChar, '\'');
    EXPECT_TRUE(calc.twosComp);
    EXPECT_EQ(calc.history.maxEntries, 7);
    EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(60, 70, 600, 320)));
}

TEST_F(Settings, savingTakesFontAndColorsFromTheView) {
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.2 green:0.3 blue:0.4 alpha:0.5]];
    [console setTextColor:[NSColor colorWithCalibratedRed:0.6 green:0.7 blue:0.8 alpha:1]];
    NSFont* const font = [NSFont userFixedPitchFontOfSize:21];
    [console setFont:font];
    [console saveSettings];
    expectColor(setting("bgcolor"), 0.2, 0.3, 0.4, 0.5);
    expectColor(setting("fgcolor"), 0.6, 0.7, 0.8, 1);
    EXPECT_TRUE([setting("nsfont") isEqual:font]);
    restart();
    expectColor(setting("bgcolor"), 0.2, 0.3, 0.4, 0.5);
    expectColor(setting("fgcolor"), 0.6, 0.7, 0.8, 1);
    EXPECT_EQ([[console font] pointSize], 21);
    EXPECT_TRUE([[[console font] fontName] isEqualToString:[font fontName]]);
}

TEST_F(Settings, loadingShowsTheConsoleInColorsAndFont) {
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.6 alpha:1]];
    [console setTextColor:[NSColor colorWithCalibratedRed:0.5 green:0.5 blue:0.5 alpha:1]];
    [console saveSettings];
    restart();
    expectColor([console backgroundColor], 0.2, 0.4, 0.6, 1);
    expectColor([console textColor], 0.5, 0.5, 0.5, 1);
    expectColor([console insertionPointColor], 0.5, 0.5, 0.5, 1);
    NSColor* const selected = [[console selectedTextAttributes] objectForKey:NSBackgroundColorAttributeName];
    // 0.3 of the gray 0.5 and 0.7 of the background.
    expectColor(selected, 0.15 + 0.14, 0.15 + 0.28, 0.15 + 0.42, 1);
}

TEST_F(Settings, colorsAndFontAreDataThatSpellThemOut) {
    EXPECT_EQ(bytes([stored() objectForKey:@"fgcolor"]), "0.1 0.9 0.9 1");
    EXPECT_EQ(bytes([stored() objectForKey:@"bgcolor"]), "0.1 0.1 0.1 1");
    const std::string font = std::string("13 ") + [[[console font] fontName] UTF8String];
    EXPECT_EQ(bytes([stored() objectForKey:@"nsfont"]), font);
}

TEST_F(Settings, missingColorsAndFontLeaveTheViewAsItWas) {
    [console setTextColor:[NSColor colorWithCalibratedRed:1 green:0.5 blue:0 alpha:1]];
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0 green:0 blue:1 alpha:1]];
    [console setFont:[NSFont userFixedPitchFontOfSize:21]];
    write(settingsPath(), fileWith("sigfigs", integer(3)));
    [console loadSettings];
    EXPECT_EQ([[console settings] count], 1U);
    EXPECT_EQ([console setting:@"sigfigs"], 3);
    expectColor([console textColor], 1, 0.5, 0, 1);
    expectColor([console backgroundColor], 0, 0, 1, 1);
    EXPECT_EQ([[console font] pointSize], 21);
}

TEST_F(Settings, withoutSettingsNothingIsSaved) {
    terminate();
    const std::string before = read(settingsPath());
    [console saveSettings];
    EXPECT_EQ(read(settingsPath()), before);
    EXPECT_EQ([console settings], nil);
}

TEST_F(Settings, theEndOfTheProgramStoresTheFrame) {
    [window setFrame:NSMakeRect(33, 44, 555, 333) display:YES];
    terminate();
    EXPECT_EQ(storedNumber("x"), 33);
    EXPECT_EQ(storedNumber("y"), 44);
    EXPECT_EQ(storedNumber("cx"), 555);
    EXPECT_EQ(storedNumber("cy"), 333);
}

TEST_F(Settings, keysOfOtherVersionsStay) {
    startOver(HEAD + pair("later", "<array><string>a</string></array>") + pair("firstrun", integer(3)) + END);
    terminate();
    EXPECT_TRUE([[stored() objectForKey:@"later"] isEqual:[NSArray arrayWithObject:@"a"]]);
}

TEST_F(Settings, theDecimalPointOfTheFileIsNotTheLocales) {
    const std::string locale = home + "/xx_XX";
    const std::string make = "localedef -i de_DE -f UTF-8 '" + locale + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(make.c_str()), 0) << "the package locales is missing";
    setenv("LOCPATH", home.c_str(), 1);
    ASSERT_NE(setlocale(LC_NUMERIC, "xx_XX"), nullptr);
    EXPECT_STREQ(localeconv()->decimal_point, ",");
    platformAfterLaunch(); // as the program does
    unsetenv("LOCPATH");
    EXPECT_STREQ(localeconv()->decimal_point, ".");
    [console saveSettings];
    EXPECT_EQ(bytes([stored() objectForKey:@"fgcolor"]), "0.1 0.9 0.9 1");
    restart();
    expectColor([console textColor], 0.1, 0.9, 0.9, 1);
    enter("x=1.5");
    terminate();
    EXPECT_NE(read(functionsPath()).find("\nx=1.5\n"), std::string::npos);
}

// --- Written soon after an entry ---

TEST_F(Settings, whatAnEntryChangesIsWrittenWithoutTheEndOfTheProgram) {
    enter("sigfigs 20");
    enter("mode rad");
    enter("scimode eng");
    enter("display hex");
    run(1.3);
    EXPECT_EQ(storedNumber("sigfigs"), 20);
    EXPECT_EQ(storedNumber("degmode"), 0);
    EXPECT_EQ(storedNumber("scimode"), 3);
    EXPECT_EQ(storedNumber("dispbase"), 16);
}

// The write that is due when an entry ends comes before its settings are taken over.
TEST_F(Settings, anEntryAtTheMomentOfTheWriteIsNotForgotten) {
    enter("1+1");
    usleep(950000);
    enter("sigfigs 20");
    run(1.3);
    EXPECT_EQ(storedNumber("sigfigs"), 20);
}

// --- Files that are damaged ---

TEST_F(Settings, aMissingKeyStaysMissingAndNothingBreaks) {
    for (const Known& left : NUMBERS) {
        SCOPED_TRACE(left.key);
        std::string text = HEAD;
        for (const Known& one : NUMBERS) {
            const int value = strcmp(one.key, "firstrun") == 0 ? 5 : one.standard;
            if (one.key != left.key) text += pair(one.key, integer(value));
        }
        write(settingsPath(), text + END);
        restart();
        const std::string key = left.key;
        // A start counts itself, and it shows base and angle mode, which stores them.
        const bool isStored = key == "firstrun" || key == "dispbase" || key == "degmode";
        EXPECT_EQ(setting(left.key) != nil, isStored);
        if (key == "cx") EXPECT_EQ([window frame].size.width, 450);
        if (key == "cy") EXPECT_EQ([window frame].size.height, 250);
        if (key == "sigfigs") EXPECT_EQ(calc.sigFigs, 10);
        if (key == "dispbase") EXPECT_EQ(calc.displayBase, 10);
        if (key == "schar") EXPECT_EQ(calc.separatorChar, ',');
        if (key == "histsz") EXPECT_EQ(calc.history.maxEntries, 30);
        expectUsable();
    }
}

TEST_F(Settings, anEmptyDictionaryStarts) {
    startOver(std::string(HEAD) + END);
    enter("1/3");
    EXPECT_STREQ(calc.lastAnswer, "0.3333333333");
    terminate();
    restart();
    expectUsable();
}

TEST_F(Settings, aValueOfAnotherKindGivesTheKeysDefault) {
    const char* const values[] = {"<string>abc</string>",
                                  "<string>7</string>",
                                  "<array/>",
                                  "<dict/>",
                                  "<data>MTA=</data>",
                                  "<real>1.5</real>",
                                  "<real>nan</real>",
                                  "<real>inf</real>",
                                  "<date>2020-01-01T00:00:00Z</date>"};
    for (const Known& one : NUMBERS) {
        for (const char* const value : values) {
            SCOPED_TRACE(one.key + std::string(value));
            const id found = [settingsOf(fileWith(one.key, value)) objectForKey:string(one.key)];
            ASSERT_TRUE([found isKindOfClass:[NSNumber class]]);
            EXPECT_EQ([found doubleValue], one.standard);
        }
    }
}

TEST_F(Settings, anImpossibleNumberGivesTheKeysDefault) {
    const std::map<std::string, std::vector<long long>> more = {
        {"scimode", {6}},          {"schar", {0, 10, 31, 256, '0', '7', 'a', 'Z', 127}},
        {"histsz", {0, 1000}},     {"dispbase", {0, 1, 3, 8, 11, 17}},
        {"sigfigs", {0, 101}},     {"cx", {0, 99, 10001}},
        {"cy", {0, 99, 10001}},    {"trans", {101}},
        {"european", {2}},         {"degmode", {2}},
        {"firstrun", {0x7fffffff}}};
    for (const Known& one : NUMBERS) {
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

TEST_F(Settings, theLeastAndTheMostOfARangeAreTaken) {
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
        for (size_t k = 0; k < 3; k++)
            bits = bits << 8 | (k < count ? static_cast<uint8_t>(text[i + k]) : 0U);
        for (size_t k = 0; k < 4; k++) coded += k <= count ? digits[bits >> (18 - 6 * k) & 63] : '=';
    }
    return "<data>" + coded + "</data>";
}

TEST_F(Settings, aDamagedColorGivesTheDefault) {
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

TEST_F(Settings, aDamagedFontGivesTheDefault) {
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

TEST_F(Settings, aFileThatCannotBeReadGivesDefaultsAndIsKeptBeside) {
    const std::string whole = read(settingsPath());
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
        write(settingsPath(), text);
        restart();
        expectDefaults();
        EXPECT_EQ(read(settingsPath() + ".unreadable"), text);
        EXPECT_EQ(storedNumber("sigfigs"), 10); // the defaults are written at once
        expectUsable();
        unlink((settingsPath() + ".unreadable").c_str());
    }
}

TEST_F(Settings, aFolderInTheFilesPlaceIsMovedAside) {
    unlink(settingsPath().c_str());
    [[NSFileManager defaultManager] createDirectoryAtPath:string(settingsPath().c_str()) attributes:nil];
    restart();
    expectDefaults();
    EXPECT_TRUE(exists(settingsPath() + ".unreadable"));
    EXPECT_EQ(storedNumber("sigfigs"), 10);
    expectUsable();
}

TEST_F(Settings, aPipeInTheFilesPlaceDoesNotHang) {
    unlink(settingsPath().c_str());
    ASSERT_EQ(std::system(("mkfifo '" + settingsPath() + "'").c_str()), 0);
    restart();
    expectDefaults();
    expectUsable();
}

// --- Folders that cannot be had ---

TEST_F(Settings, aFileInTheFoldersPlaceLetsTheProgramWorkWithoutSaving) {
    ASSERT_EQ(std::system(("rm -r '" + folder() + "'").c_str()), 0);
    write(folder(), "mine");
    restart();
    expectDefaults();
    expectUsable();
    run(1.3);
    terminate();
    EXPECT_EQ(read(folder()), "mine");
}

TEST_F(Settings, aFolderWhereNothingCanBeMadeLetsTheProgramWorkWithoutSaving) {
    ASSERT_EQ(std::system(("rm -r '" + folder() + "'").c_str()), 0);
    ASSERT_EQ(symlink("/proc/self", folder().c_str()), 0); // refuses new files to everybody
    restart();
    expectDefaults();
    expectUsable();
    run(1.3);
    terminate();
    EXPECT_FALSE(exists(settingsPath()));
}

TEST_F(Settings, aHomeThatDoesNotExistLetsTheProgramWorkWithoutSaving) {
    const std::string before = getenv("HOME") ? getenv("HOME") : "/";
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", "/proc/nowhere", 1);
    restart();
    expectDefaults();
    expectUsable();
    terminate();
    setenv("HOME", before.c_str(), 1);
}

TEST_F(Settings, theFolderIsMadeInTheHomeFolder) {
    const std::string before = getenv("HOME") ? getenv("HOME") : "/";
    setenv("HOME", (home + "/person").c_str(), 1);
    setenv("XDG_DATA_HOME", "relative", 1); // counts for nothing
    restart();
    terminate();
    setenv("HOME", before.c_str(), 1);
    EXPECT_TRUE(exists(home + "/person/.local/share/Tallyquill/pelmo_settings.plist"));
    EXPECT_FALSE(exists("relative"));
}

// --- Chance ---

// Whether every key has a value of its kind within its range.
static void expectSound(NSDictionary* settings) {
    for (const Known& one : NUMBERS) {
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

TEST_F(Settings, damageByChanceNeverKeepsTheProgramFromStarting) {
    const unsigned seed = damageSeed();
    std::mt19937 random(seed);
    const std::string whole = read(settingsPath());
    for (int round = 0; round < 2000; round++) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
        NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
        const std::string text = damaged(whole, random);
        expectSound(settingsOf(text));
        if (round % 20 == 0) startOver(text);
        [inner release];
        if (HasFailure()) break;
    }
}
