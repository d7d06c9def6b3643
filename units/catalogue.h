// SPDX-License-Identifier: MIT
//
// The tables the catalogue is built from.  Private to the unit library.
#ifndef TALLYQUILL_CATALOGUE_H
#define TALLYQUILL_CATALOGUE_H

// A name and its factor, definition or full name.  A table ends with a pair of nulls.
struct TextPair {
    const char* name;
    const char* text;
};

struct CatalogueTables {
    const TextPair* prefixList;
    const char* const* baseUnits; // ends with a null
    const TextPair* derivedUnits;
    const TextPair* nonSIUnits;
    const TextPair* abbreviations;
    const TextPair* nonSIabbreviations;
};

extern const CatalogueTables catalogueTables;

// Appends the tables' entries to the lists in the order of the members above; a definition may only use names
// that come earlier.  0 on success; at the first entry that fails it stops with 1 and the message set.
int buildCatalogue(const CatalogueTables& tables);

#endif
