#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Proves the Debian packages; as root, and with a network, because a fresh system is made from Debian's archive.
#
#   packaging/check.sh FOLDER     where the packages are; the report goes there, too
#
# Built again in another folder they are the same, lintian finds no error, and they do their work in a fresh
# system (check_installed.sh). That system is kept as an archive, FOLDER/system.tar, for the next time.
set -eu
folder=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
suite=bookworm
mirror=${MIRROR:-http://deb.debian.org/debian}

fail() {
    printf 'package-check: %s\n' "$1" >&2
    exit 1
}
step() { printf 'package-check: %s\n' "$1"; }
[ "$(id -u)" -eq 0 ] || fail "a fresh system takes root"

step "the same packages come from another folder"
TZ=Pacific/Auckland CCACHE_DISABLE=1 "$here/package.sh" "$folder/again" >/dev/null
for package in "$folder"/*.deb; do cmp "$package" "$folder/again/$(basename "$package")"; done
rm -rf "$folder/again"

step "lintian"
# Nobody has asked Debian for them in its list of bugs.
lintian --allow-root --fail-on error --suppress-tags initial-upload-closes-no-bugs "$folder"/*.changes

step "what they depend on"
"$here/check_linked.sh" "$folder"

step "packages of an earlier version"
"$here/package.sh" "$folder/before" 0.9.0 >/dev/null

if [ ! -f "$folder/system.tar" ]; then
    step "a fresh system"
    rm -rf "$folder/system"
    debootstrap --variant=minbase "$suite" "$folder/system" "$mirror" >"$folder/debootstrap.log"
    tar --create --file="$folder/system.tar.new" --directory="$folder/system" .
    mv "$folder/system.tar.new" "$folder/system.tar"
fi
rm -rf "$folder/system"
mkdir "$folder/system"
tar --extract --file="$folder/system.tar" --directory="$folder/system"
"$here/../tests/app/with_display.sh" --wm --limit 1800 "$here/check_installed.sh" "$folder"
rm -rf "$folder/system"
step "all is well; the figures are in $folder/report.txt"
