// SPDX-License-Identifier: MIT
//
// The names that programs are compiled against: each is still there, public, with its type. What does not
// hold does not compile.
#include "Calculator.h"

#include <gtest/gtest.h>

namespace {

// Whether a class has a member of this type, its own or inherited.
template <class Member, class Class> constexpr bool has(Member Class::*member) {
    return member != nullptr;
}

template <class Member> constexpr bool calculatorHas(Member ZqCalculator::*member) {
    return has<Member, ZqCalculator>(member);
}

static_assert(calculatorHas<bool>(&ZqCalculator::fullEntry));
static_assert(calculatorHas<node*>(&ZqCalculator::target));
static_assert(calculatorHas<bool>(&ZqCalculator::degreeMode));
static_assert(calculatorHas<int32_t>(&ZqCalculator::sciMode));
static_assert(calculatorHas<int32_t>(&ZqCalculator::sigFigs));
static_assert(calculatorHas<bool>(&ZqCalculator::european));
static_assert(calculatorHas<bool>(&ZqCalculator::histStack));
static_assert(calculatorHas<bool>(&ZqCalculator::tenKey));
static_assert(calculatorHas<int32_t>(&ZqCalculator::displayBase));
static_assert(calculatorHas<Deq>(&ZqCalculator::unitDefs));
static_assert(calculatorHas<bool>(&ZqCalculator::twosComp));
static_assert(calculatorHas<bool>(&ZqCalculator::useSeparator));
static_assert(calculatorHas<char>(&ZqCalculator::separatorChar));
static_assert(calculatorHas<int32_t>(&ZqCalculator::status));
static_assert(calculatorHas<char[10000]>(&ZqCalculator::message));
static_assert(calculatorHas<char[10000]>(&ZqCalculator::echoText));
static_assert(calculatorHas<qfloat>(&ZqCalculator::result));
static_assert(calculatorHas<char[10000]>(&ZqCalculator::resultLine));
static_assert(calculatorHas<qfloat*>(&ZqCalculator::lastValue));
static_assert(calculatorHas<char*>(&ZqCalculator::lastName));
static_assert(calculatorHas<char[10000]>(&ZqCalculator::lastAnswer));
static_assert(calculatorHas<CHistory>(&ZqCalculator::history));
static_assert(calculatorHas<Deq>(&ZqCalculator::vars));
static_assert(calculatorHas<Deq>(&ZqCalculator::terms));
static_assert(calculatorHas<int32_t>(&ZqCalculator::opCount));
static_assert(calculatorHas<int32_t>(&ZqCalculator::reorder));
static_assert(calculatorHas<node**>(&ZqCalculator::opOrder));
static_assert(calculatorHas<double>(&ZqCalculator::entryCount));
static_assert(calculatorHas<bool>(&ZqCalculator::initialized));
static_assert(calculatorHas<bool>(&ZqCalculator::interrupted));
static_assert(calculatorHas<bool (*)()>(&ZqCalculator::interruptCheck));

static_assert(calculatorHas<int(const char*, bool)>(&ZqCalculator::ProcessEntry));
static_assert(calculatorHas<int(const char*)>(&ZqCalculator::Calculate));
static_assert(calculatorHas<int(int, char*, int, int, bool, char)>(&ZqCalculator::FormatResult));
static_assert(calculatorHas<void(char*) const>(&ZqCalculator::ProcessStringEuropean));
static_assert(calculatorHas<int(const char*)>(&ZqCalculator::ProcessStr));
static_assert(calculatorHas<int(const char*, qfloat)>(&ZqCalculator::Str2Num));
static_assert(calculatorHas<int()>(&ZqCalculator::VerifyTermsSyntax));
static_assert(calculatorHas<void()>(&ZqCalculator::OrderOperatorStack));
static_assert(calculatorHas<int()>(&ZqCalculator::ProcTermsLoop));
static_assert(calculatorHas<int(node*)>(&ZqCalculator::ProcParenth));
static_assert(calculatorHas<node*(node*, int32_t)>(&ZqCalculator::ProcPair));
static_assert(calculatorHas<int(const node*, qfloat)>(&ZqCalculator::Node2Num));
static_assert(calculatorHas<node*(node*)>(&ZqCalculator::ProcFunction));
static_assert(calculatorHas<int(const char*)>(&ZqCalculator::DefineFunction));
static_assert(calculatorHas<bool(const char*) const>(&ZqCalculator::IsValidVariable));
static_assert(calculatorHas<bool(const char*)>(&ZqCalculator::IsValidArgList));
static_assert(calculatorHas<node*(const char*) const>(&ZqCalculator::VariableExists));
static_assert(calculatorHas<node*(const char*) const>(&ZqCalculator::UnitExists));
static_assert(calculatorHas<void()>(&ZqCalculator::InitializeVarsList));
static_assert(calculatorHas<void()>(&ZqCalculator::InitializeFunctionsAndVars));

static_assert(has<node*>(&node::prev) && has<node*>(&node::next) && has<int32_t>(&node::type) &&
              has<char*>(&node::text) && has<int32_t>(&node::level) && has<qfloat*>(&node::value));
static_assert(has<node*>(&Deq::first) && has<node*>(&Deq::last) && has<int32_t>(&Deq::count));
static_assert(has<node*(node*)>(&Deq::Push) && has<node*(char*)>(&Deq::Push));
static_assert(has<node*(node*, int)>(&Deq::Insert) && has<node*(char*, int)>(&Deq::Insert) &&
              has<node*(char*, node*)>(&Deq::Insert));
static_assert(has<node*(int) const>(&Deq::Get) && has<void()>(&Deq::Clear));
static_assert(has<node*(node*)>(&Deq::Del) && has<node*(int)>(&Deq::Del));
static_assert(has<void(Deq*) const>(&Deq::CopyTo) && has<void(char*) const>(&Deq::SPrint));
static_assert(has<int32_t() const>(&Deq::CountNumberOfOperators));

static_assert(has<char*>(&Function::name) && has<Deq>(&Function::args) && has<int32_t>(&Function::argCount) &&
              has<Deq*>(&Function::body) && has<void(char*) const>(&Function::FuncToStr));
static_assert(has<Function*(const char*, char*, const Deq*)>(&CFunctionList::AddFunction));
static_assert(has<void(const Function*)>(&CFunctionList::DeleteFunction));
static_assert(has<Function*(const char*, int32_t) const>(&CFunctionList::FunctionExists));
static_assert(has<Function*(int)>(&CFunctionList::Get) && has<Function*()>(&CFunctionList::GetNext));
static_assert(has<Function*(const char*)>(&CFunctionList::FindTabComplete));
static_assert(has<void()>(&CFunctionList::TabCompleteReset) && has<int32_t>(&CFunctionList::tabIndex));

TEST(Face, HasTheFreeNamesThatProgramsUse) {
    EXPECT_STREQ("&&", ops[0].text);
    EXPECT_EQ(13, getOp(OP_LOGICAL_AND).precedence);
    EXPECT_EQ(OP_LOGICAL_AND, isOp("&&"));
    EXPECT_TRUE(isOp(static_cast<int32_t>(TERM_DONE)));
    EXPECT_STREQ("\x11", CVstr);
    EXPECT_STREQ("\x10", CVSstr);
    EXPECT_EQ(6.0, factorial(3));
    EXPECT_EQ(0, checkMathError(nullptr, nullptr));
    char text[FORMAT_SIZE];
    qtoascii(qone, text, 10, SCI_AUTO, '\0');
    EXPECT_STREQ("1", text);
    EXPECT_EQ(nullptr, funcs.FunctionExists("noSuchName", -1));
}

} // namespace
