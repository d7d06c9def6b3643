// SPDX-License-Identifier: MIT
//
// The library's ways against the plain methods of reference_trig.h: the same special results and codes, and a
// result that is never further from the truth.
#include "../cases.h"
#include "trig_arguments.h"

namespace oracle::test_trig_reference {

using namespace trigtest;

struct Result {
    Number value;
    int code;
};

Result ours(const Function& f, const Number& x) {
    const Number y = valueOf(f, x);
    return {y, merror};
}

Result plainMethod(const Function& f, const Number& x) {
    Result r{overflowValue(0x12345678), 0};
    merror = 0;
    f.reference(x.data(), r.value.data());
    r.code = merror;
    return r;
}

// Where the plain method has lost all digits its sign is chance.
constexpr double MEANINGLESS = 1e90;

void expectNoWorse(const Function& f, const Number& x) {
    Real exact(700);
    f.exact(exact, Real(x), MPFR_RNDN);
    const Result a = ours(f, x);
    const Result b = plainMethod(f, x);
    const double error = errorInUlps(a.value, exact);
    const double plain = errorInUlps(b.value, exact);
    EXPECT_LE(error, plain + 1e-6) << f.name << " of " << show(x);
    EXPECT_EQ(a.code, 0) << f.name << " of " << show(x);
    if (plain < MEANINGLESS && b.value[1] != 0) {
        EXPECT_EQ(b.code, 0) << f.name << " of " << show(x);
        EXPECT_EQ(a.value[0], b.value[0]) << f.name << " of " << show(x);
    }
}

class TrigReference : public Seeded, public ::testing::WithParamInterface<Function> {};

Number negative(Number x) {
    x[0] = NEGATIVE_SIGN;
    return x;
}

Number number(const char* text) {
    const Number x = decimal(text[0] == '-' ? text + 1 : text);
    return text[0] == '-' ? negative(x) : x;
}

void expectSame(const char* name, const Number& x) {
    const Function& f = find(name);
    const Result a = ours(f, x);
    const Result b = plainMethod(f, x);
    EXPECT_EQ(a.value, b.value) << name << " of " << show(x) << "\n is  " << show(a.value) << "\n not "
                                << show(b.value);
    EXPECT_EQ(a.code, b.code) << name << " of " << show(x);
}

TEST_P(TrigReference, IsNeverFurtherFromTheTruth) {
    for (int i = 0; i < cases(3000); ++i) expectNoWorse(GetParam(), randomArgument(random, GetParam()));
    for (const Number& x : branchArguments(GetParam())) expectNoWorse(GetParam(), x);
}

INSTANTIATE_TEST_SUITE_P(Functions, TrigReference, ::testing::ValuesIn(FUNCTIONS),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(TrigReferenceSpecial, ZerosAreTheSame) {
    const Number plus{};
    const Number minus = negative(plus);
    for (const char* name : {"sin", "tan", "atan", "asin", "sinh", "cosh", "tanh"}) {
        expectSame(name, plus);
        expectSame(name, minus);
    }
    expectSame("acos", plus);
    expectSame("acos", minus);
}

TEST(TrigReferenceSpecial, ExactResultsAreTheSame) {
    for (const char* x : {"1", "-1"}) {
        expectSame("atan", number(x));
        expectSame("asin", number(x));
        expectSame("acos", number(x));
    }
    for (const char* x : {"200", "-200", "1000", "22000"}) expectSame("tanh", number(x));
    for (const char* x : {"1e120", "-1e120", "1e9000"}) expectSame("atan", number(x));
    Number smallest = scaled("1", -32768);
    ASSERT_EQ(smallest[1], 1U);
    expectSame("sinh", smallest);
    expectSame("sinh", negative(smallest));
}

TEST(TrigReferenceSpecial, DomainErrorsAreTheSame) {
    const Number aboveOne = [] {
        Number x = number("1");
        x[13] = 1;
        return x;
    }();
    for (const char* name : {"asin", "acos"}) {
        for (const char* x : {"1.0000001", "-1.0000001", "2", "-2", "1e9000"}) expectSame(name, number(x));
        expectSame(name, aboveOne);
        expectSame(name, negative(aboveOne));
        expectSame(name, overflowValue(0));
    }
}

// The limit of the cosine is the sine's on pi/2 - x: not the same on both sides.
TEST(TrigReferenceSpecial, LimitsOfSineAndCosineAreTheSame) {
    int refused = 0, computed = 0;
    for (const char* name : {"sin", "cos"}) {
        for (int sixteenths = -64; sixteenths <= 64; ++sixteenths) {
            Real value(1000);
            mpfr_set_si_2exp(value, 1, 333, MPFR_RNDN);
            mpfr_add_d(value, value, sixteenths / 16.0, MPFR_RNDN);
            for (const Number& x : {exactly(value), negative(exactly(value))}) {
                const Result a = ours(find(name), x);
                const Result b = plainMethod(find(name), x);
                EXPECT_EQ(a.code, b.code) << name << " of " << show(x);
                if (b.code == 3) {
                    ++refused;
                    EXPECT_EQ(a.value, b.value) << name << " of " << show(x);
                } else {
                    ++computed;
                    Real exact(700);
                    find(name).exact(exact, Real(x), MPFR_RNDN);
                    EXPECT_LE(errorInUlps(a.value, exact), 0.500001) << name << " of " << show(x);
                }
            }
        }
        for (const char* x : {"1e101", "-1e101", "1e9000", "-1e9000"}) expectSame(name, number(x));
        expectSame(name, overflowValue(0));
        expectSame(name, overflowValue(NEGATIVE_SIGN));
    }
    EXPECT_GT(refused, 200);
    EXPECT_GT(computed, 200);
}

} // namespace oracle::test_trig_reference
