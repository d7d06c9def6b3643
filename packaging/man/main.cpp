// SPDX-License-Identifier: MIT
//
// A program of the build: writes a man page.
//
//   man_page VERSION TEMPLATE FILE
//
// Lines of the template stand for parts of the guide (ManPage.h), and "@VERSION@" for the version.
#include "ManPage.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv) {
    if (argc != 4) {
        fputs("usage: man_page VERSION TEMPLATE FILE\n", stderr);
        return 2;
    }
    std::ifstream in(argv[2]);
    std::string page((std::istreambuf_iterator<char>(in)), {});
    const std::string place = "@VERSION@";
    const size_t version = page.find(place);
    std::string missing = place;
    if (version == std::string::npos ||
        !putGuideInto(page.replace(version, place.size(), argv[1]), missing)) {
        fprintf(stderr, "man_page: %s: there is no %s\n", argv[2], missing.c_str());
        return 1;
    }
    std::ofstream out(argv[3]);
    out << page << std::flush;
    return out ? 0 : 1;
}
