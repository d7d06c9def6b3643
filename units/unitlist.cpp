// SPDX-License-Identifier: MIT
//
// The lists of units and prefixes, and an index beside the list of units.
//
// The index is a hash table with open addressing that maps a name to its record and the record's position in
// the list, so that a look-up costs the same however many units there are and still knows which of two
// candidates comes first.  A removed unit begins with '#', which no name that is looked for does: its slot
// serves as the mark of a deleted entry and goes when the table grows.
//
// While changes are recorded, the slots are the journal: they say what became of their unit, and all are
// kept.  So recording and taking back need no memory and cannot fail.
#include "unitlist.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>

unit* uroot = nullptr;
unitPrefix* proot = nullptr;
uint64_t unitWork = 0;

namespace {

struct Slot {
    unit* record; // null in an empty slot
    size_t hash;
    size_t position;
    bool isNew;   // defined since units_begin_changes
    char initial; // of the name of a unit removed since then, else '\0'
};

constexpr size_t firstCapacity = 512; // a power of two, room for the catalogue and as many again
constexpr char removedMark = '#';

Slot* slots = nullptr;
size_t capacity = 0;
size_t usedSlots = 0;
size_t unitCount = 0; // records ever appended: the position of the next one
unit* lastUnit = nullptr;
unitPrefix* lastPrefix = nullptr;
bool isRecording = false;
bool haveChanged = false; // since recording began

size_t hashOf(std::string_view name) {
    return std::hash<std::string_view>{}(name);
}

Slot* findSlot(std::string_view name) {
    if (capacity == 0) return nullptr;
    const size_t hash = hashOf(name);
    for (size_t i = hash & (capacity - 1); slots[i].record != nullptr; i = (i + 1) & (capacity - 1)) {
        if (slots[i].hash == hash && name == slots[i].record->name) return &slots[i];
    }
    return nullptr;
}

void insertSlot(const Slot& slot) {
    size_t i = slot.hash & (capacity - 1);
    while (slots[i].record != nullptr) i = (i + 1) & (capacity - 1);
    slots[i] = slot;
    ++usedSlots;
}

bool isKept(const Slot& slot) {
    return slot.record != nullptr && (isRecording || slot.record->name[0] != removedMark);
}

// Makes room for one more entry; at most half of the slots are ever used.
bool growIndex() {
    if (usedSlots < capacity / 2) return true;
    const size_t kept = static_cast<size_t>(std::count_if(slots, slots + capacity, isKept));
    const size_t grownCapacity = kept < capacity / 4 ? capacity : std::max(firstCapacity, 2 * capacity);
    Slot* grown = new (std::nothrow) Slot[grownCapacity]();
    if (grown == nullptr) return false;
    const Slot* old = slots;
    const size_t oldCapacity = capacity;
    slots = grown;
    capacity = grownCapacity;
    usedSlots = 0;
    for (size_t i = 0; i < oldCapacity; ++i) {
        if (isKept(old[i])) insertSlot(old[i]);
    }
    delete[] old;
    return true;
}

char* copyText(std::string_view text) {
    char* copy = new (std::nothrow) char[text.size() + 1];
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

// A prefix followed by a unit.  Of several such readings the unit that is earliest in the list wins.
UnitMatch findPrefixed(std::string_view name) {
    UnitMatch best = {nullptr, nullptr};
    size_t bestPosition = 0;
    for (const unitPrefix* p = proot; p != nullptr; p = p->next) {
        const std::string_view prefix = p->name;
        if (name.size() <= prefix.size() || name.compare(0, prefix.size(), prefix) != 0) continue;
        const Slot* slot = findSlot(name.substr(prefix.size()));
        if (slot == nullptr || (best.found != nullptr && slot->position >= bestPosition)) continue;
        best = {slot->record, p};
        bestPosition = slot->position;
    }
    return best;
}

UnitMatch findSingular(std::string_view name) {
    const Slot* slot = findSlot(name);
    return slot != nullptr ? UnitMatch{slot->record, nullptr} : findPrefixed(name);
}

// Frees the records of a numerator or denominator, in a loop: such a list may be 100,000 names long.
void destroyNames(unit* list) {
    while (list != nullptr) {
        unit* next = list->next;
        destroyunit(list);
        list = next;
    }
}

void freeNames(unit& record) {
    destroyNames(record.numerator);
    destroyNames(record.denominator);
    record.numerator = record.denominator = nullptr;
}

} // namespace

bool isLettersOnly(std::string_view name) {
    return !name.empty() && name.find_first_not_of(unitNameCharacters) == std::string_view::npos;
}

UnitPointer newUnit(std::string_view name) {
    UnitPointer record(new (std::nothrow) unit{nullptr, 1.0, 0, nullptr, nullptr, nullptr});
    if (record != nullptr) record->name = copyText(name);
    if (record != nullptr && record->name == nullptr) record.reset();
    return record;
}

bool renameUnit(unit& record, std::string_view name) {
    char* copy = copyText(name);
    if (copy == nullptr) return false;
    delete[] record.name;
    record.name = copy;
    return true;
}

bool appendUnit(UnitPointer& record, UnitOrigin origin) {
    if (!growIndex()) return false;
    const bool isNew = isRecording && origin == UnitOrigin::User;
    if (isNew) haveChanged = true;
    insertSlot({record.get(), hashOf(record->name), unitCount++, isNew, '\0'});
    unit* appended = record.release();
    (lastUnit == nullptr ? uroot : lastUnit->next) = appended;
    lastUnit = appended;
    return true;
}

bool appendPrefix(const char* name, double factor) {
    std::unique_ptr<char[]> copy(copyText(name));
    if (copy == nullptr) return false;
    unitPrefix* record = new (std::nothrow) unitPrefix{copy.get(), factor, nullptr};
    if (record == nullptr) return false;
    static_cast<void>(copy.release()); // the record's now
    (lastPrefix == nullptr ? proot : lastPrefix->next) = record;
    lastPrefix = record;
    return true;
}

unit* findUnitExactly(std::string_view name) {
    const Slot* slot = isLettersOnly(name) ? findSlot(name) : nullptr;
    return slot != nullptr ? slot->record : nullptr;
}

UnitMatch findUnit(std::string_view name) {
    UnitMatch match = findSingular(name);
    for (const std::string_view ending : {"s", "es"}) {
        const size_t length = ending.size();
        if (match.found != nullptr || name.size() <= length) break;
        if (name.substr(name.size() - length) == ending)
            match = findSingular(name.substr(0, name.size() - length));
    }
    return match;
}

bool hideUnit(std::string_view name) {
    Slot* slot = isLettersOnly(name) ? findSlot(name) : nullptr;
    if (slot == nullptr) return false;
    if (isRecording) {
        slot->initial = name[0];
        haveChanged = true;
    } else {
        freeNames(*slot->record);
    }
    slot->record->name[0] = removedMark;
    return true;
}

int compareNames(const unit& a, const unit& b) {
    ++unitWork;
    const char* x = a.name;
    const char* y = b.name;
    while (*x != '\0' && *x == *y) ++x, ++y;
    unitWork += static_cast<uint64_t>(x - a.name) / bytesPerWork;
    return static_cast<unsigned char>(*x) - static_cast<unsigned char>(*y);
}

void units_begin_changes() {
    isRecording = true;
}

void units_undo_changes() {
    for (size_t i = 0; haveChanged && i < capacity; ++i) {
        Slot& slot = slots[i];
        if (slot.record == nullptr) continue;
        if (slot.isNew) {
            slot.record->name[0] = slot.initial = removedMark; // units_end_changes frees what it holds
        } else if (slot.initial != '\0') {
            slot.record->name[0] = slot.initial;
            slot.initial = '\0';
        }
    }
    units_end_changes();
}

void units_end_changes() {
    for (size_t i = 0; haveChanged && i < capacity; ++i) {
        Slot& slot = slots[i];
        if (slot.record != nullptr && slot.initial != '\0') freeNames(*slot.record);
        slot.isNew = false;
        slot.initial = '\0';
    }
    isRecording = haveChanged = false;
}

void destroyunit(unit* record) {
    if (record == nullptr) return;
    freeNames(*record);
    delete[] record->name;
    delete record;
}

void unitFreeMemory() {
    destroyNames(uroot);
    uroot = lastUnit = nullptr;
    while (proot != nullptr) {
        unitPrefix* next = proot->next;
        delete[] proot->name;
        delete proot;
        proot = next;
    }
    lastPrefix = nullptr;
    delete[] slots;
    slots = nullptr;
    capacity = usedSlots = unitCount = 0;
    haveChanged = false;
}
