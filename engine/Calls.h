// SPDX-License-Identifier: MIT
//
// The calls of functions among the terms of a statement.
#pragma once

#include "Builtins.h"
#include "deq.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Variables;
struct Function;
struct Statement;
struct WorkCounters;

class Calls {
public:
    // All of them have to live longer.
    Calls(Statement& theStatement, Outcome& theOutcome, const EntrySettings& theSettings,
          Variables& theVariables, Spending& theSpending, WorkCounters& theWork)
        : statement(theStatement), outcome(theOutcome), variables(theVariables), spending(theSpending),
          work(theWork), builtins(theOutcome, theSettings, theSpending) {}

    // Forgets the calls of the statement before.
    void Begin();

    // Evaluates a call: that of a predefined function in place; that of a person's function is replaced by
    // its body, whose operators come next. A call whose arguments are not all single terms is left as it is.
    // Returns the term to go on from, or null with a message.
    node* ProcFunction(node* functionTerm);

    // The next operator of the bodies that were put in, that of the latest one first; null when none is left.
    // Behind those of a body comes the '(' of its call.
    node* NextOperator();

    // The '(' is not to come again, because its parenthesis has been removed.
    void LeaveOut(const node* open);

private:
    // A call: the '(' and ')' of its arguments and the terms between the commas.
    struct Call {
        node* function = nullptr; // the name, in lower case
        node* open = nullptr;
        node* close = nullptr;
        std::vector<const node*> arguments;

        bool Read(node* functionTerm); // false when the arguments are no flat list
        const char* Name() const { return function->text; }
    };

    const qfloat* ArgumentOf(const Call& call);
    node* CallBuiltin(const Call& call, const Builtin& builtin, const qfloat x);
    node* Expand(const Call& call, const Function* function);
    int PayForBody(const Call& call, const Function& function);
    int SuspectCircle(const Call& call);
    int CopyBody(const Call& call, const Function& function);

    Statement& statement;
    Outcome& outcome;
    Variables& variables;
    Spending& spending;
    WorkCounters& work;
    Builtins builtins;

    std::vector<node*> operators; // of the bodies that were put in, still to be applied, the next one last
    std::vector<node*> bodyTerms; // the copies of the terms of the body that is put in
    size_t longTexts = 0;         // characters of the long names that the statement's calls copied
};

// The value of a number, or of the variable that a name stands for; null for any other term.
const qfloat* valueOf(const node* term, Variables& variables);
