// SPDX-License-Identifier: MIT
//
// The settings and the functions file.
#import "MainConsole.h"

#import "Controls.h"
#import "SettingsDictionary.h"

#include "Folder.h"
#include "TranscriptFile.h"

#include <algorithm>
#include <cstdio>

@implementation MainConsole (Files)

- (NSMutableDictionary*)settings {
    return settings;
}

- (int)setting:(NSString*)key {
    const id value = [settings objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]]) return [value intValue];
    // A file of an older version may lack a key.
    const Setting* const setting = settings ? findSetting([key UTF8String]) : nullptr;
    return setting ? setting->WhenMissing() : 0;
}

- (void)setSetting:(NSString*)key to:(int)value {
    [settings setObject:[NSNumber numberWithInt:value] forKey:key];
}

// --- The folder ---

- (NSString*)appSupportFolder {
    const std::string folder = ownFolder();
    makeFolder(folder);
    return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:folder.c_str()
                                                                       length:folder.size()];
}

// --- Settings ---

- (void)initSettingsDefault {
    [settings release];
    settings = [settingsDictionary(defaultSettings(), nil) retain];
    [self initColorsDefault];
}

- (void)initColorsDefault {
    if ([self font]) [settings setObject:[self font] forKey:@"nsfont"];
    NSDictionary* const defaults = settingsDictionary(defaultSettings(), nil);
    for (NSString* const key in @[ @"bgcolor", @"fgcolor", @"trans" ]) {
        [settings setObject:[defaults objectForKey:key] forKey:key];
    }
}

- (void)saveSettings {
    [self keepTranscript];
    keeper.SaveSettings([self settingsFileText]);
    [self tellFailedWritingAfter:0];
}

- (std::string)settingsFileText {
    if (!settings) return "";
    if ([self font]) [settings setObject:[self font] forKey:@"nsfont"];
    if ([self textColor]) [settings setObject:[self textColor] forKey:@"fgcolor"];
    if ([self backgroundColor]) [settings setObject:[self backgroundColor] forKey:@"bgcolor"];
    std::error_code unread;
    const std::string present = keeper.Settings(&unread);
    if (unread) { // what newer versions have put there would be lost
        keeper.NoteUnsavedSettings(unread);
        return "";
    }
    const std::string text = settingsText(keptSettings(settings), present);
    // A start shows base and angle mode, which stores them.
    return text == present && !keeper.AreSettingsUnsaved() ? "" : text;
}

- (void)loadSettings {
    [settings release];
    settings = nil;
    KeptSettings kept;
    const bool wasRead = readSettings(keeper.Settings(), kept);
    if (wasRead) {
        settings = [settingsDictionary(kept, [self font]) retain];
    } else {
        [self tellReadingLater:keeper.KeepSettingsBeside()];
        [self initSettingsDefault];
    }
    if ([settings objectForKey:@"nsfont"]) [self setFont:[settings objectForKey:@"nsfont"]];
    [self showTextColor:[settings objectForKey:@"fgcolor"] background:[settings objectForKey:@"bgcolor"]];
    if (!wasRead) [self saveSettings];
}

// --- Functions, variables, units, history ---

- (void)finishWriting {
    keeper.Finish();
}

- (void)tellFailedWritingAfter:(NSTimeInterval)delay {
    SEL tell = @selector(tellFailedWriting);
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:tell object:nil];
    [self performSelector:tell withObject:nil afterDelay:delay];
}

- (void)tellFailedWriting {
    if (keeper.IsBusy()) {
        [self tellFailedWritingAfter:0.1];
        return;
    }
    [self tellNews:@(keeper.TakeNews().c_str())];
}

// When the start is over, which empties the status line.
- (void)tellReadingLater:(const std::string&)text {
    [self performSelector:@selector(tellNews:) withObject:@(text.c_str()) afterDelay:0];
}

// Behind the news that are shown still: both files may be damaged, and no writing possible.
- (void)tellNews:(NSString*)text {
    if ([text length] == 0) return;
    const std::string told = shownNews.empty() ? "" : shownNews + "; ";
    const std::string all = told + bytesOf(text, NSISOLatin1StringEncoding);
    [self updateStatusbar:all.c_str()];
    shownNews = all;
}

- (void)reportUnwritten {
    const std::string failures = keeper.TakeFailures();
    if (!failures.empty()) fprintf(stderr, "Tallyquill: %s\n", failures.c_str());
}

- (void)saveFuncFile {
    [self keepTranscript];
    keeper.SaveDefinitions(calc);
    [self tellFailedWritingAfter:0];
}

- (void)startWriting {
    [self keepTranscript];
    keeper.SaveBoth(calc, [self settingsFileText]);
    [self tellFailedWritingAfter:0];
}

- (void)writeAllFiles {
    [self startWriting];
    [self reportUnwritten];
}

- (void)loadFuncFile {
    [self tellReadingLater:keeper.ReadDefinitions(calc)];
    for (const Setting& setting : SETTINGS) setting.Apply([self setting:@(setting.key)], calc);
}

// --- The transcript ---

// What stands in front of the prompt. The text alone is kept: what its lines are their beginnings tell.
- (void)keepTranscript {
    if ([self setting:@"startclear"] != 0) return keeper.SetTranscript("");
    const NSUInteger end = std::min(static_cast<NSUInteger>(g_linestart), [[self string] length]);
    const NSUInteger length = std::min(end, static_cast<NSUInteger>(TRANSCRIPT_BYTES));
    std::string last = bytesOf([[self string] substringWithRange:NSMakeRange(end - length, length)]);
    if (last.size() >= 2 && last.compare(last.size() - 2, 2, "> ") == 0) last.resize(last.size() - 2);
    keeper.SetTranscript(last);
}

- (void)bringBackTranscript {
    const std::string text = keeper.ReadTranscript();
    if (text.empty() || [self setting:@"startclear"] != 0) return;
    [self setString:[@(text.c_str()) stringByAppendingString:@"> "]];
    g_linestart = static_cast<int32_t>([[self string] length]);
    [self showLines];
    [[self undoManager] removeAllActions];
    [self gotoEnd];
}

- (void)showLines {
    NSUInteger end = 0;
    [[self textStorage] beginEditing];
    for (NSUInteger start = 0; start < static_cast<NSUInteger>(g_linestart); start = end) {
        [[self string] getLineStart:NULL end:&end contentsEnd:NULL forRange:NSMakeRange(start, 0)];
        NSString* const line = [[self string] substringWithRange:NSMakeRange(start, end - start)];
        const bool isError = [line hasPrefix:@"** "];
        const TextKind other = isError ? TextKind::Error : TextKind::Output;
        [self show:NSMakeRange(start, end - start) as:[line hasPrefix:@"> "] ? TextKind::Typed : other];
    }
    [[self textStorage] endEditing];
}

// --- Writing shortly after an entry ---

- (void)entryWillRun {
    if (![self isReplaying]) keeper.TakeForeignDefinitions(calc);
    keeper.EntryWillRun(calc, [self isReplaying]);
}

- (void)entryDidRun {
    keeper.EntryDidRun();
    [self writeDueFiles]; // a script keeps the timer from firing
    // Also when this entry has just been written: its settings are taken over only now.
    if (!keeper.NoteChange()) return;
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(writeDueFiles) object:nil];
    [self performSelector:@selector(writeDueFiles)
               withObject:nil
               afterDelay:Keeper::DELAY
                  inModes:everyMode()];
}

- (void)writeDueFiles {
    if (keeper.IsDue()) [self startWriting];
}

@end
