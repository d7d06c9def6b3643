// SPDX-License-Identifier: MIT
#import "SettingsText.h"

#include "deq.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>

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
    {"firstrun", 1, 0, 0x7ffffffe, false}, // it is counted up
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
    {"x", 450, -30000, 30000, false}, // X servers count in 16 bits
    {"y", 250, -30000, 30000, false},
    {"cx", 450, 100, 10000, true},
    {"cy", 250, 100, 10000, true},
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

// --- The grouping mark ---

static bool isOfOperator(unichar c) {
    for (const OpEntry* op = ops; op->code != 0; op++) {
        if (c < 0x80 && c != ',' && strchr(op->text, c)) return true;
    }
    return false;
}

NSString* groupingMarkFault(unichar c) {
    if (c < ' ' || (c >= 0x7f && c < 0xa0) || c > 0xff) return @"This character cannot be shown.";
    const char* fault = nullptr;
    if (c < 0x80 && isalpha(c)) fault = "is a letter.";
    if (c >= '0' && c <= '9') fault = "is a digit.";
    if (isOfOperator(c)) fault = "is an operator.";
    if (strchr("()[]{}", c)) fault = "is a bracket.";
    if (c == '=') fault = "assigns and compares.";
    if (c == '#') fault = "begins a comment.";
    if (c == '_') fault = "is part of names.";
    return fault ? [NSString stringWithFormat:@"%C %s", c, fault] : nil;
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

// Whether the number is one that the setting can have.
static bool isPossible(const Setting& setting, double number) {
    if (!(number >= setting.least && number <= setting.most && number == std::floor(number))) return false;
    if (strcmp(setting.key, "dispbase") == 0) return number == 2 || number == 10 || number == 16;
    return strcmp(setting.key, "schar") != 0 || !groupingMarkFault(static_cast<unichar>(number));
}

static void checkNumbers(NSMutableDictionary* settings) {
    for (const Setting& setting : SETTINGS) {
        const id value = [settings objectForKey:keyOf(setting)];
        if (!value) continue;
        const bool isNumber = [value isKindOfClass:[NSNumber class]];
        if (isNumber && isPossible(setting, [value doubleValue])) continue;
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

// Whether what stands between '<' and '>' is a name or, in the head of the file, has its attributes' values in
// quotation marks.
static bool isSoundTag(std::string_view tag) {
    if (tag.substr(0, 1) == "!") return true;
    const bool isHead = tag.substr(0, 1) == "?" || tag.substr(0, 5) == "plist";
    char quote = '\0';
    for (size_t i = 0; i < tag.size(); i++) {
        const char c = tag[i];
        if (!isHead && c != '/' && !isalnum(static_cast<unsigned char>(c))) return false;
        if (quote == '\0' && (c == '"' || c == '\'')) {
            if (tag[i - 1] != '=') return false; // a head does not begin with it
            quote = c;
        } else if (c == quote) {
            quote = '\0';
        }
    }
    return quote == '\0';
}

static bool hasSoundTags(std::string_view text) {
    for (size_t open = text.find('<'); open != std::string_view::npos; open = text.find('<', open + 1)) {
        const size_t close = text.find_first_of("<>", open + 1);
        if (close == std::string_view::npos || text[close] == '<') return false;
        if (!isSoundTag(text.substr(open + 1, close - open - 1))) return false;
    }
    return true;
}

// Whether the parser can have it. That of GNUstep raises exceptions for damaged property lists of the other forms,
// for bytes that are no UTF-8 and for damaged tags, and it reads on behind the end of a text that is cut off.
static bool isWholeXml(NSData* bytes) {
    const std::string_view start = "<?xml";
    const std::string_view end = "</plist>";
    std::string_view text(static_cast<const char*>([bytes bytes]), [bytes length]);
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    if (text.size() < start.size() + end.size() || text.substr(0, start.size()) != start ||
        text.substr(text.size() - end.size()) != end)
        return false;
    if (text.find('\0') != std::string_view::npos || !hasSoundTags(text)) return false;
    return [[[NSString alloc] initWithData:bytes encoding:NSUTF8StringEncoding] autorelease] != nil;
}

NSMutableDictionary* settingsFromText(NSData* bytes, NSFont* font) {
    if (!isWholeXml(bytes)) return nil;
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
