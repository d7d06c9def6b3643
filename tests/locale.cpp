// SPDX-License-Identifier: MIT
//
// The suites run in the locale of the environment, as the programs that embed the engine may: letters, digits
// and messages are the locale's. Numbers keep their '.', which the unit library asks for (units.h).
#include <clocale>

namespace {

[[maybe_unused]] const bool IS_SET = std::setlocale(LC_ALL, "") && std::setlocale(LC_NUMERIC, "C");

} // namespace
