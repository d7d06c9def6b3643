// SPDX-License-Identifier: MIT
//
// Which brackets of an entry belong together. All kinds count alike, as for the engine.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// The place of the bracket that belongs to the one in front of the cursor or, when there is none, to the one
// behind it. Nothing when no bracket is there or it has no partner. Both places count from 0.
std::optional<size_t> partnerOfBracketAt(std::u16string_view entry, size_t cursor);
