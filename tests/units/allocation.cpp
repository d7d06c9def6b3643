// SPDX-License-Identifier: MIT
#include "allocation.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

size_t liveBlocks = 0;
size_t liveBytes = 0;
size_t bytesAtReset = 0;
size_t peakBytes = 0;
long remaining = -1;

void* allocate(size_t size) {
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) return nullptr;
    ++liveBlocks;
    liveBytes += malloc_usable_size(block);
    peakBytes = std::max(peakBytes, liveBytes);
    return block;
}

void* allocateOrFail(size_t size) {
    if (remaining == 0) return nullptr;
    if (remaining > 0) --remaining;
    return allocate(size);
}

void* allocateOrThrow(size_t size) {
    void* block = allocateOrFail(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void release(void* block) {
    if (block == nullptr) return;
    --liveBlocks;
    liveBytes -= malloc_usable_size(block);
    std::free(block);
}

} // namespace

size_t allocation::live() {
    return liveBlocks;
}

size_t allocation::peak() {
    return peakBytes - bytesAtReset;
}

void allocation::resetPeak() {
    bytesAtReset = peakBytes = liveBytes;
}

void allocation::failAfter(long count) {
    remaining = count;
}

void* operator new(size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](size_t size) {
    return allocateOrThrow(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return allocateOrFail(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocateOrFail(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, size_t) noexcept {
    release(block);
}
void operator delete[](void* block, size_t) noexcept {
    release(block);
}
