// SPDX-License-Identifier: MIT
//
// What an entry lacks, as the status line says it in place of a result.
#pragma once

#include "Calculator.h"

#include <string>
#include <string_view>

// Such as "missing )" or "unknown: wdith", after a preview of the entry that ended with an error. Nothing
// where so little does not say it, while a name is being typed that begins like a known one, and for
// commands, which a preview does not carry out.
std::string statusHint(std::string_view entry, const ZqCalculator& calculator);
