// SPDX-License-Identifier: MIT
//
// A list of terms whose names are looked up: the variables, the lines of the user's units. It finds a name without a
// walk, and takes changes back at the cost of the changes.
#ifndef TALLYQUILL_NAMEDTERMS_H
#define TALLYQUILL_NAMEDTERMS_H

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

    // The list stays its owner's, who may change it in other ways too, except between BeginChanges and its end. What
    // is put in or taken out there is noticed by the list's numbers, and the index is then built anew.
    // `work` counts the terms that were put into the index or taken out of it.
    NamedTerms(Deq& terms, NameOf name, uint64_t& work) : list(terms), nameOf(name), visited(work) {}

    // The first term of exactly this name, or null.
    node* Find(std::string_view name);

    // Append a term, which the list then owns; give a term a value; remove and free a term, or all.
    node* Append(node* term);
    void SetValue(node* term, const qfloat value);
    void Delete(node* term);
    void DeleteAll();

    // From BeginChanges on, UndoChanges takes back what the four above did, so that the same terms stand at the same
    // places with the same values; EndChanges keeps it. One of them ends what BeginChanges began.
    void BeginChanges() { isRecording = true; }
    void UndoChanges();
    void EndChanges();

private:
    enum class Kind { Added, Removed, Valued, Cleared };

    struct Change {
        Kind kind;
        node* term;
        std::unique_ptr<node> removed; // the same term while it is in no list
        node* next;                    // where it stood
        std::unique_ptr<qfloat[]> value;
        std::unique_ptr<Deq> all; // what stood in the list before it was emptied
    };

    bool IsIndexed() const { return insertions == list.insertions && count == list.count; }
    void Follow();
    void Insert(node* term, node* before);
    std::unique_ptr<node> Take(node* term);

    Deq& list;
    NameOf nameOf;
    uint64_t& visited;
    std::vector<Change> changes;
    bool isRecording = false;

    // The terms by name, as they were when the list had so many insertions and nodes.
    std::unordered_map<std::string_view, node*> byName; // of two terms of one name the first
    bool hasNamesakes = false;                          // there were such two
    uint64_t insertions = 0;
    int32_t count = 0;
};

#endif
