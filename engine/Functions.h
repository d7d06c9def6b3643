// SPDX-License-Identifier: MIT
//
// Named functions: predefined ones, which have no body, and those that a person defined.
#pragma once

#include "Program.h"
#include "Undo.h"
#include "deq.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

// One definition.
struct Function {
    char* name = nullptr; // owned; as typed, comparisons ignore case
    Deq args;             // the parameter names in order, as texts
    int32_t argCount = 0; // number of parameters
    Deq* body = nullptr;  // owned; the parsed right-hand side, null for a predefined function

    // What a call knows of the body without reading it again: for every term the position of the parameter
    // that it names, or -1; and the positions of the operators in the order in which they are applied. Filled
    // by AddFunction.
    std::vector<int32_t> parameters;
    std::vector<int32_t> order;
    Program program;

    Function() = default;
    ~Function();
    Function(const Function&) = delete;
    Function& operator=(const Function&) = delete;

    // The definition as text that can be typed again: "mod(x,d)=x%d", "g()=5"; the head alone for a
    // predefined function. Numbers are those typed as 0x..., others are shown in auto mode with 100 digits,
    // without separator and with a '.'; the overflow value is 1e9999; the start of a unit is a blank and a
    // conversion "->". `mayGoOn` is asked before each term of the body, for a number takes some 10
    // microseconds; the text ends where it answers false.
    std::string ToString(const std::function<bool()>& mayGoOn = {}) const;

    // The same into a buffer of 10,000 bytes, cut at 9,999 characters.
    void FuncToStr(char* out) const;
};

// The ordered list of all functions; new ones are appended. It owns them.
class CFunctionList {
public:
    CFunctionList() = default;
    CFunctionList(const CFunctionList&) = delete;
    CFunctionList& operator=(const CFunctionList&) = delete;

    // Adds a function. `argText` is a comma-separated list of parameter names, read up to an empty piece;
    // each comma read is overwritten with a terminator. `body` is copied; null makes a predefined function.
    // A definition with the same name and number of parameters is replaced. Returns the function, or null
    // when that definition is predefined. One that was kept from an earlier run takes its place: it had been
    // deleted.
    Function* AddFunction(const char* name, char* argText, const Deq* body, bool isKept);
    Function* AddFunction(const char* name, char* argText, const Deq* body) {
        return AddFunction(name, argText, body, false);
    }

    // Removes and frees a function of the list; any other pointer is ignored.
    void DeleteFunction(const Function* function);

    // The first function with the name (case ignored) and the number of parameters; -1 means any number.
    // A name that begins with "log" is answered with the first predefined function of that many parameters:
    // log2, log1.5 and the like are logarithms to a base. One that was kept goes before it. Null when there
    // is none.
    Function* FunctionExists(const char* name, int32_t argCount) const;

    // The first function with exactly this name (case ignored) and the number of parameters, -1 for any
    // number, or null.
    Function* FindByName(const char* name, int32_t argCount) const {
        return Find(name, argCount, true, true);
    }

    // Walks the list: Get goes to a position from 0 (the first function when it is below 1) and gives its
    // function, GetNext goes on by one. Both give null past the end. A function that is deleted during the
    // walk is left out of it.
    Function* Get(int index);
    Function* GetNext();

    // The next function whose name begins with the prefix (case ignored), from the newest to the oldest, one
    // with each call; then null once, and again from the newest. Adding or deleting a function starts over.
    Function* FindTabComplete(const char* prefix);
    void TabCompleteReset();

    // Where completion stands: the position of the last match. 99 plus the number of functions, like any
    // number above the list's length, means that the next search starts at the newest.
    int32_t tabIndex = 99;

    // The functions that look-ups by name compared so far. Tests hold it against the number of look-ups.
    mutable uint64_t visited = 0;

    // Another number after each change: what was looked up before may be another function now.
    uint64_t Version() const { return version; }

    // Hands the steps that take changes back to this one; null: to nobody.
    void RecordIn(Undo* changes) { undo = changes; }

private:
    using Row = std::map<uint64_t, Function*>; // some of the functions, by their numbers

    Function* Find(const char* name, int32_t argCount, bool own, bool builtin) const;
    void Insert(std::shared_ptr<Function> function, uint64_t number);
    std::shared_ptr<Function> Take(uint64_t number);

    // Every function gets a greater number than those before it; with it, it is found, taken out and put
    // back.
    std::map<uint64_t, std::shared_ptr<Function>> functions;
    std::unordered_map<const Function*, uint64_t> numbers;
    uint64_t lastNumber = 0;
    uint64_t version = 1;

    Row predefined;
    std::unordered_map<std::string, Row> byName; // by the name in lower case

    // What was looked up last: a call is looked up where it is read and where it is evaluated.
    struct LookedUp {
        uint64_t version = 0;
        std::string name;
        const Row* namesakes = nullptr;
    };
    mutable LookedUp last;

    Undo* undo = nullptr;
    uint64_t current = 0; // number of the function that Get or GetNext gave
};

// Every function of the process.
extern CFunctionList funcs;
