// SPDX-License-Identifier: MIT
//
// The functions that a person defines: from text to a definition and back.
#pragma once

#include "EntryContext.h"

#include <string>

class Scanner;
struct Function;

class Definitions : EntryContext {
public:
    Definitions(const EntryContext& context, Scanner& theScanner)
        : EntryContext(context), scanner(theScanner) {}

    // Defines a function from "name(args)=expression", white space allowed: its body is scanned, checked and
    // ordered here, and by no call. Returns 1 and the definition in the message, or -1 with an error. One
    // that was kept from an earlier run takes the place of a predefined function, and may call functions that
    // are still to come or were deleted.
    int Define(const char* text, bool isKept);

    // Whether each piece between the commas is a valid name; the first that is not goes into the message.
    bool CheckParameters(const std::string& list);

    // The definition as text. An interruption cuts it, with a message.
    std::string TextOf(const Function& function);

    // Makes the definition the message, one line, cut in front of the line feed where it does not fit.
    // Returns 1, or -1 when it was interrupted.
    int Show(const Function& function);

private:
    int CheckNamesInBody();
    int Add(const std::string& name, std::string& parameters, const std::string& body, bool isKept);

    Scanner& scanner;
};
