// SPDX-License-Identifier: MIT
//
// The end for lack of memory; each in a process of its own.
#include "LackOfMemory.h"

#include <exception>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <sys/resource.h>

namespace {

const char* const MESSAGE = "^Tallyquill: out of memory\n$";

// Nobody catches it, as in the window's program.
template <typename Exception> void end(const Exception& exception) noexcept {
    tellOfLackOfMemory();
    std::rethrow_exception(std::make_exception_ptr(exception));
}

TEST(LackOfMemoryDeathTest, IsToldWhenAnAllocationFails) {
    EXPECT_EXIT(end(std::bad_alloc()), testing::ExitedWithCode(3), MESSAGE);
}

TEST(LackOfMemoryDeathTest, IsNotToldForAnotherException) {
    EXPECT_EXIT(end(std::runtime_error("other")), testing::KilledBySignal(SIGABRT), "");
}

TEST(LackOfMemoryDeathTest, IsToldWhenLittleIsLeft) {
    const auto endWithout = [] {
        const rlimit none = {0, 0}; // nothing beyond what the process has
        setrlimit(RLIMIT_AS, &none);
        endWhenMemoryIsLow();
    };
    EXPECT_EXIT(endWithout(), testing::ExitedWithCode(3), MESSAGE);
}

} // namespace
