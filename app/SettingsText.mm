// SPDX-License-Identifier: MIT
#import "SettingsText.h"

#include <cmath>
#include <cstdio>
#include <cstring>

struct Setting {
    const char* key;
    int standard;
    int least;
    int most;
    bool isNeeded; // zero would be no value
};

// In the order in which they are made. The colours and the font, which are objects, are not among them.
static const Setting SETTINGS[] = {
    {"tipscode", 0, 0, 0x7fffffff, false},
    {"firstrun", 1, 0, 0x7fffffff, false},
    {"snaptoscreen", 1, 0, 1, false},
    {"transback", 1, 0, 1, false},
    {"statusicon", 1, 0, 1, false},
    {"alwaystop", 0, 0, 1, false},
    {"mintotray", 0, 0, 1, false},
    {"autoeval", 1, 0, 1, false},
    {"twoscomp", 0, 0, 1, false},
    {"european", 0, 0, 1, false},
    {"tenkey", 0, 0, 1, false},
    {"separator", 0, 0, 1, false},
    {"doublenegans", 1, 0, 1, false},
    {"degmode", 1, 0, 1, false},
    {"scimode", 0, 0, 5, false},
    {"schar", ',', ' ', 255, true},
    {"histsz", 30, 1, 999, true},
    {"dispbase", 10, 2, 16, true},
    {"sigfigs", 10, 1, 100, true},
    {"financed", 2, 0, 100, false},
    {"x", 450, -100000, 100000, false},
    {"y", 250, -100000, 100000, false},
    {"cx", 450, 0, 100000, true},
    {"cy", 250, 0, 100000, true},
    {"trans", 25, 0, 100, false},
};

static NSString* keyOf(const Setting& setting) {
    return [NSString stringWithUTF8String:setting.key];
}

NSMutableDictionary* defaultSettings() {
    NSMutableDictionary* const settings = [NSMutableDictionary dictionary];
    for (const Setting& setting : SETTINGS) {
        [settings setObject:[NSNumber numberWithInt:setting.standard] forKey:keyOf(setting)];
    }
    return settings;
}

int neededSetting(NSString* key) {
    for (const Setting& setting : SETTINGS) {
        if (setting.isNeeded && [key isEqualToString:keyOf(setting)]) return setting.standard;
    }
    return 0;
}

// --- Colours and fonts ---

static NSData* dataOf(NSString* text) {
    return [text dataUsingEncoding:NSASCIIStringEncoding];
}

static NSData* colorData(NSColor* color) {
    NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    if (!rgb) return nil;
    return dataOf([NSString stringWithFormat:@"%.6g %.6g %.6g %.6g", [rgb redComponent], [rgb greenComponent],
                                             [rgb blueComponent], [rgb alphaComponent]]);
}

static NSColor* colorFromData(NSData* data) {
    NSString* const text = [[[NSString alloc] initWithData:data encoding:NSASCIIStringEncoding] autorelease];
    double parts[4] = {};
    if (!text ||
        sscanf([text UTF8String], "%lf %lf %lf %lf", &parts[0], &parts[1], &parts[2], &parts[3]) != 4) {
        return nil;
    }
    for (const double part : parts) {
        if (!(part >= 0 && part <= 1)) return nil;
    }
    return [NSColor colorWithCalibratedRed:parts[0] green:parts[1] blue:parts[2] alpha:parts[3]];
}

static NSData* fontData(NSFont* font) {
    return dataOf([NSString stringWithFormat:@"%.6g %@", [font pointSize], [font fontName]]);
}

static NSFont* fontFromData(NSData* data) {
    NSString* const text = [[[NSString alloc] initWithData:data encoding:NSASCIIStringEncoding] autorelease];
    const NSUInteger blank = [text rangeOfString:@" "].location;
    if (!text || blank == NSNotFound) return nil;
    const double size = [[text substringToIndex:blank] doubleValue];
    if (!(size >= 4 && size <= 200)) return nil;
    return [NSFont fontWithName:[text substringFromIndex:blank + 1] size:size];
}

// --- The file ---

std::string settingsText(NSDictionary* settings) {
    NSMutableDictionary* const stored = [NSMutableDictionary dictionaryWithDictionary:settings];
    NSString* const colors[] = {@"fgcolor", @"bgcolor"};
    for (NSString* const key : colors) {
        NSData* const data = colorData([settings objectForKey:key]);
        [stored removeObjectForKey:key];
        if (data) [stored setObject:data forKey:key];
    }
    NSFont* const font = [settings objectForKey:@"nsfont"];
    [stored removeObjectForKey:@"nsfont"];
    if (font && fontData(font)) [stored setObject:fontData(font) forKey:@"nsfont"];
    NSData* const data = [NSPropertyListSerialization dataFromPropertyList:stored
                                                                    format:NSPropertyListXMLFormat_v1_0
                                                          errorDescription:NULL];
    return data ? std::string(static_cast<const char*>([data bytes]), [data length]) : std::string();
}

static void checkNumbers(NSMutableDictionary* settings) {
    for (const Setting& setting : SETTINGS) {
        const id value = [settings objectForKey:keyOf(setting)];
        if (!value) continue;
        const bool isNumber = [value isKindOfClass:[NSNumber class]];
        const double number = isNumber ? [value doubleValue] : NAN;
        const bool isBase =
            strcmp(setting.key, "dispbase") != 0 || number == 2 || number == 10 || number == 16;
        if (isBase && number >= setting.least && number <= setting.most && number == std::floor(number))
            continue;
        [settings setObject:[NSNumber numberWithInt:setting.standard] forKey:keyOf(setting)];
    }
}

// Puts the object that the data under the key describes there, or the default.
static void checkObject(NSMutableDictionary* settings, NSString* key, id (*read)(NSData*), id standard) {
    const id value = [settings objectForKey:key];
    if (!value) return;
    const id object = [value isKindOfClass:[NSData class]] ? read(value) : nil;
    [settings removeObjectForKey:key];
    if (object) [settings setObject:object forKey:key];
    if (!object && standard) [settings setObject:standard forKey:key];
}

static id readColor(NSData* data) {
    return colorFromData(data);
}

static id readFont(NSData* data) {
    return fontFromData(data);
}

NSMutableDictionary* settingsFromText(NSData* bytes, NSFont* font) {
    if ([bytes length] == 0) return nil;
    const id list = [NSPropertyListSerialization propertyListFromData:bytes
                                                     mutabilityOption:NSPropertyListImmutable
                                                               format:NULL
                                                     errorDescription:NULL];
    if (![list isKindOfClass:[NSDictionary class]]) return nil;
    NSMutableDictionary* const settings = [NSMutableDictionary dictionaryWithDictionary:list];
    checkNumbers(settings);
    checkObject(settings, @"fgcolor", readColor,
                [NSColor colorWithCalibratedRed:0.1 green:0.9 blue:0.9 alpha:1]);
    checkObject(settings, @"bgcolor", readColor,
                [NSColor colorWithCalibratedRed:0.1 green:0.1 blue:0.1 alpha:1]);
    checkObject(settings, @"nsfont", readFont, font);
    return settings;
}
