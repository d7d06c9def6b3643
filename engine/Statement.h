// SPDX-License-Identifier: MIT
//
// The statement that is being read and evaluated.
#pragma once

#include "deq.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct Statement {
    bool fullEntry = true;    // false: a quick preview, which stores, defines and runs nothing
    bool traced = true;       // "Attempting ProcParenth..." goes to the standard output
    node* target = nullptr;   // the variable that receives the result
    Deq terms;                // what is still to be evaluated
    int32_t opCount = 0;      // number of operator terms in `terms`
    int32_t reorder = 0;      // set by a function call that rewrote `terms`
    int32_t enclosed = 0;     // pairs of parentheses around one value that were left out of `terms`
    int32_t skipped = 0;      // characters in front of the terms, blanks not counted: "name=" or "f(x)="
    node** opOrder = nullptr; // operators in the order of evaluation, null-terminated; one statement long

    std::vector<node*> order; // what opOrder of a statement that runs is made of

    std::string entryLine; // the full entry that it is in, or that ran last

    std::unique_ptr<node> newVariable; // the target while it is no variable yet

    // Frees a target that has become no variable.
    void DiscardNewTarget() {
        if (newVariable) target = nullptr;
        newVariable.reset();
    }
};
