// SPDX-License-Identifier: MIT
//
// The panels for files, and opening pages in the browser.
#import "../shell_fixture.h"

#include <set>
#include <sys/stat.h>

@interface MainConsole (FilePanels)
- (void)openDocument:(id)sender;
- (void)saveDocument:(id)sender;
@end

namespace {

// What a panel for files was like when it waited for the person.
struct Waiting {
    bool isMadeAnew;
    bool isNamed; // the field for the name has its label
    std::string folder;
    std::set<std::string> listed; // of the folder `offered`
};
std::vector<Waiting> panels;
NSString* chosen = nil;  // the file, or nil for none
NSString* offered = nil; // a folder

void textsIn(NSView* view, NSMutableArray* texts) {
    for (NSView* const one in [view subviews]) {
        if ([one isKindOfClass:[NSTextField class]]) [texts addObject:[(NSTextField*)one stringValue]];
        if ([one isKindOfClass:[NSForm class]]) [texts addObject:[[(NSForm*)one cellAtIndex:0] title]];
        textsIn(one, texts);
    }
}

NSInteger answer(id self, SEL) {
    NSMutableArray* const texts = [NSMutableArray array];
    textsIn([self contentView], texts);
    Waiting one = {
        [self isOneShot] != NO, [texts containsObject:@"Name:"] != NO, [[self directory] UTF8String], {}};
    // GNUstep's own list is left alone: it loses its place when a folder above changes meanwhile, as /tmp
    // does.
    for (NSString* const name in [[NSFileManager defaultManager] directoryContentsAtPath:offered]) {
        NSString* const path = [offered stringByAppendingPathComponent:name];
        if ([[self delegate] panel:self shouldShowFilename:path]) one.listed.insert([name UTF8String]);
    }
    panels.push_back(one);
    return chosen ? NSOKButton : NSCancelButton;
}

NSInteger answerOpening(id self, SEL, NSArray*) {
    return answer(self, NULL);
}

NSString* fileOfPanel(id, SEL) {
    return chosen;
}

NSDictionary* environment = nil;

id environmentOfPrograms(id, SEL) {
    return environment;
}

void setPage(NSString* address) {
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:address forKey:@"WebPageURL"]];
}

class FilesAndPages : public ShellTest {};

class FilePanels : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        panels.clear();
        chosen = nil;
        offered = nil;
        [[NSUserDefaults standardUserDefaults] removeObjectForKey:@"ScriptFolder"];
    }

    std::string Folder(const char* name) const {
        const std::string path = home + "/" + name;
        EXPECT_EQ(mkdir(path.c_str(), 0700), 0);
        return path;
    }

    const Replaced save { [NSSavePanel class], @selector(runModal), answer };
    const Replaced open { [NSOpenPanel class], @selector(runModalForTypes:), answerOpening };
    const Replaced file { [NSSavePanel class], @selector(filename), fileOfPanel };
};

TEST_F(FilePanels, AreMadeAnewAtEveryOpeningOrTheyGrow) {
    [console openDocument:nil];
    [console saveDocument:nil];
    ASSERT_EQ(panels.size(), 2U);
    for (const Waiting& one : panels) EXPECT_TRUE(one.isMadeAnew);
}

TEST_F(FilePanels, SayNameInFrontOfTheField) {
    [console saveDocument:nil];
    ASSERT_EQ(panels.size(), 1U);
    EXPECT_TRUE(panels[0].isNamed);
}

TEST_F(FilePanels, BeginInTheFolderOfTheLastScript) {
    const std::string one = Folder("one"), two = Folder("two");
    chosen = @((one + "/a.script").c_str());
    [console saveDocument:nil];
    Write(two + "/b.script", "1\n");
    chosen = @((two + "/b.script").c_str());
    [console openDocument:nil];
    chosen = nil; // this one changes nothing
    [console saveDocument:nil];
    [console openDocument:nil];
    ASSERT_EQ(panels.size(), 4U);
    EXPECT_EQ(panels[1].folder, one);
    EXPECT_EQ(panels[2].folder, two);
    EXPECT_EQ(panels[3].folder, two);
    ASSERT_EQ(remove((two + "/b.script").c_str()), 0);
    ASSERT_EQ(rmdir(two.c_str()), 0);
    [console saveDocument:nil];
    EXPECT_NE(panels[4].folder, "") << "that it is gone is no harm";
}

TEST_F(FilePanels, ListFoldersAndScriptsAlone) {
    const std::string all = Folder("all");
    ASSERT_EQ(mkdir((all + "/folder").c_str(), 0700), 0);
    for (const char* const name : {"/a.script", "/b.txt", "/c.png", "/d", "/e.script.bak"})
        Write(all + name, "1\n");
    offered = @(all.c_str());
    [console saveDocument:nil];
    [console openDocument:nil];
    ASSERT_EQ(panels.size(), 2U);
    const std::set<std::string> scripts = {"a.script", "b.txt", "folder"};
    for (const Waiting& one : panels) EXPECT_EQ(one.listed, scripts);
}

TEST_F(FilesAndPages, GospelOpensThePageInTheBrowser) {
    // A program of the name that opens pages, which writes down what it was given.
    const std::string opener = home + "/xdg-open";
    Write(opener, "#!/bin/sh\nprintf %s \"$1\" >\"" + home + "/part\" && mv \"" + home + "/part\" \"" + home +
                      "/opened\"\n");
    ASSERT_EQ(chmod(opener.c_str(), 0700), 0);
    NSString* const path = [NSString stringWithFormat:@"%s:/usr/bin:/bin", home.c_str()];
    environment = [NSDictionary dictionaryWithObject:path forKey:@"PATH"];
    const Replaced replaced([NSProcessInfo class], @selector(environment), environmentOfPrograms);
    setPage(@"http://page.invalid/a?b=c&d");
    [console RunGUICommand:"gospel"];
    EXPECT_EQ(Text(), "> \n<<< opening URL >>>\n\n> ");
    for (int i = 0; i < 200 && !Exists(home + "/opened"); ++i) Run(0.05);
    EXPECT_EQ(Read(home + "/opened"), "http://page.invalid/a?b=c&d");
    setPage(@"");
}

} // namespace
