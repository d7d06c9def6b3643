// SPDX-License-Identifier: MIT
//
// How controls, menus and panels look: flat, and dark or light like the console.
#import "Controls.h"
#import "Palette.h"
#import "Platform.h"
#import "ThemeImages.h"

#import "ZqScroller.h"

#import <GNUstepGUI/GSTheme.h>

#include <cmath>

static const Palette DARK = {0.16, 0.11, 0.25, 0.33, 0.36, 0.62, 0.74, 0.88, 1, {0.13, 0.72, 0.74}};
static const Palette LIGHT = {0.93, 1, 0.98, 0.82, 0.66, 0.38, 0.26, 0.12, 0, {0, 0.5, 0.52}};
static const CGFloat CORNER = 3;
static const CGFloat SEPARATOR = 9; // a menu's, in points
static const CGFloat FOCUS_WIDTH = 2;

static NSColor* focusOf(const Palette& one) {
    return [NSColor colorWithCalibratedRed:one.focus[0] green:one.focus[1] blue:one.focus[2] alpha:1];
}

NSColor* accent() {
    return [NSColor colorWithCalibratedRed:0.05 green:0.44 blue:0.46 alpha:1];
}

@interface FlatTheme : GSTheme {
    bool isLight;
    NSColorList* list; // nil until it is asked for
}
- (const Palette&)palette;
- (void)becomeLight:(bool)light;
@end

const Palette& palette() {
    GSTheme* const theme = [GSTheme theme];
    return [theme isKindOfClass:[FlatTheme class]] ? [static_cast<FlatTheme*>(theme) palette] : DARK;
}

static NSColor* focus() {
    return focusOf(palette());
}

static NSBezierPath* rounded(NSRect frame, CGFloat inset) {
    return [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(frame, inset, inset)
                                           xRadius:CORNER
                                           yRadius:CORNER];
}

static void fillRounded(NSRect frame, NSColor* fill, NSColor* edge) {
    NSBezierPath* const path = rounded(frame, 0.5);
    [fill set];
    [path fill];
    if (!edge) return;
    [edge set];
    [path stroke];
}

// A line of another width than that of the edges, so that its color is not all that tells.
static void drawFocus(NSRect frame) {
    NSBezierPath* const path = rounded(frame, FOCUS_WIDTH / 2);
    [path setLineWidth:FOCUS_WIDTH];
    [focus() set];
    [path stroke];
}

@implementation FlatTheme

- (void)dealloc {
    [list release];
    [super dealloc];
}

- (const Palette&)palette {
    return isLight ? LIGHT : DARK;
}

- (void)activate {
    [super activate];
    useThemeImages();
}

- (void)becomeLight:(bool)light {
    if (light == isLight) return;
    [self deactivate];
    isLight = light;
    [list release];
    list = nil;
    [self activate];
}

- (void)setColor:(NSColor*)color forNames:(const char*)names {
    for (NSString* const name in [@(names) componentsSeparatedByString:@" "])
        [list setColor:color forKey:[name stringByAppendingString:@"Color"]];
}

- (NSColorList*)colors {
    if (list) return list;
    list = [[NSColorList alloc] initWithName:@"System" fromFile:nil];
    const Palette& now = [self palette];
    const struct {
        CGFloat white;
        const char* names; // of GNUstep's colors, without "Color"
    } shades[] = {
        {now.field, "controlBackground controlDarkShadow shadow scrollBar textBackground rowBackground"},
        {now.window,
         "windowBackground control controlShadow alternateRowBackground menuBackground menuItemBackground "
         "menuBarBackground menuBarBorder"},
        {now.control, "header"},
        {now.pressed, "controlHighlight knob selectedControl"},
        {now.edge, "windowFrame controlLightHighlight grid highlight selectedKnob menuBorder "
                   "menuSeparator"},
        {now.dim, "disabledControlText"},
        {now.text, "windowFrameText controlText headerText text"},
        {now.strong, "selectedControlText"},
        {1, "selectedMenuItemText selectedText alternateSelectedControlText"},
    };
    for (const auto& shade : shades) [self setColor:gray(shade.white) forNames:shade.names];
    [self setColor:accent() forNames:"selectedMenuItem selectedTextBackground alternateSelectedControl"];
    [self setColor:focusOf(now) forNames:"keyboardFocusIndicator"];
    return list;
}

- (CGFloat)menuSeparatorHeight {
    return SEPARATOR;
}

- (BOOL)menuShouldShowIcon {
    return NO;
}

// --- Menus ---

- (void)drawBackgroundForMenuView:(NSMenuView*)view
                        withFrame:(NSRect)bounds
                        dirtyRect:(NSRect)dirty
                       horizontal:(BOOL)horizontal {
    [gray(palette().window) set];
    NSRectFill(NSIntersectionRect(bounds, dirty));
    if (horizontal) return;
    [gray(palette().edge) set];
    NSFrameRect(bounds);
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell*)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView*)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)horizontal {
    const bool isOn = state == GSThemeSelectedState || state == GSThemeHighlightedState;
    // What cannot be chosen is gray, which would be too dark there.
    NSMenuItem* const item = [cell menuItem];
    const bool isSelected = isOn && [item isEnabled] && ![item isSeparatorItem];
    [isSelected ? accent() : gray(palette().window) set];
    NSRectFill(frame);
    if (horizontal) return;
    // The items cover the menu's frame at the right and below.
    [gray(palette().edge) set];
    NSRectFill(NSMakeRect(NSMaxX(frame) - 1, NSMinY(frame), 1, NSHeight(frame)));
    const bool isLowest = NSMinY(frame) <= 1;
    if (isLowest && ![view isFlipped])
        NSRectFill(NSMakeRect(NSMinX(frame), NSMinY(frame), NSWidth(frame), 1));
}

// In the bar GNUstep would begin it at the edge of its room.
- (void)drawTitleForMenuItemCell:(NSMenuItemCell*)cell
                       withFrame:(NSRect)frame
                          inView:(NSView*)view
                           state:(GSThemeControlState)state
                    isHorizontal:(BOOL)horizontal {
    const CGFloat free = horizontal ? NSWidth(frame) - [cell titleWidth] : 0;
    [super drawTitleForMenuItemCell:cell
                          withFrame:NSOffsetRect(frame, free / 2, 0)
                             inView:view
                              state:state
                       isHorizontal:horizontal];
}

- (void)drawSeparatorItemForMenuItemCell:(NSMenuItemCell*)cell
                               withFrame:(NSRect)frame
                                  inView:(NSView*)view
                            isHorizontal:(BOOL)horizontal {
    [gray(palette().edge) set];
    NSRectFill(NSMakeRect(NSMinX(frame) + 4, std::floor(NSMidY(frame)), NSWidth(frame) - 8, 1));
}

// --- Buttons ---

static NSColor* buttonFill(GSThemeControlState state) {
    const bool isPressed = state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState;
    const bool isOn = state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
    if (state == GSThemeDisabledState) return gray(palette().window);
    return gray(isPressed || isOn ? palette().pressed : palette().control);
}

static bool hasFocus(GSThemeControlState state) {
    return state == GSThemeFirstResponderState || state == GSThemeSelectedFirstResponderState;
}

- (void)drawButton:(NSRect)frame
                in:(NSCell*)cell
              view:(NSView*)view
             style:(int)style
             state:(GSThemeControlState)state {
    fillRounded(frame, buttonFill(state), gray(palette().edge));
    if (hasFocus(state)) drawFocus(frame);
}

- (void)drawPopUpButtonCellInteriorWithFrame:(NSRect)frame withCell:(NSCell*)cell inView:(NSView*)view {
}

// --- Steppers ---

// An arrow of three points that points up (1) or down (-1).
static void drawStep(NSRect frame, bool isPressed, int direction) {
    fillRounded(frame, gray(isPressed ? palette().pressed : palette().control), gray(palette().edge));
    const NSPoint middle = NSMakePoint(NSMidX(frame), NSMidY(frame));
    NSBezierPath* const arrow = [NSBezierPath bezierPath];
    [arrow moveToPoint:NSMakePoint(middle.x - 3, middle.y - direction * 1.5)];
    [arrow lineToPoint:NSMakePoint(middle.x + 3, middle.y - direction * 1.5)];
    [arrow lineToPoint:NSMakePoint(middle.x, middle.y + direction * 2)];
    [arrow closePath];
    [gray(palette().text) set];
    [arrow fill];
}

// GNUstep's own are as high together as no control is.
- (NSRect)stepperUpButtonRectWithFrame:(NSRect)frame {
    return NSMakeRect(NSMinX(frame), NSMidY(frame), NSWidth(frame), NSHeight(frame) / 2);
}

- (NSRect)stepperDownButtonRectWithFrame:(NSRect)frame {
    return NSMakeRect(NSMinX(frame), NSMinY(frame), NSWidth(frame), NSHeight(frame) / 2);
}

- (void)drawStepperBorder:(NSRect)frame {
}

- (void)drawStepperUpButton:(NSRect)frame {
    drawStep(frame, false, 1);
}

- (void)drawStepperHighlightUpButton:(NSRect)frame {
    drawStep(frame, true, 1);
}

- (void)drawStepperDownButton:(NSRect)frame {
    drawStep(frame, false, -1);
}

- (void)drawStepperHighlightDownButton:(NSRect)frame {
    drawStep(frame, true, -1);
}

// --- Sliders ---

- (void)drawSliderBorderAndBackground:(NSBorderType)type
                                frame:(NSRect)frame
                               inCell:(NSCell*)cell
                         isHorizontal:(BOOL)horizontal {
}

- (void)drawBarInside:(NSRect)rect inCell:(NSCell*)cell flipped:(BOOL)flipped {
    const NSRect bar =
        NSMakeRect(NSMinX(rect) + CORNER, std::floor(NSMidY(rect)) - 2, NSWidth(rect) - 2 * CORNER, 4);
    fillRounded(bar, gray(palette().pressed), nil);
}

- (void)drawKnobInCell:(NSCell*)cell {
    NSSliderCell* const slider = (NSSliderCell*)cell;
    NSView* const view = [slider controlView];
    NSRect knob = [slider knobRectFlipped:[view isFlipped]];
    const CGFloat side = 14;
    knob = NSMakeRect(std::floor(NSMidX(knob) - side / 2), std::floor(NSMidY(knob) - side / 2), side, side);
    [gray(palette().text) set];
    [[NSBezierPath bezierPathWithOvalInRect:knob] fill];
    if ([[view window] firstResponder] != view) return;
    NSBezierPath* const ring = [NSBezierPath bezierPathWithOvalInRect:NSInsetRect(knob, -3, -3)];
    [ring setLineWidth:FOCUS_WIDTH];
    [focus() set];
    [ring stroke];
}

// --- Scroll views ---

// GNUstep's own line between the scroller and the document is not drawn. Below the last row of a list that
// has only whole ones (BrowserRows.mm) it goes on.
- (void)drawScrollViewRect:(NSRect)rect inView:(NSView*)view {
    if (![[view superview] isKindOfClass:[NSBrowser class]]) return;
    [gray(palette().field) set];
    NSRectFill([view bounds]);
}

- (float)defaultScrollerWidth {
    return static_cast<float>([ZqScroller scrollerWidth]);
}

// --- Edges ---

- (NSRect)drawGrayBezel:(NSRect)border withClip:(NSRect)clip {
    (void)clip; // at times empty, when all is to be drawn
    [gray(palette().edge) set];
    NSFrameRect(border);
    return NSInsetRect(border, 1, 1);
}

- (NSRect)drawWhiteBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawGrayBezel:border withClip:clip];
}

- (NSRect)drawDarkBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawGrayBezel:border withClip:clip];
}

- (NSRect)drawLightBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawGrayBezel:border withClip:clip];
}

- (NSRect)drawGroove:(NSRect)border withClip:(NSRect)clip {
    return [self drawGrayBezel:border withClip:clip];
}

- (NSRect)drawButton:(NSRect)border withClip:(NSRect)clip {
    return [self drawGrayBezel:border withClip:clip];
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
    // The edge of a button with an edge shows it already.
    if ([view isKindOfClass:[NSButton class]] && [(NSButton*)view isBordered]) return;
    drawFocus(frame);
}

// A field that is typed in. GNUstep shows that with its cursor alone.
- (void)drawBorderType:(NSBorderType)type frame:(NSRect)frame view:(NSView*)view {
    [super drawBorderType:type frame:frame view:view];
    if ([view isKindOfClass:[NSTextField class]] && [(NSTextField*)view currentEditor]) drawFocus(frame);
}

@end

@interface FlatSegmentedCell : NSSegmentedCell
@end

@implementation FlatSegmentedCell

- (void)drawSegment:(NSInteger)segment inFrame:(NSRect)frame withView:(NSView*)view {
    const bool isOn = [self isSelectedForSegment:segment];
    fillRounded(NSInsetRect(frame, 0.5, 0), isOn ? accent() : gray(palette().control), nil);
    NSDictionary* const attributes = textLook([self font], gray(isOn ? 1 : palette().text));
    NSString* const label = [self labelForSegment:segment];
    const NSSize size = [label sizeWithAttributes:attributes];
    [label drawAtPoint:NSMakePoint(std::floor(NSMidX(frame) - size.width / 2),
                                   std::floor(NSMidY(frame) - size.height / 2))
        withAttributes:attributes];
}

// GNUstep notes where a segment is when it draws it, which is done here instead.
- (void)stopTracking:(NSPoint)last at:(NSPoint)stop inView:(NSView*)view mouseIsUp:(BOOL)isUp {
    if (!isUp || !NSPointInRect(stop, [view bounds])) return;
    CGFloat end = 0;
    for (NSInteger i = 0; i < [self segmentCount]; ++i) {
        end += [self widthForSegment:i];
        if (stop.x >= end) continue;
        [self setSelectedSegment:i];
        return;
    }
}

@end

@interface FlatSegmentedControl : NSSegmentedControl
@end

@implementation FlatSegmentedControl

+ (Class)cellClass {
    return [FlatSegmentedCell class];
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

- (void)keyDown:(NSEvent*)event {
    const uint32_t key = platformKeyCode(event);
    const NSInteger next = [self selectedSegment] + (key == KEY_RIGHT ? 1 : -1);
    if (key != KEY_LEFT && key != KEY_RIGHT) {
        [super keyDown:event];
    } else if (next >= 0 && next < [self segmentCount]) {
        [self setSelectedSegment:next];
        [self sendAction:[self action] to:[self target]];
        [[self window] makeFirstResponder:self]; // which a click would leave to the entry
    }
}

- (void)drawRect:(NSRect)dirty {
    [super drawRect:dirty];
    if ([[self window] firstResponder] != self) return;
    drawFocus([self bounds]);
}

@end

@interface NSColorPanel (PickerFocus)
- (void)beginWithPicker; // the keyboard's focus (ColorPanel.mm)
@end

@interface FlatColorWell : NSColorWell
@end

@implementation FlatColorWell

// The color panel comes beside the window, not over it.
- (void)activate:(BOOL)exclusive {
    NSColorPanel* const colors = [NSColorPanel sharedColorPanel];
    placeBeside(colors, [self window]);
    [super activate:exclusive];
    [colors beginWithPicker];
    [colors display];
}

- (BOOL)acceptsFirstResponder {
    return [self isEnabled];
}

- (void)keyDown:(NSEvent*)event {
    NSString* const key = [event characters];
    if (![key isEqualToString:@" "] && ![key isEqualToString:@"\r"]) {
        [super keyDown:event];
        return;
    }
    [self performClick:self];
    showWhole([NSColorPanel sharedColorPanel]);
}

- (void)drawRect:(NSRect)dirty {
    fillRounded([self bounds], gray(palette().field),
                gray([self isActive] ? palette().text : palette().edge));
    if ([[self window] firstResponder] == self) drawFocus([self bounds]);
    fillRounded(NSInsetRect([self bounds], 3, 3), [self color], nil);
}

@end

NSColorWell* makeColorWell() {
    return [[[FlatColorWell alloc] initWithFrame:NSZeroRect] autorelease];
}

void useFlatTheme() {
    if ([[NSUserDefaults standardUserDefaults] stringForKey:@"GSTheme"]) return;
    FlatTheme* const theme = [[[FlatTheme alloc] initWithBundle:[NSBundle mainBundle]] autorelease];
    [GSTheme setTheme:theme];
    // With every change of the defaults, its own periodic reading included, GNUstep would go back to the
    // theme that they name.
    [[NSNotificationCenter defaultCenter] removeObserver:(id)[GSTheme class]
                                                    name:NSUserDefaultsDidChangeNotification
                                                  object:nil];
}

NSColor* platformLinkColor() {
    return [NSColor keyboardFocusIndicatorColor];
}

void platformUseLook(bool isLight) {
    GSTheme* const theme = [GSTheme theme];
    if ([theme isKindOfClass:[FlatTheme class]]) [static_cast<FlatTheme*>(theme) becomeLight:isLight];
}

NSSegmentedControl* makeSegmentedControl() {
    return [[[FlatSegmentedControl alloc] initWithFrame:NSZeroRect] autorelease];
}
