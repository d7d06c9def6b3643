// SPDX-License-Identifier: MIT
//
// Runs the tests of the window.
//
//   app_tests [--file test_x.mm [-KEY VALUE]] [GoogleTest's flags]
//
// --file  only the tests of that source file, and it must have some: this is how CTest runs them, one entry
//         for each file.
// -KEY    a user default, as the program itself takes them
//
// Every test lives in a file test_*.mm; the program refuses to run when one does not, because CTest would
// miss it. Listing the tests (--gtest_list_tests) needs no display.
#import "Platform.h"
#include "leaks.h"

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

static const int STATUS_USAGE = 2;
static const int STATUS_EXCEPTION = 70;

static std::string fileOf(const testing::TestInfo& test) {
    const std::string path = test.file();
    return path.substr(path.rfind('/') + 1);
}

// Joins with ':' the names of the tests that live in `file`. False when some test lives where CTest does not
// look.
static bool findTests(const std::string& file, std::string* names) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            const std::string home = fileOf(test);
            if (home.rfind("test_", 0) != 0) {
                fprintf(stderr, "app_tests: %s.%s is in %s, not in a file test_*.mm\n",
                        test.test_suite_name(), test.name(), home.c_str());
                return false;
            }
            if (home == file) *names += std::string(test.test_suite_name()) + "." + test.name() + ":";
        }
    }
    return true;
}

// AppKit would put up a modal panel, which nobody answers here.
static void reportException(NSException* exception) {
    fprintf(stderr, "app_tests: uncaught %s: %s\n", [[exception name] UTF8String],
            [[exception reason] UTF8String]);
    fflush(nullptr);
    _exit(STATUS_EXCEPTION);
}

// What GNUstep makes once, for all of a run, it never gives back: objects of its classes, and the images of
// its theme, which come with the first scroller.
static void startAppKit() {
    const LeaksOfLibraries here;
    platformRegisterDefaults();
    [NSApplication sharedApplication];
    platformAfterLaunch();
    [[[NSScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 100)] release];
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const bool hasDefault = argc == 5 && argv[3][0] == '-';
    const bool hasFile = (argc == 3 || hasDefault) && strcmp(argv[1], "--file") == 0;
    if (argc != 1 && !hasFile) {
        fprintf(stderr, "usage: app_tests [--file test_x.mm [-KEY VALUE]] [GoogleTest's flags]\n");
        return STATUS_USAGE;
    }
    std::string names;
    if (!findTests(hasFile ? argv[2] : "", &names)) return STATUS_USAGE;
    if (hasFile && names.empty()) {
        fprintf(stderr, "app_tests: no test in %s\n", argv[2]);
        return STATUS_USAGE;
    }
    if (hasFile) testing::GTEST_FLAG(filter) = names;
    if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();

    // What GoogleTest would catch never reached the handler below.
    testing::GTEST_FLAG(catch_exceptions) = false;
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    startAppKit();
    NSSetUncaughtExceptionHandler(reportException);
    const int status = RUN_ALL_TESTS();
    [pool release];
    return status;
}
