// SPDX-License-Identifier: MIT
#include "AnswerStream.h"

#include "Descriptor.h"

namespace {

constexpr size_t BLOCK_SIZE = 65536; // what a pipe holds

} // namespace

bool AnswerStream::Write(std::string_view text) {
    if (!isCollecting) return writeAll(descriptor, text, system);
    collected += text;
    return collected.size() < BLOCK_SIZE || Flush();
}

bool AnswerStream::Flush() {
    const bool isWritten = writeAll(descriptor, collected, system);
    collected.clear();
    return isWritten;
}
