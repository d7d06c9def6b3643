// SPDX-License-Identifier: MIT
#include "deq.h"

#include "Helpers_String.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

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

namespace {

constexpr uint8_t OPERATOR_COUNT = sizeof ops / sizeof ops[0] - 1;

// Looking up an operator does not search.
struct Index {
    uint8_t byCode[OP_LOGICAL_OR + 1] = {};
    uint8_t first[256] = {}; // by character: 1 + the position of the first operator that begins with it
};

constexpr Index makeIndex() {
    Index made;
    for (uint8_t& position : made.byCode) position = OPERATOR_COUNT;
    for (uint8_t i = OPERATOR_COUNT; i > 0; i--) {
        made.byCode[ops[i - 1].code] = static_cast<uint8_t>(i - 1);
        made.first[static_cast<uint8_t>(ops[i - 1].text[0])] = i;
    }
    return made;
}

constexpr Index OPERATOR_INDEX = makeIndex();

} // namespace

const OpEntry& getOp(int32_t code) {
    return ops[code < 0 || code > OP_LOGICAL_OR ? OPERATOR_COUNT : OPERATOR_INDEX.byCode[code]];
}

int isOp(const char* text) {
    const uint8_t first = OPERATOR_INDEX.first[static_cast<uint8_t>(text[0])];
    if (first == 0) return 0;
    for (const OpEntry* entry = ops + first - 1; entry->code != 0; entry++) {
        if (entry->text[0] != text[0]) continue;
        if (entry->code == OP_NOT_EQUAL && text[1] == '=' && text[2] == '=') continue; // 3!==6: a factorial
        if (entry->text[1] == '\0' || entry->text[1] == text[1]) return entry->code;
    }
    return 0;
}

void node::SetText(std::string_view copied) {
    DropText();
    if (copied.size() >= sizeof shortText) {
        text = strDuplicate(copied);
    } else {
        shortText[copied.copy(shortText, copied.size())] = '\0';
        text = shortText;
    }
}

node* Deq::Add() {
    if (!spare) {
        const size_t size = std::clamp<size_t>(made, 8, 1024);
        blocks.emplace_back(size);
        made += size;
        for (node& term : blocks.back()) {
            term.isOfList = true;
            term.next = spare;
            spare = &term;
        }
    }
    node* const term = spare;
    spare = term->next;
    return Push(term);
}

node* Deq::Insert(node* term, node* before) {
    node* after = before ? before->prev : last;
    term->prev = after;
    term->next = before;
    (after ? after->next : first) = term;
    (before ? before->prev : last) = term;
    count++;
    insertions++;
    return term;
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
    if (!term->isOfList) {
        delete term;
        return before;
    }
    term->Drop();
    term->next = spare;
    spare = term;
    return before;
}

node* Deq::Del(int i) {
    node* term = Get(i);
    return term ? Del(term) : nullptr;
}

void Deq::Clear() {
    while (first) Del(first);
    if (made <= MOST_KEPT) return;
    blocks.clear();
    spare = nullptr;
    made = 0;
}

void Deq::TakeAll(Deq& other) {
    std::move(other.blocks.begin(), other.blocks.end(), std::back_inserter(blocks));
    made += other.made;
    other.blocks.clear();
    other.spare = nullptr;
    other.made = 0;
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
    for (int32_t i = 0; i < number; i++, term = term->next) {
        node* copy = target->Add();
        if (term->text) copy->SetText(term->text);
        copy->type = term->type;
        copy->level = term->level;
        if (term->type == TERM_NUMBER && term->value) copy->SetValue(*term->value);
    }
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
