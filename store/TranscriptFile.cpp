// SPDX-License-Identifier: MIT
#include "TranscriptFile.h"

#include "FileKeeping.h"
#include "ShownText.h"

std::string endOfTranscript(const std::string& text) {
    std::string shown = shownText(text);
    if (!shown.empty() && shown.back() != '\n') shown += '\n';
    return shown.substr(startOfNewest(shown, TRANSCRIPT_LINES, TRANSCRIPT_BYTES));
}
