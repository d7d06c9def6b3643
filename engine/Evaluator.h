// SPDX-License-Identifier: MIT
//
// Evaluation in place: each operator replaces itself and its operands by one number term.
#pragma once

#include "Calls.h"

class Evaluator {
public:
    // All of them have to live longer.
    Evaluator(Statement& theStatement, Outcome& theOutcome, const EntrySettings& theSettings,
              Variables& theVariables, Spending& theSpending, WorkCounters& theWork)
        : statement(theStatement), outcome(theOutcome), variables(theVariables), spending(theSpending),
          work(theWork), calls(theStatement, theOutcome, theSettings, theVariables, theSpending, theWork) {}

    // The methods of the same names of the calculator.
    int ProcTermsLoop();
    int ProcParenth(node* open);
    node* ProcPair(node* op, int32_t code);
    int Node2Num(const node* term, qfloat value);
    node* ProcFunction(node* functionTerm) { return calls.ProcFunction(functionTerm); }

private:
    const qfloat* ValueOf(const node* term); // null with a message
    node* FinishPair(node* op, node* left, node* right, const qfloat value, const char* name);
    int ConversionFactor(const node* source, const node* destination, qfloat value);
    node* ProcConversion(node* arrow);

    Statement& statement;
    Outcome& outcome;
    Variables& variables;
    Spending& spending;
    WorkCounters& work;
    Calls calls;
};
