// SPDX-License-Identifier: MIT
#include "deq.h"

#include "Helpers_String.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

constexpr const char* CVstr = "\x11";
constexpr const char* CVSstr = "\x10";

// Two-character operators come before the one-character operators that begin them.
constexpr OpEntry ops[] = {
    {"&&", OP_LOGICAL_AND, 13, 1, 1},  {"||", OP_LOGICAL_OR, 14, 1, 1},
    {">>", OP_SHIFT_RIGHT, 7, 1, 1},   {"<<", OP_SHIFT_LEFT, 7, 1, 1},
    {">=", OP_GREATER_EQUAL, 8, 1, 1}, {"<=", OP_LESS_EQUAL, 8, 1, 1},
    {"==", OP_EQUAL, 9, 1, 1},         {"!=", OP_NOT_EQUAL, 9, 1, 1},
    {"!", OP_FACTORIAL, 3, 1, 0},      {"^", OP_POWER, 4, 1, 1},
    {"*", OP_MULTIPLY, 5, 1, 1},       {"/", OP_DIVIDE, 5, 1, 1},
    {"%", OP_REMAINDER, 5, 1, 1},      {"+", OP_ADD, 6, 0, 1},
    {"-", OP_SUBTRACT, 6, 0, 1},       {">", OP_GREATER, 8, 1, 1},
    {"<", OP_LESS, 8, 1, 1},           {"&", OP_AND, 10, 1, 1},
    {"@", OP_XOR, 11, 1, 1},           {"|", OP_OR, 12, 1, 1},
    {"(", OP_OPEN, 15, 0, 0},          {")", OP_CLOSE, 15, 0, 0},
    {CVstr, OP_CONVERT, 7, 1, 1},      {CVSstr, OP_UNIT_MARK, 0, 0, 0},
    {",", OP_COMMA, 0, 0, 0},          {"", 0, 0, 0, 0},
};

static_assert(sizeof ops / sizeof ops[0] == OPERATOR_COUNT + 1);

namespace {

constexpr OperatorIndex makeIndex() {
    OperatorIndex made = {};
    for (uint8_t& position : made.byCode) position = OPERATOR_COUNT;
    for (uint8_t i = OPERATOR_COUNT; i > 0; i--) {
        made.byCode[ops[i - 1].code] = static_cast<uint8_t>(i - 1);
        const auto character = static_cast<uint8_t>(ops[i - 1].text[0]);
        const bool isOnly = made.first[character] == 0 && ops[i - 1].text[1] == '\0';
        made.only[character] = isOnly ? static_cast<uint8_t>(ops[i - 1].code) : uint8_t{0};
        made.first[character] = i;
    }
    return made;
}

} // namespace

constexpr OperatorIndex OPERATOR_INDEX = makeIndex();

int findOp(const char* text, uint32_t position) {
    for (const OpEntry* entry = ops + position; entry->code != 0; entry++) {
        if (entry->text[0] != text[0]) continue;
        if (entry->code == OP_NOT_EQUAL && text[1] == '=' && text[2] == '=') continue; // 3!==6: a factorial
        if (entry->text[1] == '\0' || entry->text[1] == text[1]) return entry->code;
    }
    return 0;
}

node* node::WithRoom() {
    return new (::operator new(sizeof(node) + ROOM + SHORT_NAME)) node(Memory::OwnWithRoom);
}

void node::SetText(std::string_view copied) {
    DropText();
    char* const room = TextRoom();
    const size_t size = memory == Memory::OwnWithRoom ? SHORT_NAME : ROOM;
    if (!room || static_cast<void*>(room) == value || copied.size() >= size) {
        text = strDuplicate(copied);
    } else {
        text = room;
        text[copied.copy(text, copied.size())] = '\0';
    }
}

// The next block, or a new one.
void Deq::BeginBlock() {
    if (blocksBegun == blocks.size()) {
        const size_t bytes = std::clamp(made, LEAST_BLOCK, MOST_BLOCK);
        blocks.push_back({std::unique_ptr<char[]>(new char[bytes]), bytes});
        made += bytes;
    }
    const Block& block = blocks[blocksBegun++];
    unused = block.bytes.get();
    left = block.size;
}

inline void* Deq::NewRoom(size_t size) {
    if (left < size) BeginBlock();
    left -= size;
    return std::exchange(unused, unused + size);
}

inline void Deq::Link(node* term, node* before) {
    node* after = before ? before->prev : last;
    term->prev = after;
    term->next = before;
    (after ? after->next : first) = term;
    (before ? before->prev : last) = term;
    count++;
    insertions++;
}

node* Deq::Insert(node* term, node* before) {
    Link(term, before);
    return term;
}

inline node* Deq::AddFrom(node*& spares, node::Memory memory, size_t size, node* before) {
    void* const room = spares ? std::exchange(spares, spares->next) : NewRoom(size);
    node* const term = new (room) node(memory);
    Link(term, before);
    return term;
}

node* Deq::Add() {
    return AddFrom(spare, node::Memory::List, sizeof(node), nullptr);
}

node* Deq::AddOperand() {
    return AddFrom(spareOperands, node::Memory::ListWithRoom, sizeof(node) + node::ROOM, nullptr);
}

node* Deq::AddCopy(const node* term, node* before) {
    node* const copy = term->text || term->value ? AddFrom(spareOperands, node::Memory::ListWithRoom,
                                                           sizeof(node) + node::ROOM, before)
                                                 : AddFrom(spare, node::Memory::List, sizeof(node), before);
    if (term->text) copy->SetText(term->text);
    copy->type = term->type;
    copy->level = term->level;
    if (term->type == TERM_NUMBER && term->value) copy->SetValue(*term->value);
    return copy;
}

node* Deq::Get(int i) const {
    if (!first) {
        puts("no parent!!!");
        return nullptr;
    }
    node* term = first;
    for (int k = 0; k < i && term; k++) term = term->next;
    return term;
}

node* Deq::Take(node* term) {
    (term->prev ? term->prev->next : first) = term->next;
    (term->next ? term->next->prev : last) = term->prev;
    term->prev = term->next = nullptr;
    count--;
    return term;
}

node* Deq::Del(node* term) {
    node* before = term->prev;
    Take(term);
    if (term->memory < node::Memory::List) {
        delete term;
        return before;
    }
    term->Drop();
    node*& spares = term->memory == node::Memory::List ? spare : spareOperands;
    term->next = spares;
    spares = term;
    return before;
}

node* Deq::Del(int i) {
    node* term = Get(i);
    return term ? Del(term) : nullptr;
}

// All memory is unused then.
void Deq::Clear() {
    while (first) Del(first);
    spare = spareOperands = nullptr;
    blocksBegun = left = 0;
    if (made <= MOST_KEPT) return;
    blocks.clear();
    made = 0;
}

// The other's blocks are none that is begun here.
void Deq::TakeAll(Deq& other) {
    std::move(other.blocks.begin(), other.blocks.end(), std::inserter(blocks, blocks.begin()));
    blocksBegun += other.blocks.size();
    made += other.made;
    other.blocks.clear();
    other.spare = other.spareOperands = nullptr;
    other.blocksBegun = other.left = other.made = 0;
    if (!other.first) return;
    other.first->prev = last;
    (last ? last->next : first) = other.first;
    last = other.last;
    count += other.count;
    insertions += static_cast<uint64_t>(other.count);
    other.first = other.last = nullptr;
    other.count = 0;
}

void Deq::CopyTo(Deq* target) const {
    // The count is taken first, so that a list can be appended to itself.
    const int32_t number = count;
    const node* term = first;
    for (int32_t i = 0; i < number; i++, term = term->next) target->AddCopy(term);
}

void Deq::SPrint(char* out) const {
    size_t used = 0;
    const size_t limit = 9999;
    for (const node* term = first; term && used < limit; term = term->next) {
        if (!term->text) continue;
        const size_t length = strnlen(term->text, limit - used);
        memcpy(out + used, term->text, length);
        used += length;
    }
    out[used] = '\0';
}

int32_t Deq::CountNumberOfOperators() const {
    int32_t number = 0;
    for (const node* term = first; term; term = term->next) {
        if (term->type != TERM_NAME && term->type != TERM_FUNC && term->type != TERM_NUMBER) number++;
    }
    return number;
}
