// SPDX-License-Identifier: MIT
//
// The settings and the functions file.
#import "MainConsole.h"

#import "BackgroundWriter.h"
#import "SettingsDictionary.h"

#include "FileKeeping.h"
#include "Folder.h"
#include "DefinitionsFile.h"
#include "DefinitionsMerge.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

using Clock = std::chrono::steady_clock;

// After an entry the files are written this much later, with all that came meanwhile.
static const NSTimeInterval WRITE_DELAY = 1;

// What entries changed since the files were written.
struct Unwritten {
    bool exists = false;
    bool isEntryRunning = false;
    Clock::time_point since;
    std::string text; // of the functions file before the running entry
    Clock::time_point textTime;
    Clock::duration textCost = Clock::duration::zero();
};
static Unwritten unwritten;

// The functions file is damaged and no copy of it could be made.
static bool isOnlyCopy = false;

static std::string pathBytes(NSString* path) {
    return path ? [path fileSystemRepresentation] : "";
}

static bool exists(const std::string& path) {
    struct stat kind = {};
    return lstat(path.c_str(), &kind) == 0;
}

// Another copy of the program may have written the file meanwhile: what it defined stays.
static DefinitionsMerge merge;

// Writes what is due while the person goes on typing.
static BackgroundWriter backgroundWriter;

// Keeps a damaged file beside. False when there is none now, though there was room for one: the disk is full, say.
static bool keepDamaged(const std::string& path) {
    std::error_code reason;
    if (!keepUnreadable(path, &reason).empty() || !exists(path) || exists(path + ".unreadable.9"))
        return true;
    backgroundWriter.SetFailed(path, reason);
    return false;
}

// What a damaged file held is not overwritten before there is a copy of it.
static bool mayWriteFunctions() {
    if (!funcFilePath) return false;
    if (isOnlyCopy) isOnlyCopy = !keepDamaged(pathBytes(funcFilePath));
    return !isOnlyCopy;
}

static std::string failureText(const std::string& path, const FailedWrite& failure) {
    return "Not saved: " + path.substr(path.rfind('/') + 1) + " (" + failure.reason.message() + ")";
}

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
    if (!settings || !prefFilePath) return;
    const std::string text = [self settingsFileText];
    backgroundWriter.Finish();
    if (!text.empty()) [self startWriting:{{pathBytes(prefFilePath), text}}];
    backgroundWriter.Finish();
}

- (std::string)settingsFileText {
    if ([self font]) [settings setObject:[self font] forKey:@"nsfont"];
    if ([self textColor]) [settings setObject:[self textColor] forKey:@"fgcolor"];
    if ([self backgroundColor]) [settings setObject:[self backgroundColor] forKey:@"bgcolor"];
    std::string present;
    readWholeFile(pathBytes(prefFilePath), present);
    return settingsText(keptSettings(settings), present);
}

- (void)loadSettings {
    unwritten = Unwritten();
    [settings release];
    settings = nil;
    backgroundWriter.Finish();
    const std::string path = pathBytes(prefFilePath);
    removeLeftovers(path);
    std::string text;
    readWholeFile(path, text);
    KeptSettings kept;
    const bool wasRead = readSettings(text, kept);
    if (wasRead) settings = [settingsDictionary(kept, [self font]) retain];
    if (!wasRead) keepUnreadable(path);
    if (!wasRead) [self initSettingsDefault];
    [self applyColors];
    if (!wasRead) [self saveSettings];
}

- (void)applyColors {
    if ([settings objectForKey:@"nsfont"]) [self setFont:[settings objectForKey:@"nsfont"]];
    [self showTextColor:[settings objectForKey:@"fgcolor"] background:[settings objectForKey:@"bgcolor"]];
}

- (void)showTextColor:(NSColor*)text background:(NSColor*)back {
    if (back) [self setBackgroundColor:back];
    if (text) [self setTextColor:text];
    if (text) [self setInsertionPointColor:text];
    if (!back || !text) return;
    NSColor* const gray = [text colorUsingColorSpaceName:NSCalibratedWhiteColorSpace];
    NSColor* const selected = [gray blendedColorWithFraction:0.7 ofColor:back];
    if (!selected) return;
    [self setSelectedTextAttributes:[NSDictionary
                                        dictionaryWithObjectsAndKeys:selected, NSBackgroundColorAttributeName,
                                                                     text, NSForegroundColorAttributeName,
                                                                     nil]];
}

// --- Functions, variables, units, history ---

- (void)finishWriting {
    backgroundWriter.Finish();
}

// The folder may have been taken away meanwhile.
- (void)startWriting:(std::vector<FileToWrite>)files {
    [self appSupportFolder];
    backgroundWriter.Write(std::move(files));
    [self tellFailedWritingAfter:0];
}

- (void)tellFailedWritingAfter:(NSTimeInterval)delay {
    const SEL tell = @selector(tellFailedWriting);
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:tell object:nil];
    [self performSelector:tell withObject:nil afterDelay:delay];
}

- (void)tellFailedWriting {
    if (backgroundWriter.IsBusy()) {
        [self tellFailedWritingAfter:0.1];
        return;
    }
    backgroundWriter.Finish();
    const auto* const news = backgroundWriter.TakeNews();
    if (!news) return;
    NSString* const text = [NSString stringWithUTF8String:failureText(news->first, news->second).c_str()];
    NSData* const latin1 = [text dataUsingEncoding:NSISOLatin1StringEncoding allowLossyConversion:YES];
    const std::string bytes(static_cast<const char*>([latin1 bytes]), [latin1 length]);
    [self updateStatusbar:bytes.c_str()];
}

// When the start is over, which empties the status line.
- (void)tellReading:(NSString*)text {
    [self updateStatusbar:[text UTF8String]];
}

- (void)reportUnwritten {
    backgroundWriter.Finish();
    for (const auto& failure : backgroundWriter.TakeFailures()) {
        fprintf(stderr, "Tallyquill: %s\n", failureText(failure.first, failure.second).c_str());
    }
}

- (void)saveFuncFile {
    unwritten = Unwritten();
    backgroundWriter.Finish();
    if (!mayWriteFunctions()) {
        [self tellFailedWritingAfter:0];
        return;
    }
    [self startWriting:{{pathBytes(funcFilePath), definitionsText(calc), &merge}}];
    backgroundWriter.Finish();
}

- (void)writeAllFiles {
    backgroundWriter.Finish();
    std::vector<FileToWrite> files;
    const std::string settingsNow = settings && prefFilePath ? [self settingsFileText] : "";
    if (!settingsNow.empty()) files.push_back({pathBytes(prefFilePath), settingsNow});
    const std::string text = unwritten.isEntryRunning ? unwritten.text : definitionsText(calc);
    if (!text.empty() && mayWriteFunctions()) files.push_back({pathBytes(funcFilePath), text, &merge});
    [self startWriting:std::move(files)];
    [self reportUnwritten];
}

- (void)loadFuncFile {
    backgroundWriter.Finish();
    const std::string path = pathBytes(funcFilePath);
    removeLeftovers(path);
    const DefinitionsRead result = readDefinitions(calc, path);
    isOnlyCopy = (!result.opened || result.damaged) && !keepDamaged(path);
    // A line that was refused is no other program's: it is in the copy that was kept.
    merge = DefinitionsMerge();
    merge.Know(result.text, result.twins);
    NSString* text = nil;
    if (result.damaged)
        text = @"Not all of pelmo_functions.txt could be read: see pelmo_functions.txt.unreadable";
    if (result.unread > 0) text = @"Some of pelmo_functions.txt takes too long to read; it stays in the file";
    if (text) [self performSelector:@selector(tellReading:) withObject:text afterDelay:0];
    calc.european = [self setting:@"european"] != 0;
    calc.tenKey = [self setting:@"tenkey"] != 0;
}

// --- Writing shortly after an entry ---

- (BOOL)isEntryRunning {
    return unwritten.isEntryRunning;
}

- (void)entryWillRun {
    unwritten.isEntryRunning = true;
    if (!unwritten.exists || !funcFilePath) return;
    const Clock::time_point now = Clock::now();
    // In a script of thousands of definitions the text takes longer than the lines: a twentieth of the time is for it.
    if ([self isReplaying] && now - unwritten.textTime < 20 * unwritten.textCost) return;
    unwritten.text = definitionsText(calc);
    unwritten.textTime = Clock::now();
    unwritten.textCost = unwritten.textTime - now;
}

- (void)entryDidRun {
    unwritten.isEntryRunning = false;
    [self writeDueFiles]; // a script keeps the timer from firing
    if (unwritten.exists) return;
    // Also when this entry has just been written: its settings are taken over only now.
    unwritten.exists = true;
    unwritten.since = Clock::now();
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(writeDueFiles) object:nil];
    [self performSelector:@selector(writeDueFiles)
               withObject:nil
               afterDelay:WRITE_DELAY
                  inModes:[NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                                    NSEventTrackingRunLoopMode, nil]];
}

- (void)writeDueFiles {
    if (!unwritten.exists) return;
    const std::chrono::duration<double> age = Clock::now() - unwritten.since;
    if (age.count() < WRITE_DELAY * 0.9) return;
    backgroundWriter.Finish();
    // While the engine is at work, what it held before this entry is written, once.
    const bool isRunning = unwritten.isEntryRunning;
    if (isRunning && unwritten.text.empty()) return;
    std::vector<FileToWrite> files;
    const std::string settingsNow = settings && prefFilePath ? [self settingsFileText] : "";
    if (!settingsNow.empty()) files.push_back({pathBytes(prefFilePath), settingsNow});
    if (mayWriteFunctions()) {
        const std::string text = isRunning ? unwritten.text : definitionsText(calc);
        files.push_back({pathBytes(funcFilePath), text, &merge});
    }
    [self startWriting:std::move(files)];
    if (isRunning)
        unwritten.text.clear();
    else
        unwritten = Unwritten();
}

@end
