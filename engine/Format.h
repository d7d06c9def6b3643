// SPDX-License-Identifier: MIT
//
// Numbers as text.
#pragma once

#include "Settings.h"
#include "qfloat.h"

#include <cstddef>
#include <string>

// What qtoascii and FormatResult may write, terminator included: 9,865 digits, their 3,288 grouping
// characters, a point, 100 decimals and a sign.
constexpr size_t FORMAT_SIZE = 13312;

// The metric prefixes: the first is that of 10^LEAST_PREFIX, and so on; a blank is none.
constexpr char METRIC_PREFIXES[] = "a  f  p  n  u  mc    k  M  G  T  P";
constexpr int LEAST_PREFIX = -18;

// Formats a number in decimal into `out` (FORMAT_SIZE bytes). `sigfigs` counts decimals in fixed mode;
// `scimode` is a SciMode, any other number counts as never; `separator` 0 means no grouping. Never fails.
void qtoascii(const qfloat value, char* out, int sigfigs, int scimode, char separator);

// The same in base 10, 16 or 2; another base writes nothing.
void formatNumber(const qfloat value, int base, char* out, int sigfigs, int scimode, bool twoscomp,
                  char separator);

// The number as files and other programs read it: in auto mode with 100 digits, '.' and no separator.
std::string plainNumber(const qfloat value);

// The number in base, notation and punctuation of the settings, so that it fits into a line behind a name of
// so many characters: where its digits would not, it is shown with an exponent, for a cut number would be a
// wrong one.
std::string shownNumber(const qfloat value, const EntrySettings& settings, size_t nameLength);
