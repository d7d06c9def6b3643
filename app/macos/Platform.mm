// SPDX-License-Identifier: MIT
//
// What Platform.h asks for, on macOS.
#import "Platform.h"

#include <clocale>

bool platformCloseIsWaiting(NSWindow*) {
    return false;
}

bool platformTakeEarlyRelease() {
    return false;
}

NSTimer* platformWatchForRelease(NSEvent*) {
    return nil;
}

uint32_t platformKeyCode(NSEvent* event) {
    return [event keyCode];
}

void platformRegisterDefaults() {}

bool platformHasDisplay() {
    return true;
}

void platformAfterLaunch() {
    setlocale(LC_NUMERIC, "C");
}

NSArray* platformFileArguments(int, const char* const*) {
    return @[];
}

bool platformHandOver(NSArray*, bool) {
    return false;
}

void platformFocus(NSWindow*) {}

bool platformOpenPage(NSString* address) {
    NSURL* const page = [address length] == 0 ? nil : [NSURL URLWithString:address];
    return page && [[NSWorkspace sharedWorkspace] openURL:page];
}

NSStatusBar* platformStatusBar() {
    return [NSStatusBar systemStatusBar];
}

void platformHide(NSWindow*) {
    [NSApp hide:nil];
}

Class mainWindowClass() {
    return [NSWindow class];
}

void platformWillOpenPanel(NSSavePanel* panel, NSString* button) {
    [panel setPrompt:button];
}

NSString* platformSheetText(NSString* text) {
    return text;
}

void platformOfferSelection(NSString*) {}

NSString* platformSelection() {
    return @"";
}

bool platformKeepClipboard(std::chrono::steady_clock::time_point) {
    return false;
}

CGFloat platformScale() {
    return 1;
}

bool platformWindowManagerMoves() {
    return false;
}

void platformDrawVertical(NSRect frame, NSImage* top, NSImage* fill, NSImage* bottom) {
    NSDrawThreePartImage(frame, top, fill, bottom, YES, NSCompositeSourceOver, 1, YES);
}

void platformPopUpMenu(NSMenu* menu, NSEvent* event, NSView* view) {
    [NSMenu popUpContextMenu:menu withEvent:event forView:view];
}

// Since 10.14; before, the controls are light.
void platformUseLook(bool isLight) {
    NSAppearance* const look =
        [NSAppearance appearanceNamed:isLight ? @"NSAppearanceNameAqua" : @"NSAppearanceNameDarkAqua"];
    const SEL set = NSSelectorFromString(@"setAppearance:");
    if (look && [NSApp respondsToSelector:set]) [NSApp performSelector:set withObject:look];
}

NSColor* platformLinkColor() {
    return [NSColor linkColor];
}

void useFlatTheme() {
    platformUseLook(false);
}

NSSegmentedControl* makeSegmentedControl() {
    return [[[NSSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
}

NSColorWell* makeColorWell() {
    return [[[NSColorWell alloc] initWithFrame:NSZeroRect] autorelease];
}

NSPopUpButton* makeListPopUp(NSString* title) {
    NSPopUpButton* const button = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect
                                                              pullsDown:YES] autorelease];
    [button addItemWithTitle:title];
    return button;
}

NSMenu* platformMenuBar(NSString* title) {
    return [[[NSMenu alloc] initWithTitle:title] autorelease];
}

void platformOpenMenuBar(NSWindow*) {}

void platformFitMenuItem(NSMenuItem*, const KeyRow&) {}
