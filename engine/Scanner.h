// SPDX-License-Identifier: MIT
//
// From the text of a statement to its terms.
#pragma once

#include "EntryContext.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

class Scanner : EntryContext {
public:
    explicit Scanner(const EntryContext& context) : EntryContext(context) {}

    struct Definition {
        std::string function;
        std::set<std::string, std::less<>> parameters;
        bool isKept; // from an earlier run
    };

    // Reads an expression, or name=expression, of which markConversion has seen the text, into the
    // statement's terms and its target: "ans" without a name, a new one where no variable has the name.
    // Returns 0, or -1 with a message.
    // Where it `mayLeaveOut` parentheses around one value, as in ((2))*(x), they are counted but become no
    // terms.
    int Scan(std::string text, bool mayLeaveOut = false);

    // The same for a bare expression (isBareExpression), with a '.' in numbers and signs in front of them. It
    // ends where the text or its statement ends.
    int ScanBare(std::string_view text, bool mayLeaveOut);

    // The same for the right-hand side of a definition: the function and its parameters are known in it, and
    // when it was kept every name in front of a parenthesis is that of a function.
    int ScanBody(std::string text, const Definition& definition);

    int Str2Num(const char* text, qfloat value); // the method of the same name of the calculator

private:
    int ScanAssignment(std::string& text);
    void ScanTerms(std::string_view view, bool mayLeaveOut);
    bool LeaveOut();
    std::string MoveSignsForward(const std::string& text);
    void Locate(node* term, size_t start, size_t length, bool inSource) const;
    void AppendOperand(std::string_view text, bool isUnit, bool beforeParenthesis);
    bool ReadNumber(std::string_view text, qfloat value);
    bool IsFunctionName(const std::string& name) const;
    bool IsValueName(std::string_view name);

    const Definition* inDefinition = nullptr; // whose body is read
    std::string lookedUp;                     // the last operand that is no short number
    std::vector<char>
        isCall; // for every open '(' that was read: whether it opens the arguments of a function
};

// The statement without leading white space, without what follows its first ';', and without trailing blanks
// and line ends.
std::string_view trimStatement(std::string_view statement);

// Whether the statement has nothing but names, numbers, commas, parentheses and the operators that one types
// most: no blank, no '=' and no conversion. Then most steps of reading have nothing to do.
bool isBareExpression(std::string_view text);

// Rewrites the first "->": 5 km->mi becomes 5 <mark>km<arrow>mi, of the same length.
// `european`: in the text ',' and '.' have not traded places yet.
void markConversion(std::string& text, bool european);

// Whether the statement defines a function: name(...)=...
bool isDefinition(const std::string& text);

// Scans digits, one '.', and one exponent behind a digit or point. Returns 1 when that is the whole text (an
// empty text included), 0 when the first character is none of these, and 2 with the unread text in `rest`.
int findDecString(std::string_view text, std::string_view& rest);
