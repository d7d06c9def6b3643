// SPDX-License-Identifier: MIT
//
// The online query service: its address, its page, and the answer in the page.
#ifndef TALLYQUILL_WEBQUERY_H
#define TALLYQUILL_WEBQUERY_H

#import <Foundation/Foundation.h>

@class MainConsole;

// How long the window waits for the service, unless the default QuerySeconds (1 to 60) says otherwise.
constexpr int QUERY_SECONDS = 20;

// The address of the service's page for a query whose blanks are '+'. What a URL does not allow is percent-encoded.
NSString* queryAddress(NSString* service, NSString* query);

// The page at an http or https address, or nil: no address, no connection, no answer in time, or Escape. The
// request runs in a thread of its own, because looking up a name can block for longer than any time-out says.
NSData* fetchPage(NSString* address, MainConsole* console);

// The value of the first title attribute behind "pod_0200", in one line; nil when there is none, when it is empty,
// or when the page is not UTF-8.
NSString* answerInPage(NSData* page);

#endif
