// SPDX-License-Identifier: MIT
//
// The trigonometric and hyperbolic functions a second time, by the plain methods: the sine series after a
// reduction with the stored pi, continued fractions of a fixed number of steps, exponentials in stored
// precision.  They use only the public arithmetic.  The library's faster and sharper ways must give the same
// special results and codes, and must never be further from the truth.
#pragma once

#include "qfloat.h"

namespace reference {

void sine(const qfloat x, qfloat y);
void cosine(const qfloat x, qfloat y);
void tangent(const qfloat x, qfloat y);
void arcTangent(const qfloat x, qfloat y);
void arcSine(const qfloat x, qfloat y);
void arcCosine(const qfloat x, qfloat y);
void hyperbolicSine(const qfloat x, qfloat y);
void hyperbolicCosine(const qfloat x, qfloat y);
void hyperbolicTangent(const qfloat x, qfloat y);

} // namespace reference
