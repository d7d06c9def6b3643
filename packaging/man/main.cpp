// SPDX-License-Identifier: MIT
//
// A program of the build: writes a man page.
//
//   man_page VERSION DAY TEMPLATE FILE
//
// Lines of the template stand for parts of the guide (ManPage.h), "@VERSION@" for the version, and "@DATE@"
// for the day of its release.
#include "ManPage.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

// False, and `place` is missing, when the page has no such place.
bool put(std::string& page, const std::string& place, const std::string& text, std::string& missing) {
    missing = place;
    const size_t at = page.find(place);
    if (at == std::string::npos) return false;
    page.replace(at, place.size(), text);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        fputs("usage: man_page VERSION DAY TEMPLATE FILE\n", stderr);
        return 2;
    }
    std::ifstream in(argv[3]);
    std::string page((std::istreambuf_iterator<char>(in)), {});
    std::string missing;
    if (!put(page, "@VERSION@", argv[1], missing) || !put(page, "@DATE@", argv[2], missing) ||
        !putGuideInto(page, missing)) {
        fprintf(stderr, "man_page: %s: there is no %s\n", argv[3], missing.c_str());
        return 1;
    }
    std::ofstream out(argv[4]);
    out << page << std::flush;
    return out ? 0 : 1;
}
