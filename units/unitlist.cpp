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
    if (units.empty()) units.reserve(firstCapacity);
    auto unit = std::make_unique<Unit>(Unit{std::string(name), std::move(reduced), defined});
    const Unit& added = *unit;
    // First what needs memory: without the unit there is nothing to take back.
    if (record && origin == UnitOrigin::User)
        record([this, holder = MakeHolder(), own = added.name] { *holder = units.extract(own); });
    units.emplace(added.name, std::move(unit));
    ++defined;
    powersHeld += powers;
    return true;
}

bool UnitTable::AddPrimitive(std::string_view name, UnitOrigin origin) {
    const std::string* const own = &*primitiveNames.emplace(name).first;
    return Add(name, {1.0, {{own, 1}}}, origin);
}

// For a unit that is taken out.  The last who has it frees the unit.
std::shared_ptr<UnitTable::Index::node_type> UnitTable::MakeHolder() {
    const auto release = [this](const Index::node_type* unit) {
        if (!unit->empty()) powersHeld -= unit->mapped()->reduced.powers.size();
        delete unit;
    };
    return {new Index::node_type, release};
}

bool UnitTable::Remove(std::string_view name) {
    const auto found = units.find(name);
    if (found == units.end()) return false;
    // A unit that comes back finds room, since the index never shrinks.
    const auto holder = MakeHolder();
    if (record) record([this, holder] { units.insert(std::move(*holder)); });
    *holder = units.extract(found);
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
