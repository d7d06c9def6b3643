// SPDX-License-Identifier: MIT
#include "TranscriptFile.h"

#include "ShownText.h"

#include <string_view>

namespace {

// The start of the last line in front of `end`, which is behind a line feed.
size_t startOfLine(std::string_view text, size_t end) {
    const size_t before = end >= 2 ? text.rfind('\n', end - 2) : std::string_view::npos;
    return before == std::string_view::npos ? 0 : before + 1;
}

} // namespace

std::string endOfTranscript(const std::string& text) {
    std::string shown = shownText(text);
    if (!shown.empty() && shown.back() != '\n') shown += '\n';
    size_t start = shown.size();
    for (size_t lines = 0; start > 0 && lines < TRANSCRIPT_LINES; ++lines) {
        const size_t next = startOfLine(shown, start);
        if (shown.size() - next > TRANSCRIPT_BYTES) break;
        start = next;
    }
    return shown.substr(start);
}
