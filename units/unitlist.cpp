// SPDX-License-Identifier: MIT
//
// The table of units and prefixes.
#include "unitlist.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

constexpr size_t MAX_POWERS = 1000000; // 16 MB

UnitTable unitTable;

bool isLettersOnly(std::string_view name) {
    return !name.empty() && name.find_first_not_of(unitNameCharacters) == std::string_view::npos;
}

bool UnitTable::Define(std::string_view name, const char* definition, const UnitsCharge& charge) {
    std::optional<ReducedUnit> reduced = reduceUnit(definition, charge);
    if (!reduced) return false;
    if (std::strcmp(definition, primitivestring) == 0)
        reduced->powers = {{&*primitiveNames.emplace(name).first, 1}};
    const size_t powers = reduced->powers.size();
    if (powersHeld + powers > MAX_POWERS) return false;
    // First what needs memory: without the unit there is nothing to take back.
    if (record)
        record([this, own = std::string(name)] {
            Free(units.extract(own));
            ++version;
        });
    units.emplace(name, Unit{std::move(*reduced), defined});
    ++defined;
    ++version;
    powersHeld += powers;
    return true;
}

void UnitTable::Free(const Units::node_type& unit) {
    if (!unit.empty()) powersHeld -= unit.mapped().reduced.powers.size();
}

std::vector<std::string> UnitTable::Names() const {
    std::vector<std::string> names;
    for (const auto& unit : units) names.push_back(unit.first);
    std::sort(names.begin(), names.end());
    return names;
}

bool UnitTable::Remove(std::string_view name) {
    using Node = Units::node_type;
    const auto found = units.find(name);
    if (found == units.end()) return false;
    const auto free = [this](const Node* unit) {
        Free(*unit);
        delete unit;
    };
    const std::shared_ptr<Node> removed(new Node, free); // while it can come back
    if (record)
        record([this, removed] {
            units.insert(std::move(*removed));
            ++version;
        });
    *removed = units.extract(found);
    ++version;
    return true;
}

const Unit* UnitTable::Find(std::string_view name) const {
    ++compared;
    const auto found = units.find(name);
    return found != units.end() ? &found->second : nullptr;
}

std::vector<UnitReading> UnitTable::Readings(std::string_view name) const {
    std::vector<UnitReading> readings;
    readings.reserve(8);
    for (const std::string_view ending : {"", "s", "es"}) {
        const size_t length = name.size() - std::min(name.size(), ending.size());
        if (length == 0 || name.substr(length) != ending) continue;
        const std::string_view singular = name.substr(0, length);
        readings.push_back({nullptr, singular, ending});
        compared += prefixes.size();
        for (const UnitPrefix& prefix : prefixes) {
            const size_t behind = prefix.name.size();
            if (length > behind && singular[0] == prefix.name[0] &&
                singular.compare(0, behind, prefix.name) == 0)
                readings.push_back({&prefix, singular.substr(behind), ending});
        }
    }
    return readings;
}

UnitReading UnitTable::FindFactor(std::string_view name) const {
    UnitReading best = {nullptr, name, "", Find(name)};
    if (best.found != nullptr) return best;
    for (UnitReading& reading : Readings(name)) {
        const bool isLater = best.found != nullptr && (!best.prefix || reading.ending != best.ending);
        if (isLater) break;
        reading.found = Find(reading.name);
        if (reading.found && (!best.found || reading.found->position < best.found->position)) best = reading;
    }
    return best;
}
