// SPDX-License-Identifier: MIT
//
// The guide, in a window of its own.
#pragma once

#import <AppKit/AppKit.h>

// The guide that belongs to the application, not shown yet; nil when the application has none. A panel,
// because it is no main window: it does not keep the calculator running once that is closed.
NSPanel* buildGuideWindow();

// A text in the guide's notation, a small part of Markdown, laid out: headings ("#" to "###"), tables, fenced
// code, items ("- "), `code` and **strong**; a link shows its text, an image nothing. Anything else stands as
// it is.
NSAttributedString* guideText(NSString* markdown);
