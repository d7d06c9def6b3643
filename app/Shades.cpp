// SPDX-License-Identifier: MIT
#include "Shades.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr Shade BLACK = {0, 0, 0}, WHITE = {1, 1, 1};

double linear(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const Shade& shade) {
    return 0.2126 * linear(shade.red) + 0.7152 * linear(shade.green) + 0.0722 * linear(shade.blue);
}

Shade mixed(const Shade& from, const Shade& to, double part) {
    return {from.red + (to.red - from.red) * part, from.green + (to.green - from.green) * part,
            from.blue + (to.blue - from.blue) * part};
}

// Black or white, whichever is farther from the background.
Shade poleOf(const Shade& background) {
    return isLight(background) ? BLACK : WHITE;
}

// What text stands on, of a color between it and the background: nearer to the background where the text
// would not be legible on it.
Shade behind(const Shade& text, const Shade& background) {
    constexpr double PART = 0.75; // of the background
    const double wanted = std::min(LEGIBLE, contrast(text, background));
    Shade found = mixed(text, background, PART);
    for (int step = 1; contrast(text, found) < wanted && step <= 5; ++step)
        found = mixed(text, background, PART + 0.05 * step);
    return found;
}

// Whether an eye tells them apart.
bool differ(const Shade& one, const Shade& other) {
    return std::max({std::abs(one.red - other.red), std::abs(one.green - other.green),
                     std::abs(one.blue - other.blue)}) >= 0.2;
}

// The first of the colors, made legible, that differs from all that is taken already.
template <size_t N, size_t M>
Shade firstThatDiffers(const Shade (&colors)[N], const Shade (&taken)[M], const Shade& background) {
    for (const Shade& color : colors) {
        const Shade found = legible(color, background);
        if (std::all_of(taken, taken + M, [&](const Shade& other) { return differ(found, other); }))
            return found;
    }
    return legible(colors[0], background);
}

} // namespace

double contrast(const Shade& one, const Shade& other) {
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Shade legible(const Shade& text, const Shade& background) {
    Shade found = text;
    for (int step = 1; contrast(found, background) < LEGIBLE && step <= 20; ++step)
        found = mixed(text, poleOf(background), step / 20.0);
    return found;
}

bool isLight(const Shade& background) {
    return contrast(background, BLACK) > contrast(background, WHITE);
}

TextShades textShades(const Shade& text, const Shade& background) {
    const Shade pole = poleOf(background);
    TextShades shades;
    const Shade answers[] = {mixed(text, pole, 0.7), mixed(text, background, 0.3),
                             mixed(text, background, 0.45), mixed(text, pole, 1)};
    shades.answer = firstThatDiffers(answers, {text}, background);
    const Shade onDark[] = {{1, 0.5, 0.4}, {1, 0.8, 0.3}, {0.95, 0.55, 0.95}};
    const Shade onLight[] = {{0.75, 0.1, 0.05}, {0.5, 0.3, 0}, {0.55, 0, 0.55}};
    shades.error =
        firstThatDiffers(isLight(background) ? onLight : onDark, {text, shades.answer}, background);
    shades.mark = behind(text, background);
    shades.markEdge = mixed(text, background, 0.35);
    return shades;
}
