#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Compares what packages depend on with what their programs are linked with, in the system that built them.
#
#   packaging/check_linked.sh FOLDER     where the packages are
#
# The loader's own list of a program (readelf) names libraries, and dpkg the packages that they are of: each of
# these is a dependency, and no library is one that no program loads.
set -eu
export LC_ALL=C
folder=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
wrong=0

complain() {
    printf 'check_linked: %s\n' "$1" >&2
    wrong=1
}

# The libraries that the files below a folder load.
needed() {
    find "$1" -type f -exec readelf --dynamic --wide {} + 2>/dev/null | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' | sort -u
}

# The package of a library. dpkg knows it by the path it was unpacked to, with or without /usr.
owner() {
    path=$(PATH=$PATH:/sbin ldconfig -p | awk -v name="$1" '$1 == name { print $NF; exit }')
    for known in "$path" "/usr$path" "${path#/usr}"; do
        dpkg-query --search "$known" 2>/dev/null && break
    done | sed 's/:.*//' | head -n 1
}

for package in "$folder"/*.deb; do
    name=$(dpkg-deb -f "$package" Package)
    dpkg-deb --extract "$package" "$work/$name"
    dpkg-deb -f "$package" Depends | sed 's/[,|] */\n/g' | sed 's/[ :(].*//' | sort -u >"$work/$name.depends"
    needed "$work/$name" >"$work/$name.needed"
    while read -r library; do
        from=$(owner "$library")
        [ -n "$from" ] || complain "$name: nothing has $library"
        echo "$from"
    done <"$work/$name.needed" | sort -u >"$work/$name.owners"
    for missing in $(comm -13 "$work/$name.depends" "$work/$name.owners"); do
        complain "$name does not depend on $missing, of which it loads a library"
    done
    # A library for programs is not loaded by its own headers.
    for idle in $(comm -23 "$work/$name.depends" "$work/$name.owners" | grep '^lib' | grep -v '^libtallyquill'); do
        complain "$name depends on $idle, of which it loads nothing"
    done
    printf '%-18s loads %s libraries of %s packages\n' "$name" "$(grep -c . "$work/$name.needed")" \
        "$(grep -c . "$work/$name.owners")"
done
exit "$wrong"
