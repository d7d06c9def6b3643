// SPDX-License-Identifier: MIT
//
// What can be named in an entry, a line each, for the lists that front ends show.
#pragma once

#include <string>
#include <vector>

struct NameRow {
    std::string name;  // as it is typed; with "(" behind it for a function
    std::string shown; // "sin(x)", "hyp(a,b)=sqrt(a^2+b^2)", "mi"
    std::string text;  // what it is; empty for a person's function, whose definition says it
};

// A person's functions in the order of their definition, then the predefined ones that were not deleted.
std::vector<NameRow> functionRows();

// The units, each with what it is defined by; its factor with ten digits, which are all that a person reads.
std::vector<NameRow> unitRows();
