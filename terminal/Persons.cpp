// SPDX-License-Identifier: MIT
//
// Who has which home folder, for the program that is linked statically: the C library's own way would load
// libraries, which such a program cannot rely on. The system's file is read; persons of a directory service
// have $HOME.
#include <cstdio>
#include <cstring>
#include <memory>
#include <pwd.h>

namespace {

struct Close {
    void operator()(FILE* file) const { std::fclose(file); }
};
std::unique_ptr<FILE, Close> persons; // NOLINT: the interface has this state

} // namespace

extern "C" {

void endpwent() {
    persons.reset();
}

void setpwent() {
    persons.reset(std::fopen("/etc/passwd", "re"));
}

passwd* getpwent() {
    if (!persons) setpwent();
    return persons ? fgetpwent(persons.get()) : nullptr;
}

passwd* getpwnam(const char* name) {
    setpwent();
    passwd* person = getpwent();
    while (person && std::strcmp(person->pw_name, name) != 0) person = getpwent();
    endpwent();
    return person;
}

passwd* getpwuid(uid_t id) {
    setpwent();
    passwd* person = getpwent();
    while (person && person->pw_uid != id) person = getpwent();
    endpwent();
    return person;
}
}
