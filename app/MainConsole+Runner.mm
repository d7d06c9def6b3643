// SPDX-License-Identifier: MIT
//
// Entries to the engine, its answers and commands back.
#import "MainConsole.h"

#import "Platform.h"

#include "ConsoleCommand.h"
#include "Query.h"
#include "StatusHint.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <unistd.h>

using Clock = std::chrono::steady_clock;

static const char* const BAD_ENCODING = "** Invalid character/encoding used. **\n";

// What behind the name of a quick result is left out: "ans = ".
static const size_t QUICK_HEAD = 6;

@implementation MainConsole (Runner)

- (void)copySettingsToEngine {
    for (const Setting& setting : SETTINGS) {
        if (setting.entry.IsOfEachEntry()) setting.Apply([self setting:@(setting.key)], calc);
    }
}

// What the entry's commands changed. Storing angle mode and base shows them, which runs previews with the
// stored settings.
- (void)copySettingsFromEngine {
    const EntrySettings entered = calc;
    for (const Setting& setting : SETTINGS) {
        const bool isShown = strcmp(setting.key, "degmode") == 0 || strcmp(setting.key, "dispbase") == 0;
        if (setting.command.word && !isShown) [self setSetting:@(setting.key) to:setting.ValueIn(entered)];
    }
    if (entered.degreeMode != ([self setting:@"degmode"] != 0))
        [self setDegreeMode:entered.degreeMode ? 1 : 0];
    if (entered.displayBase != [self setting:@"dispbase"]) [self setDisplayBase:entered.displayBase:NO];
}

// Runs the line, or the entry at the prompt. Returns the status.
- (int)processLine:(const char*)line quick:(BOOL)quick {
    if (line) {
        snprintf(prompt, sizeof prompt, "%s", line);
    } else if (![self getPromptText]) {
        if (quick) return STATUS_ERROR; // a preview leaves no trace
        snprintf(prompt, sizeof prompt, "err");
        snprintf(calc.message, sizeof calc.message, "%s", BAD_ENCODING);
        calc.resultLine[0] = calc.echoText[0] = '\0';
        return calc.status = STATUS_ERROR;
    }
    const char* const entry = line ? line : prompt; // all of it, also when it is too long
    if (quick) return calc.ProcessEntry(entry, true);
    [self entryWillRun];
    [self watchInterrupts];
    const int status = calc.ProcessEntry(entry, false);
    [self entryDidRun];
    return status;
}

- (BOOL)isAtWork {
    return isAtWork;
}

- (void)ProcessResult:(const char*)line:(BOOL)quick {
    if (isAtWork) return;
    if (quick && !line && [self isReplaying]) return; // its output stands where the entry does
    [self copySettingsToEngine];
    if (!line && !quick) record.Add(bytesOf([self typedEntry]));
    isAtWork = !quick;
    const int status = [self processLine:line quick:quick];
    isAtWork = NO;
    if (quick) {
        [self updateStatusbar:status == STATUS_ERROR ? "" : calc.resultLine];
        if (status == STATUS_ERROR) [self showHintFor:line];
        return;
    }
    std::string output = calc.echoText;
    if (status == STATUS_RESULT) output += calc.resultLine;
    if (status == STATUS_MESSAGE || status == STATUS_ERROR) output += calc.message;
    if (![self isReplaying]) [self updateStatusbar:""]; // that a script takes long is said until its end
    if (status == STATUS_COMMAND)
        [self runCommandOf:line];
    else
        [self showOutput:output of:line];
    [self copySettingsFromEngine];
    if ([self isReplaying]) return; // the script refreshes the lists once, at its end
    [self populateVarsMenu];
    [self populateFuncMenu];
}

// What the entry lacks. One with characters that no entry can have was not previewed.
- (void)showHintFor:(const char*)line {
    const bool wasPreviewed = line || [self getPromptText];
    if (wasPreviewed) [self showHint:textFromBytes(statusHint(line ? line : prompt, calc).c_str())];
}

- (void)showOutput:(const std::string&)output of:(const char*)line {
    if (line) {
        if (prompt[0] != '\0' && !output.empty()) [self showScriptLine:output];
        return;
    }
    if (!output.empty() && prompt[0] == '\0') {
        [self insertPrePrompt:output.c_str():3];
    } else {
        [self insertWithNewPrompt:output.c_str()];
    }
    if (calc.status != STATUS_ERROR) return;
    const NSUInteger length = [textFromBytes(calc.message) length]; // at the end of the output
    const NSUInteger end = static_cast<NSUInteger>(g_linestart) - 3;
    [self show:NSMakeRange(end - length, length) as:TextKind::Error];
}

- (void)showScriptLine:(const std::string&)output {
    if ([self isReplaying]) [self leaveEmptyPrompt];
    const size_t length = calc.status == STATUS_ERROR ? strlen(calc.message) : 0; // at its end
    [self addScriptOutput:output.substr(0, output.size() - length) as:TextKind::Output];
    [self addScriptOutput:output.substr(output.size() - length) as:TextKind::Error];
    if (![self isReplaying]) [self showScriptOutput];
}

// A pause or a typed-out text that was entered at the prompt ends with a new prompt like every other entry.
- (void)runCommandOf:(const char*)line {
    [self showScriptOutput];
    const std::string command = calc.message; // a preview meanwhile would empty it
    const ConsoleCommand::Kind kind = consoleCommand(command).kind;
    const bool isTimed = kind == ConsoleCommand::Kind::Pause || kind == ConsoleCommand::Kind::TypeOut;
    if (!line && isTimed) [self insertWithoutPrompt:"\n"];
    if (line && isTimed && [self isReplaying]) [self leaveEmptyPrompt];
    isAtWork = YES;
    [self RunGUICommand:command.c_str()];
    isAtWork = NO;
    if (!line && isTimed) [self insertPrompt];
}

- (NSString*)QuickResult:(const char*)line:(int)base {
    if (isAtWork) return @"error";
    const int stored = calc.displayBase;
    [self copySettingsToEngine];
    calc.displayBase = base;
    snprintf(prompt, sizeof prompt, "%s", line);
    const int status = calc.ProcessEntry(line, true); // all of it: half a line would give a wrong number
    calc.displayBase = stored;
    if (status != STATUS_RESULT || strlen(calc.resultLine) < QUICK_HEAD) return @"error";
    return textFromBytes(calc.resultLine + QUICK_HEAD);
}

// --- Commands ---

- (void)RunGUICommand:(const char*)command {
    const ConsoleCommand asked = consoleCommand(command);
    switch (asked.kind) {
    case ConsoleCommand::Kind::None: break;
    case ConsoleCommand::Kind::Clear: [self clearConsole]; break;
    case ConsoleCommand::Kind::Exit: [[self window] close]; break;
    case ConsoleCommand::Kind::Pause:
        [self displayIfNeeded];
        [self waitMilliseconds:asked.milliseconds];
        break;
    case ConsoleCommand::Kind::ReplaceEntry:
        [self replacePrompt:calc.echoText];
        [self displayIfNeeded];
        break;
    case ConsoleCommand::Kind::TypeOut:
        [self typeOut:std::string(calc.echoText) wait:asked.milliseconds];
        break;
    case ConsoleCommand::Kind::Convert: [self askService:std::string(calc.echoText)]; break;
    case ConsoleCommand::Kind::OpenWebPage: [self openWebPage]; break;
    }
}

// Whether what runs is interrupted, which a script is told.
- (BOOL)isToStop {
    if (![self checkInterruptEvent]) return NO;
    return scriptInterrupted = true;
}

// Waits, asking for an interruption meanwhile. Returns NO when there was one.
- (BOOL)waitMilliseconds:(long)milliseconds {
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (Clock::now() < end) {
        if ([self isToStop]) return NO;
        usleep(500);
    }
    return YES;
}

- (void)typeOut:(const std::string&)text wait:(long)wait {
    for (size_t i = 0; i < text.size(); ++i) {
        if (i > 0 && wait > 0 && ![self waitMilliseconds:wait]) break;
        const char character[] = {text[i], '\0'};
        [self insertWithoutPrompt:character];
        g_linestart = static_cast<int32_t>([[self string] length]);
        [self displayIfNeeded];
        if ([self isToStop]) break;
    }
}

- (void)askService:(const std::string&)query {
    [self insertWithNewPrompt:" "];
    [self displayIfNeeded];
    [self insertPrePrompt:"...checking...\n":3];
    [self displayIfNeeded];
    NSString* const answer = [self QueryWAConvert:query.c_str()];
    [self insertTextPrePrompt:answer ? [answer stringByAppendingString:@"\n"] : @"Not found.\n":3];
}

// The default QuerySeconds may say how long to wait.
- (NSString*)QueryWAConvert:(const char*)query {
    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    NSString* const service = [defaults stringForKey:@"QueryServiceURL"];
    const NSInteger wanted = [defaults integerForKey:@"QuerySeconds"];
    const int seconds = wanted >= 1 && wanted <= 60 ? static_cast<int>(wanted) : QUERY_SECONDS;
    const std::string asked = bytesOf(textFromBytes(query));
    const std::string answer = askService(service ? bytesOf(service) : "", asked, seconds,
                                          [self] { return static_cast<bool>([self isToStop]); });
    return answer.empty() ? nil : @(answer.c_str());
}

- (void)openWebPage {
    NSString* const page = [[NSUserDefaults standardUserDefaults] stringForKey:@"WebPageURL"];
    const bool isOpening = platformOpenPage(page);
    [self insertWithNewPrompt:isOpening ? "<<< opening URL >>>\n" : "There is no web page to open.\n"];
}

@end
