// SPDX-License-Identifier: MIT
//
// Hands the files of a folder to a fuzz target, one by one, without libFuzzer.
#include "fuzz.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int count, char** arguments) {
    std::vector<std::string> names;
    for (int i = 1; i < count; i++) {
        for (const auto& file : std::filesystem::directory_iterator(arguments[i]))
            names.push_back(file.path());
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        std::printf("%s\n", name.c_str());
        std::fflush(stdout); // it may be the last one
        std::ifstream file(name, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    return names.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
