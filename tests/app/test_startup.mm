// SPDX-License-Identifier: MIT
//
// The start of the program: its order, the sheets of some starts, and files handed over.
#import "shell_fixture.h"

#import "Interface.h"
#import "MainWindowDelegate.h"

#include "units.h"

#include <fstream>
#include <memory>
#include <sys/stat.h>

namespace {

// --- What is sent during a start ---

std::vector<std::string> sent;
std::map<std::string, IMP> originals;

template <typename... Arguments> void record(id self, SEL selector, Arguments... arguments) {
    const std::string name = sel_getName(selector);
    sent.push_back(name);
    reinterpret_cast<void (*)(id, SEL, Arguments...)>(originals[name])(self, selector, arguments...);
}

class Recorder {
public:
    template <typename Function> void Watch(Class type, const char* name, Function* replacement) {
        replaced.push_back(std::make_unique<Replaced>(type, sel_registerName(name), replacement));
        originals[name] = replaced.back()->Implementation();
    }
    void Watch(Class type, const char* name) { Watch(type, name, &record<>); }

    Recorder() { sent.clear(); }
    ~Recorder() {
        while (!replaced.empty()) replaced.pop_back();
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

private:
    std::vector<std::unique_ptr<Replaced>> replaced;
};

// --- Stand-ins ---

NSString* commaNumber(id, SEL, NSNumber*) {
    return @"6,7";
}

NSString* pointNumber(id, SEL, NSNumber*) {
    return @"6.7";
}

std::vector<std::string> loaded; // by loadFile:
BOOL loadResult = YES;
uint8_t readyWhenLoading = 0;

BOOL recordLoad(id, SEL, NSString* path) {
    loaded.push_back([path UTF8String]);
    readyWhenLoading = calcIsReady;
    return loadResult;
}

NSWindow* initializedWith = nil;
bool consoleHadKeys = false;
uint8_t readyWhenInitialized = 0;

void recordInitialize(id self, SEL, NSWindow* window) {
    initializedWith = window;
    consoleHadKeys = [window firstResponder] == self;
    readyWhenInitialized = calcIsReady;
}

int itemsCreated = 0;

void recordCreateItem(id, SEL) {
    ++itemsCreated;
}

int tutorials = 0;

void recordTutorial(id, SEL, id) {
    tutorials++;
}

// The sheet that a test hands to the end of a sheet.
int closedSheets = 0;

} // namespace

@interface SheetProbe : NSObject
- (void)orderOut:(id)sender;
@end

@implementation SheetProbe
- (void)orderOut:(id)sender {
    (void)sender;
    closedSheets++;
}
@end

namespace {

class Startup : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        closedSheets = tutorials = itemsCreated = 0;
        loaded.clear();
        loadResult = YES;
        readyWhenLoading = 0;
    }

    // A start whose counter stood at this.
    void StartAfter(int starts) {
        SetSetting("firstrun", starts);
        StartAgain();
    }

    // What the application's launch does around the console's own start-up.
    void Launch() {
        const Replaced initialize([MainConsole class], @selector(initializeConsole:), recordInitialize);
        const Replaced load([MainConsole class], @selector(loadFile:), recordLoad);
        const Replaced create([PelmoAppDelegate class], @selector(createAppStatusItem), recordCreateItem);
        [window makeFirstResponder:nil];
        [Application() applicationDidFinishLaunching:nil];
    }

    id Application() const { return reinterpret_cast<id>(delegate); }

    BOOL OpenFile(NSString* path) {
        const Replaced load([MainConsole class], @selector(loadFile:), recordLoad);
        return [Application() application:NSApp openFile:path];
    }

    SheetProbe* Sheet() { return [[[SheetProbe alloc] init] autorelease]; }
};

// --- The console's order ---

bool hadFunctions = false;        // predefined ones, when the settings were loaded
bool hadFunctionsForFile = false; // when the functions file was
int entriesForFile = 0;           // how many the history could hold then

void recordSettings(id self, SEL selector) {
    hadFunctions = funcs.FindByName("sin", 1) != nullptr;
    record<>(self, selector);
}

void recordFunctions(id self, SEL selector) {
    hadFunctionsForFile = funcs.FindByName("sin", 1) != nullptr;
    entriesForFile = calc.history.maxEntries;
    record<>(self, selector);
}

TEST_F(Startup, GoesInOrder) {
    SetSetting("histsz", 3);
    Terminate();
    {
        Recorder recorder;
        const char* const plain[] = {"clearConsole",       "findFiles",        "testUnits",
                                     "populateVarsMenu",   "populateFuncMenu", "initWindowProperties",
                                     "initWindowLocation", "countStart"};
        for (const char* const name : plain) recorder.Watch([MainConsole class], name);
        // The engine is no object; what it has become when the next message is sent tells its place.
        recorder.Watch([MainConsole class], "loadSettings", recordSettings);
        recorder.Watch([MainConsole class], "loadFuncFile", recordFunctions);
        recorder.Watch([MainConsole class], "showWindow:", &record<NSWindow*>);
        recorder.Watch([MainConsole class], "setDegreeMode:", &record<int>);
        recorder.Watch([MainConsole class], "setDisplayBase::", &record<int, BOOL>);
        Restart();
    }
    const std::vector<std::string> expected = {
        "clearConsole",       "findFiles",
        "loadSettings",       "testUnits",
        "loadFuncFile",       "setDegreeMode:",
        "setDisplayBase::",   "populateVarsMenu",
        "populateFuncMenu",   "initWindowProperties",
        "initWindowLocation", "showWindow:",
        "initWindowLocation", // once more: a menu in the window makes it larger when it appears
        "countStart"};
    EXPECT_EQ(sent, expected);
    EXPECT_FALSE(hadFunctions) << "the settings come before the functions";
    EXPECT_TRUE(hadFunctionsForFile) << "the file's come on top of the predefined ones";
    EXPECT_EQ(entriesForFile, 3) << "the history has its size before the file fills it";
}

TEST_F(Startup, HandsTheSettingsToTheEngine) {
    const std::map<std::string, int> chosen = {{"european", 1},  {"sigfigs", 7},  {"schar", '\''},
                                               {"separator", 1}, {"twoscomp", 1}, {"degmode", 0},
                                               {"dispbase", 16}, {"histsz", 3},   {"statusicon", 1}};
    for (const auto& [key, value] : chosen) SetSetting(key.c_str(), value);
    StartAfter(5);
    EXPECT_TRUE(calc.initialized);
    EXPECT_TRUE(calc.european);
    EXPECT_EQ(calc.sigFigs, 7);
    EXPECT_EQ(calc.separatorChar, '\'');
    EXPECT_TRUE(calc.useSeparator);
    EXPECT_TRUE(calc.twosComp);
    EXPECT_FALSE(calc.degreeMode);
    EXPECT_EQ([Outlet("ctrlBase") selectedSegment], 2);
    EXPECT_EQ([Outlet("ctrlDegMode") selectedSegment], 1);
    for (const char* const line : {"1", "2", "3", "4"}) Enter(line);
    EXPECT_NE(calc.history.GetHistoryStr(3), nullptr);
    EXPECT_EQ(calc.history.GetHistoryStr(4), nullptr);
    for (const auto& [key, value] : chosen) EXPECT_EQ(SettingOf(key.c_str()), value) << key;
}

TEST_F(Startup, LeavesAnEmptyEntryInAVisibleWindowOfItsOwnPaint) {
    EXPECT_EQ(Text(), "> ");
    EXPECT_TRUE([window isVisible]);
    EXPECT_FALSE([window isOpaque]);
    EXPECT_FALSE([console drawsBackground]);
    EXPECT_FALSE([[console enclosingScrollView] drawsBackground]);
    EXPECT_EQ([window minSize].width, 400);
    EXPECT_EQ([window minSize].height, 150);
    EXPECT_GT([Outlet("menuFuncs") numberOfItems], 1);
    EXPECT_TRUE(alerts.empty());
}

NSFont* noFont(id, SEL, CGFloat) {
    return nil;
}

TEST_F(Startup, ASystemWithoutAFontOfEqualWidthsHasAnotherOne) {
    const Replaced fonts(metaclassOf([NSFont class]), @selector(userFixedPitchFontOfSize:), noFont);
    Restart();
    EXPECT_GT([[console font] pointSize], 0);
    [console setString:@"> 7"];
    [window display];
    EXPECT_GT(NSHeight([[console layoutManager] lineFragmentRectForGlyphAtIndex:0 effectiveRange:NULL]), 0);
}

TEST_F(Startup, TheSavedPlaceComesBackWithoutSnapping) {
    SetSetting("snaptoscreen", 1);
    [[Application() windowDelegate]
        placeWindow:NSMakeRect(10, 300, 512, 301)]; // 10 points inside: near enough
    StartAgain();
    EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(10, 300, 512, 301)))
        << [NSStringFromRect([window frame]) UTF8String];
}

TEST_F(Startup, APlaceThatNoScreenShowsComesToTheMainScreen) {
    for (const NSRect& lost : {NSMakeRect(5000, 300, 500, 300), NSMakeRect(-490, 300, 500, 300),
                               NSMakeRect(-405, 300, 500, 300), // 95 points are left
                               NSMakeRect(300, -3000, 500, 300)}) {
        Terminate();
        std::string file = Read(SettingsPath());
        const auto put = [&file](const char* key, CGFloat value) {
            const std::string tag = std::string("<key>") + key + "</key>";
            const size_t from = file.find("<integer>", file.find(tag)) + 9;
            file.replace(from, file.find('<', from) - from, std::to_string(static_cast<int>(value)));
        };
        put("x", NSMinX(lost));
        put("y", NSMinY(lost));
        put("cx", NSWidth(lost));
        put("cy", NSHeight(lost));
        Write(SettingsPath(), file);
        Restart();
        const NSRect screen = [[NSScreen mainScreen] visibleFrame];
        EXPECT_TRUE(NSContainsRect(screen, [window frame])) << [NSStringFromRect(lost) UTF8String];
        EXPECT_EQ(NSWidth([window frame]), 500);
        EXPECT_EQ(NSHeight([window frame]), 300);
    }
}

TEST_F(Startup, APlaceThatIsPartlySeenStays) {
    const NSRect place = NSMakeRect(-400, 300, 500, 300);
    SetSetting("x", -400);
    SetSetting("y", 300);
    SetSetting("cx", 500);
    SetSetting("cy", 300);
    [console initWindowLocation];
    EXPECT_TRUE(NSEqualRects([window frame], place)) << [NSStringFromRect([window frame]) UTF8String];
}

// --- The units' self-test ---

void clearWithoutFeet(id self, SEL selector) {
    reinterpret_cast<void (*)(id, SEL)>(originals["clearConsole"])(self, selector);
    units_convert("m", "ft");       // builds the catalogue
    EXPECT_FALSE(removeUnit("ft")); // no error
}

TEST_F(Startup, SettingsThatHaveNotChangedAreNotWrittenAgain) {
    Terminate();
    struct stat before = {}, after = {};
    ASSERT_EQ(stat(SettingsPath().c_str(), &before), 0);
    Restart();
    ASSERT_EQ(stat(SettingsPath().c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "each writing waits for the disk";
    Terminate();
    ASSERT_EQ(stat(SettingsPath().c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino) << "the count of the starts";
}

TEST_F(Startup, AFailedUnitsTestIsToldOnceAndTheStartGoesOn) {
    Terminate();
    {
        Recorder recorder;
        recorder.Watch([MainConsole class], "clearConsole", clearWithoutFeet);
        Restart();
    }
    EXPECT_EQ(alerts, std::vector<std::string>{
                          "Units converter initialization error.\ninvalid unit name 'ft' in 'ft'"});
    EXPECT_EQ(units_check_exception(), nullptr);
    Enter("2+3");
    EXPECT_EQ(Text(), "> 2+3\nans = 5\n\n> ");
}

// --- The start counter and its sheets ---

TEST_F(Startup, TheFirstRunOffersTheTutorial) {
    ASSERT_EQ(sheets.size(), 1u);
    EXPECT_EQ(sheets[0].message, "This is your first run.\nShow 45-second quick tutorial?");
    EXPECT_EQ(sheets[0].yes, "Run Tutorial");
    EXPECT_EQ(sheets[0].no, "No thanks.");
    EXPECT_EQ(sheets[0].selector, "tutorialSheetDidEnd:returnCode:contextInfo:");
    EXPECT_EQ(SettingOf("firstrun"), 2);
    StartAgain();
    EXPECT_TRUE(sheets.empty());
    EXPECT_EQ(SettingOf("firstrun"), 3);
}

TEST_F(Startup, ACounterOfZeroIsAFirstRunToo) {
    StartAfter(0);
    EXPECT_EQ(sheets.size(), 1u);
    EXPECT_EQ(SettingOf("firstrun"), 2);
}

TEST_F(Startup, TheTwentiethAndTheHundredthStartAskForAReview) {
    for (const int starts : {2, 17, 18, 20, 98, 100, 199, 1000}) {
        StartAfter(starts);
        EXPECT_TRUE(sheets.empty()) << starts;
        EXPECT_EQ(SettingOf("firstrun"), starts + 1);
    }
    for (const int starts : {19, 99}) {
        StartAfter(starts);
        ASSERT_EQ(sheets.size(), 1u) << starts;
        EXPECT_EQ(sheets[0].message, "If you like Tallyquill, please consider leaving a review.");
        EXPECT_EQ(sheets[0].yes, "Leave Review");
        EXPECT_EQ(sheets[0].no, "No thanks.");
        EXPECT_EQ(sheets[0].selector, "reviewSheetDidEnd:returnCode:contextInfo:");
        EXPECT_EQ(SettingOf("firstrun"), starts + 1);
    }
}

TEST_F(Startup, ALocaleWithADecimalCommaDecidesTheMarksOfTheFirstRun) {
    const Replaced comma([NSNumberFormatter class], @selector(stringFromNumber:), commaNumber);
    StartAfter(1);
    EXPECT_EQ(SettingOf("european"), 1);
    EXPECT_EQ(SettingOf("schar"), '.');
    EXPECT_TRUE(calc.european);
    Enter("1,5*3");
    EXPECT_EQ(Text(), "> 1,5*3\nans = 4,5\n\n> ");
}

TEST_F(Startup, TheLocaleCountsInTheFirstRunAlone) {
    {
        const Replaced comma([NSNumberFormatter class], @selector(stringFromNumber:), commaNumber);
        StartAfter(2);
        EXPECT_EQ(SettingOf("european"), 0);
        EXPECT_EQ(SettingOf("schar"), ',');
    }
    const Replaced point([NSNumberFormatter class], @selector(stringFromNumber:), pointNumber);
    StartAfter(1);
    EXPECT_EQ(SettingOf("european"), 0);
    EXPECT_EQ(SettingOf("schar"), ',');
}

// --- The ends of the sheets ---

TEST_F(Startup, TheTutorialRunsOnTheDefaultButtonOnly) {
    const Replaced tutorial([MainConsole class], @selector(tutorial:), recordTutorial);
    NSWindow* const probe = reinterpret_cast<NSWindow*>(Sheet());
    [console tutorialSheetDidEnd:probe returnCode:0 contextInfo:nullptr];
    [console tutorialSheetDidEnd:probe returnCode:-1 contextInfo:nullptr];
    EXPECT_EQ(closedSheets + tutorials, 0);
    [console tutorialSheetDidEnd:probe returnCode:1 contextInfo:nullptr];
    EXPECT_EQ(closedSheets, 1);
    EXPECT_EQ(tutorials, 1);
}

NSDictionary* environment = nil;
int programsSought;

id environmentOfPrograms(id, SEL) {
    programsSought++;
    return environment;
}

// Opening a page starts a program, which is a script of ours here.
TEST_F(Startup, TheReviewPageOpensOnTheDefaultButtonOnly) {
    const std::string opened = home + "/opened";
    Write(home + "/xdg-open", "#!/bin/sh\nprintf %s \"$1\" >'" + opened + "'\n");
    ASSERT_EQ(chmod((home + "/xdg-open").c_str(), 0700), 0);
    NSString* const path = [NSString stringWithFormat:@"%s:/usr/bin:/bin", home.c_str()];
    environment = [NSDictionary dictionaryWithObject:path forKey:@"PATH"];
    programsSought = 0;
    const Replaced programs([NSProcessInfo class], @selector(environment), environmentOfPrograms);
    NSWindow* const probe = reinterpret_cast<NSWindow*>(Sheet());
    [console reviewSheetDidEnd:probe returnCode:1 contextInfo:nullptr];
    EXPECT_EQ(closedSheets, 1);
    EXPECT_EQ(alerts, std::vector<std::string>{"Leave Review\nThere is no web page to open."});
    NSDictionary* const page = [NSDictionary dictionaryWithObject:@"https://example.org/review"
                                                           forKey:@"ReviewPageURL"];
    [[NSUserDefaults standardUserDefaults] registerDefaults:page];
    [console reviewSheetDidEnd:probe returnCode:0 contextInfo:nullptr];
    EXPECT_EQ(closedSheets, 1);
    EXPECT_EQ(programsSought, 0) << "no page is set, or another button was pressed";
    [console reviewSheetDidEnd:probe returnCode:1 contextInfo:nullptr];
    EXPECT_EQ(closedSheets, 2);
    EXPECT_GT(programsSought, 0);
    for (int i = 0; i < 100 && Read(opened).empty(); ++i) Run(0.05);
    EXPECT_EQ(Read(opened), "https://example.org/review");
    EXPECT_EQ(alerts.size(), 1u);
}

// --- The application's launch ---

TEST_F(Startup, TheLaunchGivesTheConsoleTheKeysAndStartsIt) {
    Launch();
    EXPECT_TRUE(consoleHadKeys);
    EXPECT_EQ(initializedWith, window);
    EXPECT_EQ(readyWhenInitialized, 0);
    EXPECT_EQ(calcIsReady, 1);
    EXPECT_TRUE(loaded.empty());
}

TEST_F(Startup, TheStatusItemIsMadeWhenTheSettingIsOne) {
    SetSetting("statusicon", 0);
    Launch();
    EXPECT_EQ(itemsCreated, 0);
    SetSetting("statusicon", 1);
    Launch();
    EXPECT_EQ(itemsCreated, 1);
}

TEST_F(Startup, TheStatusItemIsThereWhereThereIsABarAndTheSettingStays) {
    SetSetting("statusicon", 1);
    [Application() createAppStatusItem];
    Ivar const item = class_getInstanceVariable([PelmoAppDelegate class], "statusItem");
    EXPECT_EQ(object_getIvar(Application(), item) != nil, platformStatusBar() != nil);
    [Application() removeAppStatusItem];
    EXPECT_EQ(SettingOf("statusicon"), 1);
}

TEST_F(Startup, AFileHandedOverBeforeTheEndOfTheStartIsLoadedOnceBehindIt) {
    EXPECT_TRUE(OpenFile(@"/a.script"));
    EXPECT_TRUE(OpenFile(@"/b.script"));
    EXPECT_TRUE(loaded.empty());
    Launch();
    EXPECT_EQ(loaded, (std::vector<std::string>{"/a.script", "/b.script"}));
    EXPECT_EQ(readyWhenLoading, 1);
    EXPECT_EQ(waitingToOpenFilenames, nil);
    Launch();
    EXPECT_EQ(loaded.size(), 2u);
}

TEST_F(Startup, AFileThatCannotBeOpenedIsToldOnce) {
    OpenFile(@"/missing.script");
    loadResult = NO;
    Launch();
    EXPECT_EQ(alerts, std::vector<std::string>{"The script could not be opened.\n/missing.script"});
    EXPECT_EQ(calcIsReady, 1);
}

TEST_F(Startup, AFileHandedOverLaterIsLoadedAtOnce) {
    calcIsReady = 1;
    EXPECT_TRUE(OpenFile(@"/c.script"));
    EXPECT_EQ(loaded, std::vector<std::string>{"/c.script"});
    EXPECT_EQ(waitingToOpenFilenames, nil);
    loadResult = NO;
    EXPECT_FALSE(OpenFile(@"/missing.script"));
}

TEST_F(Startup, AFileHandedOverIsReplayed) {
    const std::string path = home + "/x.script";
    Write(path, "6*7\n");
    calcIsReady = 1;
    EXPECT_TRUE([Application() application:NSApp openFile:[NSString stringWithUTF8String:path.c_str()]]);
    EXPECT_NE(Text().find("ans = 42"), std::string::npos);
    EXPECT_FALSE([Application() application:NSApp openFile:@"/nowhere/x.script"]);
}

} // namespace
