// SPDX-License-Identifier: MIT
#import "WebQuery.h"

#import "MainConsole.h"

#include "Query.h"

static std::string utf8(NSString* text) {
    const char* const bytes = [text UTF8String];
    return bytes ? bytes : "";
}

static int secondsToWait() {
    const NSInteger seconds = [[NSUserDefaults standardUserDefaults] integerForKey:@"QuerySeconds"];
    return seconds >= 1 && seconds <= 60 ? static_cast<int>(seconds) : QUERY_SECONDS;
}

NSString* askQueryService(NSString* query, MainConsole* console) {
    NSString* const service = [[NSUserDefaults standardUserDefaults] stringForKey:@"QueryServiceURL"];
    const std::string answer = askService(utf8(service), utf8(query), secondsToWait(), [console] {
        if (![console checkInterruptEvent]) return false;
        scriptInterrupted = true;
        return true;
    });
    return answer.empty() ? nil : [NSString stringWithUTF8String:answer.c_str()];
}
