// SPDX-License-Identifier: MIT
#include "memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> hasRunOut = false;

} // namespace

void runOutOfMemory(bool isOut) {
    hasRunOut = isOut;
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return hasRunOut ? nullptr : std::malloc(size != 0 ? size : 1);
}
void* operator new(size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, size_t) noexcept {
    std::free(block);
}
