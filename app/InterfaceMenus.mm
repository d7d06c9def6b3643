// SPDX-License-Identifier: MIT
//
// The menu bar. What the first responder does has no target.
#import "Interface.h"

#import "MainConsole.h"
#import "PelmoAppDelegate.h"

static NSMenuItem* addItem(NSMenu* menu, NSString* title, SEL action, NSString* key, id target) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:title action:action
                                                  keyEquivalent:key] autorelease];
    [item setTarget:target];
    [menu addItem:item];
    return item;
}

static NSMenu* addMenu(NSMenu* bar, NSString* title) {
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:title] autorelease];
    NSMenuItem* const item = addItem(bar, title, NULL, @"", nil);
    [bar setSubmenu:menu forItem:item];
    return menu;
}

static void addSeparator(NSMenu* menu) {
    [menu addItem:[NSMenuItem separatorItem]];
}

static void buildApplicationMenu(NSMenu* bar, PelmoAppDelegate* delegate) {
    NSMenu* const menu = addMenu(bar, @"Tallyquill");
    addItem(menu, @"About Tallyquill", @selector(showAbout:), @"", delegate);
    addSeparator(menu);
    addItem(menu, @"Preferences...", @selector(menuPreferences:), @",", [delegate prefController]);
    addSeparator(menu);
    addItem(menu, @"Hide Tallyquill", @selector(hideMainWindow:), @"h", delegate);
    addItem(menu, @"Quit Tallyquill", @selector(terminate:), @"q", NSApp);
}

static void buildFileMenu(NSMenu* bar, MainConsole* console) {
    NSMenu* const menu = addMenu(bar, @"File");
    addItem(menu, @"New", @selector(newDocument:), @"n", console);
    addItem(menu, @"Open Script...", @selector(openDocument:), @"o", console);
    addItem(menu, @"Save Script...", @selector(saveDocument:), @"s", console);
    addItem(menu, @"Save Script As...", @selector(saveDocumentAs:), @"S", console);
}

static void buildEditMenu(NSMenu* bar) {
    NSMenu* const menu = addMenu(bar, @"Edit");
    addItem(menu, @"Undo", @selector(undo:), @"z", nil);
    addItem(menu, @"Redo", @selector(redo:), @"Z", nil);
    addSeparator(menu);
    addItem(menu, @"Cut", @selector(cut:), @"x", nil);
    addItem(menu, @"Copy", @selector(copy:), @"c", nil);
    addItem(menu, @"Paste", @selector(paste:), @"v", nil);
    addItem(menu, @"Select All", @selector(selectAll:), @"a", nil);
}

static void buildDisplayMenu(NSMenu* bar, MainConsole* console) {
    NSMenu* const menu = addMenu(bar, @"Display");
    NSMenuItem* const bin = addItem(menu, @"Binary", @selector(menuChangeBase:), @"1", console);
    NSMenuItem* const dec = addItem(menu, @"Decimal", @selector(menuChangeBase:), @"2", console);
    NSMenuItem* const hex = addItem(menu, @"Hexadecimal", @selector(menuChangeBase:), @"3", console);
    [bin setTag:0];
    [dec setTag:1];
    [hex setTag:2];
    [console setMenuDispBin:bin dec:dec hex:hex];
}

static void buildWindowMenu(NSMenu* bar) {
    NSMenu* const menu = addMenu(bar, @"Window");
    addItem(menu, @"Minimize", @selector(performMiniaturize:), @"m", nil);
    addItem(menu, @"Zoom", @selector(performZoom:), @"", nil);
    addItem(menu, @"Close", @selector(performClose:), @"w", nil);
    addSeparator(menu);
    addItem(menu, @"Bring All to Front", @selector(arrangeInFront:), @"", NSApp);
    [NSApp setWindowsMenu:menu];
}

static void buildHelpMenu(NSMenu* bar, MainConsole* console) {
    NSMenu* const menu = addMenu(bar, @"Help");
    addItem(menu, @"Tallyquill Guide", @selector(showGuide:), @"?", [console myAppDelegate]);
    addItem(menu, @"Tutorial", @selector(tutorial:), @"", console);
}

void buildMenus(PelmoAppDelegate* delegate) {
    MainConsole* const console = [delegate mainConsole];
    NSMenu* const bar = [[[NSMenu alloc] initWithTitle:@"Tallyquill"] autorelease];
    buildApplicationMenu(bar, delegate);
    buildFileMenu(bar, console);
    buildEditMenu(bar);
    buildDisplayMenu(bar, console);
    buildWindowMenu(bar);
    buildHelpMenu(bar, console);
    [NSApp setMainMenu:bar];
}
