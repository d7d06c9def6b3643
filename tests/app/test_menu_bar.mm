// SPDX-License-Identifier: MIT
//
// The menu bar: every item is taken by someone, and does what it says.
#import "shell_fixture.h"

#import "Interface.h"
#import "PrefController.h"

#include <set>

namespace {

struct MenuEntry {
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
    ++requests;
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

    static NSMenuItem* At(NSMenu* menu, NSInteger place) { return [menu itemAtIndex:place]; }

    // All but the separators.
    std::vector<MenuEntry> Items() const {
        std::vector<MenuEntry> found;
        NSMenu* const bar = [NSApp mainMenu];
        for (NSInteger i = 0; i < [bar numberOfItems]; ++i) {
            NSMenu* const menu = [At(bar, i) submenu];
            for (NSInteger j = 0; j < [menu numberOfItems]; ++j) {
                if ([At(menu, j) isSeparatorItem]) continue;
                if (sel_isEqual([At(menu, j) action], @selector(makeKeyAndOrderFront:)))
                    continue; // a window's own
                found.push_back({[[menu title] UTF8String], At(menu, j)});
            }
        }
        return found;
    }

    NSMenuItem* Item(const char* title) const {
        for (const MenuEntry& entry : Items()) {
            if (strcmp([[entry.item title] UTF8String], title) == 0) return entry.item;
        }
        ADD_FAILURE() << "no item " << title;
        return nil;
    }

    // Who carries the item out when the console has the keys.
    id Taker(NSMenuItem* item) const {
        if ([item target]) return [[item target] respondsToSelector:[item action]] ? [item target] : nil;
        for (NSResponder* one = console; one; one = [one nextResponder]) {
            if ([one respondsToSelector:[item action]]) return one;
        }
        return [NSApp respondsToSelector:[item action]] ? NSApp : nil;
    }

    bool IsEnabled(NSMenuItem* item) const {
        const id one = Taker(item);
        return ![one respondsToSelector:@selector(validateMenuItem:)] || [one validateMenuItem:item];
    }

    void Choose(const char* title) {
        NSMenuItem* const chosen = Item(title);
        [Taker(chosen) performSelector:[chosen action] withObject:chosen];
    }
};

TEST_F(MenuBar, HasTheUsualMenus) {
    std::vector<std::string> titles;
    NSMenu* const bar = [NSApp mainMenu];
    for (NSInteger i = 0; i < [bar numberOfItems]; ++i) {
        // GNUstep wants a menu of the program's name, which is another one here.
        if (![[At(bar, i) title] isEqualToString:[[NSProcessInfo processInfo] processName]])
            titles.push_back([[At(bar, i) title] UTF8String]);
    }
    EXPECT_EQ(titles, std::vector<std::string>({"Tallyquill", "File", "Edit", "Display", "Window", "Help"}));
}

TEST_F(MenuBar, ItsItemsHaveTheUsualKeys) {
    std::vector<std::string> found;
    for (const MenuEntry& entry : Items()) {
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
                                               "Display / Bigger / +",
                                               "Display / Smaller / -",
                                               "Display / Default Size / 0",
                                               "Window / Minimize / m",
                                               "Window / Zoom / ",
                                               "Window / Close / w",
                                               "Window / Bring All to Front / ",
                                               "Help / Tallyquill Guide / ?",
                                               "Help / Functions / F",
                                               "Help / Units / U",
                                               "Help / Tutorial / "};
    EXPECT_EQ(found, expected);
}

TEST_F(MenuBar, NoKeyStandsForTwoItems) {
    std::set<std::string> keys;
    for (const MenuEntry& entry : Items()) {
        const std::string key = [[entry.item keyEquivalent] UTF8String];
        if (key.empty()) continue;
        EXPECT_TRUE(keys.insert(key).second) << key;
    }
}

TEST_F(MenuBar, EveryItemIsTakenBySomeone) {
    for (const MenuEntry& entry : Items()) {
        EXPECT_NE(Taker(entry.item), nil) << entry.menu << " / " << [[entry.item title] UTF8String];
    }
}

TEST_F(MenuBar, OnlyUndoRedoAndAHiddenWindowAreDisabled) {
    for (const MenuEntry& entry : Items()) {
        const std::string title = [[entry.item title] UTF8String];
        EXPECT_EQ(IsEnabled(entry.item), title != "Redo" && title != "Undo") << title;
    }
    mainWinIsHidden = 1;
    EXPECT_FALSE(IsEnabled(Item("Hide Tallyquill")));
}

// --- Edit ---

TEST_F(MenuBar, UndoAndRedoWalkThroughTheEntry) {
    Type("12");
    [[console undoManager] endUndoGrouping];
    EXPECT_EQ(StatusLine(), "ans = 12");
    Choose("Undo");
    EXPECT_EQ(Entry(), "");
    EXPECT_TRUE(IsEnabled(Item("Redo")));
    Choose("Redo");
    EXPECT_EQ(Entry(), "12");
    EXPECT_EQ(StatusLine(), "ans = 12");
    EXPECT_FALSE(IsEnabled(Item("Redo")));
    Choose("Redo"); // nothing to redo: harmless
    EXPECT_EQ(Text(), "> 12");
}

TEST_F(MenuBar, AnAnsweredEntryIsNeitherUndoneNorRedone) {
    Enter("1+1");
    const std::string shown = Text();
    Choose("Undo");
    EXPECT_EQ(Text(), shown);
    EXPECT_FALSE(IsEnabled(Item("Redo")));
    Choose("Redo");
    EXPECT_EQ(Text(), shown);
}

TEST_F(MenuBar, SelectAllAndCopyTakeTheWholeText) {
    Enter("1+1");
    Choose("Select All");
    EXPECT_EQ(Selected(), Text());
    Choose("Copy");
    EXPECT_EQ(Pasteboard(), Text());
}

TEST_F(MenuBar, PasteInsertsTheTextAtTheCursor) {
    SetPasteboard("6*7");
    Choose("Paste");
    EXPECT_EQ(Entry(), "6*7");
    EXPECT_EQ(StatusLine(), "ans = 42");
}

// --- The others ---

TEST_F(MenuBar, NewClearsTheConsole) {
    Enter("1+1");
    Choose("New");
    EXPECT_EQ(Text(), "> ");
}

TEST_F(MenuBar, DisplayChangesTheBaseAndChecksItsItem) {
    const char* const titles[] = {"Binary", "Decimal", "Hexadecimal"};
    const int bases[] = {2, 10, 16};
    for (int i = 0; i < 3; ++i) {
        Choose(titles[i]);
        EXPECT_EQ(SettingOf("dispbase"), bases[i]);
        for (int j = 0; j < 3; ++j) EXPECT_EQ([Item(titles[j]) state], i == j ? NSOnState : NSOffState);
    }
}

TEST_F(MenuBar, PreferencesOpenThePanel) {
    Choose("Preferences...");
    EXPECT_TRUE([[Preferences() prefWindow] isVisible]);
    EXPECT_EQ(prefWinIsOpen, 1);
}

TEST_F(MenuBar, HideFadesTheWindowAway) {
    [[Preferences() prefWindow] makeKeyAndOrderFront:nil];
    Choose("Hide Tallyquill");
    EXPECT_EQ(mainWinIsHidden, 1);
}

TEST_F(MenuBar, ZoomFillsTheScreenAndGoesBack) {
    const NSRect before = [window frame];
    Choose("Zoom");
    const NSRect screen = [[window screen] visibleFrame];
    EXPECT_TRUE(NSEqualRects([window frame], screen)) << [NSStringFromRect([window frame]) UTF8String];
    Choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], before)) << [NSStringFromRect([window frame]) UTF8String];
    Choose("Zoom");
    const NSRect changed = NSMakeRect(200, 150, 500, 400);
    [window setFrame:changed display:YES];
    Choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], screen)) << "its size was changed: it is not zoomed any more";
    Choose("Zoom");
    EXPECT_TRUE(NSEqualRects([window frame], changed)) << [NSStringFromRect([window frame]) UTF8String];
}

TEST_F(MenuBar, CloseClosesTheWindow) {
    Choose("Close");
    EXPECT_FALSE([window isVisible]);
}

TEST_F(MenuBar, HelpOpensTheGuide) {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTests);
    guidePath = nil;
    Choose("Tallyquill Guide");
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].find("The guide is missing."), 0u);
    guidePath = [NSString stringWithUTF8String:TALLYQUILL_GUIDE];
    Choose("Tallyquill Guide");
    EXPECT_EQ(alerts.size(), 1u);
    NSWindow* guide = nil;
    NSArray* const windows = [NSApp windows];
    for (NSUInteger i = 0; i < [windows count]; ++i) {
        NSWindow* const one = [windows objectAtIndex:i];
        if ([[one title] rangeOfString:@"Guide"].location != NSNotFound) guide = one;
    }
    ASSERT_NE(guide, nil);
    EXPECT_TRUE([guide isVisible]);
    [guide close];
}

TEST_F(MenuBar, AboutShowsThePanel) {
    Choose("About Tallyquill");
    NSWindow* panel = nil;
    for (NSWindow* const one in [NSApp windows]) {
        if ([[one title] isEqualToString:@"About Tallyquill"]) panel = one;
    }
    ASSERT_NE(panel, nil);
    EXPECT_TRUE([panel isVisible]);
    [panel orderOut:nil];
}

TEST_F(MenuBar, QuitAsksTheProgramToEnd) {
    requests = 0;
    const Replaced end([NSApp class], @selector(terminate:), countRequest);
    Choose("Quit Tallyquill");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, BringAllToFrontAsksTheProgramForIt) {
    requests = 0;
    const Replaced arrange([NSApp class], @selector(arrangeInFront:), countRequest);
    Choose("Bring All to Front");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, MinimizeMinimizesTheWindow) {
    requests = 0;
    const Replaced minimize([NSWindow class], @selector(miniaturize:), countRequest);
    Choose("Minimize");
    EXPECT_EQ(requests, 1);
}

TEST_F(MenuBar, CutTakesWhatOfTheSelectionIsInTheEntry) {
    Type("12345");
    Select(0, 4); // from the prompt on
    Choose("Cut");
    EXPECT_EQ(Text(), "> 345");
    EXPECT_EQ(Pasteboard(), "12");
    EXPECT_EQ(StatusLine(), "ans = 345");
}

TEST_F(MenuBar, OpenReplaysTheScriptThatIsChosen) {
    const std::string script = home + "/chosen.script";
    Write(script, "x=6*7\n");
    fileOfPanel = [NSString stringWithUTF8String:script.c_str()];
    const Replaced panel([NSOpenPanel class], @selector(runModalForTypes:), pressOpen);
    const Replaced name([NSOpenPanel class], @selector(filename), chosenFile);
    Choose("Open Script...");
    EXPECT_EQ(Text(), "> \nx = 42\n\n> ");
}

TEST_F(MenuBar, SaveWritesTheScriptThatIsNamed) {
    Enter("x=6*7");
    for (const char* title : {"Save Script...", "Save Script As..."}) {
        const std::string script = home + "/" + title + ".script";
        fileOfPanel = [NSString stringWithUTF8String:script.c_str()];
        const Replaced panel([NSSavePanel class], @selector(runModal), pressSave);
        const Replaced name([NSSavePanel class], @selector(filename), chosenFile);
        Choose(title);
        EXPECT_NE(Read(script).find("\nx=6*7\n"), std::string::npos) << title;
    }
}

TEST_F(MenuBar, TutorialReplaysItsScript) {
    const std::string script = home + "/tutorial.script";
    Write(script, "x=6*7\n");
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTutorial);
    tutorialPath = [NSString stringWithUTF8String:script.c_str()];
    Type("12");
    Choose("Tutorial");
    EXPECT_EQ(Text(), "> \nx = 42\n\n> "); // what was typed is gone
}

} // namespace
