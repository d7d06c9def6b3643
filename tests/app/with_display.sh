#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Runs a command on an X server of its own and ends everything that was started.
#
#   tests/app/with_display.sh [--wm] [--limit SECONDS] [--screen WIDTHxHEIGHT] COMMAND [ARGUMENT...]
#
# --wm      with a window manager (openbox), which gives windows the focus and their frames
# --limit   the command is ended after this time (100 seconds)
# --screen  its size in pixels (1280x800)
#
# The language is C unless TALLYQUILL_TEST_LANGUAGE says another one, as tests/faults/places.py does.
#
# The command has an empty home folder, empty user defaults and a pasteboard server of its own, and reads no
# input. The exit status is the command's; 124 when the time was up, 125 when the display could not be had.
# On macOS, which has a display anyway, only the home folder is new.
set -eu

wm=no
limit=100
screen=1280x800
while [ $# -gt 0 ]; do
    case $1 in
    --wm) wm=yes && shift ;;
    --limit) limit=$2 && shift 2 ;;
    --screen) screen=$2 && shift 2 ;;
    *) break ;;
    esac
done
[ $# -gt 0 ] || {
    echo "usage: with_display.sh [--wm] [--limit SECONDS] [--screen WIDTHxHEIGHT] COMMAND [ARGUMENT...]" >&2
    exit 125
}

fail() {
    printf 'with_display: %s\n' "$1" >&2
    exit 125
}

# A short path, since sockets lie below it.
dir=$(mktemp -d /tmp/tallyquill.XXXXXX)

# The processes that have our folder in their environment: whatever was started from here, daemons too. The X
# server comes last, so that its clients end first.
# shellcheck disable=SC2317 # called by the trap
ours() {
    env -u TALLYQUILL_TEST_FOLDER grep -l -z -F -x "TALLYQUILL_TEST_FOLDER=$dir" /proc/[0-9]*/environ 2>/dev/null |
        env -u TALLYQUILL_TEST_FOLDER sed -n 's|^/proc/\([0-9]*\)/environ$|\1|p' |
        env -u TALLYQUILL_TEST_FOLDER grep -v -x -e "$server"
}

# shellcheck disable=SC2317 # called by the trap
end_all() {
    for signal in TERM TERM TERM KILL; do
        pids=$(ours) || true
        [ -n "$pids" ] || break
        # shellcheck disable=SC2086 # a list of numbers
        kill -s "$signal" $pids 2>/dev/null || true
        sleep 0.2
    done
}

server=0
command=0
# shellcheck disable=SC2317
cleanup() {
    status=$?
    trap - EXIT
    trap '' INT TERM HUP
    if [ "$command" -ne 0 ]; then kill "$command" 2>/dev/null || true; fi
    end_all
    if [ "$server" -ne 0 ]; then
        kill "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
    fi
    rm -rf "$dir"
    exit "$status"
}
trap cleanup EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# Waits up to ten seconds until "$@" succeeds.
wait_until() {
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 200 ] || return 1
        sleep 0.05
    done
}

start_server() {
    # The server picks a free display and writes its number and a line feed.
    Xvfb -displayfd 3 -screen 0 "${screen}x24" -nolisten tcp -noreset 3>"$dir/display" >"$dir/server.log" 2>&1 &
    server=$!
    wait_until grep -q . "$dir/display" || {
        cat "$dir/server.log" >&2
        fail "no X server"
    }
    DISPLAY=:$(cat "$dir/display")
    export DISPLAY
}

start_window_manager() {
    openbox --sm-disable >"$dir/openbox.log" 2>&1 &
    wait_until sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' || {
        cat "$dir/openbox.log" >&2
        fail "no window manager"
    }
}

# GNUstep takes the folder of the user's defaults from its configuration file alone, not from HOME.
isolate_gnustep() {
    original=${GNUSTEP_CONFIG_FILE:-/etc/GNUstep/GNUstep.conf}
    [ -r "$original" ] || fail "no $original"
    grep -v '^#' "$original" | sed "s,=GNUstep/,=$dir/home/GNUstep/," >"$dir/GNUstep.conf"
    export GNUSTEP_CONFIG_FILE="$dir/GNUstep.conf"
}

mkdir "$dir/home" "$dir/tmp" "$dir/run"
chmod 700 "$dir/run"
export TALLYQUILL_TEST_FOLDER="$dir"
export HOME="$dir/home" XDG_DATA_HOME="$dir/home/data" LANG=C
# The sockets of GNUstep's daemons lie in the folder for temporary files: with one of our own they are not
# shared.
export TMPDIR="$dir/tmp" TMP="$dir/tmp" TEMP="$dir/tmp" XDG_RUNTIME_DIR="$dir/run"
unset LC_ALL LC_NUMERIC LC_CTYPE
# Not that of numbers and messages: the first start takes the decimal mark from it, and the tests expect a point.
if [ -n "${TALLYQUILL_TEST_LANGUAGE:-}" ]; then
    export LC_CTYPE="$TALLYQUILL_TEST_LANGUAGE" LC_COLLATE="$TALLYQUILL_TEST_LANGUAGE" LC_TIME="$TALLYQUILL_TEST_LANGUAGE"
fi
unset XDG_CONFIG_HOME XDG_CACHE_HOME XDG_STATE_HOME WAYLAND_DISPLAY
unset DBUS_SESSION_BUS_ADDRESS SESSION_MANAGER XAUTHORITY

if [ "$(uname -s)" != Darwin ]; then
    isolate_gnustep
    start_server
    [ "$wm" = no ] || start_window_manager
fi

# In the background, because a shell that waits for a program in the foreground reacts to no signal.
if command -v timeout >/dev/null 2>&1; then
    timeout -k 5 "$limit" "$@" </dev/null &
else
    "$@" </dev/null &
fi
command=$!
status=0
wait "$command" || status=$?
command=0
exit "$status"
