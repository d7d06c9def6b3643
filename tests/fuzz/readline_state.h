// SPDX-License-Identifier: MIT
//
// What Readline keeps from one input to the next. It must have begun.
#pragma once

// Empties what it keeps of killed texts: they would grow from run to run.
void emptyKillRing();

// The keys of vi, or those of Emacs, until the next call.
void useKeys(bool areOfVi);
