// SPDX-License-Identifier: MIT
//
// The console: one text view that is the transcript of earlier entries and, behind the last prompt "> ", the
// entry that is being typed. Everything in front of `g_linestart` is read only, everything from there to the
// end of the text is the entry.
//
//   MainConsole.mm         the state, start-up and shut-down
//   MainConsole+View.mm    writing into the transcript, the prompt
//   MainConsole+Runner.mm  entries to the engine, its answers and commands back
//   MainConsole+Keys.mm    what the keys do
//   MainConsole+Edit.mm    copy, cut, paste, undo
//   MainConsole+Search.mm  finding a text while it is typed
//   MainConsole+Files.mm   the settings, the functions file
//   MainConsole+Scripts.mm scripts: saving, replaying, the tutorial
//   MainConsole+Looks.mm   its colors, the shades of what is written, the marked bracket
//   MainConsole+Menus.mm   display base, angle mode, size of the text, the lists of variables and functions
//
// Main thread only. Positions count the characters (UTF-16 units) of the text. "8-bit string" is text in ISO
// Latin-1, of which ASCII is a part, ended by a NUL.
#pragma once

#import <AppKit/AppKit.h>

#include "Keeper.h"
#include "Script.h"
#include "Search.h"
#include "Transcript.h"

#include <chrono>
#include <optional>
#include <string>

@class MainConsole;
@class NameListPanel;
@class PelmoAppDelegate;

// The paths of the functions file and of the settings file; nil before start-up and after shut-down.
extern NSString* funcFilePath;
extern NSString* prefFilePath;

const CGFloat USUAL_TEXT_SIZE = 13; // points

extern MainConsole* interruptedConsole; // that calc.interruptCheck asks; not retained

@interface MainConsole : NSTextView {
    NSMutableDictionary* settings;
    Keeper keeper;             // of the settings file and the functions file
    EntryRecord record;        // what a script is saved from
    EntryRecord clearedRecord; // what it was, and where the entry began, before New cleared the console
    int32_t clearedStart;
    ScriptTurns scripts;
    Search search;
    std::string shownNews;                                    // of the files, in the status line
    std::chrono::steady_clock::time_point copiedAt;           // to the pasteboard, the last time
    NameListPanel* nameList;                                  // the last one that was opened
    std::chrono::steady_clock::time_point lastInterruptCheck; // or the start of the entry
    std::optional<std::chrono::steady_clock::time_point>
        longFrom;                    // when that takes long; not once it is said
    PelmoAppDelegate* myAppDelegate; // not retained
    NSTextField* answerStatus;       // the controls belong to the window
    NSSegmentedControl* ctrlBase;    // 0 binary, 1 decimal, 2 hexadecimal
    NSSegmentedControl* ctrlDegMode; // 0 degrees, 1 radians
    NSMenuItem* menuDispBin;
    NSMenuItem* menuDispDec;
    NSMenuItem* menuDispHex;
    NSPopUpButton* menuVars;
    NSPopUpButton* menuFuncs;
    NSMutableAttributedString* scriptOutput; // of the script that runs, and not shown yet
    BOOL isAtWork;                           // an entry runs, or the command that it handed over
    NSColor* textColor;                      // the person's: what was typed has it
    NSRect bracketMark;                      // where a bracket is marked; empty: none is
    NSUInteger changedFrom;                  // the first character that is not drawn as it is now
    BOOL isUpdating;                         // what changed is taken over by the view
    int32_t prevgis; // the start of the entry and the base at the previous call of setDisplayBase
    int prevbase;
}

// The start-up of the console in `window`: paths, settings, engine, functions file, menus, window; then the
// first-run or the review sheet. `calc` must not have been initialized before.
- (void)initializeConsole:(NSWindow*)window;

// The shut-down: stores the window's frame, writes the settings and the functions file, releases the paths
// and of the settings.
- (void)terminateConsole;

- (void)initWindowProperties; // the smallest size, 400 x 150 points
- (void)initWindowLocation;   // the frame from the settings x, y, cx, cy

// Makes the text at least as high as the part of it that is seen, and no higher than it needs to be then.
- (void)fitToScrollView;

// The window's frame into the settings x, y, cx, cy. Nothing while it is hidden or minimized: its frame is
// then not where it will be.
- (void)storeFrame;

// A modal alert with the button "OK".
- (void)simpleAlert:(NSString*)title:(NSString*)detail;

// A sheet on the window with one button or, with `no`, two. The selector, which may be null, is that of a
// sheet's end.
- (void)showSheet:(NSString*)message yes:(NSString*)yes no:(NSString*)no didEnd:(SEL)selector;

// For what has just come before the window: the keys of the next 0.7 seconds are no answer to it.
- (void)ignoreKeysSoon;

// An entry begins: key presses that wait are taken for interruptions from now on, though not at once.
- (void)watchInterrupts;
- (BOOL)isInterrupted;

// The ends of the sheets of start-up; return code 1 is the default button.
- (void)tutorialSheetDidEnd:(NSWindow*)sheet returnCode:(NSInteger)code contextInfo:(void*)context;
- (void)reviewSheetDidEnd:(NSWindow*)sheet returnCode:(NSInteger)code contextInfo:(void*)context;

@property(nonatomic, assign) PelmoAppDelegate* myAppDelegate;
@property(nonatomic, assign) NSTextField* answerStatus;
@property(nonatomic, assign) NSSegmentedControl* ctrlBase;
@property(nonatomic, assign) NSSegmentedControl* ctrlDegMode;
@property(nonatomic, assign) NSMenuItem* menuDispBin;
@property(nonatomic, assign) NSMenuItem* menuDispDec;
@property(nonatomic, assign) NSMenuItem* menuDispHex;
@property(nonatomic, assign) NSPopUpButton* menuVars;
@property(nonatomic, assign) NSPopUpButton* menuFuncs;
@end

enum class TextKind { Typed, Output, Error };

@interface MainConsole (View)
- (void)gotoEnd;                          // an empty selection at the end, scrolled into view
- (void)replaceSelection:(NSString*)text; // in place of the selection
- (BOOL)isClear;
- (void)clearConsole;                    // the whole text becomes "> "
- (void)clearPrompt;                     // empties the entry
- (void)replacePrompt:(const char*)text; // the entry becomes the 8-bit string
- (void)insertPrompt;                    // a line feed and a new prompt at the end

// Appends a line feed, the 8-bit string and a new prompt: how an answer is written.
- (void)insertWithNewPrompt:(const char*)text;

// Appends the 8-bit string; the entry's start stays where it was.
- (void)insertWithoutPrompt:(const char*)text;

// Output of a script that runs, in Latin-1. To lay out each of thousands of lines by itself takes long: they
// are shown together.
- (void)addScriptOutput:(const std::string&)text as:(TextKind)kind;
- (void)showScriptOutput;

// A script's output does not stand behind the prompt that "clear" or "gospel" left: it begins a line of its
// own.
- (void)leaveEmptyPrompt;

// Inserts the 8-bit string `backCount` characters in front of the entry, 3 being in front of "\n> ", and
// moves the entry's start along.
- (void)insertPrePrompt:(const char*)text:(int32_t)backCount;
- (void)insertTextPrePrompt:(NSString*)text:(int32_t)backCount; // the same with any text

- (Transcript)transcript; // what the view holds now
- (BOOL)getPromptText;    // see Transcript::fetchPrompt()

- (NSString*)typedEntry; // the entry in one line

- (void)recallHistory:(int)index; // the line of the history becomes the entry, see CHistory::GetHistoryStr
- (void)recallHistory;            // that of the walk's position

// Whether something waits that interrupts: a press of Escape, Command-q or Control-c, or the close of the
// window, which comes afterwards. Any other key press that waits is consumed. Returns 1 to interrupt, 0 to go
// on.
- (int)checkInterruptEvent;

// The result of the entry as it is typed, in the status line. A line feed at its end is left out.
- (void)updateStatusbar:(const char*)text;

// What the status line says in gray while it is empty, until the next updateStatusbar:.
- (void)showHint:(NSString*)hint;
@end

@interface MainConsole (Runner)
// Sends a line to the engine with the settings of the console and shows what comes back. A null `line` stands
// for the entry at the prompt. `quick` is the live preview: only the status line changes. Nothing happens
// while an entry is at work: timers and windows may send this while it looks for interruptions.
- (void)ProcessResult:(const char*)line:(BOOL)quick;

// An entry is being evaluated or its command, such as a pause, carried out.
- (BOOL)isAtWork;

// The settings that the engine works with, into it.
- (void)copySettingsToEngine;

// The value of the line in base 2, 10 or 16 with a line feed behind it, or "error". Nothing is stored.
- (NSString*)QuickResult:(const char*)line:(int)base;

// Carries out a command that the engine handed over (status 2): clear, exit, pause, echorep, echo, convert,
// gospel.
- (void)RunGUICommand:(const char*)command;

// What the service at the default QueryServiceURL answers to a query such as "convert+5+miles+to+km", or nil.
// Waits for it, QUERY_SECONDS at most, or as the default QuerySeconds (1 to 60) says; Escape ends the wait
// and sets scriptInterrupted.
- (NSString*)QueryWAConvert:(const char*)query;
@end

@interface MainConsole (Edit)
- (void)redo:(id)sender; // what undo took back from the entry

// As other programs cut and undo: also inside the entry, and also when the entry is empty, so that it brings
// back what Escape, Up, Down or New replaced.
- (void)cutSelection:(id)sender;
- (void)undoChange:(id)sender;
@end

@interface MainConsole (Search)
- (void)beginSearch:(Search::In)where; // the status line says what is looked for
- (BOOL)searchTakes:(NSEvent*)event;   // a key press, when a search is on and the key is one of its own
- (void)endSearch;                     // what was found stays
@end

@interface MainConsole (Files)
- (NSMutableDictionary*)settings;
- (NSString*)appSupportFolder; // the folder of our files, made when it is missing
- (void)initSettingsDefault;   // new settings, all at their defaults
- (void)initColorsDefault;     // the default font, colors and transparency in the settings
- (void)saveSettings;          // writes them to prefFilePath
- (void)loadSettings;          // reads them and shows the console with their colors and font
// What cannot be written is said once in the status line, with the reason, and is written with the next
// change or at the end of the program.
- (void)saveFuncFile; // functions, variables, units and history to funcFilePath
- (void)loadFuncFile;

// The last lines of the transcript are kept in a file of their own, unless the person does not want that.
- (void)keepTranscript;      // with what is written next
- (void)bringBackTranscript; // in front of a new prompt

// The integer under the key. A key that is missing reads as its default where zero would be no value.
- (int)setting:(NSString*)key;
- (void)setSetting:(NSString*)key to:(int)value;

// Before and after a full entry, and now and then while one runs: what an entry changed is in the files a
// second later, also when the program is killed after that.
- (void)entryWillRun;
- (void)entryDidRun;
- (void)writeDueFiles;
- (void)writeAllFiles;   // at once, without asking the window; while an entry runs, what was there before it
- (void)finishWriting;   // returns when what is being written is in the files
- (void)reportUnwritten; // what could not be written, on standard error
@end

@interface MainConsole (Looks)
// The console and what stands around it in these colors; nil changes nothing.
- (void)showTextColor:(NSColor*)text background:(NSColor*)back;

// Text as it looks, and how a part of the text is to look. It keeps its kind when the colors change; copies
// are plain text.
- (NSAttributedString*)text:(NSString*)text as:(TextKind)kind;
- (void)show:(NSRange)range as:(TextKind)kind;

- (void)markBracket; // the one that belongs to that at the cursor, which has moved
@end

@interface MainConsole (Scripts)
- (void)newDocument:(id)sender; // clears the console
- (void)saveDocument:(id)sender;
- (void)saveDocumentAs:(id)sender;
- (void)openDocument:(id)sender;
- (void)tutorial:(id)sender;

// The text of a script that repeats what was typed: a header, the entries that ran since the console was
// cleared, and what stands at the prompt.
- (NSString*)scriptText;

// Writes that text to the file, in UTF-8. Returns NO when it is not there.
- (BOOL)writeScript:(NSString*)path;
- (BOOL)isReplaying; // a script is being replayed

// Replays a script up to its end, an interruption or an "exit". A script that comes while an entry or another
// script runs waits for the end of that. Returns NO when the file cannot be opened.
- (BOOL)loadFile:(NSString*)path;

- (void)forgetWaitingScripts; // the window closes
@end

@interface MainConsole (Menus)
- (void)menuChangeBase:(id)sender;    // tag 0 binary, 1 decimal, 2 hexadecimal
- (void)clickedChangeBase:(id)sender; // segments likewise; with Shift only this once
- (void)setDisplayBase:(int)base:(BOOL)oneOff;
- (void)clickedChangeMode:(id)sender; // segment 0 degrees, 1 radians
- (void)setDegreeMode:(int)degrees;   // 1 degrees, 0 radians
- (void)makeTextBigger:(id)sender;    // from 6 to 96 points; the settings keep it
- (void)makeTextSmaller:(id)sender;
- (void)resetTextSize:(id)sender;
- (void)populateVarsMenu;
- (void)clickedVarsMenu:(id)sender;
- (void)populateFuncMenu;
- (void)clickedFuncMenu:(id)sender;

// Lists to look through, of which a name can be taken.
- (void)showFunctions:(id)sender;
- (void)showUnits:(id)sender;
- (void)typeName:(NSString*)name; // in place of the selection, or at the end
@end

KeyPress keyPress(NSEvent* event);

// Text from an 8-bit string, as it may be shown (ShownText.h).
NSString* textFromBytes(const char* bytes);

// The text as bytes; what has no place in the encoding is a question mark.
std::string bytesOf(NSString* text, NSStringEncoding encoding = NSUTF8StringEncoding);
