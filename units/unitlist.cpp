// SPDX-License-Identifier: MIT
//
// The table of units and prefixes.
#include "unitlist.h"

#include <utility>

namespace {

constexpr size_t maxPowers = 1000000; // 16 MB
constexpr size_t firstCapacity = 256; // room for the catalogue and as many again

} // namespace

UnitTable unitTable;

bool isLettersOnly(std::string_view name) {
    return !name.empty() && name.find_first_not_of(unitNameCharacters) == std::string_view::npos;
}

void UnitTable::AddPrefix(std::string_view name, double factor) {
    prefixes.push_back({std::string(name), factor});
}

bool UnitTable::Add(std::string_view name, ReducedUnit reduced, UnitOrigin origin) {
    const size_t powers = reduced.powers.size();
    if (powersHeld + powers > maxPowers) return false;
    const bool isRecorded = isRecording && origin == UnitOrigin::User;
    if (units.empty()) units.reserve(firstCapacity);
    auto unit = std::make_unique<Unit>(Unit{std::string(name), std::move(reduced), defined});
    const Unit* const added = unit.get();
    // First what needs memory: a change without a unit is none.
    if (isRecorded) changes.emplace_back();
    units.emplace(added->name, std::move(unit));
    if (isRecorded) changes.back().added = added;
    ++defined;
    powersHeld += powers;
    return true;
}

bool UnitTable::AddPrimitive(std::string_view name, UnitOrigin origin) {
    const std::string* const own = &*primitiveNames.emplace(name).first;
    return Add(name, {1.0, {{own, 1}}}, origin);
}

void UnitTable::Forget(Index::node_type removed) {
    if (!removed.empty()) powersHeld -= removed.mapped()->reduced.powers.size();
}

bool UnitTable::Remove(std::string_view name) {
    const auto found = units.find(name);
    if (found == units.end()) return false;
    if (isRecording) {
        changes.emplace_back();
        changes.back().removed = units.extract(found);
    } else {
        Forget(units.extract(found));
    }
    return true;
}

const Unit* UnitTable::Find(std::string_view name) const {
    ++compared;
    const auto found = units.find(name);
    return found != units.end() ? found->second.get() : nullptr;
}

UnitMatch UnitTable::FindPrefixed(std::string_view name) const {
    UnitMatch best = {nullptr, nullptr};
    for (const UnitPrefix& prefix : prefixes) {
        const size_t length = prefix.name.size();
        ++compared;
        if (name.size() <= length || name.compare(0, length, prefix.name) != 0) continue;
        const Unit* const unit = Find(name.substr(length));
        const bool isEarlier =
            unit != nullptr && (best.found == nullptr || unit->position < best.found->position);
        if (isEarlier) best = {unit, &prefix};
    }
    return best;
}

UnitMatch UnitTable::FindSingular(std::string_view name) const {
    const Unit* const unit = Find(name);
    return unit != nullptr ? UnitMatch{unit, nullptr} : FindPrefixed(name);
}

UnitMatch UnitTable::FindFactor(std::string_view name) const {
    UnitMatch match = FindSingular(name);
    for (const std::string_view ending : {"s", "es"}) {
        const size_t length = ending.size();
        if (match.found != nullptr || name.size() <= length) break;
        if (name.substr(name.size() - length) == ending)
            match = FindSingular(name.substr(0, name.size() - length));
    }
    return match;
}

// The latest change first.  A unit that comes back finds room, since the index never shrinks.
void UnitTable::UndoChanges() {
    for (; !changes.empty(); changes.pop_back()) {
        Change& change = changes.back();
        if (change.added != nullptr) Forget(units.extract(units.find(change.added->name)));
        if (!change.removed.empty()) units.insert(std::move(change.removed));
    }
    isRecording = false;
}

void UnitTable::EndChanges() {
    for (Change& change : changes) Forget(std::move(change.removed));
    changes.clear();
    isRecording = false;
}
