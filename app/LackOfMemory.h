// SPDX-License-Identifier: MIT
//
// The end for lack of memory. Nothing in the window's program catches std::bad_alloc: what the entry has left
// of the calculator is not known then, and nothing is written behind it. The files are whole, since each is
// replaced at once. The message goes to standard error, which a desktop keeps; a panel would take memory, and
// let a script go on meanwhile.
#pragma once

// From now on an allocation in C++ that fails and is caught nowhere ends the program with the status 3 and
// "Tallyquill: out of memory". Any other exception ends it as it would without.
void tellOfLackOfMemory();

// The same end when 8 MB cannot be had any more. GNUstep does not look whether it gets the memory that it
// asks for, so this stands in front of what makes the transcript longer. Takes a few microseconds.
void endWhenMemoryIsLow();
