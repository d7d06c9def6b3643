// SPDX-License-Identifier: MIT
#include "NamedTerms.h"

#include <array>
#include <iterator>
#include <utility>

// Freeing one takes a tenth of a microsecond.
constexpr int FREED_AT_ONCE = 32;

namespace {

std::string_view textOf(const node* term) {
    return term->text ? term->text : std::string_view();
}

} // namespace

// Insertions only grow, so that they and the number of nodes tell every change of the list.
node* NamedTerms::Find(std::string_view name) {
    if (!removed.empty()) FreeSome();
    if (!IsIndexed()) {
        index = Index();
        for (node* term = list.first; term; term = term->next) {
            visited++;
            if (!index.byName.emplace(nameOf(textOf(term)), term).second) index.hasNamesakes = true;
        }
        Follow();
        isForeign = true;
    }
    if (name.empty()) return nullptr;
    const auto found = index.byName.find(name);
    return found == index.byName.end() ? nullptr : found->second;
}

// A bond shares the era, so that no later one, of another list neither, has its address.
node* NamedTerms::Find(std::string_view name, Bond& bond) {
    if (era && bond.era == era && IsIndexed()) return bond.term;
    bond.term = Find(name);
    if (!era) era = std::make_shared<const char>();
    bond.era = era;
    return bond.term;
}

void NamedTerms::Follow() {
    era.reset();
    index.insertions = list.insertions;
    index.count = list.count;
}

// Without Follow the index is built anew: in front of others the term may be the first of its name.
void NamedTerms::Insert(node* term, node* before) {
    const bool isIndexed = IsIndexed();
    list.Insert(term, before);
    if (!isIndexed) return;
    visited++;
    const bool isFirst = index.byName.emplace(nameOf(textOf(term)), term).second;
    if (!isFirst) index.hasNamesakes = true;
    if (isFirst || !before) Follow();
}

// Behind the first of a name there may be another.
node* NamedTerms::Take(node* term) {
    const bool isIndexed = IsIndexed() && !index.hasNamesakes;
    if (isIndexed) index.byName.erase(nameOf(textOf(term)));
    list.Take(term);
    if (!isIndexed) return term;
    visited++;
    Follow();
    return term;
}

node* NamedTerms::Append(node* term) {
    Insert(term, nullptr);
    undo.Add([this, term] { delete Take(term); });
    return term;
}

void NamedTerms::SetValue(node* term, const qfloat value) {
    if (term->value && undo.IsKept()) {
        std::array<uint32_t, std::extent_v<qfloat>> before;
        qmov(*term->value, before.data());
        undo.Add([term, before] { term->SetValue(before.data()); });
    }
    term->SetValue(value);
}

void NamedTerms::Delete(node* term) {
    node* const next = term->next;
    const auto taken = std::make_shared<Deq>();
    taken->Push(Take(term));
    undo.Add([this, taken, next] { Insert(taken->Take(taken->first), next); });
}

void NamedTerms::DeleteAll() {
    const auto all = std::make_shared<Removed>();
    const bool isIndexed = IsIndexed();
    all->terms.TakeAll(list);
    std::swap(all->index, index);
    Follow();
    removed.push_back(all);
    undo.Add([this, all, isIndexed] {
        list.TakeAll(all->terms);
        std::swap(all->index, index);
        if (isIndexed) Follow();
    });
}

void NamedTerms::FreeSome() {
    Removed& all = *removed.back();
    if (removed.back().use_count() > 1) return; // it may be taken back
    for (int i = 0; i < FREED_AT_ONCE && all.terms.first; i++) {
        if (!all.index.byName.empty()) all.index.byName.erase(all.index.byName.begin());
        all.terms.Del(all.terms.first);
    }
    if (!all.terms.first) removed.pop_back();
}
