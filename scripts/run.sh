#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Opens the calculator: its window, or the terminal console where there is no display.
#
#   scripts/run.sh WINDOW TERMINAL
#
# WINDOW and TERMINAL are the two built programs. On macOS there is always a display, elsewhere when an X
# server answers at $DISPLAY; only the window itself can tell that for sure, so it is simply tried.
set -eu

window=$1
terminal=$2

# The window takes no input, and what its libraries remark concerns nobody unless it fails.
open_window() {
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    status=0
    "$window" </dev/null >/dev/null 2>"$log" || status=$?
    [ "$status" -ne 0 ] || exit 0
    if grep -q 'there is no display' "$log"; then
        rm -f "$log"
        trap - EXIT
        return
    fi
    cat "$log" >&2
    exit "$status"
}

if [ -n "${DISPLAY:-}" ] || [ "$(uname -s)" = Darwin ]; then open_window; fi
status=0
"$terminal" || status=$?
[ "$status" -ne 1 ] || exit 0 # an entry was refused, which is no failure
exit "$status"
