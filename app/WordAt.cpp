// SPDX-License-Identifier: MIT
#include "WordAt.h"

#include <algorithm>
#include <cctype>

namespace {

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(char16_t c) {
    return c < 0x80 && isxdigit(c);
}

bool isBit(char16_t c) {
    return c == u'0' || c == u'1';
}

bool isWordPart(char16_t c) {
    return c == u'_' || (c < 0x80 && isalnum(c));
}

// Behind the characters that the test holds for.
template <typename Test> size_t run(const std::u16string& line, size_t from, Test isPart) {
    while (from < line.size() && isPart(line[from])) ++from;
    return from;
}

class NumberReader {
public:
    NumberReader(const std::u16string& text, NumberMarks textMarks) : line(text), marks(textMarks) {}

    // Behind the number that begins here; `from` where none does.
    size_t End(size_t from) const {
        const size_t end = Mantissa(from);
        return end == from ? from : Run(Exponent(end), isWordPart); // a metric suffix
    }

private:
    char16_t At(size_t place) const { return place < line.size() ? line[place] : u'\0'; }

    template <typename Test> size_t Run(size_t from, Test isPart) const { return run(line, from, isPart); }

    size_t Mantissa(size_t from) const {
        if (At(from) == u'0' && At(from + 1) == u'b') return Groups(from + 2);
        if (At(from) == u'0' && At(from + 1) == u'x') return Fraction(Run(from + 2, isHexDigit), isHexDigit);
        return Fraction(Thousands(from), isDigit);
    }

    // "0b 1010 1111": each group behind a blank.
    size_t Groups(size_t from) const {
        size_t end = Run(from, isBit);
        while (At(end) == u' ' && isBit(At(end + 1))) end = Run(end + 1, isBit);
        return end;
    }

    // "1,234,567"
    size_t Thousands(size_t from) const {
        size_t end = Run(from, isDigit);
        while (marks.grouping != 0 && At(end) == marks.grouping && Run(end + 1, isDigit) == end + 4) end += 4;
        return end;
    }

    template <typename Test> size_t Fraction(size_t from, Test isPart) const {
        return At(from) == marks.decimal && isPart(At(from + 1)) ? Run(from + 1, isPart) : from;
    }

    size_t Exponent(size_t from) const {
        if (At(from) != u'e' && At(from) != u'E') return from;
        const size_t digits = At(from + 1) == u'-' || At(from + 1) == u'+' ? from + 2 : from + 1;
        return isDigit(At(digits)) ? Run(digits, isDigit) : from;
    }

    const std::u16string& line;
    const NumberMarks marks;
};

} // namespace

EntryRange wordAt(const std::u16string& line, size_t place, NumberMarks marks) {
    const NumberReader reader(line, marks);
    const size_t wanted = std::min(place, line.empty() ? 0 : line.size() - 1);
    for (size_t from = 0; from < line.size();) {
        size_t end = reader.End(from);
        if (end == from) end = std::max(from + 1, run(line, from, isWordPart));
        if (wanted < end) return {from, end - from};
        from = end;
    }
    return {place, 0};
}
