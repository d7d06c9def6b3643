// SPDX-License-Identifier: MIT
//
// A list of terms whose names are looked up: the variables, the lines of the user's units. It finds a name
// without a walk.
#pragma once

#include "Undo.h"
#include "deq.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

class NamedTerms {
public:
    // The name in a term's text; an empty one is not found.
    using NameOf = std::string_view (*)(std::string_view text);

    // The list stays its owner's, who may change it in other ways too, but not while an entry runs. What is
    // put in or taken out there is noticed by the list's numbers, and the index is then built anew. `work`
    // counts the terms that were put into the index or taken out of it.
    NamedTerms(Deq& terms, NameOf name, Undo& changes, uint64_t& work)
        : list(terms), nameOf(name), undo(changes), visited(work) {}

    node* First() const { return list.first; }

    // The first term of exactly this name, or null.
    node* Find(std::string_view name);

    // What a name was found to stand for in a list.
    struct Bond {
        std::shared_ptr<const char> era; // of that list
        node* term = nullptr;
    };

    // The same for one who asks for one name again and again and keeps the bond: there is no search while all
    // names stand for what they stood for.
    node* Find(std::string_view name, Bond& bond);

    // Append a term, which the list then owns; give a term a value; remove and free a term, or all. Taken
    // back, the same terms stand at the same places with the same values. All terms are removed in one step
    // however many they are; the look-ups that follow free them, a few each.
    node* Append(node* term);
    void SetValue(node* term, const qfloat value);
    void Delete(node* term);
    void DeleteAll();

    // The list has had terms that came in otherwise than by Append. Whoever has looked at them sets it to
    // false.
    bool isForeign = false;

private:
    // The terms by name.
    struct Index {
        Index() { byName.max_load_factor(0.4F); } // names that share a place are far apart in memory

        std::unordered_map<std::string_view, node*> byName; // of two terms of one name the first
        bool hasNamesakes = false;                          // there were such two

        // The list had so many insertions and nodes then.
        uint64_t insertions = 0;
        int32_t count = 0;
    };

    struct Removed {
        Deq terms;
        Index index;
    };

    bool IsIndexed() const { return index.insertions == list.insertions && index.count == list.count; }
    void Follow();
    void Insert(node* term, node* before);
    node* Take(node* term);
    void FreeSome();

    Deq& list;
    NameOf nameOf;
    Undo& undo;
    uint64_t& visited;
    Index index;
    std::shared_ptr<const char> era; // ends with each change of names; null while none has a bond
    std::vector<std::shared_ptr<Removed>> removed; // by DeleteAll
};
