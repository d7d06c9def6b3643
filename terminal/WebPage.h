// SPDX-License-Identifier: MIT
//
// The web page of the program.
#pragma once

#include "System.h"

// Opens the page at TALLYQUILL_WEB_URL in the person's browser. False when the variable is unset or no
// browser can be started. The browser runs on by itself: it is no child of this process.
bool openPage(System& system = System::Real());
