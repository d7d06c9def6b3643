// SPDX-License-Identifier: MIT
//
// The shades of the console's text, computed from the two colors that the person has chosen, and whether what
// stands around the console is to be light.
#pragma once

struct Shade { // calibrated parts from 0 to 1
    double red = 0, green = 0, blue = 0;
};

// How much two colors differ in brightness: from 1, not at all, to 21, black and white. (WCAG 2.1's contrast
// ratio.)
double contrast(const Shade& one, const Shade& other);

// What text should at least have on its background.
constexpr double LEGIBLE = 4.5;

// The color itself, or as far toward black or white as makes text of it legible there.
Shade legible(const Shade& text, const Shade& background);

// Whether dark text is more legible on it than light text.
bool isLight(const Shade& background);

struct TextShades {
    Shade answer; // brighter than the text where there is room for that, else nearer to the background
    Shade error;  // of a warm color
    Shade mark;   // behind a bracket, which stays as legible as it takes
    Shade markEdge;
};

// What these texts look like beside text of this color: legible, and different from it.
TextShades textShades(const Shade& text, const Shade& background);
