// SPDX-License-Identifier: MIT
//
// The definitions file, pelmo_functions.txt: a person's functions, variables, units and history, from one run
// to the next. Both front ends write and read it here. It is text, one definition or entry a line:
//
//   ### FUNCTIONS ###
//   square(x)=x^2
//   ### VARIABLES ###
//   ans=49
//   ### CUSTOM UNITS ###
//   unit smoot=67 inch
//   ### HISTORY ###
//   square(7)
//
// Its numbers have a '.' and no separators, whatever the settings are.
#pragma once

#include "System.h"

#include <cstddef>
#include <set>
#include <string>

class ZqCalculator;

// The text of the file. The functions that have a body, in the order of the list, however long; the variables
// with 100 digits, without those that hold the overflow value; the units by the lines that defined them; the
// history, the oldest line first, control characters other than tabs written as blanks. A unit whose line no
// longer says what the unit is, since a unit in it was deleted or defined anew, is written with its value
// ("unit b=10 meter"). So is a unit that uses one of the lines in `elsewhere` (with their ends), which a
// start without them would not know; but not these themselves. The engine stays as it is, but that it ends a
// walk with funcs.GetNext and clears the unit library's error state.
std::string definitionsText(const ZqCalculator& calc, const std::set<std::string>& elsewhere = {});

struct DefinitionsRead {
    bool opened = false; // it was there and could be read
    // Something in it was not as it is written: it is empty, lacks its first or the history header, does not
    // end with a line feed, holds control characters or lines that define nothing, or a line was refused.
    // Everything else in it was read.
    bool damaged = false;
    // So many definitions were left alone, since reading them takes too long. When there is one, definitions
    // that were refused count among them and not as damage: they may use it.
    size_t unread = 0;
    std::set<std::string> refused; // the keys of the lines that were refused (DefinitionRecords.h)
    std::string text;              // the file's
};

// Reads the file into a calculator after InitializeFunctionsAndVars and, perhaps, other definitions. The
// first line is left out; each further one up to the one that begins with "### HISTORY" is evaluated without
// its comment ('#' and what follows), and the lines behind that one join the history.
// - A line defines a function ("f(x)=..."), a variable ("a=...") or a unit ("unit u=..."). Anything else, a
//   command word or an expression, has no effect.
// - Lines may be in any order: a definition is read after those that it uses. Functions may use those that
//   were deleted, and each other in a circle.
// - A function that carries the name of a predefined one takes its place: its owner had deleted that one.
// - A variable that already shows the value in the file keeps its own, which may have more digits (pi).
// - A unit that was defined by the same line before is not defined again; one that another line has defined
//   before is defined anew.
// - The work of evaluating lines is counted and has a limit, for one line and for all of them: some tenths of
//   a second. Reading each line of fewer than TEXT_SIZE characters once has none. A variable or a unit whose
//   line is longer takes too long, whatever it says.
// Settings for entries (european, tenKey, fullEntry, interruptCheck) do not count, and afterwards they, the
// texts, the result, the status and the interrupted flag are what they were before; target is "ans".
DefinitionsRead readDefinitions(ZqCalculator& calc, const std::string& path, System& system = System::Real());

// Takes definitions, lines without headers, in the same way, and before that deletes what the lines in
// `deleted` define. "ans" stays.
void takeDefinitions(ZqCalculator& calc, const std::string& lines, const std::string& deleted);
