// SPDX-License-Identifier: MIT
#import "SettingsDictionary.h"

static NSColor* colorOf(const std::string& text) {
    double parts[4] = {};
    if (!readColor(text, parts)) return nil;
    return [NSColor colorWithCalibratedRed:parts[0] green:parts[1] blue:parts[2] alpha:parts[3]];
}

static NSFont* fontOf(const std::string& text) {
    double points = 0;
    std::string name;
    if (!readFont(text, points, name)) return nil;
    NSString* const title = [NSString stringWithUTF8String:name.c_str()];
    return title ? [NSFont fontWithName:title size:points] : nil;
}

NSMutableDictionary* settingsDictionary(const KeptSettings& kept, NSFont* font) {
    NSMutableDictionary* const settings = [NSMutableDictionary dictionary];
    for (const auto& [key, number] : kept.numbers) {
        [settings setObject:[NSNumber numberWithInt:number] forKey:@(key.c_str())];
    }
    for (const auto& [key, text] : kept.texts) {
        id value = findSetting(key)->kind == Setting::COLOR ? static_cast<id>(colorOf(text)) : fontOf(text);
        if (!value) value = font;
        if (value) [settings setObject:value forKey:@(key.c_str())];
    }
    return settings;
}

// The color's or the font's text; empty for another kind of object.
static std::string textOf(id value) {
    if ([value isKindOfClass:[NSFont class]])
        return fontText([value pointSize], [[value fontName] UTF8String]);
    if (![value isKindOfClass:[NSColor class]]) return "";
    NSColor* const rgb = [value colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    if (!rgb) return "";
    return colorText({[rgb redComponent], [rgb greenComponent], [rgb blueComponent], [rgb alphaComponent]});
}

KeptSettings keptSettings(NSDictionary* settings) {
    KeptSettings kept;
    for (const Setting& setting : SETTINGS) {
        const id value = [settings objectForKey:@(setting.key)];
        const std::string text = setting.IsNumber() ? "" : textOf(value);
        if (setting.IsNumber() && [value isKindOfClass:[NSNumber class]])
            kept.numbers[setting.key] = [value intValue];
        else if (!text.empty())
            kept.texts[setting.key] = text;
    }
    return kept;
}
