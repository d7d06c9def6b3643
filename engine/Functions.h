// SPDX-License-Identifier: MIT
//
// Named functions: predefined ones, which have no body, and those that a person defined.
#ifndef TALLYQUILL_FUNCTIONS_H
#define TALLYQUILL_FUNCTIONS_H

#include "deq.h"

#include <cstdint>
#include <list>

// One definition.
struct Function {
    char* name = nullptr; // owned; as typed, comparisons ignore case
    Deq args;             // the parameter names in order, as texts
    int32_t argCount = 0; // number of parameters
    Deq* body = nullptr;  // owned; the parsed right-hand side, null for a predefined function

    Function() = default;
    ~Function();
    Function(const Function&) = delete;
    Function& operator=(const Function&) = delete;
};

// The ordered list of all functions; new ones are appended. It owns them.
class CFunctionList {
public:
    CFunctionList() = default;
    ~CFunctionList();
    CFunctionList(const CFunctionList&) = delete;
    CFunctionList& operator=(const CFunctionList&) = delete;

    // Adds a function. `argText` is a comma-separated list of parameter names, read up to an empty piece;
    // each comma read is overwritten with a terminator. `body` is copied; null makes a predefined function.
    // A definition with the same name and number of parameters is replaced. Returns the function, or null
    // when that definition is predefined.
    Function* AddFunction(const char* name, char* argText, const Deq* body);

    // Removes and frees a function of the list; any other pointer is ignored.
    void DeleteFunction(const Function* function);

    // The first function with the name (case ignored) and the number of parameters; -1 means any number.
    // A name that begins with "log" is answered with the first predefined function of that many parameters:
    // log2, log1.5 and the like are logarithms to a base. Null when there is none.
    Function* FunctionExists(const char* name, int32_t argCount);

private:
    std::list<Function*> functions;
};

// Every function of the process.
extern CFunctionList funcs;

#endif
