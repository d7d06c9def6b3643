// SPDX-License-Identifier: MIT
//
// What a person defined, from one run to the next.
#include "Builtins.h"
#include "definitions_file_fixture.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

// --- The text ---

TEST_F(DefinitionsFile, ANewCalculatorHasFourSections) {
    EXPECT_EQ(EMPTY_FILE, Text());
}

TEST_F(DefinitionsFile, EachSectionHasItsLines) {
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

TEST_F(DefinitionsFile, SettingsDoNotChangeTheText) {
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

TEST_F(DefinitionsFile, WritingLeavesTheEngineAsItIs) {
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

TEST_F(DefinitionsFile, DefinitionsOfAllKindsAreThereAgain) {
    for (const char* line :
         {"a(x)=0x1F+0b11*0o17-x", "b(x)=1.5e-12*x+2.5k-3m", "c(x)=(x km->mi)+(5 km/h->m/s)", "d()=5",
          "e(x)=x+1e9999", "f(x,y,z)={[x]}*-y--z!", "g(x)=1,000,000.5*x", "h(x)=sin(x)^2+mod(x,3)",
          "i(x)=x>=2&&x!=3||x<<2==8 @ 3 | 4 & 5", "j(x)=j(x-1)"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 3\n", Answer("a(0x1F+45-3)")); // 31 + 3 * 15 - 73
}

TEST_F(DefinitionsFile, NamesakesWithOtherNumbersOfArgumentsAreThereAgain) {
    for (const char* line : {"f(x)=x", "f(x,y)=x*y", "F(x,y,z)=x*y*z", "f(x)=x+100"}) Enter(line);
    ExpectNothingLost();
    EXPECT_EQ("ans = 103\n", Answer("f(3)"));
    EXPECT_EQ("ans = 12\n", Answer("f(3,4)"));
    EXPECT_EQ("ans = 60\n", Answer("f(3,4,5)"));
}

TEST_F(DefinitionsFile, AFunctionMayUseOneThatIsDefinedFurtherDown) {
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

TEST_F(DefinitionsFile, ADeletedFunctionCanBeDefinedAgainInTheNextRun) {
    for (const char* line : {"g(x,y)=x-y", "f(x)=g(x,1)", "del g"}) Enter(line);
    ExpectNothingLost();
    EXPECT_EQ(nullptr, funcs.FindByName("g", -1));
    EXPECT_EQ(STATUS_ERROR, Enter("f(5)"));
    EXPECT_EQ(STATUS_MESSAGE, Enter("g(x,y)=x-y"));
    EXPECT_EQ("ans = 4\n", Answer("f(5)"));
}

TEST_F(DefinitionsFile, AFunctionInThePlaceOfADeletedPredefinedOneIsThereAgain) {
    for (const char* line : {"del sin", "del cos", "f(x)=sin(x)+1", "Sin(x)=x*1000", "f(x,y)=cos(x)"})
        Enter(line);
    ExpectNothingLost();
    EXPECT_EQ("ans = 2000\n", Answer("sin(2)"));
    EXPECT_EQ("ans = 2001\n", Answer("f(2)"));
    EXPECT_EQ("ans = 1\n", Answer("cos(0)")); // predefined functions are there in every run
}

TEST_F(DefinitionsFile, AFunctionWhoseNameBeginsLikeALogarithmIsThereAgain) {
    for (const Builtin& builtin : builtinTable()) {
        if (!builtin.definition) Enter(std::string("del ") + builtin.name);
    }
    ASSERT_EQ(STATUS_MESSAGE, Enter("logistic(x)=1/(1+x)")) << calc->message;
    ASSERT_EQ(STATUS_MESSAGE, Enter("loga(x,y)=x+y")) << calc->message;
    ExpectNothingLost();
    EXPECT_EQ("ans = 0.25\n", Answer("logistic(3)"));
    EXPECT_EQ("ans = 7\n", Answer("loga(3,4)"));
    EXPECT_EQ("ans = 2\n", Answer("sqrt(4)"));
    EXPECT_EQ("ans = 3\n", Answer("log(1000)"));
}

TEST_F(DefinitionsFile, ARefusedFunctionLeavesThePredefinedOne) {
    EXPECT_TRUE(IsDamaged(fileWith("sin(x)=x+*\nsqrt(x,)=5\n")));
    EXPECT_EQ("ans = 3\n", Answer("sqrt(9)"));
    EXPECT_EQ("ans = 0\n", Answer("sin(0)"));
}

TEST_F(DefinitionsFile, DefinitionsThatUseUnitsAndVariablesAreThereAgain) {
    for (const char* line : {"rate=1.5", "unit smoot=67 inch", "f(x)=x*rate", "g(x)=x*(2 smoot->inch)",
                             "del rate", "rate=2.5"}) {
        Enter(line);
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 5\n", Answer("f(2)"));
    EXPECT_EQ("ans = 268\n", Answer("g(2)"));
}

TEST_F(DefinitionsFile, DefinitionsInTheSettingsThatHoldAreThereAgain) {
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

TEST_F(DefinitionsFile, ADefinitionThatIsLongerThanAnEntryIsThereAgain) {
    ASSERT_EQ(STATUS_MESSAGE, Enter("f(x)=x" + repeated("+1a", 3000))); // each of them is shown as 1.0e-18
    ASSERT_EQ(STATUS_MESSAGE, Enter("g(x)=x*(3 km->m)+(2 m->cm)" + repeated("+1a", 3000)));
    EXPECT_GT(funcs.FindByName("g", -1)->ToString().size(), TEXT_SIZE);
    ExpectNothingLost();
    EXPECT_EQ("ans = 5\n", Answer("round(f(5))"));
    EXPECT_EQ("ans = 15200\n", Answer("round(g(5))"));
}

TEST_F(DefinitionsFile, LongEntriesAreReadWhole) {
    const std::string definition = "f(x)=x" + repeated("+1", 4900);
    Enter(definition);
    Enter("1" + repeated("+1", 20000));
    ExpectNothingLost();
    EXPECT_EQ(definition, calc->history.GetHistoryStr(2));
    EXPECT_EQ("ans = 4900\n", Answer("f(0)"));
}

TEST_F(DefinitionsFile, LettersBeyondAsciiInABodyAreThereAgain) {
    Enter("f(x)=x+caf\xe9");
    ExpectNothingLost();
}

// --- Variables ---

TEST_F(DefinitionsFile, PiKeepsItsFullPrecision) {
    Enter("circle=pi");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ(0, memcmp(qpi, *calc->VariableExists("pi")->value, sizeof(qfloat)));
    Enter("pi=3");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ("ans = 3\n", Answer("pi"));
}

TEST_F(DefinitionsFile, VariablesAreThereAgainWithAHundredDigits) {
    for (const char* line : {"third=1/3", "big=2^300", "small=-1/7e200", "huge=1e4900", "tiny=1e-4900",
                             "neg=-5", "Third=2/3", "hex=0xFFFFFFFF", "mixed_1=1234567.25"}) {
        Enter(line);
    }
    ExpectNothingLost();
    const std::string third = "\nthird=0." + std::string(100, '3') + "\n";
    EXPECT_NE(std::string::npos, Text().find(third));
    EXPECT_EQ("ans = 1\n", Answer("third*3"));
}

TEST_F(DefinitionsFile, NamesOfCommandsAreNamesInDefinitions) {
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

TEST_F(DefinitionsFile, TheLastAnswerIsThereAgain) {
    Enter("6*7");
    ExpectNothingLost();
    EXPECT_EQ("ans = 43\n", Answer("ans+1"));
}

TEST_F(DefinitionsFile, AVariableThatHoldsTheOverflowValueIsLeftOut) {
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

TEST_F(DefinitionsFile, UnitsAreThereAgain) {
    for (const char* line :
         {"unit smoot=67 inch", "unit zorkmid=-primitive", "unit purse=12.5 zorkmid/m^2"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 25\n", Answer("2 purse->zorkmid/m^2"));
    EXPECT_EQ(3, calc->unitDefs.count);
}

TEST_F(DefinitionsFile, AUnitThatIsThereIsNotDefinedTwice) {
    Enter("unit smoot=67 inch");
    ASSERT_TRUE(writeFileAtomically(path, Text()));
    EXPECT_FALSE(readDefinitions(*calc, path).damaged);
    EXPECT_EQ(1, calc->unitDefs.count);
    EXPECT_TRUE(IsDamaged(fileWith("unit smoot=67 inch\nunit smoot=68 inch\nunit smoot=67 inch\n")));
    EXPECT_EQ(1, calc->unitDefs.count);
    EXPECT_EQ("ans = 67\n", Answer("1 smoot->inch"));
}

TEST_F(DefinitionsFile, UnitsMayBeInAnyOrder) {
    EXPECT_FALSE(IsDamaged(fileWith("unit ca=3 cb\nunit cb=2 cc\nunit cc=5 m\n")));
    EXPECT_EQ("ans = 30\n", Answer("1 ca->m"));
    EXPECT_FALSE(IsDamaged(fileWith("unit ca=3 cb cc ce\nunit cb=2 m\nunit cc=5 m\nunit ce=7 m\n")));
    ExpectNothingLost();
}

// "meter" is the catalogue's and no "eter" behind a prefix.
TEST_F(DefinitionsFile, AUnitOfTheCatalogueIsNoneThatIsKeptElsewhereBehindAPrefix) {
    for (const char* line : {"unit eter=3 s", "unit ell=2.50 meter", "unit ess=2.50 keter"})
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    calc->history.Clear(); // where the lines stand as they were typed
    const std::string text = definitionsText(*calc, {"unit eter=3 s\n"});
    EXPECT_NE(std::string::npos, text.find("\nunit ell=2.50 meter\n")) << text;
    EXPECT_NE(std::string::npos, text.find("\nunit ess=7500 second\n"))
        << text; // which may not be there then
}

TEST_F(DefinitionsFile, AUnitOfTheFileGoesBeforeOneThatIsThere) {
    for (const char* line : {"unit qa=2 m", "unit qb=7 m"}) ASSERT_EQ(STATUS_MESSAGE, Enter(line));
    putContent(path, fileWith("unit qa=3 m\nunit qb=7 m\nunit qc=5 m\n"));
    EXPECT_FALSE(readDefinitions(*calc, path).damaged);
    EXPECT_EQ("ans = 3\n", Answer("1 qa->m"));
    EXPECT_EQ("ans = 7\n", Answer("1 qb->m"));
    EXPECT_EQ("ans = 5\n", Answer("1 qc->m"));
    EXPECT_EQ(3, calc->unitDefs.count);
}

TEST_F(DefinitionsFile, AUnitKeepsItsValueWhenAnotherInItWasDefinedAnewOrDeleted) {
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

TEST_F(DefinitionsFile, AUnitOfManyNamesIsKeptByItsValueInALineThatCanBeReadAgain) {
    for (const char* line : {"unit many=m^1000", "unit most=many^99/s^3", "del many"}) {
        ASSERT_EQ(STATUS_MESSAGE, Enter(line)) << line << calc->message;
    }
    ExpectNothingLost();
    EXPECT_EQ("ans = 1\n", Answer("1 most*s^3->" + repeated("m^1000*", 98) + "m^1000"));
}

// --- History ---

TEST_F(DefinitionsFile, TheHistoryIsThereAgainInItsOrder) {
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

TEST_F(DefinitionsFile, ALineFeedInTheHistoryBecomesABlank) {
    calc->history.InsertNewEntry("1+\n2+\r3\x01+\t4");
    EXPECT_FALSE(NextRun().damaged);
    EXPECT_EQ(1, calc->history.count);
    EXPECT_STREQ("1+ 2+ 3 +\t4", calc->history.GetHistoryStr(1));
}

TEST_F(DefinitionsFile, TheHistoryKeepsItsNewestLines) {
    for (int i = 0; i < 99; i++) Enter("1+" + std::to_string(i));
    ASSERT_TRUE(writeFileAtomically(path, Text()));
    StartAgain();
    calc->history.SetMaxEntries(30);
    EXPECT_FALSE(readDefinitions(*calc, path).damaged);
    EXPECT_EQ(30, calc->history.count);
    EXPECT_STREQ("1+98", calc->history.GetHistoryStr(1));
    EXPECT_STREQ("1+69", calc->history.GetHistoryStr(30));
}

} // namespace
