// SPDX-License-Identifier: MIT
#import "PrefController.h"

#import "MainConsole.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

#include <algorithm>
#include <climits>

uint8_t prefWinIsOpen = 0;

static const NSTimeInterval FADE_INTERVAL = 0.03;

// In place of a number that is none when the panel closes.
static const int USUAL_FIGURES = 6;
static const int USUAL_LINES = 99;

// A window among the others of its space.
static const NSUInteger MANAGED = 4;

@implementation MyPrefPanel

// On a low screen what the keyboard goes to is scrolled into sight.
- (BOOL)makeFirstResponder:(NSResponder*)responder {
    const BOOL isMade = [super makeFirstResponder:responder];
    if (isMade && [responder isKindOfClass:[NSControl class]]) {
        NSControl* const control = (NSControl*)responder;
        [control scrollRectToVisible:[control bounds]];
    }
    return isMade;
}

@end

@implementation PrefController

@synthesize mainConsole, appDelegate, prefWindow, controls;

- (void)dealloc {
    [self stopFade];
    [prefWindow setDelegate:nil];
    [prefWindow release];
    [super dealloc];
}

// --- Opening ---

- (void)menuPreferences:(id)sender {
    for (const Setting& setting : SETTINGS) [self showSetting:setting];
    [controls.prefSlider setContinuous:YES];
    [controls.prefFGColor setColor:[mainConsole textColor]];
    [controls.prefBGColor setColor:[mainConsole backgroundColor]];
    [controls.prefSepChar setStringValue:[self separatorShown]];
    [controls.prefSepReason setStringValue:@""];
    [self showSample];
    [self showFont];
    [self showNumbersInSteppers];
    [prefWindow makeKeyAndOrderFront:nil];
    prefWinIsOpen = 1;
}

// Colors and the grouping mark are not shown as numbers.
- (void)showSetting:(const Setting&)setting {
    NSControl* const control = controls.Of(setting);
    const int value = [mainConsole setting:@(setting.key)];
    if (control == controls.prefSciMode)
        [controls.prefSciMode selectItemAtIndex:value];
    else if (setting.kind == Setting::FLAG || setting.kind == Setting::NUMBER)
        [control setIntValue:value];
}

// The grouping mark follows the decimal mark, so that the two are never the same.
- (NSString*)separatorShown {
    const int separator = [mainConsole setting:@"schar"];
    if (separator == ',' || separator == '.') return [controls.prefEuropean intValue] ? @"." : @",";
    const char text[] = {static_cast<char>(separator), '\0'};
    return textFromBytes(text);
}

- (void)showSample {
    NSString* const sample = [mainConsole QuickResult:"123456/10":10];
    NSCharacterSet* const lineEnd = [NSCharacterSet newlineCharacterSet];
    [controls.prefNumPreview setStringValue:[sample stringByTrimmingCharactersInSet:lineEnd]];
}

- (void)showFont {
    NSFont* const font = [mainConsole font];
    const auto points = static_cast<float>([font pointSize]);
    [controls.prefFont setTitle:[NSString stringWithFormat:@"%@ %g", [font displayName], points]];
}

// It may have been changed in the font panel.
- (void)windowDidBecomeKey:(NSNotification*)notification {
    [self showFont];
}

- (void)chooseFont {
    NSFontManager* const manager = [NSFontManager sharedFontManager];
    [manager setAction:@selector(changeConsoleFont:)];
    [manager setSelectedFont:[mainConsole font] isMultiple:NO];
    NSFontPanel* const panel = [manager fontPanel:YES];
    placeBeside(panel, prefWindow);
    showWhole(panel);
}

// --- Steppers ---

- (NSTextField*)fieldOf:(NSStepper*)stepper {
    return stepper == controls.steppers[0] ? controls.prefSigFigs : controls.prefHistSize;
}

- (void)showNumbersInSteppers {
    for (NSStepper* const stepper : controls.steppers)
        [stepper setIntValue:[[self fieldOf:stepper] intValue]];
}

- (void)step:(id)stepper {
    NSTextField* const field = [self fieldOf:stepper];
    [field setIntValue:[stepper intValue]];
    [self prefCallback:field];
}

// --- What the controls say ---

// The number in a field; [NSString intValue] may take a huge one for its last bits.
static int numberIn(NSTextField* field) {
    const long long number = [[field stringValue] longLongValue];
    return static_cast<int>(std::min<long long>(std::max<long long>(number, INT_MIN), INT_MAX));
}

// The first character of the field; none stands for the usual mark, and so do a point and a comma: of the two
// the one that is no decimal mark is shown. One that cannot group digits is refused: the mark stays what it
// was.
- (void)storeSeparator {
    NSString* const text = [controls.prefSepChar stringValue];
    const unichar mark = [text length] > 0 ? [text characterAtIndex:0] : ',';
    const std::string reason = groupingMarkFault(mark);
    NSString* const fault = reason.empty() ? nil : @(reason.c_str());
    if (!fault) [mainConsole setSetting:@"schar" to:mark == '.' ? ',' : mark];
    NSString* const shown = [self separatorShown];
    const bool isDecimal = !fault && [text length] > 0 && (mark == '.' || mark == ',');
    NSString* const news = isDecimal ? [NSString stringWithFormat:@"%C is the decimal mark.", mark] : fault;
    [controls.prefSepReason setStringValue:[text isEqualToString:shown] || !news ? @"" : news];
    if (![text isEqualToString:shown]) [controls.prefSepChar setStringValue:shown];
}

// A control's number or state.
- (int)valueOf:(NSControl*)control {
    if (control == controls.prefSciMode)
        return std::max(static_cast<int>([controls.prefSciMode indexOfSelectedItem]), 0);
    const bool isField = [control isKindOfClass:[NSTextField class]];
    return isField ? numberIn(static_cast<NSTextField*>(control)) : [control intValue];
}

// What its control says, if that is possible: entries run and files are written while the panel is open.
- (void)store:(const char*)key {
    const Setting& setting = *findSetting(key);
    NSControl* const control = controls.Of(setting);
    if (!control || (setting.kind != Setting::FLAG && setting.kind != Setting::NUMBER)) return;
    const int value = [self valueOf:control];
    if (setting.IsPossible(value)) [mainConsole setSetting:@(key) to:value];
}

- (void)showColors {
    [mainConsole showTextColor:[controls.prefFGColor color] background:[controls.prefBGColor color]];
}

- (void)redraw {
    [[[mainConsole window] contentView] setNeedsDisplay:YES];
}

// --- Changes ---

- (void)prefCallback:(id)sender {
    if (sender == controls.prefResetColors) [self resetColors];
    if (sender == controls.prefFont) [self chooseFont];
    if (sender == controls.prefClose) [self closePanel];
    [self showNumbersInSteppers];
    if (sender == controls.prefStatusIcon) [self applyStatusIcon];
    const id ofNumbers[] = {controls.prefSciMode, controls.prefSigFigs, controls.prefSeparator,
                            controls.prefSepChar, controls.prefEuropean};
    if (std::find(std::begin(ofNumbers), std::end(ofNumbers), sender) != std::end(ofNumbers))
        [self applyNumbers];
    if (sender == controls.prefTransBGOnly) [self store:"transback"];
    if (sender == controls.prefSlider) [self store:"trans"];
    if (sender == controls.prefAlwaysTop) [self applyAlwaysTop];
    if (sender == controls.prefFGColor || sender == controls.prefBGColor) [self showColors];
    [self redraw];
}

- (void)resetColors {
    [mainConsole initColorsDefault];
    NSDictionary* const settings = [mainConsole settings];
    [controls.prefFGColor setColor:[settings objectForKey:@"fgcolor"]];
    [controls.prefBGColor setColor:[settings objectForKey:@"bgcolor"]];
    [controls.prefSlider setIntValue:[mainConsole setting:@"trans"]];
    [self showColors];
}

- (void)applyStatusIcon {
    if ([controls.prefStatusIcon intValue])
        [appDelegate createAppStatusItem];
    else
        [appDelegate removeAppStatusItem];
}

// With another separator than a point or a comma the decimal mark waits until the panel closes.
- (void)applyNumbers {
    [self store:"scimode"];
    [self store:"sigfigs"];
    [self store:"separator"];
    [self storeSeparator];
    if ([mainConsole setting:@"schar"] != ',') return;
    [self store:"european"];
    [self showSample];
}

- (void)applyAlwaysTop {
    NSWindow* const window = [mainConsole window];
    const bool isAbove = [controls.prefAlwaysTop intValue] != 0;
    [window setLevel:isAbove ? NSFloatingWindowLevel : NSNormalWindowLevel];
    if (!isAbove) return;
    [window setExcludedFromWindowsMenu:NO];
    [window setCollectionBehavior:MANAGED];
}

// --- Closing ---

static void keepPossible(NSTextField* field, const char* key, int usual) {
    if (!findSetting(key)->IsPossible(numberIn(field))) [field setIntValue:usual];
}

- (void)windowWillClose:(NSNotification*)notification {
    if (!prefWinIsOpen) return;
    [prefWindow makeFirstResponder:nil]; // what is being typed counts
    NSScanner* const scanner = [NSScanner scannerWithString:[controls.prefSigFigs stringValue]];
    if (![scanner scanInteger:NULL]) [controls.prefSigFigs setIntValue:[mainConsole setting:@"sigfigs"]];
    keepPossible(controls.prefSigFigs, "sigfigs", USUAL_FIGURES);
    keepPossible(controls.prefHistSize, "histsz", USUAL_LINES);
    NSMutableDictionary* const settings = [mainConsole settings];
    for (const Setting& setting : SETTINGS) [self store:setting.key];
    [settings setObject:[controls.prefFGColor color] forKey:@"fgcolor"];
    [settings setObject:[controls.prefBGColor color] forKey:@"bgcolor"];
    [self storeSeparator];
    prefWinIsOpen = 0;
    [self showColors];
    [self letGoOfColorPanel];
    [mainConsole saveSettings];
    [mainConsole ProcessResult:nullptr:YES]; // the live result in its new form
}

// Colors that are picked after the closing would be applied but not stored.
- (void)letGoOfColorPanel {
    [controls.prefFGColor deactivate];
    [controls.prefBGColor deactivate];
    if ([NSColorPanel sharedColorPanelExists]) [[NSColorPanel sharedColorPanel] orderOut:nil];
    [[[NSFontManager sharedFontManager] fontPanel:NO] orderOut:nil];
}

- (void)closePanel {
    if (prefWinIsOpen) [prefWindow close];
}

// --- Fading ---

- (void)stopFade {
    [timer invalidate];
    [timer release];
    timer = nil;
}

// A step may go past either end, where GNUstep's opacities wrap around.
- (void)showAlpha:(float)alpha {
    [[mainConsole window] setAlphaValue:std::min(std::max(alpha, 0.0f), 1.0f)];
}

- (void)fadeWindow:(float)target rate:(float)rate {
    [self stopFade];
    if (rate == 0 || static_cast<int>(rate) != 0) {
        [self showAlpha:target];
        return;
    }
    timer = [[NSTimer timerWithTimeInterval:FADE_INTERVAL
                                     target:self
                                   selector:@selector(fadeWin:)
                                   userInfo:@[ @(target), @(rate) ]
                                    repeats:YES] retain];
    for (NSString* const mode in everyMode()) [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
}

- (void)fadeWin:(NSTimer*)tick {
    NSWindow* const window = [mainConsole window];
    const float target = [[[tick userInfo] objectAtIndex:0] floatValue];
    const float rate = [[[tick userInfo] objectAtIndex:1] floatValue];
    const float alpha = static_cast<float>([window alphaValue]);
    const float end = target > 0 ? target : 0;
    const bool isUnfinished = rate < 0 ? alpha > 0 && alpha > end : alpha < end;
    if (isUnfinished) {
        [self showAlpha:alpha + rate];
        return;
    }
    [window setAlphaValue:end];
    if (end == 0 && target < 0)
        platformHide(window);
    else if (end == 0)
        [window orderOut:nil];
    [[window contentView] setNeedsDisplay:YES];
    [self stopFade];
}

@end
