// SPDX-License-Identifier: MIT
//
// What the call of a person's function executes: its body, worked out once, when it is defined.
#pragma once

#include "NamedTerms.h"
#include "deq.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct Builtin;
struct Function;

// A program does what the evaluator does with the terms of the body when they stand in the place of a call,
// without these terms: it has a step for each operator and parenthesis, in their order.
struct Program {
    // Where a value is: below 0 the leaf of number ~place, otherwise the register of this number.
    using Place = int32_t;
    static constexpr Place NOWHERE = INT32_MAX;

    // A term of the body that is no operator.
    struct Leaf {
        int32_t parameter; // the parameter that it names, or -1
        const node* term;
        mutable NamedTerms::Bond variable = {}; // that it names
    };

    struct Step {
        int32_t code; // of the operator; OP_OPEN: parentheses around a value; TERM_FUNC: a call
        Place to;
        Place left;  // NOWHERE without an operand there; of a conversion, what is converted
        Place right; // of a call or a conversion its number
    };

    struct Conversion {
        Place from; // the leaves that name the units
        Place to;
        bool isFixed; // neither is a parameter

        // Then the factor, and what the unit library charged for it, as long as the units have this version.
        mutable uint64_t version = 0;
        mutable qfloat factor = {};
        mutable std::vector<uint64_t> charges = {};
    };

    struct Call {
        std::string name; // in lower case
        std::vector<Place> arguments;
        int32_t level; // of its '(' in the body
        int32_t terms; // of the body that are left when it is called

        // What the name stands for, as long as the list of functions has this version.
        mutable uint64_t version = 0;
        mutable const Function* function = nullptr;
        mutable const Builtin* builtin = nullptr;
    };

    std::vector<Leaf> leaves;
    std::vector<Step> steps;
    std::vector<Call> calls;
    std::vector<Conversion> conversions;
    size_t registers = 0;   // that it takes
    Place result = NOWHERE; // without one the body has no program

    bool Exists() const { return result != NOWHERE; }

    // Makes the program of a checked body, of which these terms name parameters and these are the operators
    // in their order, by positions. There is none for a body that leaves more or less than a single value,
    // as 2(x) and (x)(x) do, or in which a name that is no function's stands before parentheses, as in x(2).
    // Each call of these ends with an error, whatever is defined later, and its message counts the terms of
    // the whole statement or tells the place of one. Nor is there one with a text of more than
    // WorkLimit::LONG_TEXT characters in the body, the copies of which are counted.
    void Make(const Deq& body, const std::vector<int32_t>& parameters, const std::vector<int32_t>& order);
};
