// SPDX-License-Identifier: MIT
#import "console_fixture.h"

#import "../engine/clean_start.h"
#import "Interface.h"
#import "PelmoAppDelegate.h"
#import "PrefController.h"

#import <objc/runtime.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

static std::vector<RecordedSheet> recordedSheets;
static std::vector<std::string> recordedAlerts;

static std::string utf8(NSString* text) {
    const char* const bytes = [text UTF8String];
    return bytes ? bytes : "";
}

static void recordSheet(id, SEL, NSString* message, NSString* yes, NSString* no, SEL selector) {
    recordedSheets.push_back(
        {utf8(message), utf8(yes), utf8(no), selector ? utf8(NSStringFromSelector(selector)) : ""});
}

static void recordAlert(id, SEL, NSString* title, NSString* detail) {
    recordedAlerts.push_back(utf8(title) + "\n" + utf8(detail));
}

// In place of what would wait for a person.
static void recordSheetsAndAlerts() {
    const SEL sheet = @selector(showSheet:yes:no:didEnd:);
    const SEL alert = @selector(simpleAlert::);
    class_replaceMethod([MainConsole class], sheet, reinterpret_cast<IMP>(recordSheet), "v@:@@@:");
    class_replaceMethod([MainConsole class], alert, reinterpret_cast<IMP>(recordAlert), "v@:@@");
}

@implementation MainConsole (ForTests)
- (BOOL)isWritingDue {
    return keeper.IsDue();
}

- (BOOL)hasWaitingScripts {
    return !scripts.waiting.empty();
}
@end

@interface TestDelegate : PelmoAppDelegate {
@public
    int clicks;
}
@end

@implementation TestDelegate
- (void)clickedAppStatusItem:(id)sender {
    (void)sender;
    ++clicks;
}
@end

@interface Attempt : NSObject {
@public
    std::function<bool()> act;
}
@end

@implementation Attempt
- (void)act:(NSTimer*)timer {
    if (act()) [timer invalidate];
}
@end

ConsoleTest::ConsoleTest() : sheets(recordedSheets), alerts(recordedAlerts) {}

void ConsoleTest::SetUp() {
    pool = [[NSAutoreleasePool alloc] init];
    recordSheetsAndAlerts();
    recordedSheets.clear();
    recordedAlerts.clear();
    char name[] = "/tmp/tallyquill-test-XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    home = name;
    setenv("XDG_DATA_HOME", name, 1);
    Start();
}

void ConsoleTest::TearDown() {
    [console finishWriting];
    [NSObject cancelPreviousPerformRequestsWithTarget:console];
    [window close];
    [window release];
    [delegate release];
    [pool release];
    const std::string command = "chmod -R u+rwX '" + home + "' && rm -rf '" + home + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

// The engine, the functions and the units belong to the process.
static void forgetEverything() {
    calc.~ZqCalculator();
    new (&calc) ZqCalculator;
    deleteAllFunctions();
    funcs.TabCompleteReset();
    deleteAllUnits();
    prompt[0] = matchstr[0] = '\0';
    matching_enable = update_match_str = 0;
    keyCode = prevKey = 0;
    scriptInterrupted = false;
}

void ConsoleTest::Start() {
    forgetEverything();
    delegate = [[TestDelegate alloc] init];
    window = [buildMainWindow(delegate) retain];
    console = [delegate mainConsole];
    [console initializeConsole:window];
    [window makeFirstResponder:console];
}

void ConsoleTest::Restart() {
    [console finishWriting];
    [NSObject cancelPreviousPerformRequestsWithTarget:console];
    [window close];
    [window release];
    [delegate release];
    Start();
}

void ConsoleTest::Terminate() {
    [console terminateConsole];
}

// --- Keys ---

static NSString* charactersOf(uint32_t virtualKey) {
    switch (virtualKey) {
    case KEY_RETURN: return @"\r";
    case KEY_ENTER: return @"\003";
    case KEY_TAB: return @"\t";
    case KEY_ESCAPE: return @"\033";
    case KEY_BACKSPACE: return @"\177";
    default: break;
    }
    const struct {
        uint32_t key;
        unichar character;
    } keys[] = {{KEY_FORWARD_DELETE, NSDeleteFunctionKey},
                {KEY_F6, NSF6FunctionKey},
                {KEY_F10, NSF10FunctionKey},
                {KEY_HOME, NSHomeFunctionKey},
                {KEY_END, NSEndFunctionKey},
                {KEY_LEFT, NSLeftArrowFunctionKey},
                {KEY_RIGHT, NSRightArrowFunctionKey},
                {KEY_UP, NSUpArrowFunctionKey},
                {KEY_DOWN, NSDownArrowFunctionKey}};
    for (const auto& one : keys) {
        if (one.key == virtualKey) return [NSString stringWithCharacters:&one.character length:1];
    }
    return @"";
}

static NSEvent* keyEvent(NSWindow* window, NSString* characters, NSString* plain, NSUInteger flags,
                         uint32_t code) {
    return [NSEvent keyEventWithType:NSKeyDown
                            location:NSZeroPoint
                       modifierFlags:flags
                           timestamp:0
                        windowNumber:[window windowNumber]
                             context:[window graphicsContext]
                          characters:characters
         charactersIgnoringModifiers:plain
                           isARepeat:NO
                             keyCode:static_cast<unsigned short>(code)];
}

void ConsoleTest::Press(uint32_t virtualKey, NSUInteger flags) {
    NSString* const characters = charactersOf(virtualKey);
    const bool isFunctionKey = [characters length] > 0 && [characters characterAtIndex:0] >= 0xF700;
    if (isFunctionKey) flags |= NSFunctionKeyMask;
    [console keyDown:keyEvent(window, characters, characters, flags, virtualKey)];
}

void ConsoleTest::Press(NSString* characters, NSUInteger flags) {
    [console keyDown:keyEvent(window, characters, characters, flags, 0xff)];
}

void ConsoleTest::Press(NSString* characters, NSString* plain, NSUInteger flags) {
    [console keyDown:keyEvent(window, characters, plain, flags, 0xff)];
}

void ConsoleTest::Post(NSString* characters, NSUInteger flags) {
    [NSApp postEvent:keyEvent(window, characters, characters, flags, 0xff) atStart:NO];
}

NSEvent* ConsoleTest::Mouse(NSEventType type, NSPoint where) const {
    return [NSEvent mouseEventWithType:type
                              location:where
                         modifierFlags:0
                             timestamp:0
                          windowNumber:[window windowNumber]
                               context:nil
                           eventNumber:0
                            clickCount:1
                              pressure:0];
}

NSTimer* ConsoleTest::WhileTracking(const std::function<bool()>& act) {
    Attempt* const attempt = [[[Attempt alloc] init] autorelease];
    attempt->act = act;
    NSTimer* const timer = [NSTimer timerWithTimeInterval:0.02
                                                   target:attempt
                                                 selector:@selector(act:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
    return timer;
}

NSMenuView* ConsoleTest::MenuIn(NSView* view) {
    if ([view isKindOfClass:[NSMenuView class]]) return static_cast<NSMenuView*>(view);
    for (NSView* const one in [view subviews]) {
        if (NSMenuView* const found = MenuIn(one)) return found;
    }
    return nil;
}

NSMenuView* ConsoleTest::OpenMenu() const {
    for (NSWindow* const one in [NSApp windows]) {
        NSMenuView* const found = one == window || ![one isVisible] ? nil : MenuIn([one contentView]);
        if (found) return found;
    }
    return nil;
}

void ConsoleTest::Type(const char* text) {
    for (; *text; ++text) {
        const char character[] = {*text, '\0'};
        Press(textFromBytes(character));
    }
}

void ConsoleTest::Enter(const char* line) {
    Type(line);
    Press(KEY_RETURN);
}

void ConsoleTest::Select(NSUInteger location, NSUInteger length) {
    [console setSelectedRange:NSMakeRange(location, length)];
}

void ConsoleTest::SelectEntry(NSUInteger from, NSUInteger length) {
    Select(static_cast<NSUInteger>(g_linestart) + from, length);
}

void ConsoleTest::WaitForWriting() {
    while (![console isWritingDue]) usleep(10000);
}

void ConsoleTest::WriteWhatIsDue() {
    WaitForWriting();
    [console writeDueFiles];
    [console saveSettings]; // waits for the writer
    Run(0.01);              // news of a failure come at the run loop's next turn
}

void ConsoleTest::Run(double seconds) {
    [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:seconds]];
}

// --- What is there ---

std::string ConsoleTest::Text() const {
    return utf8([console string]);
}

std::string ConsoleTest::Entry() const {
    return utf8([[console string] substringFromIndex:static_cast<NSUInteger>(g_linestart)]);
}

std::string ConsoleTest::Transcript() const {
    return utf8([[console string] substringToIndex:static_cast<NSUInteger>(g_linestart)]);
}

std::string ConsoleTest::Selected() const {
    return utf8([[console string] substringWithRange:[console selectedRange]]);
}

NSUInteger ConsoleTest::Cursor() const {
    return [console selectedRange].location;
}

NSUInteger ConsoleTest::CursorInEntry() const {
    return Cursor() - static_cast<NSUInteger>(g_linestart);
}

std::string ConsoleTest::StatusLine() const {
    Ivar const field = class_getInstanceVariable([MainConsole class], "answerStatus");
    return utf8([object_getIvar(console, field) stringValue]);
}

std::string ConsoleTest::News() {
    for (int i = 0; i < 100 && StatusLine().empty(); ++i) Run(0.05);
    return StatusLine();
}

std::string ConsoleTest::Pasteboard() const {
    return utf8([[NSPasteboard generalPasteboard] stringForType:NSStringPboardType]);
}

void ConsoleTest::SetPasteboard(const char* text) const {
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
    [board setString:[NSString stringWithUTF8String:text] forType:NSStringPboardType];
}

int ConsoleTest::HideRequests() const {
    return delegate->clicks;
}

// --- Files ---

std::string ConsoleTest::Folder() const {
    return home + "/Tallyquill";
}

std::string ConsoleTest::FunctionsPath() const {
    return Folder() + "/pelmo_functions.txt";
}

std::string ConsoleTest::SettingsPath() const {
    return Folder() + "/pelmo_settings.plist";
}

std::string ConsoleTest::Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void ConsoleTest::Write(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    ASSERT_TRUE(file.good());
}

bool ConsoleTest::Exists(const std::string& path) {
    struct stat kind = {};
    return stat(path.c_str(), &kind) == 0;
}
