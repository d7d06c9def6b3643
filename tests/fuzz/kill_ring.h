// SPDX-License-Identifier: MIT
#pragma once

// Empties what Readline keeps of killed texts: they would grow from run to run. Readline must have begun.
void emptyKillRing();
