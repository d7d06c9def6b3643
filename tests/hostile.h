// SPDX-License-Identifier: MIT
//
// Texts that want to do something to the terminal or to the system, and traps that tell when one did.
#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

// Titles, the clipboard, a color, a question to the terminal, a device's text, an erased line, a bell, a
// backspace, other letters; in 7 bits, in 8 bits, as UTF-8 and as what is none.
inline const std::vector<std::string> SEQUENCES = {"\x1b]0;owned\x07",
                                                   "\x1b]52;c;b3duZWQ=\x07",
                                                   "\x1b[31m",
                                                   "\x1b[6n",
                                                   "\x1bP$q\x1b\\",
                                                   "\u009b31m",
                                                   "\u009d0;owned\u009c",
                                                   "\x9b"
                                                   "6n",
                                                   "\x9d"
                                                   "0;owned\x9c",
                                                   "\x90$q\x9c",
                                                   "\xc0\x9b"
                                                   "31m",
                                                   "\xe2\x9b"
                                                   "31m",
                                                   "\x1b[2K\r",
                                                   "a\x07",
                                                   "a\x08"
                                                   "b",
                                                   "\x7f",
                                                   "\x0e\x9b"
                                                   "2J"};

// What a shell acts on, and the line of a shell into which a careless program would put it, at the '%'.
struct HostileCommand {
    std::string text;
    std::string line;
};
inline const std::vector<HostileCommand> COMMANDS = {{"$(bait)", "echo \"%\""},
                                                     {"`bait`", "echo \"%\""},
                                                     {"; bait", "echo %"},
                                                     {"| bait", "echo %"},
                                                     {"! bait", "%"},
                                                     {"&& bait &", "true % wait"},
                                                     {"'; bait; '", "echo '%'"},
                                                     {"\"; bait; \"", "echo \"%\""},
                                                     {"exec bait", "%"},
                                                     {"(bait)", "%"},
                                                     {"${x:-$(bait)}", "echo \"%\""},
                                                     {"1+1 #\nbait", "echo %"},
                                                     {"http://example.org/", "xdg-open %"},
                                                     {"file:///etc/passwd", "curl '%'"},
                                                     {"convert \"$(bait)\" to km", "echo %"},
                                                     {"-f|bait", "cat %"},
                                                     {"--each=$(bait)", "echo \"%\""}};

// Whether a text has what a terminal acts on, in whichever code it reads: characters U+0000 to U+001F but
// tabs and line feeds, U+007F to U+009F, and the bytes 0x80 to 0x9F that are not part of a character.
inline bool hasControlCharacter(std::string_view text) {
    const auto byteAt = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    for (size_t i = 0; i < text.size();) {
        const unsigned lead = byteAt(i);
        if ((lead < 0x20 && lead != '\n' && lead != '\t') || (lead >= 0x7f && lead <= 0x9f)) return true;
        const size_t length = lead < 0xc2 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : lead < 0xf5 ? 4 : 1;
        size_t following = 1;
        while (following < length && i + following < text.size() && (byteAt(i + following) & 0xc0U) == 0x80)
            ++following;
        if (length == 2 && following == 2 && lead == 0xc2 && byteAt(i + 1) < 0xa0) return true;
        i += following == length ? length : 1; // what follows stands alone
    }
    return false;
}

// Programs in a folder of their own, which is to be all of PATH, that write down that they were started:
// `bait` and what texts are handed to.
class Traps {
public:
    // A program of the name `real` is linked to and none of the traps.
    explicit Traps(const std::string& folder, const std::string& real = "")
        : bin(folder + "/bin"), sprung(folder + "/sprung") {
        std::filesystem::create_directory(bin);
        for (const char* const name : {"bait", "sh", "bash", "curl", "xdg-open", "open", "gopen", "less",
                                       "more", "vi", "nano", "editor", "awk", "stty", "man"}) {
            const std::string path = bin + "/" + name;
            if (std::filesystem::path(real).filename() == name) {
                std::filesystem::create_symlink(real, path);
                continue;
            }
            std::ofstream(path) << "#!/bin/sh\necho \"${0##*/}\" >> " << sprung << "\n";
            std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        }
    }

    // What goes into the environment.
    std::string Path() const { return "PATH=" + bin; }
    const std::string& Bin() const { return bin; }

    // The names of those that were started since the last call, a line each.
    std::string Sprung() const {
        std::ifstream file(sprung);
        const std::string names{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        std::remove(sprung.c_str());
        return names;
    }

private:
    std::string bin, sprung;
};
