// SPDX-License-Identifier: MIT
//
// Man pages, of which all but what belongs to a page alone comes from the guide. Part of the program
// option_texts, which makes them when the calculator is built.
#pragma once

#include <string>
#include <string_view>

// Replaces the lines of a man page that name parts of the guide:
//
//   @SECTION TITLE@          a section, without its title
//   @PROSE TITLE@            without its tables and examples
//   @TABLE TITLE: HEAD@      of the section the table whose head begins with HEAD
//
// False when the guide has no such part; `missing` is the line then.
bool putGuideInto(std::string& page, std::string& missing);

// The guide's Markdown in the language of man pages: paragraphs, items, examples, and each row of a table as
// a paragraph with its first cell for a heading. Without tables and examples where only prose is wanted.
std::string roffOf(std::string_view markdown, bool isProse = false);
