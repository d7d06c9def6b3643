// SPDX-License-Identifier: MIT
//
// The window's question to the online query service (Query.h).
#pragma once

#import <Foundation/Foundation.h>

@class MainConsole;

// What the service of the default QueryServiceURL answers to a query whose blanks are '+'; nil without an
// answer. The wait takes 20 seconds at most, unless the default QuerySeconds (1 to 60) says otherwise. Escape
// ends it and sets scriptInterrupted.
NSString* askQueryService(NSString* query, MainConsole* console);
