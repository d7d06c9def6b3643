// SPDX-License-Identifier: MIT
//
// The list of functions, definitions as text, and the calls of user functions.
#include "Calculator.h"
#include "Helpers_String.h"
#include "clean_start.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <random>
#include <string>

namespace {

std::string repeated(const std::string& text, size_t times) {
    std::string out;
    for (size_t i = 0; i < times; i++) out += text;
    return out;
}

class Functions : public testing::Test {
protected:
    Functions() {
        deleteAllFunctions();
        deleteAllUnits();
        calc.InitializeFunctionsAndVars();
    }
    ~Functions() override { deleteAllFunctions(); }
    Functions(const Functions&) = delete;
    Functions& operator=(const Functions&) = delete;

    ZqCalculator calc;

    int Enter(const std::string& line) { return calc.ProcessEntry(line.c_str(), false); }
    int Preview(const std::string& line) { return calc.ProcessEntry(line.c_str(), true); }

    std::string Answer(const std::string& line) {
        return Enter(line) == STATUS_RESULT ? calc.resultLine : calc.message;
    }

    // A chain: f1(x)=x+1, and each of the others calls the one before it twice.
    void DefineChain(int length) {
        Enter("f1(x)=x+1");
        for (int i = 2; i <= length; i++) {
            const std::string before = "f" + std::to_string(i - 1) + "(x)";
            ASSERT_EQ(STATUS_MESSAGE, Enter("f" + std::to_string(i) + "(x)=" + before + "+" + before));
        }
    }
};

std::string nextCompletion(const char* prefix) {
    const Function* function = funcs.FindTabComplete(prefix);
    return function ? function->name : "(none)";
}

std::string allNames() {
    std::string names;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext())
        names += std::string(function->name) + " ";
    return names;
}

const char* const predefinedNames =
    "sinc tanh cosh sinh rand floor round ceil abs atan acos asin tan cos sin "
    "exp ln log sqrt ";

// --- The list ---

TEST_F(Functions, areRegisteredInTheirOrder) {
    EXPECT_EQ(std::string(predefinedNames) + "mod ", allNames());
    for (int i = 0; i < 19; i++) {
        const Function* function = funcs.Get(i);
        EXPECT_EQ(1, function->argCount);
        EXPECT_STREQ("x", function->args.first->text);
        EXPECT_EQ(nullptr, function->body);
    }
    const Function* mod = funcs.Get(19);
    EXPECT_EQ(2, mod->argCount);
    ASSERT_NE(nullptr, mod->body);
    EXPECT_EQ("mod(x,d)=x%d", mod->ToString());
}

TEST_F(Functions, mayBeInitializedAgainForAnotherCalculator) {
    Enter("mod(x,d)=x-d");
    Enter("f(x)=x");
    ZqCalculator another;
    another.european = true;
    another.tenKey = true;
    another.InitializeFunctionsAndVars();
    EXPECT_EQ(std::string(predefinedNames) + "f mod ", allNames());
    EXPECT_EQ("mod(x,d)=x%d", funcs.FindByName("mod", 2)->ToString());
    EXPECT_TRUE(another.european);
    EXPECT_TRUE(another.tenKey);
    EXPECT_STREQ("", another.message);
}

TEST_F(Functions, areWalkedByPosition) {
    EXPECT_STREQ("sinc", funcs.Get(0)->name);
    EXPECT_STREQ("sinc", funcs.Get(-5)->name);
    EXPECT_STREQ("tanh", funcs.GetNext()->name);
    EXPECT_STREQ("cosh", funcs.Get(2)->name);
    EXPECT_STREQ("mod", funcs.Get(19)->name);
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_EQ(nullptr, funcs.Get(20));
    EXPECT_EQ(nullptr, funcs.Get(1000));
    EXPECT_EQ(nullptr, funcs.GetNext());
    EXPECT_STREQ("sinc", funcs.Get(0)->name);
    CFunctionList empty;
    EXPECT_EQ(nullptr, empty.Get(0));
    EXPECT_EQ(nullptr, empty.GetNext());
    EXPECT_EQ(nullptr, empty.FindTabComplete(""));
    EXPECT_EQ(99, empty.tabIndex);
}

TEST_F(Functions, mayBeDeletedDuringTheWalk) {
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext())
        if (function->name[0] == 's') funcs.DeleteFunction(function);
    EXPECT_EQ("tanh cosh rand floor round ceil abs atan acos asin tan cos exp ln log mod ", allNames());
    Function stranger;
    funcs.DeleteFunction(&stranger);
    funcs.DeleteFunction(nullptr);
    EXPECT_STREQ("tanh", funcs.Get(0)->name);
}

TEST_F(Functions, areFoundByNameAndNumberOfParameters) {
    Enter("f(x,y)=x");
    Enter("F(x)=x");
    EXPECT_EQ(2, funcs.FunctionExists("F", 2)->argCount);
    EXPECT_EQ(1, funcs.FunctionExists("f", 1)->argCount);
    EXPECT_EQ(2, funcs.FunctionExists("f", -1)->argCount);
    EXPECT_EQ(nullptr, funcs.FunctionExists("f", 3));
    EXPECT_EQ(nullptr, funcs.FunctionExists("f", 0));
    EXPECT_EQ(nullptr, funcs.FunctionExists("", -1));
    EXPECT_EQ(nullptr, funcs.FunctionExists("lo", -1));
}

TEST_F(Functions, whoseNamesBeginWithLogAreThePredefinedOnes) {
    EXPECT_STREQ("sinc", funcs.FunctionExists("log2", 1)->name);
    EXPECT_STREQ("sinc", funcs.FunctionExists("LOGARITHM", -1)->name);
    EXPECT_EQ(nullptr, funcs.FunctionExists("log2", 2));
    EXPECT_EQ(nullptr, funcs.FindByName("log2", -1));
    EXPECT_STREQ("log", funcs.FindByName("LOG", 1)->name);
}

TEST_F(Functions, addFunctionReadsParametersUpToAnEmptyPiece) {
    char list[] = "a,b,,c";
    const Function* function = funcs.AddFunction("many", list, nullptr);
    ASSERT_EQ(2, function->argCount);
    EXPECT_STREQ("a", function->args.first->text);
    EXPECT_STREQ("b", function->args.last->text);
    EXPECT_EQ(0, memcmp(list, "a\0b\0,c", 7));
    char none[] = "";
    EXPECT_EQ(0, funcs.AddFunction("none", none, nullptr)->argCount);
}

TEST_F(Functions, aRedefinitionMovesToTheEndAndAPredefinedOneStays) {
    Enter("f(x)=x");
    Enter("g(x)=x");
    Enter("f(x)=x+1");
    EXPECT_EQ(std::string(predefinedNames) + "mod g f ", allNames());
    char parameter[] = "x";
    Deq body;
    body.Push(StrDuplicate("x"))->type = TERM_NAME;
    EXPECT_EQ(nullptr, funcs.AddFunction("Sqrt", parameter, &body));
    EXPECT_EQ(nullptr, funcs.AddFunction("log7", parameter, &body));
    EXPECT_EQ(std::string(predefinedNames) + "mod g f ", allNames());
}

// --- Completion ---

TEST_F(Functions, completionGoesFromTheNewestToTheOldestThenStartsOver) {
    for (int round = 0; round < 2; round++) {
        for (const char* name : {"sqrt", "sin", "sinh", "sinc", "(none)"})
            EXPECT_EQ(name, nextCompletion("s"));
    }
    Enter("sum(a,b)=a+b");
    Enter("Scale(x)=2*x");
    for (const char* name : {"Scale", "sum", "sqrt", "sin", "sinh", "sinc", "(none)", "Scale"})
        EXPECT_EQ(name, nextCompletion("S"));
    funcs.TabCompleteReset();
    EXPECT_EQ(99 + 22, funcs.tabIndex);
    EXPECT_EQ("sinc", nextCompletion("SINC"));
    EXPECT_EQ(0, funcs.tabIndex);
    EXPECT_EQ("(none)", nextCompletion("sinc"));
    EXPECT_EQ(99 + 22, funcs.tabIndex);
    EXPECT_EQ("(none)", nextCompletion("sincere"));
}

TEST_F(Functions, anEmptyPrefixCompletesToEveryFunction) {
    std::string names;
    for (std::string name = nextCompletion(""); name != "(none)"; name = nextCompletion(""))
        names = name + " " + names;
    EXPECT_EQ(allNames(), names);
}

TEST_F(Functions, completionStartsAtTheNewestHoweverManyThereAre) {
    for (int i = 0; i < 150; i++) Enter("t" + std::to_string(i) + "x(x)=x");
    EXPECT_EQ("t149x", nextCompletion("t"));
    EXPECT_EQ("t148x", nextCompletion("t"));
    Enter("t150x(x)=x");
    EXPECT_EQ("t150x", nextCompletion("t"));
}

// --- Definitions as text ---

TEST_F(Functions, whatIsPrintedDefinesTheSameFunction) {
    for (const char* line :
         {"p(x)=x*2", "p()=5", "p(a,b,c)=a+b*c", "p(x)=0x1F+0b11*0o17-x", "p(x)=1.5e-12*x+2.5k-3m",
          "p(x)=x km->mi", "p(x)=(km->mi)*x", "p(x)=x*(5km/h->m/s)", "p(x)=sin(x)^2+mod(x,3)!",
          "p(x)=x>=2&&x!=3||x<<2==8", "p(x)=-x--2", "p(x)={[x]}", "p(x)=1,000,000.5*x", "p(x)=p(x)+1",
          "p(x)=unknown(x)+rate", "p(x)=1e300*x/1e-300", "p(x)=3 m^2->ft^2", "p(x)=x @ 3 | 4 & 5 % 2 > 1"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc.message;
        const std::string printed = funcs.FindByName("p", -1)->ToString();
        EXPECT_EQ(printed + "\n", calc.message);
        Deq body;
        funcs.FindByName("p", -1)->body->CopyTo(&body);
        Enter("del p");
        ASSERT_EQ(STATUS_MESSAGE, Enter(printed)) << printed << calc.message;
        EXPECT_EQ(printed + "\n", calc.message);
        const Function* again = funcs.FindByName("p", -1);
        ASSERT_EQ(body.count, again->body->count) << printed;
        const node* a = body.first;
        for (const node* b = again->body->first; b; a = a->next, b = b->next) {
            EXPECT_EQ(a->type, b->type) << printed;
            EXPECT_EQ(a->level, b->level) << printed;
            EXPECT_STREQ(a->text ? a->text : "", b->text ? b->text : "") << printed;
            if (a->type != TERM_NUMBER) continue;
            EXPECT_EQ(0, qcmp(*a->value, *b->value)) << printed;
        }
        Enter("del p");
    }
}

TEST_F(Functions, numbersArePrintedWithoutTheDisplaysSettings) {
    calc.sciMode = SCI_PREFIX;
    calc.sigFigs = 2;
    calc.useSeparator = true;
    calc.displayBase = 16;
    EXPECT_EQ("f(x)=12345.678+x\n", Answer("f(x)=12345.678+x"));
    calc.european = true;
    EXPECT_EQ("f(x)=12345.678+x\n", Answer("f(x)=12345,678+x"));
}

TEST_F(Functions, longDefinitionsAreCutInTheBufferAlone) {
    const std::string body = "1" + repeated("+1a", 3300); // each of them is shown as 1.0e-18
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(x)=" + body));
    const std::string shown = calc.message;
    EXPECT_EQ(TEXT_SIZE - 1, shown.size());
    EXPECT_EQ('\n', shown.back());
    std::string buffer(TEXT_SIZE + 1, '~');
    const Function* function = funcs.FindByName("f", 1);
    function->FuncToStr(buffer.data());
    EXPECT_EQ(TEXT_SIZE - 1, strlen(buffer.c_str()));
    EXPECT_EQ('~', buffer[TEXT_SIZE]);
    EXPECT_EQ(strlen("f(x)=1") + 3300 * strlen("+1.0e-18"), function->ToString().size());
    const std::string list = Answer("g(x)=x;list");
    EXPECT_EQ("mod(x,d)=x%d\n... 2 more\n", list);
    EXPECT_EQ(STATUS_MESSAGE, Enter("f"));
}

TEST_F(Functions, defineFunctionAnswersOneOrMinusOne) {
    EXPECT_EQ(1, calc.DefineFunction(" f\t( x )\r\n= x * 2 "));
    EXPECT_STREQ("f(x)=x*2\n", calc.message);
    EXPECT_EQ(-1, calc.DefineFunction(""));
    EXPECT_STREQ("** ERROR: can't define an empty function **\n", calc.message);
    for (const char* text : {"f", "f(", "f()", "f(x", "f(x)", "f(x)=", "(x)=x", "f(x)x=x"})
        EXPECT_EQ(-1, calc.DefineFunction(text)) << text;
    EXPECT_EQ("ans = 4\n", Answer("f(2)"));
}

TEST_F(Functions, argumentListsAreCheckedPieceByPiece) {
    EXPECT_TRUE(calc.IsValidArgList("x"));
    EXPECT_TRUE(calc.IsValidArgList("x,y_1,Z"));
    EXPECT_FALSE(calc.IsValidArgList(""));
    EXPECT_STREQ("** ERROR: invalid argument:  **\n", calc.message);
    EXPECT_FALSE(calc.IsValidArgList("x,2y,3z"));
    EXPECT_STREQ("** ERROR: invalid argument: 2y **\n", calc.message);
    EXPECT_FALSE(calc.IsValidArgList("x,"));
    EXPECT_FALSE(calc.IsValidArgList("_x"));
}

TEST_F(Functions, unitsAreFoundByTheirDefinitionsHead) {
    calc.unitDefs.Push(StrDuplicate("unit furlong=220 yard"));
    calc.unitDefs.Push(StrDuplicate("unit fur=1 furlong"));
    EXPECT_STREQ("unit furlong=220 yard", calc.UnitExists("furlong")->text);
    EXPECT_STREQ("unit fur=1 furlong", calc.UnitExists("fur")->text);
    EXPECT_EQ(nullptr, calc.UnitExists("Furlong"));
    EXPECT_EQ(nullptr, calc.UnitExists("furl"));
    EXPECT_EQ(nullptr, calc.UnitExists(""));
    EXPECT_EQ("unit furlong=220 yard\nunit fur=1 furlong\n", Answer("list units"));
    EXPECT_EQ("** deleted unit furlong **\n", Answer("del furlong"));
    EXPECT_EQ("unit fur=1 furlong\n", Answer("list units"));
}

TEST_F(Functions, deletingAVariableForgetsItsName) {
    Enter("x=1");
    EXPECT_STREQ("x", calc.lastName);
    Enter("del x");
    EXPECT_EQ(nullptr, calc.lastName);
    EXPECT_EQ(nullptr, calc.lastValue);
    EXPECT_EQ("ans = 2\n", Answer("2"));
    Enter("del all");
    EXPECT_EQ(nullptr, calc.lastName);
}

TEST_F(Functions, gospelAlternates) {
    const std::string first = Answer("gospel");
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
    EXPECT_GT(std::count(first.begin(), first.end(), '.'), 3);
    EXPECT_EQ("    << type 'gospel' for more >>\n", first.substr(first.rfind("    <<")));
    EXPECT_EQ("gospel", Answer("GOSPEL"));
    EXPECT_EQ(STATUS_COMMAND, calc.status);
    EXPECT_EQ(first, Answer("gospel"));
    EXPECT_EQ(STATUS_MESSAGE, calc.status);
}

TEST_F(Functions, whatIsEchoedBeyondTheTextsSizeIsRefused) {
    const std::string thousand(1000, 'x');
    EXPECT_EQ("** ERROR: 10000 max characters to show **\n", Answer(repeated("echo " + thousand + ";", 12)));
    EXPECT_EQ(9u * 1001u, strlen(calc.echoText));
    EXPECT_EQ(STATUS_MESSAGE, Enter("echo " + std::string(9990, 'y')));
    EXPECT_EQ(9991u, strlen(calc.echoText));
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + std::string(5000, 'a')));
    EXPECT_EQ("convert+" + std::string(1000, 'a'), calc.echoText);
    EXPECT_EQ(STATUS_COMMAND, Enter("convert " + repeated("a ", 1000)));
    EXPECT_EQ("convert+" + repeated("a+", 500), calc.echoText);
}

TEST_F(Functions, randGivesAnotherNumberEachTimeUpToItsArgument) {
    double last = -1;
    int changes = 0;
    for (int i = 0; i < 200; i++) {
        ASSERT_EQ(STATUS_RESULT, Enter("rand(10)"));
        double value = 0;
        qtoe(calc.result, &value);
        EXPECT_GE(value, 0);
        EXPECT_LE(value, 10);
        changes += value != last;
        last = value;
    }
    EXPECT_GE(changes, 199);
}

TEST(Factorial, isThePlainProduct) {
    for (int n : {-5, 0, 1}) EXPECT_EQ(1.0, factorial(n));
    EXPECT_EQ(120.0, factorial(5));
    EXPECT_EQ(2432902008176640000.0, factorial(20));
    EXPECT_TRUE(std::isinf(factorial(171)));
}

// --- Calls ---

// The evaluation as the rule words it: after each call the operators of the whole list are ordered anew.
int evaluateByRule(ZqCalculator& calc, const std::string& line) {
    if (calc.ProcessStr(line.c_str()) != 0 || calc.VerifyTermsSyntax() != 0) return STATUS_ERROR;
    merror = 0;
    std::vector<node*> order;
    size_t next = 0;
    const auto orderAll = [&] {
        order.assign(static_cast<size_t>(calc.terms.count) + 1, nullptr);
        calc.opOrder = order.data();
        calc.OrderOperatorStack();
        calc.opOrder = nullptr;
        next = 0;
    };
    for (orderAll(); order[next];) {
        node* op = order[next++];
        if (op->type != OP_OPEN) {
            if (!calc.ProcPair(op, op->type)) return STATUS_ERROR;
            continue;
        }
        calc.reorder = 0;
        if (calc.ProcParenth(op) < 0) return STATUS_ERROR;
        if (calc.reorder) orderAll();
    }
    if (calc.terms.count != 1) return STATUS_ERROR;
    return calc.Node2Num(calc.terms.first, calc.result);
}

std::string randomTerm(std::mt19937& random, const std::vector<std::string>& names, int depth) {
    static const char* const operators[] = {"+", "-", "*", "^", "*-", "^-", "-", "<", "&&", "=="};
    switch (depth == 0 ? random() % 2 : random() % 9) {
    case 0: return std::to_string(random() % 4);
    case 1: return names[random() % names.size()];
    case 2: return "(" + randomTerm(random, names, depth - 1) + ")";
    case 3: return "one(" + randomTerm(random, names, depth - 1) + ")";
    case 4:
        return "two(" + randomTerm(random, names, depth - 1) + "," + randomTerm(random, names, depth - 1) +
               ")";
    case 5: return "sqrt(" + randomTerm(random, names, depth - 1) + ")";
    case 6: return "ident(" + randomTerm(random, names, depth - 1) + ")!";
    default:
        return randomTerm(random, names, depth - 1) + operators[random() % 10] +
               randomTerm(random, names, depth - 1);
    }
}

TEST_F(Functions, callsGiveWhatOrderingEverythingAnewGives) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    ZqCalculator rule;
    int results = 0;
    for (int i = 0; i < 4000; i++) {
        if (i % 20 == 0) {
            deleteAllFunctions();
            deleteAllUnits();
            calc.InitializeFunctionsAndVars();
            rule.InitializeVarsList();
            Enter("ident(x)=x");
            // Now and then a function that calls itself: both ways end with the same error.
            Enter("one(x)=" + randomTerm(random, {"x", "pi", "v"}, random() % 10 == 0 ? 2 : 0) + "+x");
            Enter("two(x,y)=" + randomTerm(random, {"x", "y"}, 1));
            for (const char* line : {"v=3", "x=2", "y=5"}) Enter(line), rule.ProcessEntry(line, false);
        }
        const std::string line = randomTerm(random, {"v", "x", "y"}, 4);
        if (line.size() > 300) continue;
        const int status = Enter(line);
        const std::string message = calc.message;
        const int expected = evaluateByRule(rule, line);
        ASSERT_EQ(expected, status) << line << "\n" << message << rule.message;
        if (expected == STATUS_ERROR) {
            ASSERT_EQ(rule.message, message) << line;
            continue;
        }
        qfixintegers(rule.result);
        ASSERT_EQ(0, memcmp(rule.result, calc.result, sizeof(qfloat))) << line;
        results++;
    }
    EXPECT_GT(results, 500);
}

TEST_F(Functions, aThousandCallsVisitEachTermOnce) {
    Enter("f(x)=x*2+1");
    // 4 terms a call and a '+' between two of them; the body has 5.
    const std::string line = "f(1)" + repeated("+f(1)", 999);
    const uint64_t typed = 4 * 1000 + 999;
    EXPECT_EQ("ans = 3000\n", Answer(line));
    EXPECT_EQ(5000u, calc.work.copied);
    EXPECT_EQ(typed + 5000u, calc.work.ordered);
    EXPECT_EQ(3 * typed, calc.work.checked);
    // Each call: its parenthesis twice and two operators; then the sums.
    EXPECT_EQ(4u * 1000u + 999u, calc.work.reduced);
}

TEST_F(Functions, nestedCallsVisitEachTermOnce) {
    Enter("f(x)=x+1");
    const std::string line = repeated("f(", 90) + "0" + repeated(")", 90);
    EXPECT_EQ("ans = 90\n", Answer(line));
    EXPECT_EQ(270u, calc.work.copied);
    EXPECT_EQ(3u * 90u + 1u + 270u, calc.work.ordered);
}

TEST_F(Functions, callsNestedDeeperThanAHundredAreSuspected) {
    Enter("f(x)=x+1");
    EXPECT_EQ("ans = 100\n", Answer(repeated("f(", 100) + "0" + repeated(")", 100)));
    EXPECT_EQ("** ERROR 5.1: circular function suspected: f **\n",
              Answer(repeated("f(", 101) + "0" + repeated(")", 101)));
    EXPECT_EQ("ans = 0\n", Answer(repeated("sin(", 200) + "0" + repeated(")", 200)));
}

TEST_F(Functions, manyParametersCostTheirTermsOnly) {
    std::string parameters = "a0";
    std::string sum = "a0";
    std::string arguments = "1";
    for (int i = 1; i < 1200; i++) {
        parameters += ",a" + std::to_string(i);
        arguments += ",1";
        if (i < 800) sum += "+a" + std::to_string(i);
    }
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(" + parameters + ")=" + sum)) << calc.message;
    EXPECT_EQ("ans = 800\n", Answer("f(" + arguments + ")"));
    EXPECT_EQ(1599u, calc.work.copied);
}

TEST_F(Functions, anArgumentWithoutTextOrValueIsReported) {
    ASSERT_EQ(0, calc.ProcessStr("sqrt(1)"));
    node* argument = calc.terms.Get(2);
    argument->type = TERM_NAME;
    ASSERT_EQ(nullptr, argument->text);
    EXPECT_EQ(nullptr, calc.ProcFunction(calc.terms.first));
    EXPECT_STREQ("** ERROR 5: invalid argument in function sqrt **\n", calc.message);
}

TEST_F(Functions, aCallThatIsNoFlatListIsLeftAsItIs) {
    for (const char* text :
         {"sqrt(1+2)", "sqrt(-1)", "sqrt((1))", "SQRT(,)", "mod(1,)", "mod(1", "mod(1,2"}) {
        ASSERT_EQ(0, calc.ProcessStr(text));
        const int32_t count = calc.terms.count;
        const std::string name = calc.terms.first->text;
        EXPECT_EQ(calc.terms.Get(1), calc.ProcFunction(calc.terms.first)) << text;
        EXPECT_EQ(count, calc.terms.count);
        EXPECT_EQ(name, calc.terms.first->text);
    }
}

// --- Nothing typed may hang ---

TEST_F(Functions, aPreviewOfTooMuchWorkShowsNothing) {
    DefineChain(25);
    EXPECT_EQ(STATUS_ERROR, Preview("f25(1)"));
    EXPECT_STREQ("** ERROR: too much work for a preview **\n", calc.message);
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_LE(calc.work.reduced, 20001u);
    EXPECT_EQ(STATUS_ERROR, Preview("1;f25(1);2"));
    EXPECT_STREQ("", calc.resultLine);
    EXPECT_EQ(STATUS_RESULT, Preview("f10(1)"));
    EXPECT_STREQ("ans = 1024\n", calc.resultLine);
    EXPECT_EQ("ans = 131072\n", Answer("f17(1)")); // an entry has no such limit
}

TEST_F(Functions, aPreviewsStatementsShareItsLimit) {
    DefineChain(11);
    ASSERT_EQ(STATUS_RESULT, Preview("f11(1)"));
    EXPECT_EQ(STATUS_ERROR, Preview(repeated("f11(1);", 900)));
    EXPECT_EQ(STATUS_RESULT, Preview("f11(1)"));
}

TEST_F(Functions, aPreviewOfTooManyCopiesShowsNothing) {
    Enter("wide(x)=x" + repeated("+x", 4900));
    Enter("wider(x)=wide(x)" + repeated("+wide(x)", 500));
    EXPECT_EQ(STATUS_ERROR, Preview("wider(1)"));
    EXPECT_LE(calc.work.copied, 210000u);
    EXPECT_LE(calc.work.reduced, 20001u);
}

int checks = 0;
int checksUntilStop = 0;
std::clock_t lastCheck = 0;
double longestWork = 0; // milliseconds of processor time between two checks

// What the sanitizers add is not the engine's.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define IS_SANITIZED
#endif
#endif
#ifdef IS_SANITIZED
constexpr double longestAllowed = 500;
#else
constexpr double longestAllowed = 10;
#endif

bool countChecks() {
    const std::clock_t now = std::clock();
    if (checks++ > 0) {
        longestWork = std::max(longestWork, 1000.0 * static_cast<double>(now - lastCheck) / CLOCKS_PER_SEC);
    }
    lastCheck = now;
    return checks >= checksUntilStop;
}

void stopAfter(ZqCalculator& calc, int number) {
    checks = 0;
    checksUntilStop = number;
    longestWork = 0;
    calc.interruptCheck = countChecks;
}

TEST_F(Functions, aLongEntryIsAskedOftenAndStops) {
    DefineChain(25);
    stopAfter(calc, 200);
    EXPECT_EQ("** ERROR: interrupted **\n", Answer("y=f25(1)"));
    EXPECT_TRUE(calc.interrupted);
    EXPECT_EQ(nullptr, calc.VariableExists("y"));
    EXPECT_LE(calc.work.reduced + calc.work.copied, 200u * 256u + 20u);
}

TEST_F(Functions, theWorkBetweenTwoChecksIsShort) {
    // The dearest there is: circular functions of huge arguments, and bodies of thousands of terms.
    Enter("wide(x)=x" + repeated("+x", 4900));
    stopAfter(calc, 1000000);
    Enter("0" + repeated("+sin(1e99)", 990));
    EXPECT_GT(checks, 10);
    EXPECT_LT(longestWork, longestAllowed);
    stopAfter(calc, 1000000);
    Enter("1" + repeated("+wide(1)", 100));
    EXPECT_GT(checks, 1500);
    EXPECT_LT(longestWork, longestAllowed);
}

TEST_F(Functions, theStatementsOfAnInterruptedEntryAreTakenBack) {
    DefineChain(25);
    Enter("a=1;b=2;del2=3;sigfigs 7;mode deg;5");
    Enter("keep(x)=x+1");
    Enter("gone(x)=x+2");
    calc.unitDefs.Push(StrDuplicate("unit fur=220 yard"));
    const std::string functionsBefore = Answer("list");
    Enter("b=2");
    stopAfter(calc, 3);
    EXPECT_EQ("** ERROR: interrupted **\n",
              Answer("a=10; c=4; del b; sigfigs 50; mode rad; scimode eng; display hex; european on;"
                     "histstack off; keep(x)=x; keep(x)=x*2; del gone; fresh(x)=x; del sqrt; del fur; "
                     "gospel; 7; f25(1)"));
    EXPECT_EQ("ans = 1\n", Answer("a"));
    EXPECT_EQ("ans = 2\n", Answer("b"));
    EXPECT_EQ("** ERROR 7: invalid term = c **\n", Answer("c"));
    EXPECT_EQ(functionsBefore, Answer("list"));
    EXPECT_EQ("ans = 3\n", Answer("sqrt(9)"));
    EXPECT_STREQ("sqrt", funcs.Get(18)->name);
    EXPECT_EQ("unit fur=220 yard\n", Answer("list units"));
    EXPECT_TRUE(calc.degreeMode);
    EXPECT_EQ(7, calc.sigFigs);
    EXPECT_EQ(SCI_AUTO, calc.sciMode);
    EXPECT_EQ(10, calc.displayBase);
    EXPECT_FALSE(calc.european);
    EXPECT_TRUE(calc.histStack);
    EXPECT_EQ(STATUS_MESSAGE, Enter("gospel"));
    ASSERT_NE(nullptr, calc.vars.first);
    EXPECT_STREQ("ans", calc.vars.first->text);
}

TEST_F(Functions, anEntryInterruptedAfterDelAllHasItsVariables) {
    DefineChain(25);
    Enter("a=1;b=a/3");
    Enter("42");
    stopAfter(calc, 1);
    EXPECT_EQ("** ERROR: interrupted **\n", Answer("del all; x=1; f25(1)"));
    EXPECT_STREQ("42", calc.lastAnswer);
    EXPECT_STREQ("ans", calc.lastName);
    EXPECT_EQ("ans = 42\n", Answer("ans"));
    EXPECT_EQ("ans = 1\n", Answer("b*3"));
    EXPECT_EQ(4, calc.vars.count);
    calc.interruptCheck = nullptr;
    EXPECT_EQ("ans = 8\n", Answer("x=8;f1(x)-1"));
}

TEST_F(Functions, anEntryThatIsNotInterruptedKeepsItsChanges) {
    stopAfter(calc, 1000000);
    EXPECT_EQ("ans = 3\n", Answer("f(x)=x; del mod; f(x)=x+1; f(2)"));
    EXPECT_EQ("f(x)=x+1\n", Answer("list"));
    EXPECT_EQ("** ERROR: divide by zero **\n", Answer("g(x)=x;y=1;1/0"));
    EXPECT_EQ("ans = 1\n", Answer("y"));
    EXPECT_EQ("g(x)=x\n", Answer("g"));
}

TEST_F(Functions, circularFunctionsEndWithTheirError) {
    const char* const error = "** ERROR 5.1: circular function suspected: f **\n";
    Enter("f(x)=f(x)+1");
    EXPECT_EQ(error, Answer("f(1)"));
    Enter("f(x)=f(x)+f(x)");
    EXPECT_EQ(error, Answer("f(1)"));
    // The list of terms has a limit too, however long the body is.
    Enter("f(x)=x" + repeated("+x", 4900) + "+f(x)");
    EXPECT_EQ(error, Answer("f(1)"));
    EXPECT_LE(calc.work.copied, 250000u);
    Enter("g(x)=x");
    Enter("f(x)=g(x)+1");
    Enter("g(x)=f(x)+1");
    EXPECT_EQ(error, Answer("f(1)"));
    EXPECT_EQ("** ERROR 5.1: circular function suspected: g **\n", Answer("g(1)"));
}

TEST_F(Functions, longArgumentsAreNotCopiedWithoutEnd) {
    Enter("f(x,y)=x" + repeated("+x", 4000));
    const std::string name(9900, 'a');
    EXPECT_EQ("** ERROR 5.1: circular function suspected: f **\n", Answer("f(" + name + ",1)"));
    EXPECT_EQ("ans = 4001\n", Answer("f(0x" + std::string(4000, '0') + "1,1)"));
}

} // namespace
