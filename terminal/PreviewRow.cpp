// SPDX-License-Identifier: MIT
#include "PreviewRow.h"

#include <utility>

namespace {

std::string move(int count, char direction) {
    return count > 0 ? "\x1b[" + std::to_string(count) + direction : "";
}

std::string toColumn(int column) {
    return "\r" + move(column, 'C');
}

} // namespace

std::string PreviewRow::Draw(std::string_view text, ScreenPlace cursor, ScreenPlace end, int width) {
    const std::string cleared = Erase();
    rowsBelow = end.row - cursor.row + 1;
    column = cursor.column;
    return cleared + move(rowsBelow - 1, 'B') + "\r\n\x1b[K\x1b[2m" + cutToWidth(text, width) + "\x1b[0m" +
           move(rowsBelow, 'A') + toColumn(column);
}

std::string PreviewRow::Erase() {
    const int rows = std::exchange(rowsBelow, 0);
    return rows == 0 ? "" : move(rows, 'B') + "\r\x1b[K" + move(rows, 'A') + toColumn(column);
}

std::string PreviewRow::ClearBelow(ScreenPlace cursor, ScreenPlace end) {
    const int rows = end.row - cursor.row;
    return move(rows, 'B') + toColumn(end.column) + "\x1b[J" + move(rows, 'A') + toColumn(cursor.column);
}
