// SPDX-License-Identifier: MIT
#include "NamedTerms.h"

#include <utility>

static std::string_view textOf(const node* term) {
    return term->text ? term->text : std::string_view();
}

// Insertions only grow, so that they and the number of nodes tell every change of the list.
node* NamedTerms::Find(std::string_view name) {
    if (!IsIndexed()) {
        byName.clear();
        hasNamesakes = false;
        for (node* term = list.first; term; term = term->next) {
            visited++;
            if (!byName.emplace(nameOf(textOf(term)), term).second) hasNamesakes = true;
        }
        Follow();
    }
    if (name.empty()) return nullptr;
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

void NamedTerms::Follow() {
    insertions = list.insertions;
    count = list.count;
}

// Without Follow the index is built anew: in front of others the term may be the first of its name.
void NamedTerms::Insert(node* term, node* before) {
    const bool isIndexed = IsIndexed();
    list.Insert(term, before);
    if (!isIndexed) return;
    visited++;
    const bool isFirst = byName.emplace(nameOf(textOf(term)), term).second;
    if (!isFirst) hasNamesakes = true;
    if (isFirst || !before) Follow();
}

// Behind the first of a name there may be another.
std::unique_ptr<node> NamedTerms::Take(node* term) {
    const bool isIndexed = IsIndexed() && !hasNamesakes;
    if (isIndexed) byName.erase(nameOf(textOf(term)));
    std::unique_ptr<node> taken(list.Take(term));
    if (!isIndexed) return taken;
    visited++;
    Follow();
    return taken;
}

node* NamedTerms::Append(node* term) {
    Insert(term, nullptr);
    if (isRecording) changes.push_back({Kind::Added, term, nullptr, nullptr, nullptr, nullptr});
    return term;
}

void NamedTerms::SetValue(node* term, const qfloat value) {
    if (isRecording) {
        std::unique_ptr<qfloat[]> before(term->value ? new qfloat[1] : nullptr);
        if (before) qmov(*term->value, before[0]);
        changes.push_back({Kind::Valued, term, nullptr, nullptr, std::move(before), nullptr});
    }
    term->SetValue(value);
}

void NamedTerms::Delete(node* term) {
    node* const next = term->next;
    std::unique_ptr<node> removed = Take(term);
    if (isRecording) changes.push_back({Kind::Removed, term, std::move(removed), next, nullptr, nullptr});
}

// In one step, however many they are; they are freed when the change is kept.
void NamedTerms::DeleteAll() {
    auto all = std::make_unique<Deq>();
    all->TakeAll(list);
    byName.clear();
    hasNamesakes = false;
    Follow();
    if (isRecording) changes.push_back({Kind::Cleared, nullptr, nullptr, nullptr, nullptr, std::move(all)});
}

void NamedTerms::UndoChanges() {
    for (; !changes.empty(); changes.pop_back()) {
        Change& change = changes.back();
        switch (change.kind) {
        case Kind::Added: Take(change.term); break;
        case Kind::Removed: Insert(change.removed.release(), change.next); break;
        case Kind::Cleared: list.TakeAll(*change.all); break;
        case Kind::Valued:
            if (change.value) change.term->SetValue(change.value[0]);
            break;
        }
    }
    isRecording = false;
}

void NamedTerms::EndChanges() {
    changes.clear();
    isRecording = false;
}
