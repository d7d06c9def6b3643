// SPDX-License-Identifier: MIT
//
// What a person defined, from one run to the next.
#include "FunctionsFile.h"

#include "FileKeeping.h"
#include "FunctionsMerge.h"
#include "functions_fixture.h"
#include "temporary_folder.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

const char* const EMPTY_FILE =
    "### FUNCTIONS ###\n"
    "mod(x,d)=x%d\n"
    "### VARIABLES ###\n"
    "ans=0\n"
    "pi=3.141592653589793238462643383279502884197169399375105820974944592307816406286208"
    "998628034825342117068\n"
    "### CUSTOM UNITS ###\n"
    "### HISTORY ###\n";

// A calculator as one run of the program has it, and the file between two runs.
class FunctionsFile : public testing::Test {
protected:
    FunctionsFile() { StartAgain(); }
    ~FunctionsFile() override { deleteAllFunctions(); }
    FunctionsFile(const FunctionsFile&) = delete;
    FunctionsFile& operator=(const FunctionsFile&) = delete;

    TemporaryFolder folder;
    const std::string path = folder.File("functions.txt");
    std::unique_ptr<ZqCalculator> calc;

    void StartAgain() {
        deleteAllFunctions();
        deleteAllUnits();
        calc = std::make_unique<ZqCalculator>();
        calc->InitializeFunctionsAndVars();
    }

    int Enter(const std::string& line) { return calc->ProcessEntry(line.c_str(), false); }
    std::string Answer(const std::string& line) {
        return Enter(line) == STATUS_RESULT ? calc->resultLine : calc->message;
    }
    std::string Text() const { return FunctionsFileText(*calc); }

    // Ends this run and begins the next one.
    FunctionsFileResult NextRun() {
        EXPECT_TRUE(WriteFileAtomically(path, Text()));
        StartAgain();
        return ReadFunctionsFile(*calc, path);
    }

    // The file comes through whole: what is written after it was read is the same text.
    void ExpectNothingLost() {
        const std::string before = Text();
        const FunctionsFileResult read = NextRun();
        EXPECT_TRUE(read.opened);
        EXPECT_FALSE(read.damaged) << before;
        EXPECT_EQ(before, Text());
    }

    // A run that begins with this file; whether the file counts as damaged.
    bool IsDamaged(const std::string& text) {
        StartAgain();
        putContent(path, text);
        const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
        EXPECT_TRUE(read.opened);
        return read.damaged;
    }
};

std::string fileWith(const std::string& lines, const std::string& history = "") {
    return "### FUNCTIONS ###\n" + lines + "### VARIABLES ###\n### CUSTOM UNITS ###\n### HISTORY ###\n" +
           history;
}

// --- The text ---

TEST_F(FunctionsFile, aNewCalculatorHasFourSections) {
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(FunctionsFile, eachSectionHasItsLines) {
    Enter("square(x) = x ^ 2");
    Enter("rate = 0.25");
    Enter("unit smoot = 67 inch");
    Enter("square(7)");
    std::string expected = EMPTY_FILE;
    const auto put = [&expected](const std::string& behind, const std::string& line) {
        expected.insert(expected.find(behind) + behind.size(), line);
    };
    put("mod(x,d)=x%d\n", "square(x)=x^2\n");
    put("ans=", "49\n");
    expected.erase(expected.find("49\n0\n") + 3, 2);
    put("342117068\n", "rate=0.25\n");
    put("### CUSTOM UNITS ###\n", "unit smoot=67 inch\n");
    put("### HISTORY ###\n", "square(x) = x ^ 2\nrate = 0.25\nunit smoot = 67 inch\nsquare(7)\n");
    EXPECT_EQ(expected, Text());
    ExpectNothingLost();
    EXPECT_EQ("ans = 9\n", Answer("square(3)"));
    EXPECT_EQ("ans = 134\n", Answer("2 smoot->inch"));
}

TEST_F(FunctionsFile, settingsDoNotChangeTheText) {
    Enter("f(x)=12345.678*x");
    Enter("v=123456.5");
    Enter("histstack off");
    const std::string before = Text();
    calc->european = calc->tenKey = calc->useSeparator = calc->twosComp = true;
    calc->displayBase = 16;
    calc->sigFigs = 2;
    calc->sciMode = SCI_PREFIX;
    EXPECT_EQ(before, Text());
    EXPECT_NE(std::string::npos, before.find("\nv=123456.5\n"));
}

TEST_F(FunctionsFile, writingLeavesTheEngineAsItIs) {
    for (const char* line : {"1+1", "2+2", "3+3", "unit smoot=67 inch", "huge=1e4931", "tiny=-1e-4931"})
        Enter(line);
    EXPECT_EQ(STATUS_ERROR, Enter("1/0"));
    calc->history.HistLocUp();
    calc->history.HistLocUpWithMatch("2");
    const std::string message = calc->message;
    merror = 2;
    Text();
    EXPECT_EQ(2, merror);
    merror = 0;
    EXPECT_STREQ("2+2", calc->history.GetHistoryStr(-1));
    EXPECT_TRUE(calc->history.matching);
    EXPECT_EQ(message, calc->message);
    EXPECT_EQ(STATUS_ERROR, calc->status);
    EXPECT_EQ(nullptr, funcs.GetNext()); // a walk is ended, not led astray
    EXPECT_STREQ("sinc", funcs.Get(0)->name);
}

// --- Functions ---

TEST_F(FunctionsFile, definitionsOfAllKindsAreThereAgain) {
    for (const char* line :
         {"a(x)=0x1F+0b11*0o17-x", "b(x)=1.5e-12*x+2.5k-3m", "c(x)=(x km->mi)+(5 km/h->m/s)", "d()=5",
          "e(x)=x+1e9999", "f(x,y,z)={[x]}*-y--z!", "g(x)=1,000,000.5*x", "h(x)=sin(x)^2+mod(x,3)",
          "i(x)=x>=2&&x!=3||x<<2==8 @ 3 | 4 & 5", "j(x)=j(x-1)"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 3\n", Answer("a(0x1F+45-3)")); // 31 + 3 * 15 - 73
}

TEST_F(FunctionsFile, namesakesWithOtherNumbersOfArgumentsAreThereAgain) {
    for (const char* line : {"f(x)=x", "f(x,y)=x*y", "F(x,y,z)=x*y*z", "f(x)=x+100"}) Enter(line);
    ExpectNothingLost();
    EXPECT_EQ("ans = 103\n", Answer("f(3)"));
    EXPECT_EQ("ans = 12\n", Answer("f(3,4)"));
    EXPECT_EQ("ans = 60\n", Answer("f(3,4,5)"));
}

TEST_F(FunctionsFile, aFunctionMayUseOneThatIsDefinedFurtherDown) {
    for (const char* line :
         {"g(x,y)=x", "f(x)=g(x,-1)+1", "h(x)=f(x)*g(2,x)", "f(x)=g(x,-2)+2", "g(x,y)=x-y"}) {
        Enter(line);
    }
    const std::string text = Text();
    EXPECT_LT(text.find("h(x)="), text.find("f(x)="));
    EXPECT_LT(text.find("f(x)="), text.find("g(x,y)="));
    ExpectNothingLost();
    EXPECT_EQ("ans = 9\n", Answer("f(5)"));   // 5+2+2
    EXPECT_EQ("ans = -27\n", Answer("h(5)")); // 9*(2-5)
}

TEST_F(FunctionsFile, aDeletedFunctionCanBeDefinedAgainInTheNextRun) {
    for (const char* line : {"g(x,y)=x-y", "f(x)=g(x,1)", "del g"}) Enter(line);
    ExpectNothingLost();
    EXPECT_EQ(nullptr, funcs.FindByName("g", -1));
    EXPECT_EQ(STATUS_ERROR, Enter("f(5)"));
    EXPECT_EQ(STATUS_MESSAGE, Enter("g(x,y)=x-y"));
    EXPECT_EQ("ans = 4\n", Answer("f(5)"));
}

TEST_F(FunctionsFile, aFunctionInThePlaceOfADeletedPredefinedOneIsThereAgain) {
    for (const char* line : {"del sin", "del cos", "f(x)=sin(x)+1", "Sin(x)=x*1000", "f(x,y)=cos(x)"})
        Enter(line);
    ExpectNothingLost();
    EXPECT_EQ("ans = 2000\n", Answer("sin(2)"));
    EXPECT_EQ("ans = 2001\n", Answer("f(2)"));
    EXPECT_EQ("ans = 1\n", Answer("cos(0)")); // predefined functions are there in every run
}

TEST_F(FunctionsFile, aFunctionWhoseNameBeginsLikeALogarithmIsThereAgain) {
    for (const char* name : {"sinc", "tanh", "cosh", "sinh", "rand", "floor", "round", "ceil", "abs", "atan",
                             "acos", "asin", "tan", "cos", "sin", "exp", "ln", "log", "sqrt"}) {
        Enter(std::string("del ") + name);
    }
    ASSERT_EQ(STATUS_MESSAGE, Enter("logistic(x)=1/(1+x)")) << calc->message;
    ASSERT_EQ(STATUS_MESSAGE, Enter("loga(x,y)=x+y")) << calc->message;
    ExpectNothingLost();
    EXPECT_EQ("ans = 0.25\n", Answer("logistic(3)"));
    EXPECT_EQ("ans = 7\n", Answer("loga(3,4)"));
    EXPECT_EQ("ans = 2\n", Answer("sqrt(4)"));
    EXPECT_EQ("ans = 3\n", Answer("log(1000)"));
}

TEST_F(FunctionsFile, aRefusedFunctionLeavesThePredefinedOne) {
    EXPECT_TRUE(IsDamaged(fileWith("sin(x)=x+*\nsqrt(x,)=5\n")));
    EXPECT_EQ("ans = 3\n", Answer("sqrt(9)"));
    EXPECT_EQ("ans = 0\n", Answer("sin(0)"));
}

TEST_F(FunctionsFile, definitionsThatUseUnitsAndVariablesAreThereAgain) {
    for (const char* line : {"rate=1.5", "unit smoot=67 inch", "f(x)=x*rate", "g(x)=x*(2 smoot->inch)",
                             "del rate", "rate=2.5"}) {
        Enter(line);
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 5\n", Answer("f(2)"));
    EXPECT_EQ("ans = 268\n", Answer("g(2)"));
}

TEST_F(FunctionsFile, definitionsInTheSettingsThatHoldAreThereAgain) {
    calc->european = true;
    for (const char* line : {"unit ell=1,1 m", "len(x.y)=x*1,5 ell->m", "odd(x)=5 km->mi+3 m->ft"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 5.3\n", Answer("len(2,0)+2"));
    EXPECT_EQ("odd(x)=5 km->mi+3m->ft\n", Answer("odd"));
    calc->european = true;
    EXPECT_EQ("ans = 2,75\n", Answer("2,5 ell->m"));
}

TEST_F(FunctionsFile, aDefinitionThatIsLongerThanAnEntryIsThereAgain) {
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(x)=x" + repeated("+1a", 3000))); // each of them is shown as 1.0e-18
    ASSERT_EQ(STATUS_MESSAGE, Enter("g(x)=x*(3 km->m)+(2 m->cm)" + repeated("+1a", 3000)));
    EXPECT_GT(funcs.FindByName("g", -1)->ToString().size(), TEXT_SIZE);
    ExpectNothingLost();
    EXPECT_EQ("ans = 5\n", Answer("round(f(5))"));
    EXPECT_EQ("ans = 15200\n", Answer("round(g(5))"));
}

TEST_F(FunctionsFile, longEntriesAreReadWhole) {
    const std::string definition = "f(x)=x" + repeated("+1", 4900);
    Enter(definition);
    Enter("1" + repeated("+1", 20000));
    ExpectNothingLost();
    EXPECT_EQ(definition, calc->history.GetHistoryStr(2));
    EXPECT_EQ("ans = 4900\n", Answer("f(0)"));
}

TEST_F(FunctionsFile, lettersBeyondAsciiInABodyAreThereAgain) {
    Enter("f(x)=x+caf\xe9");
    ExpectNothingLost();
}

// --- Variables ---

TEST_F(FunctionsFile, piKeepsItsFullPrecision) {
    Enter("circle=pi");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ(0, memcmp(qpi, *calc->VariableExists("pi")->value, sizeof(qfloat)));
    Enter("pi=3");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ("ans = 3\n", Answer("pi"));
}

TEST_F(FunctionsFile, variablesAreThereAgainWithAHundredDigits) {
    for (const char* line : {"third=1/3", "big=2^300", "small=-1/7e200", "huge=1e4900", "tiny=1e-4900",
                             "neg=-5", "Third=2/3", "hex=0xFFFFFFFF", "mixed_1=1234567.25"}) {
        Enter(line);
    }
    ExpectNothingLost();
    const std::string third = "\nthird=0." + std::string(100, '3') + "\n";
    EXPECT_NE(std::string::npos, Text().find(third));
    EXPECT_EQ("ans = 1\n", Answer("third*3"));
}

TEST_F(FunctionsFile, namesOfCommandsAreNamesInDefinitions) {
    for (const char* name :
         {"del", "unit", "echo", "echo5", "exit", "list", "mode", "sigfigs", "convert", "gospel"}) {
        Enter(name + std::string("=5"));
        Enter(name + std::string("(x)=x*(2 km->m)"));
    }
    calc->history.Clear();
    ExpectNothingLost();
    EXPECT_EQ(12, calc->vars.count); // ans and pi too
    EXPECT_NE(nullptr, funcs.FindByName("del", 1));
}

TEST_F(FunctionsFile, theLastAnswerIsThereAgain) {
    Enter("6*7");
    ExpectNothingLost();
    EXPECT_EQ("ans = 43\n", Answer("ans+1"));
}

TEST_F(FunctionsFile, aVariableThatHoldsTheOverflowValueIsLeftOut) {
    Enter("big=5");
    Enter("next=6");
    calc->history.Clear();
    qinfin(*calc->VariableExists("big")->value);
    EXPECT_EQ(std::string::npos, Text().find("big="));
    EXPECT_NE(std::string::npos, Text().find("\nnext=6\n"));
    EXPECT_EQ(std::string::npos, Text().find("OVERFLOW"));
    EXPECT_FALSE(NextRun().damaged);
}

// --- Units ---

TEST_F(FunctionsFile, unitsAreThereAgain) {
    for (const char* line :
         {"unit smoot=67 inch", "unit zorkmid=-primitive", "unit purse=12.5 zorkmid/m^2"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 25\n", Answer("2 purse->zorkmid/m^2"));
    EXPECT_EQ(3, calc->unitDefs.count);
}

TEST_F(FunctionsFile, aUnitThatIsThereIsNotDefinedTwice) {
    Enter("unit smoot=67 inch");
    ASSERT_TRUE(WriteFileAtomically(path, Text()));
    EXPECT_FALSE(ReadFunctionsFile(*calc, path).damaged);
    EXPECT_EQ(1, calc->unitDefs.count);
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67 inch\nunit smoot=68 inch\nunit smoot=67 inch\n")));
    EXPECT_EQ(1, calc->unitDefs.count);
    EXPECT_EQ("ans = 67\n", Answer("1 smoot->inch"));
}

TEST_F(FunctionsFile, unitsMayBeInAnyOrder) {
    EXPECT_FALSE(IsDamaged(fileWith("unit ca=3 cb\nunit cb=2 cc\nunit cc=5 m\n")));
    EXPECT_EQ("ans = 30\n", Answer("1 ca->m"));
    ExpectNothingLost();
}

TEST_F(FunctionsFile, aUnitKeepsItsValueWhenAnotherInItWasDefinedAnewOrDeleted) {
    for (const char* line : {"unit aa=5 m", "unit bb=2.5 aa/s", "unit cc=3 aa", "del aa", "unit aa=7 m",
                             "unit dd=4 s", "unit ee=1/dd", "del dd"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    }
    EXPECT_NE(std::string::npos,
              Text().find("\nunit bb=12.5 meter / second\nunit cc=15 meter\nunit aa=7 m\n"));
    ExpectNothingLost();
    EXPECT_EQ("ans = 12.5\n", Answer("1 bb->m/s"));
    EXPECT_EQ("ans = 15\n", Answer("1 cc->m"));
    EXPECT_EQ("ans = 7\n", Answer("1 aa->m"));
    EXPECT_EQ("ans = 0.5\n", Answer("2 ee->1/s"));
}

TEST_F(FunctionsFile, aUnitOfManyNamesIsKeptByItsValueInALineThatCanBeReadAgain) {
    for (const char* line : {"unit many=m^1000", "unit most=many^99/s^3", "del many"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 1\n", Answer("1 most*s^3->" + repeated("m^1000*", 98) + "m^1000"));
}

// --- History ---

TEST_F(FunctionsFile, theHistoryIsThereAgainInItsOrder) {
    const std::vector<std::string> lines = {"1+1",         "### HISTORY ###",
                                            "# a comment", "### FUNCTIONS ###",
                                            "a=5 # five",  "  blanks  ",
                                            "caf\xe9 = 5", "a;b",
                                            "del a",       "clear"};
    for (const std::string& line : lines) Enter(line);
    ExpectNothingLost();
    ASSERT_EQ(static_cast<int>(lines.size()), calc->history.count);
    for (size_t i = 0; i < lines.size(); i++) {
        EXPECT_EQ(lines[i], calc->history.GetHistoryStr(static_cast<int>(lines.size() - i)));
    }
}

TEST_F(FunctionsFile, aLineFeedInTheHistoryBecomesABlank) {
    calc->history.InsertNewEntry("1+\n2+\r3\x01+\t4");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ(1, calc->history.count);
    EXPECT_STREQ("1+ 2+ 3 +\t4", calc->history.GetHistoryStr(1));
}

TEST_F(FunctionsFile, theHistoryKeepsItsNewestLines) {
    for (int i = 0; i < 99; i++) Enter("1+" + std::to_string(i));
    ASSERT_TRUE(WriteFileAtomically(path, Text()));
    StartAgain();
    calc->history.SetMaxEntries(30);
    EXPECT_FALSE(ReadFunctionsFile(*calc, path).damaged);
    EXPECT_EQ(30, calc->history.count);
    EXPECT_STREQ("1+98", calc->history.GetHistoryStr(1));
    EXPECT_STREQ("1+69", calc->history.GetHistoryStr(30));
}

// --- Reading ---

TEST_F(FunctionsFile, aMissingFileIsNotOpened) {
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_FALSE(read.opened);
    EXPECT_FALSE(read.damaged);
    EXPECT_FALSE(ReadFunctionsFile(*calc, folder.Path()).opened);
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(FunctionsFile, europeanAndTenKeyDoNotCountAndStay) {
    Enter("f(x,y)=1.5*x-2e-3*y");
    Enter("v=1234.5");
    const std::string before = Text();
    ASSERT_TRUE(WriteFileAtomically(path, before));
    for (const bool european : {false, true}) {
        StartAgain();
        calc->european = european;
        calc->tenKey = !european;
        EXPECT_FALSE(ReadFunctionsFile(*calc, path).damaged);
        EXPECT_EQ(european, calc->european);
        EXPECT_EQ(!european, calc->tenKey);
        EXPECT_EQ(before, Text());
    }
}

TEST_F(FunctionsFile, whatWasEnteredInEuropeanAndTenKeyModeIsThereAgain) {
    calc->european = true;
    EXPECT_EQ("f(x)=1.5*x\n", Answer("f(x)=1,5*x"));
    calc->tenKey = true;
    Enter("g(x)=10x+20,5-");
    Enter("v=1,5+2-");
    ExpectNothingLost();
    EXPECT_EQ("ans = 3\n", Answer("f(2)"));
    EXPECT_EQ("ans = -0.5\n", Answer("v"));
}

bool interruptAtOnce() {
    return true;
}

TEST_F(FunctionsFile, readingLeavesAFreshStart) {
    merror = 0;
    putContent(path, fileWith("f(x)=x+1\nbad bad bad\necho shown\nv=5\ndisp v\nw=1" + repeated("+1", 4000) +
                                  "\nz=7*0e5\n",
                              "v=5\n"));
    calc->fullEntry = false;
    calc->interruptCheck = interruptAtOnce;
    EXPECT_TRUE(ReadFunctionsFile(*calc, path).damaged);
    EXPECT_FALSE(calc->fullEntry);
    EXPECT_EQ(interruptAtOnce, calc->interruptCheck);
    EXPECT_FALSE(calc->interrupted);
    EXPECT_EQ(STATUS_RESULT, calc->status);
    EXPECT_STREQ("", calc->message);
    EXPECT_STREQ("", calc->echoText);
    EXPECT_STREQ("", calc->resultLine);
    EXPECT_STREQ("", calc->lastAnswer);
    EXPECT_EQ(nullptr, calc->lastName);
    EXPECT_EQ(nullptr, calc->lastValue);
    EXPECT_EQ(calc->vars.first, calc->target);
    EXPECT_EQ(0, calc->terms.count);
    EXPECT_EQ(0, qcmp(qzero, calc->result));
    EXPECT_EQ(0, calc->entryCount);
    EXPECT_EQ(0, calc->history.location);
    EXPECT_EQ(0, merror);
    calc->interruptCheck = nullptr;
    EXPECT_EQ(STATUS_MESSAGE, Enter("")); // nothing is repeated
    EXPECT_EQ("ans = 6\n", Answer("f(v)"));
    EXPECT_EQ("ans = 4001\n", Answer("w"));
}

TEST_F(FunctionsFile, noLineRepeatsTheHistory) {
    Enter("a=1");
    Enter("a=a+1");
    Enter("");
    EXPECT_EQ("ans = 3\n", Answer("a"));
    Enter("a=a+1");
    EXPECT_TRUE(WriteFileAtomically(path, Text()));
    EXPECT_FALSE(
        ReadFunctionsFile(*calc, path).damaged); // in the same run: the entry is the newest of the history
    EXPECT_EQ("ans = 4\n", Answer("a"));
}

TEST_F(FunctionsFile, theFirstLineIsLeftOut) {
    EXPECT_TRUE(IsDamaged("a=5\nb=6\n### HISTORY ###\n"));
    EXPECT_EQ(nullptr, calc->VariableExists("a"));
    EXPECT_NE(nullptr, calc->VariableExists("b"));
}

TEST_F(FunctionsFile, commentsBlankLinesAndOtherLineEndsAreNoDamage) {
    EXPECT_FALSE(IsDamaged("### FUNCTIONS ###\r\n"
                           "# mine\r\n\r\n   \r\n"
                           "f ( x ) = x + 1 # adds one\r\n"
                           "v = 5\r\n"
                           "### HISTORY ###\r\n"
                           "v\r\n"));
    EXPECT_EQ("ans = 6\n", Answer("f(v)"));
    EXPECT_STREQ("v", calc->history.GetHistoryStr(2));
}

TEST_F(FunctionsFile, anOrdinaryFileIsNoDamage) {
    EXPECT_FALSE(IsDamaged(EMPTY_FILE));
    EXPECT_FALSE(IsDamaged(fileWith("v=5\n", "v\n")));
    EXPECT_FALSE(IsDamaged("### FUNCTIONS ###\n### HISTORY ###\n"));
}

TEST_F(FunctionsFile, damageIsNoticedAndTheRestIsRead) {
    EXPECT_TRUE(IsDamaged(""));
    EXPECT_TRUE(IsDamaged("\n"));
    EXPECT_TRUE(IsDamaged("### VARIABLES ###\nv=5\n### HISTORY ###\nv\n"));
    EXPECT_EQ("ans = 5\n", Answer("v"));
    EXPECT_TRUE(IsDamaged("### FUNCTIONS ###\n### VARIABLES ###\nv=5\n"));
    EXPECT_EQ("ans = 5\n", Answer("v"));
    EXPECT_TRUE(IsDamaged(fileWith("v=5\n", "v\nv+")));
    EXPECT_EQ(2, calc->history.count);
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=x+*2\ng(x)=x\n")));
    EXPECT_EQ("ans = 5\n", Answer("g(5)"));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67 nonsense\nv=5\n")));
    EXPECT_EQ("ans = 5\n", Answer("v"));
}

TEST_F(FunctionsFile, controlCharactersAreDamage) {
    using namespace std::string_literals;
    EXPECT_TRUE(IsDamaged(fileWith("v=12\0\0\0\nw=6\n"s)));
    EXPECT_EQ(nullptr, calc->VariableExists("v")); // 12 may be a part of the number
    EXPECT_NE(nullptr, calc->VariableExists("w"));
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=12\0\0\0\nw=6\n"s)));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("\fv=5\nw=6\n")));
    EXPECT_EQ(nullptr, calc->VariableExists("v"));
    EXPECT_TRUE(IsDamaged(fileWith("f(x)=x+\x02"
                                   "a\nw=6\n")));
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67\x1b inch\nw=6\n")));
    EXPECT_EQ(0, calc->unitDefs.count);
    EXPECT_NE(nullptr, calc->VariableExists("w"));
    EXPECT_TRUE(IsDamaged(fileWith("", "1+1\n2\0+2\n3\n"s)));
    EXPECT_EQ(3, calc->history.count);
    EXPECT_TRUE(IsDamaged(std::string(4096, '\0')));
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(FunctionsFile, whatDefinesNothingHasNoEffect) {
    for (const char* line :
         {"sigfigs 20",  "mode deg", "scimode eng", "display hex", "european on", "histstack off", "gospel",
          "del mod",     "del all",  "rem pi",      "clear",       "exit",        "pause 5000",    "echo a=5",
          "convert a=5", "list",     "5+6",         "pi",          "pi==3",       "3=4",           "unit",
          "unit smoot",  "=5",       "a b=5",       "sqrt(4)",     "x=1;mode deg"}) {
        EXPECT_TRUE(IsDamaged(fileWith(std::string(line) + "\nv=5\n"))) << line;
        EXPECT_EQ("ans = 5\n", Answer("v")) << line;
        calc->vars.Del(calc->VariableExists("v"));
        calc->history.Clear();
        StartAgain();
        ReadFunctionsFile(*calc, path);
        EXPECT_EQ(10, calc->sigFigs) << line;
        EXPECT_FALSE(calc->degreeMode) << line;
        EXPECT_EQ(SCI_AUTO, calc->sciMode) << line;
        EXPECT_EQ(10, calc->displayBase) << line;
        EXPECT_FALSE(calc->european) << line;
        EXPECT_TRUE(calc->histStack) << line;
        EXPECT_EQ(3, calc->vars.count) << line; // ans, pi and v
        EXPECT_EQ(0, qcmp(qzero, *calc->vars.first->value)) << line;
        EXPECT_NE(nullptr, funcs.FindByName("mod", 2)) << line;
    }
}

TEST_F(FunctionsFile, namesOfCommandsMayHaveBlanksBehindThem) {
    EXPECT_FALSE(IsDamaged(fileWith(" del = 5\nsigfigs 20 (x) = x\npause = 6\n")));
    EXPECT_EQ("ans = 11\n", Answer("del+pause"));
    EXPECT_EQ(10, calc->sigFigs);
}

// --- Files that would take too long ---

std::string bomb(const std::string& variable) {
    std::string lines = "f0(x)=x+1\n";
    for (int i = 1; i <= 40; i++) {
        const std::string call = "f" + std::to_string(i - 1) + "(x)";
        lines += "f" + std::to_string(i) + "(x)=" + call + "+" + call + "\n";
    }
    return lines + variable + "=f40(1)\n";
}

TEST_F(FunctionsFile, aDefinitionThatTakesTooLongIsLeftAlone) {
    const std::string text = fileWith(bomb("a") + "b=2\n");
    putContent(path, text);
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(1U, read.unread);
    EXPECT_EQ(nullptr, calc->VariableExists("a"));
    EXPECT_EQ("ans = 2\n", Answer("b"));
    EXPECT_EQ("ans = 16\n", Answer("f3(1)"));
    std::string known = text;
    known.erase(known.find("a=f40(1)\n"), strlen("a=f40(1)\n"));
    EXPECT_EQ(known, read.text);
}

TEST_F(FunctionsFile, allDefinitionsTogetherHaveALimit) {
    std::string lines = "b=2\n" + bomb("a");
    for (int i = 0; i < 1000; i++) lines += "a" + std::to_string(i) + "=f40(1)\n";
    putContent(path, fileWith(lines));
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(1001U, read.unread);
    EXPECT_EQ("ans = 2\n", Answer("b"));
}

TEST_F(FunctionsFile, anyNumberOfPlainDefinitionsIsRead) {
    std::string functions, variables;
    for (int i = 0; i < 12000; i++) {
        const std::string number = std::to_string(i);
        functions += "f" + number + "(x,y)=x*y+" + std::string(70, '1') + "\n";
        variables += "v" + number + "=1." + std::string(99, '3') + "\n";
        variables += "w" + number + "=2." + std::string(99, '7') + "\n";
        variables += "x" + number + "=3." + std::string(99, '1') + "\n";
    }
    putContent(path, fileWith(functions + variables));
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(0U, read.unread);
    EXPECT_EQ("ans = 3\n", Answer("f11999(2,3)-" + std::string(70, '1') + "-3"));
    EXPECT_EQ("ans = 3.111111111\n", Answer("x11999"));
}

TEST_F(FunctionsFile, whatWasLeftAloneStaysInTheFileWithEverySave) {
    std::string text = fileWith(bomb("a"));
    text.erase(text.find("a=f40(1)\n"), strlen("a=f40(1)\n"));
    text.insert(text.find("### CUSTOM"), "a=f40(1)\n");
    putContent(path, text);
    for (int run = 0; run < 3; run++) {
        StartAgain();
        const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
        EXPECT_FALSE(read.damaged);
        EXPECT_EQ(1U, read.unread);
        FunctionsMerge merge;
        merge.Know(read.text);
        std::error_code reason;
        for (int save = 0; save < 2; save++) {
            Enter("b" + std::to_string(save) + "=1");
            EXPECT_TRUE(merge.Write(path, Text(), reason));
            EXPECT_NE(std::string::npos, contentOf(path).find("\na=f40(1)\n"));
        }
    }
    Enter("a=5"); // defined anew
    FunctionsMerge merge;
    std::error_code reason;
    EXPECT_TRUE(merge.Write(path, Text(), reason));
    EXPECT_EQ(std::string::npos, contentOf(path).find("\na=f40(1)\n"));
}

// A name of five letters for every number below 26^3.
std::string unitName(int number) {
    std::string name = "qq";
    for (int i = 0; i < 3; i++, number /= 26) name += static_cast<char>('a' + number % 26);
    return name;
}

// The retries alone would take some thousand times as long and pass the limit.
TEST_F(FunctionsFile, aShuffledChainOfUnitsOrVariablesIsReadInOnePass) {
    constexpr int LENGTH = 5000;
    std::string units;
    std::string variables;
    for (int i = 0; i < LENGTH; i++) {
        const int number = (i * 2741) % LENGTH; // 2741 is a prime: each number once
        const std::string next = unitName(number + 1);
        units += "unit " + unitName(number) + "=" + (number + 1 == LENGTH ? "3 m" : "1 " + next) + "\n";
        variables += unitName(number) + "=" + (number + 1 == LENGTH ? "3" : next) + "\n";
    }
    putContent(path, fileWith(variables + units));
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_FALSE(read.damaged);
    EXPECT_EQ(0U, read.unread);
    EXPECT_EQ(LENGTH, calc->unitDefs.count);
    EXPECT_EQ("ans = 6\n", Answer("2 qqaaa->m"));
    EXPECT_EQ("ans = 3\n", Answer("qqaaa"));
}

TEST_F(FunctionsFile, aChainOfPluralsAndPrefixesMayBeInAnyOrder) {
    EXPECT_FALSE(IsDamaged(fileWith("unit qqa=2 qqbs\nunit qqd=3 m\nunit qqc=2 kiloqqd\nunit qqb=2 qqcs\n")));
    EXPECT_EQ("ans = 24000\n", Answer("1 qqa->m"));
}

TEST_F(FunctionsFile, unitsThatUseEachOtherInACircleAreRefused) {
    EXPECT_TRUE(IsDamaged(fileWith("unit qqa=2 qqb\nunit qqb=2 qqa\nunit qqc=2 m\n")));
    EXPECT_EQ(1, calc->unitDefs.count);
}

TEST_F(FunctionsFile, aLineOfTenMegabytesIsLeftAlone) {
    const std::string sum = repeated("+1", 5000000);
    putContent(path, fileWith("f(x)=x" + sum + "\nv=5\n"));
    const FunctionsFileResult read = ReadFunctionsFile(*calc, path);
    EXPECT_EQ(1U, read.unread);
    EXPECT_EQ(nullptr, funcs.FindByName("f", -1));
    EXPECT_EQ("ans = 5\n", Answer("v"));
    EXPECT_TRUE(IsDamaged(fileWith("a=1" + sum + "\nunit smoot=" + sum + "\nv=5\n"))); // no entries at all
    EXPECT_EQ("ans = 5\n", Answer("v"));
}

TEST_F(FunctionsFile, everyBeginningOfAFileIsReadWithoutHarm) {
    for (const char* line : {"f(x)=x*(2 km->m)", "v=1/3", "unit smoot=67 inch", "f(v)"}) Enter(line);
    const std::string text = Text();
    for (size_t length = 0; length < text.size(); length++)
        EXPECT_TRUE(IsDamaged(text.substr(0, length)) ||
                    (text[length - 1] == '\n' && length > text.find("### HISTORY")));
}

TEST_F(FunctionsFile, thousandsOfDefinitionsAreThereAgain) {
    for (int i = 1000; i > 0; i--) {
        const std::string number = std::to_string(i);
        Enter("f" + number + "(x)=x+" + number + "*f" + std::to_string(i - 1) + "(x)");
        Enter("v" + number + "=1/" + number);
    }
    calc->history.Clear();
    ExpectNothingLost();
}

} // namespace
