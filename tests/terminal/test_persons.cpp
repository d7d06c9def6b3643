// SPDX-License-Identifier: MIT
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sstream>
#include <string>

namespace {

std::string outputOf(const char* command) {
    std::string text;
    FILE* const pipe = popen(command, "r");
    std::array<char, 4096> block = {};
    while (pipe != nullptr && std::fgets(block.data(), block.size(), pipe) != nullptr) text += block.data();
    if (pipe != nullptr) pclose(pipe);
    return text;
}

std::string lineOf(const passwd* person) {
    if (person == nullptr) return "nobody";
    std::ostringstream line;
    line << person->pw_name << ':' << person->pw_passwd << ':' << person->pw_uid << ':' << person->pw_gid
         << ':' << person->pw_gecos << ':' << person->pw_dir << ':' << person->pw_shell << '\n';
    return line.str();
}

} // namespace

// The tests are linked with Persons.cpp; getent asks the system.
TEST(Persons, AreThoseThatTheSystemKnows) {
    std::istringstream known(outputOf("getent -s files passwd"));
    std::string line;
    int count = 0;
    setpwent();
    for (; std::getline(known, line); ++count) EXPECT_EQ(lineOf(getpwent()), line + "\n");
    EXPECT_GT(count, 0);
    EXPECT_EQ(lineOf(getpwent()), "nobody");
    endpwent();
}

TEST(Persons, BeginWithTheFirstWithoutBeingAsked) {
    setpwent();
    const std::string first = lineOf(getpwent());
    EXPECT_NE(first, lineOf(getpwent()));
    endpwent();
    EXPECT_EQ(first, lineOf(getpwent()));
    endpwent();
}

TEST(Persons, AreFoundByNameAndByNumber) {
    const std::string root = outputOf("getent -s files passwd root");
    EXPECT_EQ(lineOf(getpwnam("root")), root);
    EXPECT_EQ(lineOf(getpwuid(0)), root);
    EXPECT_EQ(lineOf(getpwnam("no-such-person")), "nobody");
    EXPECT_EQ(lineOf(getpwuid(4242424)), "nobody");
}
