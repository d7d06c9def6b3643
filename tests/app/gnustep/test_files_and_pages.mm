// SPDX-License-Identifier: MIT
//
// The panels for files, and opening pages in the browser.
#import "../shell_fixture.h"

#include <sys/stat.h>

@interface MainConsole (FilePanels)
- (void)openDocument:(id)sender;
- (void)saveDocument:(id)sender;
@end

namespace {

std::vector<bool> madeAnew; // the panels for files

NSInteger cancel(id self, SEL) {
    madeAnew.push_back([self isOneShot]);
    return NSCancelButton;
}

NSInteger cancelOpening(id self, SEL, NSArray*) {
    return cancel(self, NULL);
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

TEST_F(FilesAndPages, ThePanelsForFilesAreMadeAnewAtEveryOpening) {
    madeAnew.clear();
    const Replaced save([NSSavePanel class], @selector(runModal), cancel);
    const Replaced openPanel([NSOpenPanel class], @selector(runModalForTypes:), cancelOpening);
    [console openDocument:nil];
    [console saveDocument:nil];
    EXPECT_EQ(madeAnew, std::vector<bool>({true, true})) << "or they grow";
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
