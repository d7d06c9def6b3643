// SPDX-License-Identifier: MIT
//
// Scripts: text files of entries, a line each.
#import "MainConsole.h"

#import "Platform.h"

#include "FileKeeping.h"

#include <cstring>

static const NSTimeInterval SCRIPT_RETRY_DELAY = 0.1; // of a script that waits for another one

static NSString* textFromPath(const std::string& path) {
    return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path.data() length:path.size()];
}

@implementation MainConsole (Scripts)

- (void)newDocument:(id)sender {
    [self endSearch];
    if ([self isClear]) return; // what was cleared before can still be brought back
    NSAttributedString* const text =
        [[[NSAttributedString alloc] initWithAttributedString:[self textStorage]] autorelease];
    clearedRecord = record;
    clearedStart = g_linestart;
    [self clearConsole];
    [[[self undoManager] prepareWithInvocationTarget:self] bringBack:text];
    [self ProcessResult:nullptr:YES];
}

// What New cleared last: any change above the entry makes undo forget it.
- (void)bringBack:(NSAttributedString*)text {
    NSFont* const font = [self font]; // it and the color may have changed meanwhile
    [[self textStorage] setAttributedString:text];
    [self setFont:font];
    [self setTextColor:[self textColor]];
    record = clearedRecord;
    g_linestart = clearedStart;
    [self gotoEnd];
    [[[self undoManager] prepareWithInvocationTarget:self] newDocument:nil];
}

// --- Saving ---

static NSArray* scriptTypes() {
    return @[ @"script", @"txt" ];
}

// The folder of the last script that was saved or opened, kept in the user's defaults; nil for none.
static NSString* const FOLDER = @"ScriptFolder";

static NSString* lastFolder() {
    NSString* const folder = [[NSUserDefaults standardUserDefaults] stringForKey:FOLDER];
    BOOL isFolder = NO;
    [[NSFileManager defaultManager] fileExistsAtPath:folder ? folder : @"" isDirectory:&isFolder];
    return isFolder ? folder : nil;
}

static void keepFolder(NSSavePanel* panel) {
    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    [defaults setObject:[[panel filename] stringByDeletingLastPathComponent] forKey:FOLDER];
    [defaults synchronize];
}

- (void)preparePanel:(NSSavePanel*)panel button:(NSString*)title {
    [panel setDelegate:(id)self];
    if (lastFolder()) [panel setDirectory:lastFolder()];
    platformWillOpenPanel(panel, title);
}

// The panels list folders and scripts alone.
- (BOOL)panel:(id)sender shouldShowFilename:(NSString*)path {
    BOOL isFolder = NO;
    [[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder];
    return isFolder || [scriptTypes() containsObject:[[path pathExtension] lowercaseString]];
}

- (NSString*)scriptText {
    return [NSString stringWithUTF8String:record.Script(calc, bytesOf([self typedEntry])).c_str()];
}

- (void)saveDocument:(id)sender {
    NSSavePanel* const panel = [NSSavePanel savePanel];
    [panel setTitle:@"Save to script file..."];
    [panel setAllowedFileTypes:scriptTypes()];
    [self preparePanel:panel button:@"Save Script"];
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    NSString* const news = NSWindowDidBecomeKeyNotification;
    [center addObserver:self selector:@selector(windowCameBeforePanel:) name:news object:nil];
    const NSInteger end = [panel runModal];
    [center removeObserver:self name:news object:nil];
    if (end != NSOKButton) return;
    keepFolder(panel);
    if ([self writeScript:[panel filename]]) return;
    [self simpleAlert:@"The script could not be saved.":[panel filename]];
}

// The panel's question whether a file is to be replaced.
- (void)windowCameBeforePanel:(NSNotification*)notification {
    NSWindow* const came = [notification object];
    if (came != [self window] && ![came isKindOfClass:[NSSavePanel class]]) [self ignoreKeysSoon];
}

- (BOOL)writeScript:(NSString*)path {
    return [[[self scriptText] dataUsingEncoding:NSUTF8StringEncoding] writeToFile:path atomically:YES];
}

- (void)saveDocumentAs:(id)sender {
    [self saveDocument:sender];
}

// --- Replaying ---

- (void)openDocument:(id)sender {
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    [panel setCanChooseFiles:YES];
    [panel setCanChooseDirectories:NO];
    [panel setAllowsMultipleSelection:NO];
    [self preparePanel:panel button:@"Open Script"];
    if ([panel runModalForTypes:@[ @"txt", @"script" ]] != NSOKButton) return;
    keepFolder(panel);
    if ([self loadFile:[panel filename]]) return;
    [self simpleAlert:@"The script could not be opened.":[panel filename]];
}

- (BOOL)isReplaying {
    return scripts.isReplaying;
}

- (BOOL)mustWait {
    return scripts.isReplaying || isAtWork || keeper.IsEntryRunning();
}

- (BOOL)loadFile:(NSString*)path {
    std::string script;
    if (!path || !readWholeFile([path fileSystemRepresentation], script)) return NO;
    if ([self mustWait] || !scripts.waiting.empty()) {
        scripts.waiting.push_back([path fileSystemRepresentation]);
        [self loadWaitingScriptsLater];
    } else {
        [self replayScript:script];
    }
    return YES;
}

- (void)loadWaitingScriptsLater {
    [self forgetLoading];
    if (scripts.waiting.empty()) return;
    [self performSelector:@selector(loadWaitingScripts) withObject:nil afterDelay:SCRIPT_RETRY_DELAY];
}

- (void)forgetLoading {
    [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(loadWaitingScripts) object:nil];
}

- (void)forgetWaitingScripts {
    scripts.waiting.clear();
    [self forgetLoading];
}

- (void)loadWaitingScripts {
    if ([self mustWait]) {
        [self loadWaitingScriptsLater];
        return;
    }
    const std::string path = scripts.waiting.front();
    scripts.waiting.pop_front();
    std::string script;
    const bool isRead = readWholeFile(path, script);
    if (isRead) [self replayScript:script];
    [self loadWaitingScriptsLater];
    if (!isRead) [self simpleAlert:@"The script could not be opened.":textFromPath(path)];
}

- (void)replayScript:(const std::string&)bytes {
    [self endSearch];
    [self insertWithoutPrompt:"\n"];
    [self watchInterrupts];
    scripts.isReplaying = true;
    [self replay:Script(bytes)];
    [self showScriptOutput];
    scripts.isReplaying = false;
    [self updateStatusbar:""];
    [self populateVarsMenu];
    [self populateFuncMenu];
    [self insertPrompt];
}

- (void)replay:(Script)script {
    std::string line;
    scriptInterrupted = false; // an earlier entry's
    while (script.Next(line)) {
        @autoreleasepool {
            [self ProcessResult:line.c_str():NO];
        }
        if (scriptInterrupted || calc.interrupted) {
            scriptInterrupted = false;
            calc.interrupted = true;
            break;
        }
        if (calc.status == STATUS_COMMAND && strcmp(calc.message, "exit") == 0) break;
    }
}

- (void)tutorial:(id)sender {
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"tutorial" ofType:@"script"];
    [self clearPrompt];
    if (path) [self loadFile:path];
}

@end
