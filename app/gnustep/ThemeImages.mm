// SPDX-License-Identifier: MIT
#import "ThemeImages.h"

#import "Controls.h"
#import "Exchange.h"
#import "Palette.h"

// --- What they show ---

enum Ink { NO_INK, MARK, STRONG, WHITE, FIELD, BORDER, ACCENT, BRIGHT, RED, GREEN, BLUE };

enum Shape { NOTHING, LINE, AREA, BOX, OVAL };

// One shape, in points from the upper left corner.
struct Part {
    Shape shape;
    Ink fill, line;
    CGFloat width;  // of the line
    int count;      // numbers of `at` that count for a line or an area
    CGFloat at[12]; // x and y of every corner; for a box and an oval x, y, width, height; a box's radius
};

struct Image {
    const char* names; // of GNUstep's images, divided by blanks
    NSSize size;
    Part parts[6];
};

// A line of one point stands between whole points, so that it fills one row of pixels where a point is a
// pixel.
static const Image IMAGES[] = {
    // Check boxes, with the space between box and title.
    {"common_SwitchOff", {20, 15}, {{BOX, FIELD, BORDER, 1, 0, {0.5, 0.5, 14, 14, 3}}}},
    {"common_SwitchOn",
     {20, 15},
     {{BOX, ACCENT, ACCENT, 1, 0, {0.5, 0.5, 14, 14, 3}},
      {LINE, NO_INK, WHITE, 1.8, 6, {4, 7.7, 6.5, 10.3, 11.1, 4.9}}}},
    // Pop-up buttons and pull-down buttons.
    {"common_Nibble",
     {11, 12},
     {{LINE, NO_INK, MARK, 1.4, 6, {3, 5, 5.5, 2.5, 8, 5}},
      {LINE, NO_INK, MARK, 1.4, 6, {3, 7.5, 5.5, 10, 8, 7.5}}}},
    {"common_3DArrowDown", {11, 8}, {{LINE, NO_INK, MARK, 1.4, 6, {2.5, 3, 5.5, 6, 8.5, 3}}}},
    // The chosen item of a menu.
    {"NSMenuCheckmark common_2DCheckMark",
     {12, 12},
     {{LINE, NO_INK, STRONG, 1.8, 6, {2.5, 6.7, 5.3, 9.5, 10.5, 3.5}}}},
    // The same where the item is highlighted.
    {"HighlightedCheckmark", {12, 12}, {{LINE, NO_INK, WHITE, 1.8, 6, {2.5, 6.7, 5.3, 9.5, 10.5, 3.5}}}},
    // The mark of a default button.
    {"common_ret common_retH",
     {15, 10},
     {{LINE, NO_INK, MARK, 1.3, 6, {13, 2, 13, 6.5, 3.5, 6.5}},
      {LINE, NO_INK, MARK, 1.3, 6, {6, 4, 3.5, 6.5, 6, 9}}}},
    // The arrows of scrollers and lists; a scroller's knob shows no hollow.
    {"common_ArrowDown common_ArrowDownH", {9, 9}, {{LINE, NO_INK, MARK, 1.3, 6, {2, 3.5, 4.5, 6, 7, 3.5}}}},
    {"common_ArrowUp common_ArrowUpH", {9, 9}, {{LINE, NO_INK, MARK, 1.3, 6, {2, 6, 4.5, 3.5, 7, 6}}}},
    {"common_ArrowLeft common_ArrowLeftH", {9, 9}, {{LINE, NO_INK, MARK, 1.3, 6, {6, 2, 3.5, 4.5, 6, 7}}}},
    {"common_ArrowRight common_ArrowRightH",
     {9, 9},
     {{LINE, NO_INK, MARK, 1.3, 6, {3.5, 2, 6, 4.5, 3.5, 7}}}},
    {"common_Dimple common_DimpleHoriz", {6, 6}, {}},
    // The places of the panels for files.
    {"common_Folder common_HomeDirectory",
     {48, 48},
     {{AREA,
       ACCENT,
       BRIGHT,
       1.6,
       12,
       {6.5, 12.5, 19.5, 12.5, 23.5, 17.5, 42.5, 17.5, 42.5, 38.5, 6.5, 38.5}}}},
    {"common_Unknown",
     {48, 48},
     {{AREA, NO_INK, MARK, 2.5, 10, {11.5, 5.5, 28.5, 5.5, 37.5, 14.5, 37.5, 43.5, 11.5, 43.5}},
      {LINE, NO_INK, MARK, 2.5, 6, {28.5, 5.5, 28.5, 14.5, 37.5, 14.5}}}},
    {"common_Home",
     {24, 24},
     {{LINE, NO_INK, MARK, 1.5, 6, {4.5, 12.5, 12.5, 4.5, 20.5, 12.5}},
      {LINE, NO_INK, MARK, 1.5, 8, {6.5, 11.5, 6.5, 20.5, 18.5, 20.5, 18.5, 11.5}}}},
    {"common_Mount",
     {24, 24},
     {{BOX, NO_INK, MARK, 1.5, 0, {4.5, 13.5, 16, 6, 2}},
      {LINE, NO_INK, MARK, 1.5, 4, {12.5, 3.5, 12.5, 10.5}},
      {LINE, NO_INK, MARK, 1.5, 6, {9.5, 7.5, 12.5, 10.5, 15.5, 7.5}}}},
    {"common_Unmount",
     {24, 24},
     {{BOX, NO_INK, MARK, 1.5, 0, {4.5, 13.5, 16, 6, 2}},
      {LINE, NO_INK, MARK, 1.5, 4, {12.5, 10.5, 12.5, 3.5}},
      {LINE, NO_INK, MARK, 1.5, 6, {9.5, 6.5, 12.5, 3.5, 15.5, 6.5}}}},
    // A window in the menu of windows, where GNUstep would show the close button of a title bar.
    {"common_Close common_CloseH common_CloseBroken common_CloseBrokenH",
     {13, 11},
     {{BOX, NO_INK, MARK, 1, 0, {1.5, 1.5, 10, 8, 1.5}}, {LINE, NO_INK, MARK, 1, 4, {1.5, 4.5, 11.5, 4.5}}}},
    // The color panel: the magnifier that takes a color off the screen, the tab of the named colors.
    {"MagnifyGlass",
     {20, 20},
     {{OVAL, NO_INK, MARK, 1.8, 0, {3.5, 3.5, 10, 10}},
      {LINE, NO_INK, MARK, 2.4, 4, {12.5, 12.5, 17.5, 17.5}}}},
    {"GSNamedColorPicker",
     {32, 24},
     {{BOX, RED, NO_INK, 0, 0, {3, 3, 6, 5, 0}},
      {BOX, GREEN, NO_INK, 0, 0, {3, 10, 6, 5, 0}},
      {BOX, BLUE, NO_INK, 0, 0, {3, 17, 6, 5, 0}},
      {BOX, MARK, NO_INK, 0, 0, {11, 5, 18, 1, 0}},
      {BOX, MARK, NO_INK, 0, 0, {11, 12, 18, 1, 0}},
      {BOX, MARK, NO_INK, 0, 0, {11, 19, 18, 1, 0}}}},
};

// --- Drawing ---

static NSColor* rgb(CGFloat red, CGFloat green, CGFloat blue) {
    return [NSColor colorWithCalibratedRed:red green:green blue:blue alpha:1];
}

static NSColor* colorOf(Ink ink) {
    switch (ink) {
    case MARK: return gray(palette().mark);
    case STRONG: return gray(palette().strong);
    case FIELD: return gray(palette().field);
    case BORDER: return gray(palette().edge);
    case ACCENT: return accent();
    case BRIGHT: return rgb(0.37, 0.73, 0.74);
    case RED: return rgb(0.82, 0.28, 0.3);
    case GREEN: return rgb(0.25, 0.6, 0.35);
    case BLUE: return rgb(0.24, 0.47, 0.78);
    case NO_INK:
    case WHITE: break;
    }
    return [NSColor whiteColor];
}

static NSBezierPath* pathOf(const Part& part, CGFloat height) {
    const CGFloat* const at = part.at;
    const NSRect frame = NSMakeRect(at[0], height - at[1] - at[3], at[2], at[3]);
    if (part.shape == BOX) return [NSBezierPath bezierPathWithRoundedRect:frame xRadius:at[4] yRadius:at[4]];
    if (part.shape == OVAL) return [NSBezierPath bezierPathWithOvalInRect:frame];
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(at[0], height - at[1])];
    for (int i = 2; i < part.count; i += 2) [path lineToPoint:NSMakePoint(at[i], height - at[i + 1])];
    if (part.shape == AREA) [path closePath];
    return path;
}

static void drawPart(const Part& part, CGFloat height) {
    NSBezierPath* const path = pathOf(part, height);
    if (part.fill != NO_INK) {
        [colorOf(part.fill) set];
        [path fill];
    }
    if (part.line == NO_INK) return;
    [path setLineWidth:part.width];
    [colorOf(part.line) set];
    [path stroke];
}

@interface DrawnImageRep : NSImageRep {
    const Image* image;
}
- (instancetype)initWithImage:(const Image&)drawn;
@end

@implementation DrawnImageRep

- (instancetype)initWithImage:(const Image&)drawn {
    if (!(self = [super init])) return nil;
    image = &drawn;
    [self setSize:drawn.size];
    [self setAlpha:YES];
    [self setOpaque:NO];
    [self setPixelsWide:NSImageRepMatchesDevice];
    [self setPixelsHigh:NSImageRepMatchesDevice];
    return self;
}

- (BOOL)draw {
    for (const Part& part : image->parts) {
        if (part.shape != NOTHING) drawPart(part, image->size.height);
    }
    return YES;
}

@end

// --- Names ---

static void drawInstead(NSImage* shown, const Image& image) {
    for (NSImageRep* const one in [[[shown representations] copy] autorelease])
        [shown removeRepresentation:one];
    [shown setSize:image.size];
    [shown addRepresentation:[[[DrawnImageRep alloc] initWithImage:image] autorelease]];
    [shown setCacheMode:NSImageCacheNever]; // what is kept has the pixels and the colors of another time
}

static NSImage* drawnImage(const Image& image) {
    NSImage* const drawn = [[[NSImage alloc] initWithSize:image.size] autorelease];
    drawInstead(drawn, image);
    return drawn;
}

// The image that GNUstep has stays, since there may be controls that show it.
static void useImage(NSString* name, const Image& image) {
    NSImage* const theirs = [NSImage imageNamed:name];
    if (theirs)
        drawInstead(theirs, image);
    else
        [drawnImage(image) setName:name];
}

void useThemeImages() {
    for (const Image& image : IMAGES) {
        for (NSString* const name in [@(image.names) componentsSeparatedByString:@" "]) useImage(name, image);
    }
}

NSImage* themeImage(NSString* name) {
    for (const Image& image : IMAGES) {
        if ([[@(image.names) componentsSeparatedByString:@" "] containsObject:name]) return drawnImage(image);
    }
    return nil;
}

// --- The mark of a menu's item ---

static bool isDrawn(NSImage* image) {
    return [[[image representations] lastObject] isKindOfClass:[DrawnImageRep class]];
}

// GNUstep would show that of a highlighted item in the color of the others.
@implementation NSMenuItemCell (MarkOfHighlighted)

+ (void)load {
    exchange(self, @selector(drawStateImageWithFrame:inView:), @selector(drawMarkWithFrame:inView:));
}

// Under this name is GNUstep's own.
- (void)drawMarkWithFrame:(NSRect)frame inView:(NSView*)view {
    NSMenuItem* const item = [self menuItem];
    if (![self isHighlighted] || [item state] != NSOnState || !isDrawn([item onStateImage])) {
        [self drawMarkWithFrame:frame inView:view];
        return;
    }
    NSImage* const mark = themeImage(@"HighlightedCheckmark");
    const NSRect room = [self stateImageRectForBounds:frame];
    const NSSize size = [mark size];
    [mark drawInRect:NSMakeRect(NSMidX(room) - size.width / 2, NSMidY(room) - size.height / 2, size.width,
                                size.height)
              fromRect:NSZeroRect
             operation:NSCompositeSourceOver
              fraction:1
        respectFlipped:YES
                 hints:nil];
}

@end
