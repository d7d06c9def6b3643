// SPDX-License-Identifier: MIT
//
// The preferences panel's controller. Most changes act at once; all are stored and saved when the panel
// closes. It also fades the main window.
#pragma once

#import "Controls.h"

#include "Settings.h"

#include <cstdint>
#include <iterator>

@class MainConsole;
@class PelmoAppDelegate;

extern uint8_t prefWinIsOpen; // 1 while the panel is open

@interface MyPrefPanel : EscapePanel
@end

// The controls, made by Interface (InterfacePanel.mm). They belong to the panel.
struct PrefControls {
    NSPopUpButton* prefSciMode;
    NSTextField* prefSigFigs;
    NSColorWell* prefFGColor;
    NSColorWell* prefBGColor;
    NSButton* prefSnapTo;
    NSSlider* prefSlider;
    NSButton* prefTransBGOnly;
    NSButton* prefSeparator;
    NSTextField* prefSepChar;
    NSTextField* prefSepReason; // why a grouping mark was refused
    NSTextField* prefHistSize;
    NSButton* prefTwosComp;
    NSButton* prefEuropean;
    NSButton* prefStatusIcon;
    NSButton* prefAlwaysTop;
    NSButton* prefResetColors;
    NSTextField* prefNumPreview;
    NSButton* prefFont; // opens the font panel
    NSButton* prefClose;
    NSStepper* steppers[2];                     // beside prefSigFigs and prefHistSize
    NSControl* ofSettings[std::size(SETTINGS)]; // those of them that edit one, in the order of the table

    // The control of a row of SETTINGS, or nil.
    NSControl*& Of(const Setting& setting) { return ofSettings[&setting - SETTINGS]; }
};

@interface PrefController : NSObject {
    PrefControls controls;
    MyPrefPanel* prefWindow;
    MainConsole* mainConsole;      // not retained
    PelmoAppDelegate* appDelegate; // not retained
    NSTimer* timer;                // of the running fade, or nil
}
@property(nonatomic, assign) MainConsole* mainConsole;
@property(nonatomic, assign) PelmoAppDelegate* appDelegate;
@property(nonatomic, retain) MyPrefPanel* prefWindow;
@property(nonatomic, assign) PrefControls controls; // those of the panel

- (void)menuPreferences:(id)sender; // shows the panel with the settings as they are
- (void)prefCallback:(id)sender;    // a control has changed
- (void)step:(id)stepper;           // the number beside it goes up or down
- (void)windowWillClose:(NSNotification*)notification;
- (void)closePanel; // closes the panel when it is open

// Changes the window's opacity to `target` in steps of `rate` every 0.03 seconds; at once when the rate is 0
// or its magnitude 1 or more. A target of 0 then takes the window away, a negative one hides the application.
// A new fade ends the one that runs.
- (void)fadeWindow:(float)target rate:(float)rate;
- (void)fadeWin:(NSTimer*)tick; // one step
@end
