// SPDX-License-Identifier: MIT
//
// What the fuzz targets share. A target is a file with the function below, which gets any bytes at all. It is
// linked with libFuzzer, or with replay.cpp, which hands it the files of its corpus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Ends the program when a property does not hold, with what was seen.
inline void require(bool holds, const char* property, std::string_view seen = {}) {
    if (holds) return;
    std::fprintf(stderr, "PROPERTY BROKEN: %s\n%.*s\n", property, static_cast<int>(seen.size()), seen.data());
    std::abort();
}

inline void requireSame(const std::string& one, const std::string& other, const char* property) {
    if (one != other) require(false, property, "--- one\n" + one + "\n--- other\n" + other);
}

// The bytes of a run, taken from the front. Behind the end they are 0 and empty.
class Input {
public:
    Input(const uint8_t* data, size_t size) : rest(reinterpret_cast<const char*>(data), size) {}

    bool IsOver() const { return rest.empty(); }

    uint8_t Byte() {
        if (rest.empty()) return 0;
        const auto byte = static_cast<uint8_t>(rest.front());
        rest.remove_prefix(1);
        return byte;
    }

    uint32_t Word() {
        uint32_t word = 0;
        for (int i = 0; i < 4; i++) word = word << 8U | Byte();
        return word;
    }

    // Up to the next line feed, without it.
    std::string Line() {
        std::string line(rest.substr(0, rest.find('\n')));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
        return line;
    }

    std::string Rest() {
        std::string all(rest);
        rest = {};
        return all;
    }

private:
    std::string_view rest;
};
