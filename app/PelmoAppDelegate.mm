// SPDX-License-Identifier: MIT
#import "PelmoAppDelegate.h"

#import "Controls.h"
#import "Interface.h"
#import "MainConsole.h"
#import "MainWindowDelegate.h"
#import "Platform.h"
#import "PrefController.h"

#import <objc/runtime.h>

uint8_t mainWinIsHidden = 0;
uint8_t calcIsReady = 0;
NSMutableArray* waitingToOpenFilenames = nil;

// The window on all spaces while it comes and goes, so that no space is switched to.
static const NSUInteger EVERY_SPACE = 1;
static const NSUInteger ONE_SPACE = 0;

bool isShown(NSWindow* mainWindow) {
    return [mainWindow isVisible] && ![mainWindow isMiniaturized] && !mainWinIsHidden;
}

@implementation PelmoAppDelegate

@synthesize window, mainConsole, windowDelegate, prefController;

- (void)dealloc {
    [self removeAppStatusItem];
    [prefController release];
    [aboutPanel release];
    [guideWindow release];
    [window setDelegate:nil];
    [window setNextResponder:nil];
    [windowDelegate release];
    [mainConsole release];
    [window release];
    [super dealloc];
}

- (void)applicationWillFinishLaunching:(NSNotification*)notification {
    buildInterface(self);
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    [window makeFirstResponder:mainConsole];
    [mainConsole initializeConsole:window];
    statusItem = nil;
    if ([mainConsole setting:@"statusicon"] == 1) [self createAppStatusItem];
    calcIsReady = 1;
    NSArray* const paths = [waitingToOpenFilenames autorelease];
    waitingToOpenFilenames = nil;
    [self openFiles:paths];
}

- (void)openFiles:(NSArray*)paths {
    for (NSString* const path in paths) {
        if (![self application:NSApp openFile:path])
            [mainConsole simpleAlert:@"The script could not be opened.":path];
        if (calcIsReady && ![window isVisible]) break; // the script closed it
    }
}

- (void)showAgainWith:(NSArray*)paths {
    if (calcIsReady) {
        [self bringBack];
        [self applicationDidBecomeActive:nil]; // also when it was just fading away
        platformFocus(window);
    }
    [self openFiles:paths];
}

- (BOOL)application:(NSApplication*)application openFile:(NSString*)path {
    if (calcIsReady) return [mainConsole loadFile:path];
    if (!waitingToOpenFilenames) waitingToOpenFilenames = [[NSMutableArray alloc] init];
    // GNUstep hands over the first argument, as it was typed, though main() has read it.
    NSString* const folder = [[NSFileManager defaultManager] currentDirectoryPath];
    NSString* const whole = [path isAbsolutePath] ? path : [folder stringByAppendingPathComponent:path];
    if (![waitingToOpenFilenames containsObject:whole]) [waitingToOpenFilenames addObject:whole];
    return YES;
}

- (void)displayWasLost {
    if (calcIsReady) [mainConsole writeAllFiles];
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
    // GNUstep asks also when another window is closed while this one is minimized.
    return !mainWinIsHidden && ![window isMiniaturized];
}

- (void)createAppStatusItem {
    [self createAppStatusItemIn:platformStatusBar()];
}

- (void)createAppStatusItemIn:(NSStatusBar*)bar {
    if (!bar || statusItem) return;
    statusItem = [[bar statusItemWithLength:NSVariableStatusItemLength] retain];
    [statusItem setHighlightMode:YES];
    [statusItem setTitle:@""];
    [statusItem setImage:bundleImage(@"Pelmo_tray")];
    [statusItem setAlternateImage:bundleImage(@"Pelmo_tray_clicked")];
    [statusItem setEnabled:YES];
    [statusItem setToolTip:@"PelmoStatus"];
    [statusItem setAction:@selector(clickedAppStatusItem:)];
    [statusItem setTarget:self];
}

- (void)removeAppStatusItem {
    if (!statusItem) return;
    [[statusItem statusBar] removeStatusItem:statusItem];
    [statusItem release];
    statusItem = nil;
}

- (void)fadeAway {
    [mainConsole storeFrame];
    mainWinIsHidden = 1;
    [prefController fadeWindow:-1.0f rate:-0.3f];
    [window setCollectionBehavior:EVERY_SPACE];
}

- (void)hideMainWindow:(id)sender {
    if (isShown(window)) [self fadeAway];
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return sel_isEqual([item action], @selector(hideMainWindow:)) ? isShown(window) : YES;
}

- (void)clickedAppStatusItem:(id)sender {
    if (![window isMiniaturized] && [window isKeyWindow] && !mainWinIsHidden) {
        [self fadeAway];
        return;
    }
    [self bringBack];
}

- (void)bringBack {
    [window setCollectionBehavior:EVERY_SPACE];
    if ([window isMiniaturized]) [window deminiaturize:nil];
    [window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)isAnyVisible {
    (void)isAnyVisible; // another one, such as the guide, may be
    if (!isShown(window)) [self bringBack];
    return NO;
}

- (void)showAbout:(id)sender {
    if (!aboutPanel) aboutPanel = [buildAboutPanel() retain];
    [aboutPanel makeKeyAndOrderFront:nil];
}

- (void)showGuide:(id)sender {
    if (!guideWindow) guideWindow = [buildGuideWindow() retain];
    [guideWindow makeKeyAndOrderFront:nil];
    if (!guideWindow) [mainConsole simpleAlert:@"The guide is missing.":@"This copy of Tallyquill lacks it."];
}

- (void)applicationDidResignActive:(NSNotification*)notification {
    if (mainWinIsHidden || [mainConsole setting:@"transback"] == 0) return;
    [prefController fadeWindow:1 - 0.008f * static_cast<float>([mainConsole setting:@"trans"]) rate:-0.05f];
}

- (void)applicationWillBecomeActive:(NSNotification*)notification {
    [window setCollectionBehavior:EVERY_SPACE];
}

- (void)applicationDidBecomeActive:(NSNotification*)notification {
    [prefController fadeWindow:1.0f rate:mainWinIsHidden ? 0.25f : 0.15f];
    [window setCollectionBehavior:ONE_SPACE];
    mainWinIsHidden = 0;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    [prefController closePanel];
    [mainConsole terminateConsole];
    [self removeAppStatusItem];
}

@end
