// SPDX-License-Identifier: MIT
//
// Evaluation in place: each operator replaces itself and its operands by one number term, and each call of a
// function itself by its value or its body (Calls.cpp).
#pragma once

#include "EntryContext.h"
#include "Program.h"

#include <memory>
#include <vector>

struct Builtin;
struct Function;

class Evaluator : EntryContext {
public:
    explicit Evaluator(const EntryContext& context) : EntryContext(context) {}

    // The methods of the same names of the calculator.
    int ProcTermsLoop();
    int ProcParenth(node* open);
    node* ProcPair(node* op, int32_t code);
    int Node2Num(const node* term, qfloat value);
    node* ProcFunction(node* functionTerm);

private:
    static constexpr qfloat NO_OPERAND = {}; // beside an operator that has one operand only

    void Trace() const; // of parentheses that are removed

    // The value of a number, or of the variable that a name stands for; null for any other term. ValueOf does
    // so with a message.
    const qfloat* KnownValue(const node* term);
    const qfloat* ValueOf(const node* term);
    const qfloat* RefuseTerm(const node* term);
    node* FinishPair(node* op, node* left, node* right, const qfloat value, const char* name);
    int ConversionFactor(const node* source, const node* destination, qfloat value,
                         std::vector<uint64_t>* charges = nullptr);
    node* ProcConversion(node* arrow);

    // --- Calls ---

    // Of a call the name, in lower case, and its place in the statement.
    struct Caller {
        TextRange place;
        const char* name;
    };

    // A call: the '(' and ')' of its arguments and the terms between the commas.
    struct Call {
        node* function = nullptr; // the name, in lower case
        node* open = nullptr;
        node* close = nullptr;
        std::vector<const node*> arguments;

        bool Read(node* functionTerm); // false when the arguments are no flat list
        const char* Name() const { return function->text; }
        operator Caller() const { return {{function->start, function->length}, Name()}; }
    };

    const qfloat* ArgumentOf(const Call& call);
    node* CallBuiltin(const Call& call, const Builtin& builtin, const qfloat x);
    int Compute(const Builtin& builtin, const char* name, const qfloat x, qfloat value);
    node* Expand(const Call& call, const Function* function);
    int RefuseArgument(const node* argument, const char* name);
    int CheckCall(const Function* function, const Caller& caller, int32_t level);
    int PayForBody(const Function& function, const Caller& caller, int32_t terms);
    int SuspectCircle(const Caller& caller);
    int CopyBody(const Call& call, const Function& function);

    // --- Calls that run the programs of functions (Run.cpp) ---

    // A number, or a name that stands for one or for nothing.
    struct Operand {
        const qfloat* value = nullptr;
        const node* name = nullptr;
    };

    struct Register {
        qfloat number = {};
        Operand operand;
    };

    // A call that runs.
    struct Frame {
        std::vector<Operand> arguments;
        std::vector<Register> registers;
        int32_t level = 0;            // of its '(', were the bodies put into the statement
        int32_t terms = 0;            // that the statement would have beside those of the body
        std::unique_ptr<Frame> inner; // of the calls in the body, one after the other
    };

    // NoProgram: a function that is called has none.
    enum class Ending { Value, Failed, NoProgram };

    Operand OperandAt(const Program& program, const Frame& current, Program::Place place);
    int PayForOperator();
    int RunPair(int32_t code, const Operand& left, const Operand& right, qfloat value);
    Ending RunCall(const Program& program, const Program::Call& call, Frame& current, Register& to);
    static const node* UnitAt(const Program& program, const Frame& current, Program::Place place);
    int FactorOf(const Program::Conversion& units, const node* from, const node* to, qfloat value);
    Ending RunConversion(const Program& program, const Program::Step& step, const Frame& current,
                         qfloat value);
    Ending RunBody(const Function* function, const Caller& caller, Frame& current, int32_t terms,
                   Operand& result);
    Ending RunStatementsCall(const Call& call, const Function& function);
    void PutInPlace(const Call& call, const Operand& result);

    Frame frame;              // of the statement's call that runs
    bool isExpanding = false; // the statement's calls are replaced by bodies from now on

    // Of the bodies that were put in, still to be applied, the next one last. Behind those of a body comes
    // the '(' of its call.
    std::vector<node*> operators;
    std::vector<node*> bodyTerms; // the copies of the terms of the body that is put in
    size_t longTexts = 0;         // characters of the long names that the statement's calls copied
};

// --- What the operators compute (Operators.cpp) ---

// What applying the operator takes beyond others, in units of work.
uint64_t extraWork(int32_t code, const qfloat left, const qfloat right);

// Applies the operator of the code; a factorial has no right operand. Returns 0 and the value, or -1 with a
// message. An error of the number library is left in `merror`, an overflow too where an operand is the
// overflow value.
int applyOperator(int32_t code, const qfloat left, const qfloat right, qfloat value, Outcome& outcome);

// What computes with the overflow value overflows, wherever that came from: sets `merror` then.
void noteOverflow(const qfloat operand);
