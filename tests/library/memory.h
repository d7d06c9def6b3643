// SPDX-License-Identifier: MIT
//
// Memory that has run out: the test program's own operator new.
#pragma once

// Whether every request fails from now on.
void runOutOfMemory(bool isOut);
