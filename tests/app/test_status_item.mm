// SPDX-License-Identifier: MIT
//
// The item in the status bar, by a bar of ours: GNUstep has none.
#import "shell_fixture.h"

namespace {

// What the item and its bar were told.
struct Told {
    int made = 0;
    int removed = 0;
    CGFloat length = 0;
    BOOL isHighlighting = NO;
    BOOL isEnabled = NO;
    std::string title = "none";
    std::string toolTip;
    NSSize image = {0, 0};
    NSSize alternate = {0, 0};
    SEL action = NULL;
    id target = nil;
};
Told told;

NSSize sizeOf(NSImage* image) {
    return image ? [image size] : NSZeroSize;
}

} // namespace

@interface FakeStatusItem : NSObject {
    id bar; // not retained
}
- (id)initIn:(id)statusBar;
@end

@implementation FakeStatusItem
- (id)initIn:(id)statusBar {
    self = [super init];
    bar = statusBar;
    return self;
}
- (id)statusBar {
    return bar;
}
- (void)setHighlightMode:(BOOL)isOn {
    told.isHighlighting = isOn;
}
- (void)setTitle:(NSString*)title {
    told.title = [title UTF8String];
}
- (void)setImage:(NSImage*)image {
    told.image = sizeOf(image);
}
- (void)setAlternateImage:(NSImage*)image {
    told.alternate = sizeOf(image);
}
- (void)setEnabled:(BOOL)isOn {
    told.isEnabled = isOn;
}
- (void)setToolTip:(NSString*)text {
    told.toolTip = [text UTF8String];
}
- (void)setAction:(SEL)action {
    told.action = action;
}
- (void)setTarget:(id)target {
    told.target = target;
}
@end

@interface FakeStatusBar : NSObject
- (id)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(id)item;
@end

@implementation FakeStatusBar
- (id)statusItemWithLength:(CGFloat)length {
    told.made++;
    told.length = length;
    return [[[FakeStatusItem alloc] initIn:self] autorelease];
}
- (void)removeStatusItem:(id)item {
    EXPECT_TRUE([item isKindOfClass:[FakeStatusItem class]]);
    told.removed++;
}
@end

namespace {

std::vector<std::string> asked; // resources

NSString* pathOfTests(id, SEL, NSString* name, NSString* type) {
    asked.push_back(std::string([name UTF8String]) + "." + [type UTF8String]);
    return [NSString stringWithFormat:@"%s/%@.%@", TALLYQUILL_RESOURCES, name, type];
}

NSString* noPath(id, SEL, NSString*, NSString*) {
    return nil;
}

class StatusItem : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        told = Told();
        asked.clear();
        bar = [[FakeStatusBar alloc] init];
    }
    void TearDown() override {
        [Application() removeAppStatusItem];
        [bar release];
        ShellTest::TearDown();
    }

    PelmoAppDelegate* Application() const { return reinterpret_cast<PelmoAppDelegate*>(delegate); }

    void Create() { [Application() createAppStatusItemIn:reinterpret_cast<NSStatusBar*>(bar)]; }

    FakeStatusBar* bar = nil;
};

TEST_F(StatusItem, IsMadeWithItsImagesAndIsAButtonOfTheApplication) {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), pathOfTests);
    Create();
    EXPECT_EQ(told.made, 1);
    EXPECT_EQ(told.length, NSVariableStatusItemLength);
    EXPECT_TRUE(told.isHighlighting);
    EXPECT_EQ(told.title, "");
    EXPECT_EQ(asked, std::vector<std::string>({"Pelmo_tray.png", "Pelmo_tray_clicked.png"}));
    EXPECT_GT(told.image.width, 0);
    EXPECT_GT(told.alternate.width, 0);
    EXPECT_TRUE(told.isEnabled);
    EXPECT_EQ(told.toolTip, "PelmoStatus");
    EXPECT_TRUE(sel_isEqual(told.action, @selector(clickedAppStatusItem:)));
    EXPECT_EQ(told.target, Application());
}

TEST_F(StatusItem, WithoutItsImagesThereIsOneAllTheSame) {
    const Replaced path([NSBundle class], @selector(pathForResource:ofType:), noPath);
    Create();
    EXPECT_EQ(told.made, 1);
    EXPECT_EQ(told.image.width, 0);
    EXPECT_EQ(told.alternate.width, 0);
    EXPECT_TRUE(told.isEnabled);
    EXPECT_EQ(told.target, Application());
}

TEST_F(StatusItem, IsMadeOnceAndTakenAwayOnce) {
    [Application() removeAppStatusItem];
    EXPECT_EQ(told.removed, 0);
    Create();
    Create();
    EXPECT_EQ(told.made, 1);
    [Application() removeAppStatusItem];
    [Application() removeAppStatusItem];
    EXPECT_EQ(told.removed, 1);
    Create();
    EXPECT_EQ(told.made, 2);
}

TEST_F(StatusItem, GoesWithTheProgram) {
    Create();
    [reinterpret_cast<id>(Application()) applicationWillTerminate:nil];
    EXPECT_EQ(told.removed, 1);
}

} // namespace
