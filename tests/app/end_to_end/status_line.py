# SPDX-License-Identifier: MIT
"""The status line, read by its picture: see calculator_window.py."""

from calculator_window import STATUS_LINE, at_rest, pasteboard, picture, wait_until

FIND = "Find: "  # stands before what is searched for


def status_line(window, scale=1):
    """The rows of pixels of the status line."""
    row = 3 * window.place()[2]  # bytes
    shot = picture(window.id)
    return [shot[start : start + row] for start in range(len(shot) - row * STATUS_LINE * scale, len(shot), row)]


def written(rows):
    """What is written on them: the columns of pixels from the first that is not empty to the last."""
    columns = list(zip(*(zip(row[::3], row[1::3], row[2::3]) for row in rows)))
    inked = [place for place, column in enumerate(columns) if column != columns[0]]
    return columns[inked[0] : inked[-1] + 1] if inked else []


def picture_of(window, text, scale=1):
    """How the status line writes a text that stands in the transcript: finding it shows it, and selects it."""
    window.key("ctrl+f")
    window.type(text)
    wait_until("all of it", lambda: pasteboard("primary") == text)
    columns = at_rest("what is found", lambda: written(status_line(window, scale)))
    window.key("Escape")
    return columns


def is_same(seen, known):
    """Whether two texts are the same, of which one stands behind others.

    On a dense screen a letter is as wide as 14.4 pixels, and each begins with a whole one: some stand one aside."""
    return all(column in known[max(place - 1, 0) : place + 2] for place, column in enumerate(seen))


def wait_for_status(window, text, known, scale=1):
    """Waits until the status line shows the text and nothing else; `known` comes from picture_of."""
    expected = len(known) * len(text) / len(FIND + text)  # the width, but for the air beside the letters

    def shows():
        seen = written(status_line(window, scale))
        return abs(len(seen) - expected) < expected / len(text) and is_same(seen, known[-len(seen) :])

    wait_until(f"{text!r} in the status line", shows)
