// SPDX-License-Identifier: MIT
//
// The menu bar, from the table of keys. What the first responder does has no target.
#import "Interface.h"

#include "Keys.h"
#import "MainConsole.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

static NSMenuItem* addItem(NSMenu* menu, NSString* title, SEL action, NSString* key) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:title action:action
                                                  keyEquivalent:key] autorelease];
    [menu addItem:item];
    return item;
}

static id targetOf(const MenuItem& item, PelmoAppDelegate* delegate) {
    switch (item.target) {
    case Target::Console: return [delegate mainConsole];
    case Target::Delegate: return delegate;
    case Target::Preferences: return [delegate prefController];
    case Target::Application: return NSApp;
    default: return nil;
    }
}

static void addRow(NSMenu* menu, const KeyRow& row, PelmoAppDelegate* delegate) {
    NSString* const title = @(row.item.title);
    if ([title isEqualToString:@"-"]) {
        [menu addItem:[NSMenuItem separatorItem]];
        return;
    }
    const char key[] = {row.character, '\0'};
    NSMenuItem* const item = addItem(menu, title, sel_registerName(row.item.selector), @(key));
    [item setTarget:targetOf(row.item, delegate)];
    [item setTag:row.item.tag];
    platformFitMenuItem(item, row);
}

void buildMenus(PelmoAppDelegate* delegate) {
    NSMenu* const bar = platformMenuBar(@"Tallyquill");
    NSMenu* menu = nil;
    for (const KeyRow& row : keyTable()) {
        if (!row.item.menu) continue;
        NSString* const title = @(row.item.menu);
        if (![[menu title] isEqualToString:title]) {
            menu = [[[NSMenu alloc] initWithTitle:title] autorelease];
            [bar setSubmenu:menu forItem:addItem(bar, title, NULL, @"")];
        }
        addRow(menu, row, delegate);
    }
    NSMenu* const display = [[bar itemWithTitle:@"Display"] submenu];
    MainConsole* const console = [delegate mainConsole];
    [console setMenuDispBin:[display itemAtIndex:0]];
    [console setMenuDispDec:[display itemAtIndex:1]];
    [console setMenuDispHex:[display itemAtIndex:2]];
    [NSApp setWindowsMenu:[[bar itemWithTitle:@"Window"] submenu]];
    [NSApp setMainMenu:bar];
}
