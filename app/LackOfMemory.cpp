// SPDX-License-Identifier: MIT
#include "LackOfMemory.h"

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int STATUS_NO_MEMORY = 3;
constexpr size_t LEAST = size_t{8} << 20; // bytes

[[noreturn]] void endForLackOfMemory() {
    constexpr char MESSAGE[] = "Tallyquill: out of memory\n";
    (void)!write(STDERR_FILENO, MESSAGE, sizeof MESSAGE - 1);
    _exit(STATUS_NO_MEMORY);
}

// Called in the place of std::terminate.
void endForException() {
    const std::exception_ptr uncaught = std::current_exception();
    try {
        if (uncaught) std::rethrow_exception(uncaught);
    } catch (const std::bad_alloc&) {
        endForLackOfMemory();
    } catch (...) { // ends as ever
    }
    abort();
}

} // namespace

void tellOfLackOfMemory() {
    std::set_terminate(endForException);
}

void endWhenMemoryIsLow() {
    // Not malloc, a pair of which with free a compiler may leave out.
    void* const block = mmap(nullptr, LEAST, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANON, -1, 0);
    if (block == MAP_FAILED) endForLackOfMemory();
    munmap(block, LEAST);
}
