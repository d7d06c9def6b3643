#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Installs the packages in a fresh system, uses them, upgrades and removes them. Run by check.sh, on a display.
#
#   packaging/check_installed.sh FOLDER
#   packaging/check_installed.sh --window FOLDER     opens the window in that system, as its person
#
# FOLDER/system is the fresh system, FOLDER/before has the packages of an earlier version.
set -eu
if [ "$1" = --window ]; then
    only_window=yes
    shift
fi
folder=$1
here=$(cd "$(dirname "$0")" && pwd)
root=$folder/system
report=$folder/report.txt
cache=$folder/archives # what apt has fetched is kept for the next time
home=$root/home/person

fail() {
    printf 'package-check: %s\n' "$1" >&2
    exit 1
}
step() { printf 'package-check: %s\n' "$1"; }

# Runs a command in the system, as the user $1. Its processes are the only ones there, and end with it.
inside() {
    user=$1
    shift
    # shellcheck disable=SC2016 # the inner shell has the arguments
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin \
        unshare --mount --pid --fork --kill-child --mount-proc="$root/proc" sh -c '
            mount --bind "$1" "$2/var/cache/apt/archives"
            root=$2 user=$3
            shift 3
            exec chroot "$root" setpriv --reuid="$user" --regid="$user" --init-groups --reset-env "$@"
        ' sh "$cache" "$root" "$user" "$@"
}
as_root() { inside root env DEBIAN_FRONTEND=noninteractive LANG=C.UTF-8 "$@"; }
as_person() { inside person env DISPLAY="$DISPLAY" LANG=C.UTF-8 "$@"; }
# The names of files are patterns for the shell in the system.
install_packages() {
    as_root sh -c "apt-get install -qq -y -o Dpkg::Use-Pty=0 --no-install-recommends $*" >>"$folder/apt.log" 2>&1 ||
        fail "could not install: $*"
}
answers() { [ "$(as_person tallyquill "$1")" = "$2" ] || fail "tallyquill $1 does not answer: $2"; }

answers_program() {
    [ "$(echo '2+3*4' | as_person /packages/programs/calculator)" = 'ans = 14' ] || fail "the program against the library does not answer"
}

# All that an installation could leave; not the lists and logs of the package manager itself.
all_files() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./tmp -o -path ./home -o -path ./packages -o -path ./var/cache/apt \
        -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) -prune -o -print) | sort
}

all_packages() { dpkg-query --admindir="$root/var/lib/dpkg" --show --showformat='${Package}\n' | sort; }

# What a package takes: its own size, how many come with it and how large those of Debian are. $2...: options of apt-get.
describe() {
    file=$1
    shift
    name=$(dpkg-deb -f "$file" Package)
    files=/packages/$(basename "$file")
    [ "$name" != libtallyquill-dev ] || files="$files /packages/libtallyquill1_*.deb"
    planned=$(as_root sh -c "apt-get install -s $* $files") || fail "could not be installed: $files"
    others=$(printf '%s\n' "$planned" | sed -n 's/^Inst \([^ ]*\) .*/\1/p' | grep -vx "$name") || true
    # shellcheck disable=SC2086 # a list of names
    size=$(as_root apt-cache show --no-all-versions base-files $others 2>/dev/null |
        awk '/^Package:/ { own = $2 } /^Installed-Size:/ && own != "base-files" { sum += $2 } END { printf "%.0f", sum / 1000 }')
    printf '%-18s %5s KB; %3s more packages, %4s MB %s\n' "$name" "$(dpkg-deb -f "$file" Installed-Size)" \
        "$(printf '%s' "$others" | grep -c .)" "$size" "${1:+($1)}"
}

prepare() {
    mkdir -p "$cache/partial" "$root/packages/before"
    cp "$folder"/*.deb "$root/packages"
    cp "$folder"/before/*.deb "$root/packages/before"
    cp /etc/resolv.conf "$root/etc"
    as_root apt-get update -qq
    as_root useradd --create-home person
    all_files >"$folder/files-before.txt"
    all_packages >"$folder/packages-before.txt"
    printf '#!/bin/sh\nexec "%s" --window "%s"\n' "$here/check_installed.sh" "$folder" >"$folder/window"
    chmod +x "$folder/window"
}

# Opens the window, types a definition, waits until it is kept and closes the window. $1, $2: the definition and how
# it is kept; $3: options.
use_window() {
    TALLYQUILL_APP=$folder/window "$here/use_window.py" ${3:+"$3"} "$1" "$home/.local/share/Tallyquill/pelmo_functions.txt" "$2" ||
        fail "the window does not do its work"
}

if [ -n "${only_window:-}" ]; then
    as_person tallyquill-window
    exit
fi
prepare
step "what they take"
{
    printf 'Debian 12, fresh (debootstrap --variant=minbase), %s\n' "$(dpkg --print-architecture)"
    for file in "$folder"/*.deb; do describe "$file" --no-install-recommends; done
    describe "$folder"/tallyquill-window_*.deb
} >"$report"
cat "$report"

step "the terminal's program alone"
install_packages '/packages/before/tallyquill_*.deb'
answers '2+3*4' 'ans = 14'

step "the window"
install_packages '/packages/before/*.deb'
use_window 'kept(x)=2*x' 'kept(x)=2*x' --first

step "a program against the library"
cp -R "$here/../tests/library/programs" "$root/packages"
install_packages 'g++ pkg-config'
# shellcheck disable=SC2016 # pkg-config is run inside
as_root sh -c 'cd /packages/programs && g++ -std=c++17 calculator.cpp -o calculator $(pkg-config --cflags --libs tallyquill)'
answers_program

step "upgrade"
install_packages '/packages/*.deb'
as_person tallyquill --version | head -n 1
answers 'kept(21)' 'ans = 42'
use_window 'also(x)=3*x' 'also(x)=3*x'
answers 'kept(also(7))' 'ans = 42'
answers_program

step "remove"
names=$(for file in "$folder"/*.deb; do dpkg-deb -f "$file" Package; done)
# shellcheck disable=SC2086 # a list of names
as_root apt-get purge -qq -y -o Dpkg::Use-Pty=0 $names >>"$folder/apt.log" 2>&1
as_root apt-get autoremove -qq -y -o Dpkg::Use-Pty=0 --purge >>"$folder/apt.log" 2>&1
# Some of what came along stays because others of it recommend it.
others=$(all_packages | comm -13 "$folder/packages-before.txt" -)
# shellcheck disable=SC2086
[ -z "$others" ] || as_root apt-get purge -qq -y -o Dpkg::Use-Pty=0 $others >>"$folder/apt.log" 2>&1
all_files >"$folder/files-after.txt"
left=$(comm -13 "$folder/files-before.txt" "$folder/files-after.txt")
[ -z "$left" ] || fail "something is left: $left"
grep -q '^also' "$home/.local/share/Tallyquill/pelmo_functions.txt" || fail "the person's own files are gone"
