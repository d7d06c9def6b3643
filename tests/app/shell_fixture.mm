// SPDX-License-Identifier: MIT
#import "shell_fixture.h"

#import "Interface.h"
#import "MainWindowDelegate.h"
#import "PrefController.h"

void ShellTest::SetUp() {
    ConsoleTest::SetUp();
    mainWinIsHidden = 0;
    calcIsReady = 0;
    snapEnabled = 0;
    buildPreferences(reinterpret_cast<PelmoAppDelegate*>(delegate));
}

void ShellTest::TearDown() {
    [Preferences() fadeWindow:1 rate:0]; // ends a fade that runs
    [[Preferences() prefWindow] orderOut:nil];
    prefWinIsOpen = 0;
    mainWinIsHidden = 0;
    calcIsReady = 0;
    ConsoleTest::TearDown();
}

void ShellTest::StartAgain() {
    Terminate();
    sheets.clear();
    Restart();
    buildPreferences(reinterpret_cast<PelmoAppDelegate*>(delegate));
}

void ShellTest::SetSetting(const char* key, int value) {
    [console setSetting:[NSString stringWithUTF8String:key] to:value];
}

int ShellTest::SettingOf(const char* key) const {
    return [console setting:[NSString stringWithUTF8String:key]];
}

std::map<std::string, int> ShellTest::StoredSettings() const {
    const std::string bytes = Read(SettingsPath());
    const id list = [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:bytes.data()
                                                                                     length:bytes.size()]
                                                     mutabilityOption:NSPropertyListImmutable
                                                               format:NULL
                                                     errorDescription:NULL];
    std::map<std::string, int> numbers;
    NSArray* const keys = [list allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        const id value = [list objectForKey:[keys objectAtIndex:i]];
        if ([value isKindOfClass:[NSNumber class]])
            numbers[[[keys objectAtIndex:i] UTF8String]] = [value intValue];
    }
    return numbers;
}

id ShellTest::Outlet(const char* name) const {
    return object_getIvar(console, class_getInstanceVariable([MainConsole class], name));
}

PrefController* ShellTest::Preferences() const {
    return [reinterpret_cast<PelmoAppDelegate*>(delegate) prefController];
}

void ShellTest::ClickStatusItem() {
    const SEL click = @selector(clickedAppStatusItem:);
    const IMP own = class_getMethodImplementation([PelmoAppDelegate class], click);
    reinterpret_cast<void (*)(id, SEL, id)>(own)(delegate, click, nil);
}
