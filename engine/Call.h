// SPDX-License-Identifier: MIT
//
// The call of a function among the terms of a statement; private to the engine.
#ifndef TALLYQUILL_CALL_H
#define TALLYQUILL_CALL_H

#include "Calculator.h"

#include <vector>

struct ZqCalculator::Call {
    node* function = nullptr; // the name, in lower case
    node* open = nullptr;
    node* close = nullptr;
    std::vector<const node*> arguments;

    const char* Name() const { return function->text; }
};

#endif
