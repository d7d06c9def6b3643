// SPDX-License-Identifier: MIT
#include "LineReader.h"

#include "Descriptor.h"

#include <algorithm>
#include <cstring>
#include <poll.h>

LineReader::Status LineReader::Fill() {
    if (start < end) return Status::Line;
    const long count = readSome(descriptor, block, sizeof block, system);
    if (count < 0) return Status::Failed;
    start = 0;
    end = static_cast<size_t>(count);
    return count == 0 ? Status::End : Status::Line;
}

bool LineReader::HasLine() const {
    return std::memchr(block + start, '\n', end - start) != nullptr;
}

bool LineReader::IsReady() const {
    pollfd input = {descriptor, POLLIN, 0};
    return system.Poll(input, 0) != 0;
}

void LineReader::DropCarriageReturn(std::string& line, bool complete) {
    if (complete && !line.empty() && line.back() == '\r') line.pop_back();
}

LineReader::Status LineReader::Next(std::string& line) {
    line.clear();
    bool complete = true; // nothing was dropped so far
    bool any = false;
    for (;;) {
        const Status status = Fill();
        if (status == Status::Failed || (status == Status::End && !any)) return status;
        if (status == Status::End) break;
        any = true;
        const char* const from = block + start;
        const size_t available = end - start;
        const void* const feed = std::memchr(from, '\n', available);
        const size_t count = feed ? static_cast<size_t>(static_cast<const char*>(feed) - from) : available;
        const size_t kept = std::min(count, keep - line.size());
        line.append(from, kept);
        complete = complete && kept == count;
        start += count;
        if (feed) {
            ++start;
            break;
        }
    }
    DropCarriageReturn(line, complete);
    return Status::Line;
}
