// SPDX-License-Identifier: MIT
//
// In which order definitions are read that use each other.
#ifndef TALLYQUILL_DEFINITIONORDER_H
#define TALLYQUILL_DEFINITIONORDER_H

#include <cstddef>
#include <string>
#include <vector>

// A name and the text behind its '='.
struct NamedText {
    std::string name;
    std::string text;
};

// The positions of the definitions, each behind those of the names in its text. A word of the text stands for the name
// that it is, or for the one without an 's' at its end. Otherwise, and of definitions that use each other in a circle,
// the order stays. The work grows with the length of the texts, the memory with the words in them that are names.
std::vector<size_t> OrderOfDefinitions(const std::vector<NamedText>& definitions);

#endif
