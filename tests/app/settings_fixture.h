// SPDX-License-Identifier: MIT
//
// A console whose settings are looked at: the keys as they should be, and texts of settings files.
#pragma once

#import "console_fixture.h"

#import "SettingsDictionary.h"

#include "../settings_table.h"

#include <cstring>
#include <iterator>
#include <string>

const std::vector<Setting> NUMBERS = numberSettings();

inline NSString* string(const char* text) {
    return [NSString stringWithUTF8String:text];
}

inline NSData* data(const std::string& bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

inline std::string bytes(NSData* value) {
    return std::string(static_cast<const char*>([value bytes]), [value length]);
}

// A number as a property list's element.
inline std::string integer(long long value) {
    return "<integer>" + std::to_string(value) + "</integer>";
}

const char* const HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
const char* const END = "</dict>\n</plist>\n";

inline std::string pair(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key>" + value + "\n";
}

// A whole file with one key.
inline std::string fileWith(const std::string& key, const std::string& value) {
    return HEAD + pair(key, value) + END;
}

inline NSMutableDictionary* settingsOf(const std::string& text) {
    KeptSettings kept;
    if (!readSettings(text, kept)) return nil;
    return settingsDictionary(kept, [NSFont userFixedPitchFontOfSize:13]);
}

inline void expectColor(NSColor* color, double red, double green, double blue, double alpha) {
    NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    ASSERT_NE(rgb, nil);
    EXPECT_NEAR([rgb redComponent], red, 1e-6);
    EXPECT_NEAR([rgb greenComponent], green, 1e-6);
    EXPECT_NEAR([rgb blueComponent], blue, 1e-6);
    EXPECT_NEAR([rgb alphaComponent], alpha, 1e-6);
}

class Settings : public ConsoleTest {
protected:
    NSDictionary* Stored() const {
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        const id list = [NSPropertyListSerialization propertyListFromData:data(Read(SettingsPath()))
                                                         mutabilityOption:NSPropertyListImmutable
                                                                   format:&format
                                                         errorDescription:NULL];
        EXPECT_EQ(format, NSPropertyListXMLFormat_v1_0);
        EXPECT_TRUE([list isKindOfClass:[NSDictionary class]]);
        return list;
    }

    int StoredNumber(const char* key) const { return [[Stored() objectForKey:string(key)] intValue]; }
    id SettingOf(const char* key) const { return [[console settings] objectForKey:string(key)]; }

    // The program starts over this text and can be used.
    void StartOver(const std::string& text) {
        Write(SettingsPath(), text);
        Restart();
        ExpectUsable();
    }

    void ExpectUsable() {
        Enter("mode deg; 40+2");
        EXPECT_EQ(Qtod(calc.answer.value), 42);
    }

    void ExpectDefaults() {
        for (const Setting& one : NUMBERS) {
            SCOPED_TRACE(one.key);
            const bool isFirstRun = strcmp(one.key, "firstrun") == 0; // counted by the start
            EXPECT_EQ([SettingOf(one.key) intValue], isFirstRun ? 2 : one.standard);
        }
        expectColor(SettingOf("bgcolor"), 0.1, 0.1, 0.1, 1);
        expectColor(SettingOf("fgcolor"), 0.1, 0.9, 0.9, 1);
        EXPECT_TRUE([SettingOf("nsfont") isEqual:[console font]]);
    }

    static double Qtod(const qfloat value) {
        double number = 0;
        qtoe(value, &number);
        return number;
    }
};
