// SPDX-License-Identifier: MIT
//
// The program with an operator new of its own, around terminal/main.cpp. TALLYQUILL_TEST_MEMORY says which
// allocation there is no memory for, counted from the start of main: "17" the one behind 17 others, "17+" all
// behind 17. "count" tells the number of all at the end, on standard error.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

#define main programMain
#include "main.cpp"
#undef main

namespace {

std::atomic<bool> isCounting{false};
std::atomic<size_t> count{0};
size_t failing = SIZE_MAX;
bool staysOut = false;

bool isOut() {
    if (!isCounting) return false;
    const size_t number = count++;
    return number == failing || (staysOut && number > failing);
}

} // namespace

void* operator new(size_t size) {
    void* const block = isOut() ? nullptr : std::malloc(size != 0 ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}
void* operator new[](size_t size) {
    return operator new(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return isOut() ? nullptr : std::malloc(size != 0 ? size : 1);
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, size_t) noexcept {
    std::free(block);
}

int main(int argc, char** argv) {
    const char* const wanted = std::getenv("TALLYQUILL_TEST_MEMORY");
    const std::string_view text = wanted ? wanted : "";
    if (text != "count" && !text.empty()) failing = std::strtoul(wanted, nullptr, 10);
    staysOut = !text.empty() && text.back() == '+';
    isCounting = true;
    const int status = programMain(argc, argv);
    isCounting = false;
    if (text == "count") std::fprintf(stderr, "%zu\n", count.load());
    return status;
}
