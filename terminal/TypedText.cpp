// SPDX-License-Identifier: MIT
#include "TypedText.h"

#include "ShownText.h"

#include <algorithm>
#include <cstddef>

std::string asUtf8(std::string_view bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size();) {
        const size_t length = utf8Length(bytes, i);
        const std::string_view character = bytes.substr(i, length);
        text += length == 0 || (length == 2 && hasControls(character)) ? "\xEF\xBF\xBD" : character;
        i += std::max<size_t>(length, 1);
    }
    return text;
}

std::vector<std::string> pastedLines(std::string_view text) {
    std::vector<std::string> lines(1);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (text[i] == '\r' || text[i] == '\n')
            lines.emplace_back();
        else
            lines.back() += text[i] == '\0' ? '?' : text[i];
    }
    return lines;
}
