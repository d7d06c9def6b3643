// SPDX-License-Identifier: MIT
//
// The guide, in a window of its own.
#pragma once

#import <AppKit/AppKit.h>

// Shows the guide that belongs to the application. It is made when it is asked for first. False when the
// application has none.
bool showGuideWindow();

// A text in the guide's notation, a small part of Markdown, laid out: headings ("#" to "###"), tables, fenced
// code, items ("- "), `code` and **strong**; a link shows its text, an image nothing. Anything else stands as
// it is.
NSAttributedString* guideText(NSString* markdown);
