// SPDX-License-Identifier: MIT
//
// The guide (docs/guide.md, which is compiled in) as plain text for a terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The titles of the guide's sections, in their order; of those that tell of something, in any case of
// letters.
std::vector<std::string> guideTopics(std::string_view something = {});

// The first section whose title contains the topic, in any case of letters, with its title, as plainText
// gives it. Empty when there is none.
std::string guideSection(std::string_view topic, int columns);

// The paragraphs, items and rows of tables that tell of something, in any case of letters, below the titles
// of their sections, as plainText gives them. Empty when there is none.
std::string guideLines(std::string_view something, int columns);

// The section with this title as it is written in the guide, without its title. Empty when there is none.
std::string_view guideMarkdown(std::string_view title);

// A line without the signs for code, bold and links.
std::string withoutMarks(std::string_view line);

enum class Marks { Removed, Kept };

// The rows of a table without its head, as guideRows gives them.
std::vector<std::vector<std::string>> tableRows(std::string_view markdown, Marks marks = Marks::Removed);

// The rows of a table: of the section with this title the table whose head begins with this cell, without the
// head. The cells are plain text, unless their marks are kept. Empty when there is no such table.
std::vector<std::vector<std::string>> guideRows(std::string_view title, std::string_view head,
                                                Marks marks = Marks::Removed);

// Markdown as plain text: `marks`, **bold** and [links](#there) without their signs, no pictures, the lines
// between fences set in by two blanks, a table's columns side by side. Paragraphs, items and cells are filled
// to so many columns of the screen.
std::string plainText(std::string_view markdown, int columns);
