// SPDX-License-Identifier: MIT
//
// The calculator as other programs have it.
#include "tallyquill/Calculator.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <string>

using tallyquill::Answer;
using tallyquill::Calculator;
using tallyquill::Real;
using Status = tallyquill::Answer::Status;

TEST(CalculatorClass, AnswersWithValueNameAndText) {
    Calculator calculator;
    const Answer answer = calculator.Evaluate("2+3*4");
    EXPECT_EQ(answer.status, Status::Value);
    EXPECT_EQ(answer.value, Real(14));
    EXPECT_EQ(answer.name, "ans");
    EXPECT_EQ(answer.text, "14");
    EXPECT_EQ(answer.echo, "");
}

TEST(CalculatorClass, ValuesHaveAllTheirDigits) {
    Calculator calculator;
    const Answer answer = calculator.Evaluate("x = 1/3");
    EXPECT_EQ(answer.name, "x");
    EXPECT_EQ(answer.text, "0.3333333333");
    EXPECT_EQ(answer.value, Real(1) / 3);
}

TEST(CalculatorClass, KeepsWhatItsLinesDefine) {
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("f(x) = x^2+1").status, Status::Message);
    EXPECT_EQ(calculator.Evaluate("sigfigs 20").status, Status::Message);
    EXPECT_EQ(calculator.Evaluate("f(3)").value, Real(10));
    EXPECT_EQ(calculator.Evaluate("1/3").text, "0.33333333333333333333");
    EXPECT_EQ(calculator.Evaluate("5 km->m").value, Real(5000));
}

TEST(CalculatorClass, AnErrorHasAMessageAndAPlace) {
    Calculator calculator;
    const Answer answer = calculator.Evaluate("2+wdith");
    EXPECT_EQ(answer.status, Status::Error);
    EXPECT_NE(answer.text.find("wdith"), std::string::npos) << answer.text;
    EXPECT_EQ(answer.text.find('\n'), std::string::npos);
    EXPECT_EQ(answer.start, 2U);
    EXPECT_EQ(answer.length, 5U);
    EXPECT_EQ(calculator.Evaluate("2+3").text, "5"); // and nothing is lost
}

TEST(CalculatorClass, RefusesWhatIsNoText) {
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("1\x01").text, "** Invalid character/encoding used. **");
    EXPECT_EQ(calculator.Evaluate(std::string_view("1\0+1", 4)).text,
              "** Invalid character/encoding used. **");
    EXPECT_EQ(calculator.Evaluate(std::string(10000, '1')).text, "** ERROR: 10000 max characters **");
}

TEST(CalculatorClass, CommandsAreHandedOver) {
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("clear").status, Status::Command);
    EXPECT_EQ(calculator.Evaluate("clear").text, "clear");
    const Answer echo = calculator.Evaluate("echo hello; 1+1");
    EXPECT_EQ(echo.echo, "hello");
    EXPECT_EQ(echo.text, "2");
}

TEST(CalculatorClass, APreviewChangesNothing) {
    Calculator calculator;
    calculator.Evaluate("x = 5");
    EXPECT_EQ(calculator.Preview("x = 7").value, Real(7));
    EXPECT_EQ(calculator.Preview("x+1").text, "6");
    EXPECT_EQ(calculator.Evaluate("x").text, "5");
}

TEST(CalculatorClass, OneAfterTheOtherBeginsAnew) {
    {
        Calculator calculator;
        calculator.Evaluate("f(x) = 2*x");
        calculator.Evaluate("y = 3");
        calculator.Evaluate("unit furlongs=201.168 m");
        calculator.Evaluate("mode rad");
        EXPECT_THROW(Calculator(), std::logic_error);
    }
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("f(2)").status, Status::Error);
    EXPECT_EQ(calculator.Evaluate("y").status, Status::Error);
    EXPECT_EQ(calculator.Evaluate("1 furlongs->m").status, Status::Error);
    EXPECT_EQ(calculator.Evaluate("sin(30)").value, Real(0.5));
}

TEST(CalculatorClass, ALongEvaluationCanBeInterrupted) {
    Calculator calculator;
    calculator.Evaluate("x = 5");
    calculator.Evaluate("f0(x)=x+1");
    for (int i = 1; i <= 40; ++i) {
        const std::string n = std::to_string(i), before = std::to_string(i - 1);
        calculator.Evaluate("f" + n + "(x)=f" + before + "(x)+f" + before + "(x)");
    }
    calculator.SetInterruptCheck([] { return true; });
    EXPECT_EQ(calculator.Evaluate("x = f40(1)").text, "** ERROR: interrupted **");
    calculator.SetInterruptCheck(nullptr);
    EXPECT_EQ(calculator.Evaluate("x").text, "5");
}

TEST(CalculatorClass, LeavesNoCodeToTheNextNumbers) {
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("1/0").status, Status::Error);
    EXPECT_EQ(tallyquill::takeError(), 0);
}

// A locale with a decimal comma, made in a folder of its own: few machines have one.
class GermanLocale : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        const std::string make = "localedef -i de_DE -f UTF-8 " + folder + "/de_DE.UTF-8 2>/dev/null";
        ASSERT_NE(std::system(make.c_str()), -1); // it warns of details by its status
        setenv("LOCPATH", folder.c_str(), 1);
    }
    static void TearDownTestSuite() {
        unsetenv("LOCPATH");
        EXPECT_EQ(std::system(("rm -r " + folder).c_str()), 0);
    }
    void SetUp() override {
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }

private:
    static inline std::string folder = "/tmp/tallyquill.locale.XXXXXX";
};

TEST_F(GermanLocale, TheCalculatorReadsAndWritesPoints) {
    Calculator calculator;
    EXPECT_EQ(calculator.Evaluate("1 mi->km").text, "1.609344");
    EXPECT_EQ(calculator.Evaluate("1.5*2").text, "3");
    EXPECT_EQ(calculator.Preview("2.5 km->m").text, "2500");
    EXPECT_STREQ(std::localeconv()->decimal_point, ","); // the program's own is as it was
}

TEST_F(GermanLocale, NumbersReadAndWritePoints) {
    EXPECT_EQ(Real("1.5"), Real(3) / 2);
    EXPECT_EQ(tallyquill::toString(Real(1.5)), "1.5");
}
