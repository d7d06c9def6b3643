// SPDX-License-Identifier: MIT
//
// Terms of an expression, the doubly linked list that holds them, and the operator table.
// The same list holds variables, function parameters and bodies, and unit definitions.
#pragma once

#include "qfloat.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

// Operator codes: the types of operator terms.
enum OperatorCode : int32_t {
    OP_COMMA = 2,
    OP_ADD = 3,
    OP_SUBTRACT = 4,
    OP_MULTIPLY = 5,
    OP_DIVIDE = 6,
    OP_REMAINDER = 7,
    OP_OR = 8,
    OP_XOR = 9,
    OP_AND = 11,
    OP_POWER = 12,
    OP_SHIFT_RIGHT = 13,
    OP_SHIFT_LEFT = 14,
    OP_FACTORIAL = 15,
    OP_UNIT_MARK = 16,
    OP_CONVERT = 17,
    OP_OPEN = 18,
    OP_CLOSE = 19,
    OP_GREATER = 20,
    OP_LESS = 21,
    OP_GREATER_EQUAL = 22,
    OP_LESS_EQUAL = 23,
    OP_EQUAL = 24,
    OP_NOT_EQUAL = 25,
    OP_LOGICAL_AND = 26,
    OP_LOGICAL_OR = 27
};

// Term types that are not operator codes.
enum TermType : int32_t {
    TERM_NAME = 128,  // a variable, a unit or an unknown name
    TERM_FUNC = 129,  // the name of a defined function, followed by '('
    TERM_DONE = 130,  // never made by the scanner; counts as an operator everywhere
    TERM_NUMBER = 131 // a number with a value
};

// The internal characters of a unit conversion: the arrow "->" and the mark at the start of the source unit.
extern const char* const CVstr;  // "\x11"
extern const char* const CVSstr; // "\x10"

// One operator.
struct OpEntry {
    const char* text;
    int16_t code;
    int16_t precedence; // smaller binds tighter; 0: never ordered
    int16_t needsLeft;  // 1: an operand must stand before it
    int16_t needsRight; // 1: an operand must stand behind it
};

constexpr int MAX_PRECEDENCE = 15;

// All operators; a text is matched in this order. The entry behind the last one has code 0.
extern const OpEntry ops[];

constexpr uint32_t OPERATOR_COUNT = 25;

// Looking up an operator does not search.
struct OperatorIndex {
    uint8_t byCode[OP_LOGICAL_OR + 1]; // the position in the table, OPERATOR_COUNT for no operator
    uint8_t only[256];  // by character: the code of the only operator that begins with it, or 0
    uint8_t first[256]; // by character: 1 + the position of the first operator that begins with it, or 0
};
extern const OperatorIndex OPERATOR_INDEX;

// The entry of a code; the terminating entry when no operator has it.
inline const OpEntry& getOp(int32_t code) {
    return ops[code < 0 || code > OP_LOGICAL_OR ? OPERATOR_COUNT : OPERATOR_INDEX.byCode[code]];
}

// The code of the first entry whose text is a prefix of `text`, or 0. "!==" is a '!' with "==" behind it.
// FindOp is told the position of the first entry that begins with the character.
int findOp(const char* text, uint32_t position);
inline int isOp(const char* text) {
    const auto character = static_cast<uint8_t>(text[0]);
    if (const uint8_t code = OPERATOR_INDEX.only[character]) return code;
    const uint8_t first = OPERATOR_INDEX.first[character];
    return first == 0 ? 0 : findOp(text, first - 1U);
}

// Whether a term type is an operator: every code of the table, and TERM_DONE.
inline bool isOp(int32_t type) {
    return type < TERM_NAME ? type >= OP_COMMA && type <= OP_LOGICAL_OR && type != 10 : type == TERM_DONE;
}

// One term.
struct node {
    // Whose memory the term has.
    enum class Memory : uint8_t { Own, OwnWithRoom, List, ListWithRoom };

    node* prev = nullptr;
    node* next = nullptr;
    int32_t type = 0;     // an OperatorCode or a TermType
    int32_t start = -1;   // its first character in the statement, blanks not counted; -1: not known
    char* text = nullptr; // owned: from new char[], or set by SetText; operators have none
    int32_t level = 0;    // parenthesis depth
    uint16_t length = 0;  // the number of its characters there
    const Memory memory = Memory::Own;
    qfloat* value = nullptr; // owned: from new qfloat[1], or set by SetValue; numbers and variables have one

    node() = default;
    explicit node(char* owned) : text(owned) {}
    explicit node(Memory whose) : memory(whose) {}
    static constexpr size_t ROOM = sizeof(qfloat); // bytes behind a term that has room for its text or value
    static node* WithRoom();
    // One with room is larger than a term, so its memory is given back without a size.
    static void* operator new(size_t size) { return ::operator new(size); }
    static void* operator new(size_t, void* place) { return place; }
    static void operator delete(void* memory) { ::operator delete(memory); }
    ~node() { Drop(); } // frees text and value; does not unlink
    node(const node&) = delete;
    node& operator=(const node&) = delete;

    void SetText(std::string_view copied);
    void SetValue(const qfloat copied);
    void DropText() {
        if (text && text != TextRoom()) delete[] text;
        text = nullptr;
    }

    // What stood for the number becomes a term without a text.
    void BecomeNumber(const qfloat copied) {
        type = TERM_NUMBER;
        DropText();
        SetValue(copied);
    }

    // Without its text and its value.
    void Drop() {
        if (text) DropText();
        if (value && value != Room()) delete[] value;
        value = nullptr;
    }

private:
    // A variable has both a value and a name, which is mostly short.
    static constexpr size_t SHORT_NAME = 8;
    char* TextRoom() {
        qfloat* const room = Room();
        return reinterpret_cast<char*>(room && memory == Memory::OwnWithRoom ? room + 1 : room);
    }
    qfloat* Room() {
        const bool hasRoom = memory == Memory::OwnWithRoom || memory == Memory::ListWithRoom;
        return hasRoom ? reinterpret_cast<qfloat*>(this + 1) : nullptr;
    }
};

inline void node::SetValue(const qfloat copied) {
    if (!value) {
        qfloat* const room = Room();
        value = room && text != static_cast<void*>(room) ? room : new qfloat[1];
    }
    qmov(copied, *value);
}

// True for 0, the only number with this exponent.
inline bool isZero(const qfloat number) {
    return number[1] == 0;
}

// A list of terms. It owns its nodes.
class Deq {
public:
    node* first = nullptr;
    node* last = nullptr;
    int32_t count = 0;
    uint64_t insertions = 0; // how many nodes were ever put in

    Deq() = default;
    ~Deq() { Clear(); }
    Deq(const Deq&) = delete;
    Deq& operator=(const Deq&) = delete;

    // Appends a node, which the list then owns. Returns it.
    node* Push(node* term) { return Insert(term, static_cast<node*>(nullptr)); }

    // Append a new node in memory of the list: it may be deleted, but not taken. An operand has room for its
    // value or its text.
    node* Add();
    node* AddOperand();

    // Inserts such a node before one of this list, or appends it, with the other's text, type and level, and
    // the value of a number.
    node* AddCopy(const node* term, node* before = nullptr);

    // Appends a new node of level 0 without a value. It takes ownership of `text` (from new char[]); the
    // caller sets its type. Returns it.
    node* Push(char* text) { return Push(new node(text)); }

    // Inserts before position i, counted from 0. An index below 0 or past the end means before the last node.
    node* Insert(node* term, int i) { return Insert(term, i < 0 || i >= count ? last : Get(i)); }
    node* Insert(char* text, int i) { return Insert(new node(text), i); }

    // Inserts a new node before a node of this list; a null `before` appends.
    node* Insert(char* text, node* before) { return Insert(new node(text), before); }
    node* Insert(node* term, node* before);

    // The node at position i from 0: the first node when i is below 1, null past the end. An empty list
    // writes "no parent!!!" to standard output and gives null.
    node* Get(int i) const;

    // Unlinks a node of this list that was pushed or inserted, which the caller then owns. Returns it.
    node* Take(node* term);

    // Unlinks and frees a node of this list. Returns the node before it, null when it was the first.
    // The second form does nothing past the end.
    node* Del(node* term);
    node* Del(int i);

    // Deletes all nodes.
    void Clear();

    // Appends all nodes of the other list, which is then empty, in one step.
    void TakeAll(Deq& other);

    // Appends copies of all nodes, as AddCopy makes them, to `target`.
    void CopyTo(Deq* target) const;

    // Prints the terms' texts one after the other, cut at 9,999 characters: the buffer holds 10,000 bytes.
    void SPrint(char* out) const;

    // How many terms are operators: neither names, function names nor numbers.
    int32_t CountNumberOfOperators() const;

private:
    static constexpr size_t LEAST_BLOCK = 512;
    static constexpr size_t MOST_BLOCK = 65536;
    static constexpr size_t MOST_KEPT = 2 << 20; // bytes that an empty list keeps

    // Memory of nodes that Add made. It is touched when it is used first, and the same again in the next
    // statement: what was never touched costs nothing.
    struct Block {
        std::unique_ptr<char[]> bytes;
        size_t size = 0;
    };

    void BeginBlock();
    void* NewRoom(size_t size);
    void Link(node* term, node* before);
    node* AddFrom(node*& spares, node::Memory memory, size_t size, node* before);

    std::vector<Block> blocks;
    size_t blocksBegun = 0; // the last one of these is being used up
    char* unused = nullptr; // of it
    size_t left = 0;        // bytes from there on
    size_t made = 0;        // bytes of all blocks
    node* spare = nullptr;  // nodes that were deleted, chained by `next`
    node* spareOperands = nullptr;
};
