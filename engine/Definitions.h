// SPDX-License-Identifier: MIT
//
// The functions that a person defines: from text to a definition and back.
#pragma once

#include "EntryContext.h"
#include "Scanner.h"

#include <string>

struct Function;

class Definitions : EntryContext {
public:
    Definitions(const EntryContext& context, Scanner& theScanner)
        : EntryContext(context), scanner(theScanner) {}

    // The calculator's DefineFunction and IsValidArgList. A body is scanned, checked and ordered here, and by
    // no call.
    int Define(const char* text, bool isKept);
    bool CheckParameters(const std::string& list);

    // The definition as text. An interruption cuts it, with a message.
    std::string TextOf(const Function& function);

    // Makes the definition the message, one line, cut in front of the line feed where it does not fit.
    // Returns 1, or -1 when it was interrupted.
    int Show(const Function& function);

private:
    int CheckNamesInBody();
    int ReadBody(const std::string& body, const Scanner::Definition& definition);
    int Add(const std::string& name, std::string& parameters, const std::string& body, bool isKept);

    Scanner& scanner;
};
