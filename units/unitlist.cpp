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

bool UnitTable::Add(std::string_view name, ReducedUnit reduced) {
    const size_t powers = reduced.powers.size();
    if (powersHeld + powers > maxPowers) return false;
    if (units.empty()) units.reserve(firstCapacity);
    auto unit = std::make_unique<Unit>(Unit{std::string(name), std::move(reduced), defined});
    const Unit& added = *unit;
    // First what needs memory: without the unit there is nothing to take back.
    if (record) record([this, holder = MakeHolder(), own = added.name] { *holder = units.extract(own); });
    units.emplace(added.name, std::move(unit));
    ++defined;
    powersHeld += powers;
    return true;
}

bool UnitTable::AddPrimitive(std::string_view name) {
    const std::string* const own = &*primitiveNames.emplace(name).first;
    return Add(name, {1.0, {{own, 1}}});
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

UnitMatch UnitTable::FindFactor(std::string_view name) const {
    UnitMatch best = {nullptr, nullptr};
    std::string_view endingOfBest;
    ForEachReading(name, [&](std::string_view reading, const UnitPrefix* prefix, std::string_view ending) {
        if (best.found != nullptr && ending != endingOfBest) return true;
        const Unit* const unit = Find(reading);
        if (unit != nullptr && (best.found == nullptr || unit->position < best.found->position)) {
            best = {unit, prefix};
            endingOfBest = ending;
        }
        return best.found != nullptr && best.prefix == nullptr;
    });
    return best;
}
