// SPDX-License-Identifier: MIT
#include "LineReader.h"

#include "Descriptor.h"

#include <algorithm>
#include <cstring>

LineReader::Status LineReader::fill() {
    if (start_ < end_) return Status::Line;
    const long count = readSome(descriptor_, block_, sizeof block_);
    if (count < 0) return Status::Failed;
    start_ = 0;
    end_ = static_cast<std::size_t>(count);
    return count == 0 ? Status::End : Status::Line;
}

void LineReader::dropCarriageReturn(std::string& line, bool complete) {
    if (complete && !line.empty() && line.back() == '\r') line.pop_back();
}

LineReader::Status LineReader::next(std::string& line) {
    line.clear();
    bool complete = true; // nothing was dropped so far
    bool any = false;
    for (;;) {
        const Status status = fill();
        if (status == Status::Failed || (status == Status::End && !any)) return status;
        if (status == Status::End) break;
        any = true;
        const char* const from = block_ + start_;
        const std::size_t available = end_ - start_;
        const void* const feed = std::memchr(from, '\n', available);
        const std::size_t count =
            feed == nullptr ? available : static_cast<std::size_t>(static_cast<const char*>(feed) - from);
        const std::size_t kept = std::min(count, keep_ - line.size());
        line.append(from, kept);
        complete = complete && kept == count;
        start_ += count;
        if (feed != nullptr) {
            ++start_;
            break;
        }
    }
    dropCarriageReturn(line, complete);
    return Status::Line;
}
