// SPDX-License-Identifier: MIT
//
// Scripts: text files of entries, a line each.
#import "MainConsole.h"

#import "Platform.h"

#include "FileKeeping.h"

#include <algorithm>
#include <cstring>
#include <string>

static const NSTimeInterval RETRY_DELAY = 0.1; // of a script that waits for another one

static bool isReplaying = false;

// A line of a script as the console has its text: ISO Latin-1. Editors write UTF-8; a line that is no UTF-8 is
// Latin-1 already. What Latin-1 lacks becomes a question mark, and so does a NUL, which would hide what follows it.
static std::string asLatin1(std::string line) {
    std::replace(line.begin(), line.end(), '\0', '?');
    NSString* const text = [[[NSString alloc] initWithBytes:line.data()
                                                     length:line.size()
                                                   encoding:NSUTF8StringEncoding] autorelease];
    if (!text) return line;
    NSData* const bytes = [text dataUsingEncoding:NSISOLatin1StringEncoding allowLossyConversion:YES];
    return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

// Takes the next line, without its end, from `start` on and moves that behind it. False at the end of the text.
static bool takeLine(const std::string& text, size_t& start, std::string& line) {
    if (start >= text.size()) return false;
    const size_t end = std::min(text.find('\n', start), text.size());
    line = text.substr(start, end - start);
    start = end + 1;
    return true;
}

static bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r\f\v") == std::string::npos;
}

@implementation MainConsole (Scripts)

- (void)newDocument:(id)sender {
    (void)sender;
    [self clearConsole];
    [self ProcessResult:nullptr:YES];
}

// --- Saving ---

- (NSString*)scriptText {
    NSMutableString* const script = [NSMutableString
        stringWithString:@"# PELMO SCRIPT: uncomment line below to include calculator settings.\n#"];
    for (const char* const key : {"degmode", "sigfigs", "scimode", "dispbase"}) {
        const Setting& setting = *findSetting(key);
        [script appendFormat:@"%s;", setting.CommandFor(setting.ValueIn(calc)).c_str()];
    }
    [script appendString:@"\n"];
    for (NSString* const entry in entries) [script appendFormat:@"%@\n", entry];
    if ([[self typedEntry] length] > 0) [script appendFormat:@"%@\n", [self typedEntry]];
    return script;
}

- (void)saveDocument:(id)sender {
    (void)sender;
    NSSavePanel* const panel = [NSSavePanel savePanel];
    [panel setTitle:@"Save to script file..."];
    [panel setPrompt:@"Save Script"];
    [panel setAllowedFileTypes:[NSArray arrayWithObjects:@"script", @"txt", nil]];
    platformWillOpenPanel(panel);
    if ([panel runModal] != NSOKButton) return;
    if ([self writeScript:[panel filename]]) return;
    [self simpleAlert:@"The script could not be saved.":[panel filename]];
}

// Entries are ASCII. Other letters, in texts to show, are kept as the console has them.
- (BOOL)writeScript:(NSString*)path {
    NSString* const script = [self scriptText];
    NSData* data = [script dataUsingEncoding:NSASCIIStringEncoding allowLossyConversion:NO];
    if (!data) data = [script dataUsingEncoding:NSUTF8StringEncoding];
    return [data writeToFile:path atomically:YES];
}

- (void)saveDocumentAs:(id)sender {
    [self saveDocument:sender];
}

// --- Replaying ---

- (void)openDocument:(id)sender {
    (void)sender;
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    [panel setCanChooseFiles:YES];
    [panel setCanChooseDirectories:NO];
    [panel setAllowsMultipleSelection:NO];
    NSArray* const types = [NSArray arrayWithObjects:@"txt", @"script", nil];
    platformWillOpenPanel(panel);
    if ([panel runModalForTypes:types] != NSOKButton) return;
    if ([self loadFile:[panel filename]]) return;
    [self simpleAlert:@"The script could not be opened.":[panel filename]];
}

- (BOOL)isReplaying {
    return isReplaying;
}

- (BOOL)mustWait {
    return isReplaying || isAtWork || [self isEntryRunning];
}

- (BOOL)loadFile:(NSString*)path {
    std::string script;
    if (!path || !readWholeFile([path fileSystemRepresentation], script)) return NO;
    if ([self mustWait] || [waitingScripts count] > 0) {
        if (!waitingScripts) waitingScripts = [[NSMutableArray alloc] init];
        [waitingScripts addObject:path];
        if ([waitingScripts count] == 1) [self loadWaitingScriptsLater];
        return YES;
    }
    [self replayScript:script];
    return YES;
}

- (void)loadWaitingScriptsLater {
    [self performSelector:@selector(loadWaitingScripts) withObject:nil afterDelay:RETRY_DELAY];
}

// One at a time, in the order in which they came.
- (void)loadWaitingScripts {
    if ([self mustWait]) {
        [self loadWaitingScriptsLater];
        return;
    }
    NSString* const path = [[[waitingScripts objectAtIndex:0] retain] autorelease];
    std::string script;
    const bool isRead = readWholeFile([path fileSystemRepresentation], script);
    if (isRead) [self replayScript:script];
    [waitingScripts removeObjectAtIndex:0]; // those that come meanwhile wait behind it
    if ([waitingScripts count] > 0) [self loadWaitingScriptsLater];
    if (!isRead) [self simpleAlert:@"The script could not be opened.":path];
}

- (void)replayScript:(const std::string&)script {
    [self insertWithoutPrompt:"\n"];
    isReplaying = true;
    [self replay:script];
    isReplaying = false;
    [self populateVarsMenu];
    [self populateFuncMenu];
    [self insertPrompt];
}

- (void)replay:(const std::string&)script {
    const char* const mark = "\xEF\xBB\xBF"; // editors put it in front of UTF-8
    size_t start = script.compare(0, strlen(mark), mark) == 0 ? strlen(mark) : 0;
    std::string line;
    scriptInterrupted = false; // an earlier entry's
    while (takeLine(script, start, line)) {
        // A blank line is there for the eye; as an entry it would repeat the one before.
        if (line[0] == '#' || isBlank(line)) continue;
        NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
        [self ProcessResult:asLatin1(line).c_str():NO];
        [pool release];
        if (scriptInterrupted || calc.interrupted) {
            scriptInterrupted = false;
            calc.interrupted = true;
            break;
        }
        if (calc.status == STATUS_COMMAND && strcmp(calc.message, "exit") == 0) break;
    }
}

- (void)tutorial:(id)sender {
    (void)sender;
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"tutorial" ofType:@"script"];
    [self clearPrompt];
    if (path) [self loadFile:path];
}

@end
