// SPDX-License-Identifier: MIT
//
// The menu bar: every item is taken by someone, and does what it says.
#import "shell_fixture.h"

#import "GuideWindow.h"
#import "Interface.h"
#import "PrefController.h"

#include <set>

namespace {

struct Entry {
    std::string menu;
    NSMenuItem* item;
};

NSString* guidePath = nil;

NSString* pathOfTests(id, SEL, NSString* name, NSString* type) {
    return [name isEqualToString:@"guide"] && [type isEqualToString:@"md"] ? guidePath : nil;
}

NSString* tutorialPath = nil;

NSString* pathOfTutorial(id, SEL, NSString* name, NSString* type) {
    return [name isEqualToString:@"tutorial"] && [type isEqualToString:@"script"] ? tutorialPath : nil;
}

NSString* fileOfPanel = nil;

NSInteger pressSave(id, SEL) {
    return NSOKButton;
}

NSInteger pressOpen(id, SEL, NSArray*) {
    return NSOKButton;
}

NSString* chosenFile(id, SEL) {
    return fileOfPanel;
}

int requests = 0;

void countRequest(id, SEL, id) {
    requests++;
}

class MenuBar : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        buildMenus(reinterpret_cast<PelmoAppDelegate*>(delegate));
        [window makeKeyAndOrderFront:nil];
    }
    void TearDown() override {
        [NSApp setMainMenu:[[[NSMenu alloc] initWithTitle:@""] autorelease]];
        [NSApp setWindowsMenu:nil];
        ShellTest::TearDown();
    }

    static NSMenuItem* at(NSMenu* menu, NSInteger place) { return [menu itemAtIndex:place]; }

    // All but the separators.
    std::vector<Entry> items() const {
        std::vector<Entry> found;
        NSMenu* const bar = [NSApp mainMenu];
        for (NSInteger i = 0; i < [bar numberOfItems]; i++) {
            NSMenu* const menu = [at(bar, i) submenu];
            for (NSInteger j = 0; j < [menu numberOfItems]; j++) {
                if ([at(menu, j) isSeparatorItem]) continue;
                if (sel_isEqual([at(menu, j) action], @selector(makeKeyAndOrderFront:)))
                    continue; // a window's own
                found.push_back({[[menu title] UTF8String], at(menu, j)});
            }
        }
        return found;
    }

    NSMenuItem* item(const char* title) const {
        for (const Entry& entry : items()) {
            if (strcmp([[entry.item title] UTF8String], title) == 0) return entry.item;
        }
        ADD_FAILURE() << "no item " << title;
        return nil;
    }

    // Who carries the item out when the console has the keys.
    id taker(NSMenuItem* item) const {
        if ([item target]) return [[item target] respondsToSelector:[item action]] ? [item target] : nil;
        for (NSResponder* one = console; one; one = [one nextResponder]) {
            if ([one respondsToSelector:[item action]]) return one;
        }
        return [NSApp respondsToSelector:[item action]] ? NSApp : nil;
    }

    bool isEnabled(NSMenuItem* item) const {
        const id one = taker(item);
        return ![one respondsToSelector:@selector(validateMenuItem:)] || [one validateMenuItem:item];
    }

    void choose(const char* title) {
        NSMenuItem* const chosen = item(title);
        [taker(chosen) performSelector:[chosen action] withObject:chosen];
    }
};

TEST_F(MenuBar, hasTheUsualMenus) {
    std::vector<std::string> titles;
    NSMenu* const bar = [NSApp mainMenu];
    for (NSInteger i = 0; i < [bar numberOfItems]; i++) {
        // GNUstep wants a menu of the program's name, which is another one here.
        if (![[at(bar, i) title] isEqualToString:[[NSProcessInfo processInfo] processName]])
            titles.push_back([[at(bar, i) title] UTF8String]);
    }
    EXPECT_EQ(titles, std::vector<std::string>({"Tallyquill", "File", "Edit", "Display", "Window", "Help"}));
}

TEST_F(MenuBar, itsItemsHaveTheUsualKeys) {
    std::vector<std::string> found;
    for (const Entry& entry : items()) {
        found.push_back(entry.menu + " / " + [[entry.item title] UTF8String] + " / " +
                        [[entry.item keyEquivalent] UTF8String]);
    }
    const std::vector<std::string> expected = {"Tallyquill / About Tallyquill / ",
                                               "Tallyquill / Preferences... / ,",
                                               "Tallyquill / Hide Tallyquill / h",
                                               "Tallyquill / Quit Tallyquill / q",
                                               "File / New / n",
                                               "File / Open Script... / o",
                                               "File / Save Script... / s",
                                               "File / Save Script As... / S",
                                               "Edit / Undo / z",
                                               "Edit / Redo / Z",
                                               "Edit / Cut / x",
                                               "Edit / Copy / c",
                                               "Edit / Paste / v",
                                               "Edit / Select All / a",
                                               "Display / Binary / 1",
                                               "Display / Decimal / 2",
                                               "Display / Hexadecimal / 3",
                                               "Window / Minimize / m",
                                               "Window / Zoom / ",
                                               "Window / Close / w",
                                               "Window / Bring All to Front / ",
                                               "Help / Tallyquill Guide / ?",
                                               "Help / Tutorial / "};
    EXPECT_EQ(found, expected);
}

TEST_F(MenuBar, noKeyStandsForTwoItems) {
    std::set<std::string> keys;
    for (const Entry& entry : items()) {
        const std::string key = [[entry.item keyEquivalent] UTF8String];
        if (key.empty()) continue;
        EXPECT_TRUE(keys.insert(key).second) << key;
    }
}

TEST_F(MenuBar, everyItemIsTakenBySomeone) {
    for (const Entry& entry : items()) {
        EXPECT_NE(taker(entry.item), nil) << entry.menu << " / " << [[entry.item title] UTF8String];
    }
}

TEST_F(MenuBar, onlyRedoAndAHiddenWindowAreDisabled) {
    for (const Entry& entry : items()) {
        const std::string title = [[entry.item title] UTF8String];
        EXPECT_EQ(isEnabled(entry.item), title != "Redo") << title;
    }
    mainWinIsHidden = 1;
    EXPECT_FALSE(isEnabled(item("Hide Tallyquill")));
}

// --- Edit ---

TEST_F(MenuBar, undoAndRedoWalkThroughTheEntry) {
    type("12");
    [[console undoManager] endUndoGrouping];
    EXPECT_EQ(status(), "ans = 12");
    choose("Undo");
    EXPECT_EQ(entry(), "");
    EXPECT_TRUE(isEnabled(item("Redo")));
    choose("Redo");
    EXPECT_EQ(entry(), "12");
    EXPECT_EQ(status(), "ans = 12");
    EXPECT_FALSE(isEnabled(item("Redo")));
    choose("Redo"); // nothing to redo: harmless
    EXPECT_EQ(text(), "> 12");
}

TEST_F(MenuBar, anAnsweredEntryIsNeitherUndoneNorRedone) {
    enter("1+1");
    const std::string shown = text();
    choose("Undo");
    EXPECT_EQ(text(), shown);
    EXPECT_FALSE(isEnabled(item("Redo")));
    choose("Redo");
    EXPECT_EQ(text(), shown);
}

TEST_F(MenuBar, selectAllAndCopyTakeTheWholeText) {
    enter("1+1");
    choose("Select All");
    EXPECT_EQ(selected(), text());
    choose("Copy");
    EXPECT_EQ(pasteboard(), text());
}

TEST_F(MenuBar, pasteInserts) {
    setPasteboard("6*7");
    choose("Paste");
    EXPECT_EQ(entry(), "6*7");
    EXPECT_EQ(status(), "ans = 42");
}

// --- The others ---

TEST_F(MenuBar, newClearsTheConsole) {
    enter("1+1");
    choose("New");
    EXPECT_EQ(text(), "> ");
}

TEST_F(MenuBar, displayChangesTheBaseAndChecksItsItem) {
    const char* const titles[] = {"Binary", "Decimal", "Hexadecimal"};
    const int bases[] = {2, 10, 16};
    for (int i = 0; i < 3; i++) {
        choose(titles[i]);
        EXPECT_EQ(setting("dispbase"), bases[i]);
        for (int j = 0; j < 3; j++) EXPECT_EQ([item(titles[j]) state], i == j ? NSOnState : NSOffState);
    }
}

TEST_F(MenuBar, preferencesOpenThePanel) {
    choose("Preferences...");
    EXPECT_TRUE([[preferences() prefWindow] isVisible]);
    EXPECT_EQ(prefWinIsOpen, 1);
}

TEST_F(MenuBar, hideFadesTheWindowAway) {
    [[preferences() prefWindow] makeKeyAndOrderFront:nil];
    choose("Hide Tallyquill");
    EXPECT_EQ(mainWinIsHidden, 1);
}

TEST_F(MenuBar, zoomFillsTheScreenAndGoesBack) {
    const NSRect before = [window frame];
    choose("Zoom");
    const NSRect screen = [[window screen] visibleFrame];
    EXPECT_TRUE(NSEqualRects([window frame], screen)) << [NSStringFromRect([window frame]) UTF8String];
    choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], before)) << [NSStringFromRect([window frame]) UTF8String];
    choose("Zoom");
    const NSRect changed = NSMakeRect(200, 150, 500, 400);
    [window setFrame:changed display:YES];
    choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], screen)) << "its size was changed: it is not zoomed any more";
    choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], changed)) << [NSStringFromRect([window frame]) UTF8String];
}

TEST_F(MenuBar, closeClosesTheWindow) {
    choose("Close");
    EXPECT_FALSE([window isVisible]);
}

TEST_F(MenuBar, helpOpensTheGuide) {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTests);
    guidePath = nil;
    choose("Tallyquill Guide");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].find("The guide is missing."), 0u);
    guidePath = [NSString stringWithUTF8String:TALLYQUILL_GUIDE];
    choose("Tallyquill Guide");
    EXPECT_EQ(alerts.size(), 1u);
    NSWindow* guide = nil;
    NSArray* const windows = [NSApp windows];
    for (NSUInteger i = 0; i < [windows count]; i++) {
        NSWindow* const one = [windows objectAtIndex:i];
        if ([[one title] rangeOfString:@"Guide"].location != NSNotFound) guide = one;
    }
    ASSERT_NE(guide, nil);
    EXPECT_TRUE([guide isVisible]);
    [guide close];
}

TEST_F(MenuBar, aboutShowsThePanel) {
    choose("About Tallyquill");
    NSWindow* panel = nil;
    for (NSWindow* const one in [NSApp windows]) {
        if ([[one title] isEqualToString:@"About Tallyquill"]) panel = one;
    }
    ASSERT_NE(panel, nil);
    EXPECT_TRUE([panel isVisible]);
    [panel orderOut:nil];
}

TEST_F(MenuBar, quitAsksTheProgramToEnd) {
    requests = 0;
    const Replaced end([NSApp class], @selector(terminate:), countRequest);
    choose("Quit Tallyquill");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, bringAllToFrontAsksTheProgramForIt) {
    requests = 0;
    const Replaced arrange([NSApp class], @selector(arrangeInFront:), countRequest);
    choose("Bring All to Front");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, minimizeMinimisesTheWindow) {
    requests = 0;
    const Replaced minimise([NSWindow class], @selector(miniaturize:), countRequest);
    choose("Minimize");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, cutTakesWhatOfTheSelectionIsInTheEntry) {
    type("12345");
    select(0, 4); // from the prompt on
    choose("Cut");
    EXPECT_EQ(text(), "> 345");
    EXPECT_EQ(pasteboard(), "12");
    EXPECT_EQ(status(), "ans = 345");
}

TEST_F(MenuBar, openReplaysTheScriptThatIsChosen) {
    const std::string script = home + "/chosen.script";
    write(script, "x=6*7\n");
    fileOfPanel = [NSString stringWithUTF8String:script.c_str()];
    const Replaced panel([NSOpenPanel class], @selector(runModalForTypes:), pressOpen);
    const Replaced name([NSOpenPanel class], @selector(filename), chosenFile);
    choose("Open Script...");
    EXPECT_EQ(text(), "> \nx = 42\n\n> ");
}

TEST_F(MenuBar, saveWritesTheScriptThatIsNamed) {
    enter("x=6*7");
    for (const char* title : {"Save Script...", "Save Script As..."}) {
        const std::string script = home + "/" + title + ".script";
        fileOfPanel = [NSString stringWithUTF8String:script.c_str()];
        const Replaced panel([NSSavePanel class], @selector(runModal), pressSave);
        const Replaced name([NSSavePanel class], @selector(filename), chosenFile);
        choose(title);
        EXPECT_NE(read(script).find("\nx=6*7\n"), std::string::npos) << title;
    }
}

TEST_F(MenuBar, tutorialReplaysItsScript) {
    const std::string script = home + "/tutorial.script";
    write(script, "x=6*7\n");
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTutorial);
    tutorialPath = [NSString stringWithUTF8String:script.c_str()];
    type("12");
    choose("Tutorial");
    EXPECT_EQ(text(), "> \nx = 42\n\n> "); // what was typed is gone
}

} // namespace
