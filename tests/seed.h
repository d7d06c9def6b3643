// SPDX-License-Identifier: MIT
//
// The seed of all random tests. It is named with each of their failures, and given back it draws the same
// again.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

// The environment variable TALLYQUILL_TEST_SEED, else a fixed number.
inline uint64_t testSeed() {
    const char* const chosen = std::getenv("TALLYQUILL_TEST_SEED");
    return chosen != nullptr && *chosen != '\0' ? std::strtoull(chosen, nullptr, 0) : 20240229;
}

// How to have the same seed again, for SCOPED_TRACE.
inline std::string seedText() {
    return "TALLYQUILL_TEST_SEED=" + std::to_string(testSeed());
}

// A generator that begins at the seed.
inline std::mt19937 seededRandom() {
    return std::mt19937(static_cast<std::mt19937::result_type>(testSeed()));
}
