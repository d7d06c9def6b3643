// SPDX-License-Identifier: MIT
//
// Scripts: text files of entries, a line each.
#import "MainConsole.h"

#include <cctype>
#include <cstdio>
#include <memory>
#include <string>
#include <sys/stat.h>

// Reads at most this much of a line; what is longer is no entry any more.
static const size_t LONGEST_LINE = 1 << 20;

struct CloseFile {
    void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

static File openScript(NSString* path) {
    File file(fopen([path fileSystemRepresentation], "r"));
    struct stat kind = {};
    if (!file || fstat(fileno(file.get()), &kind) != 0 || S_ISDIR(kind.st_mode)) return nullptr;
    return file;
}

// Reads up to and without the line feed. False at the end of the file.
static bool readLine(FILE* file, std::string& line) {
    line.clear();
    int c = getc(file);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = getc(file)) {
        if (line.size() < LONGEST_LINE) line += static_cast<char>(c);
    }
    return true;
}

// A line of a script as the console has its text: ISO Latin-1. Editors write UTF-8; a line that is no UTF-8 is
// Latin-1 already. What Latin-1 lacks becomes a question mark.
static std::string asLatin1(const std::string& line) {
    NSString* const text = [[[NSString alloc] initWithBytes:line.data()
                                                     length:line.size()
                                                   encoding:NSUTF8StringEncoding] autorelease];
    if (!text) return line;
    NSData* const bytes = [text dataUsingEncoding:NSISOLatin1StringEncoding allowLossyConversion:YES];
    return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

static bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r\f\v") == std::string::npos;
}

static NSString* modeWord(int mode) {
    NSString* const words[] = {@"auto", @"never", @"always", @"eng", @"prefix", @"finance"};
    return mode >= 0 && mode <= 5 ? words[mode] : words[0];
}

static NSString* baseWord(int base) {
    if (base == 2) return @"bin";
    return base == 16 ? @"hex" : @"dec";
}

static NSArray* scriptTypes() {
    return [NSArray arrayWithObjects:@"script", @"txt", nil];
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
        stringWithFormat:@"# PELMO SCRIPT: %@\n#%@ %@;%@ %d;%@ %@;%@ %@;\n",
                         @"uncomment line below to include calculator settings.", @"mode",
                         calc.degreeMode ? @"deg" : @"rad", @"sigfigs", calc.sigFigs, @"scimode",
                         modeWord(calc.sciMode), @"display", baseWord(calc.displayBase)];
    NSArray* const lines = [[self string] componentsSeparatedByString:@"\n"];
    for (NSUInteger i = 0; i < [lines count]; i++) {
        NSString* const line = [lines objectAtIndex:i];
        if ([line length] >= 3 && [line hasPrefix:@"> "])
            [script appendFormat:@"%@\n", [line substringFromIndex:2]];
    }
    return script;
}

- (void)saveDocument:(id)sender {
    (void)sender;
    NSSavePanel* const panel = [NSSavePanel savePanel];
    [panel setTitle:@"Save to script file..."];
    [panel setPrompt:@"Save Script"];
    [panel setAllowedFileTypes:scriptTypes()];
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
    if ([panel runModalForTypes:scriptTypes()] != NSOKButton) return;
    [self loadFile:[panel filename]];
}

- (BOOL)loadFile:(NSString*)path {
    const File file = openScript(path);
    if (!file) return NO;
    [self insertWithoutPrompt:"\n"];
    std::string line;
    while (readLine(file.get(), line)) {
        // A blank line is there for the eye; as an entry it would repeat the one before.
        if (line[0] == '#' || isBlank(line)) continue;
        [self ProcessResult:asLatin1(line).c_str():NO];
        if (scriptInterrupted || calc.interrupted) {
            scriptInterrupted = false;
            calc.interrupted = true;
            break;
        }
    }
    [self insertPrompt];
    return YES;
}

- (void)tutorial:(id)sender {
    (void)sender;
    NSString* const path = [[NSBundle mainBundle] pathForResource:@"tutorial" ofType:@"script"];
    [self clearPrompt];
    if (path) [self loadFile:path];
}

@end
