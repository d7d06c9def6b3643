// SPDX-License-Identifier: MIT
#import "WebQuery.h"

#import "MainConsole.h"

#include <atomic>
#include <cctype>
#include <cstring>
#include <unistd.h>

// One request, shared by the thread that makes it and by the console that waits.
@interface PageRequest : NSObject {
    NSURL* url;
    NSData* data; // written before isDone
    std::atomic<bool> isDone;
}
- (id)initWithURL:(NSURL*)address;
- (void)start;
- (bool)isDone;
- (NSData*)data;
@end

@implementation PageRequest

- (id)initWithURL:(NSURL*)address {
    self = [super init];
    if (self) {
        url = [address retain];
        isDone = false;
    }
    return self;
}

- (void)dealloc {
    [url release];
    [data release];
    [super dealloc];
}

- (void)start {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    NSURLRequest* const request = [NSURLRequest requestWithURL:url];
    data = [[NSURLConnection sendSynchronousRequest:request returningResponse:NULL error:NULL] retain];
    isDone = true;
    [pool release];
}

- (bool)isDone {
    return isDone;
}

- (NSData*)data {
    return data;
}

@end

static bool isPlain(unsigned char c) {
    return c < 0x80 && (isalnum(c) || strchr("-._~+", c));
}

NSString* queryAddress(NSString* service, NSString* query) {
    while ([service hasSuffix:@"/"]) service = [service substringToIndex:[service length] - 1];
    NSMutableString* const address = [NSMutableString stringWithFormat:@"%@/input/?i=", service];
    for (const char* c = [query UTF8String]; c && *c; c++) {
        const unsigned char code = static_cast<unsigned char>(*c);
        [address appendFormat:isPlain(code) ? @"%c" : @"%%%02X", code];
    }
    return address;
}

static NSTimeInterval secondsToWait() {
    const NSInteger seconds = [[NSUserDefaults standardUserDefaults] integerForKey:@"QuerySeconds"];
    return static_cast<NSTimeInterval>(seconds >= 1 && seconds <= 60 ? seconds : QUERY_SECONDS);
}

NSData* fetchPage(NSString* address, MainConsole* console) {
    NSURL* const url = [NSURL URLWithString:address];
    NSString* const scheme = [[url scheme] lowercaseString];
    if (![scheme isEqualToString:@"http"] && ![scheme isEqualToString:@"https"]) return nil;
    PageRequest* const request = [[[PageRequest alloc] initWithURL:url] autorelease];
    [NSThread detachNewThreadSelector:@selector(start) toTarget:request withObject:nil];
    NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:secondsToWait()];
    while (![request isDone]) {
        // A request that is given up runs to its own time-out; nobody looks at what it brings.
        if ([end timeIntervalSinceNow] < 0) return nil;
        if ([console checkInterruptEvent]) {
            scriptInterrupted = true;
            return nil;
        }
        usleep(5000);
    }
    return [request data];
}

NSString* answerInPage(NSData* page) {
    NSString* const text = [[[NSString alloc] initWithData:page encoding:NSUTF8StringEncoding] autorelease];
    const NSRange section = text ? [text rangeOfString:@"pod_0200"] : NSMakeRange(NSNotFound, 0);
    if (section.location == NSNotFound) return nil;
    const NSRange rest = NSMakeRange(NSMaxRange(section), [text length] - NSMaxRange(section));
    const NSRange title = [text rangeOfString:@"title" options:0 range:rest];
    if (title.location == NSNotFound) return nil;
    NSArray* const pieces = [[text substringFromIndex:title.location] componentsSeparatedByString:@"\""];
    if ([pieces count] < 2) return nil;
    NSCharacterSet* const lineEnds = [NSCharacterSet newlineCharacterSet];
    NSArray* const lines = [[pieces objectAtIndex:1] componentsSeparatedByCharactersInSet:lineEnds];
    NSString* const answer = [lines componentsJoinedByString:@" "];
    return [answer length] > 0 ? answer : nil;
}
