#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Removes what was installed, and the folders that are empty then.
#
#   packaging/uninstall.sh LIST PREFIX
#
# LIST names the installed files, one a line, as CMake writes it; PREFIX is the folder below which they are. Its
# own folders (bin, share, share/man ...) stay: they belong to the system. DESTDIR, in the environment, goes before all
# names.
set -eu

list=$1
prefix=$2
destination=${DESTDIR:-}
[ -r "$list" ] || {
    echo "uninstall: nothing is known to be installed (no $list)" >&2
    exit 1
}

files=0
while read -r file || [ -n "$file" ]; do
    [ ! -e "$destination$file" ] && [ ! -L "$destination$file" ] || files=$((files + 1))
    rm -f "$destination$file"
done <"$list"
echo "uninstall: removed $files files below $destination$prefix"

# Every folder above a file up to the prefix; the deepest come first.
above() {
    while read -r file || [ -n "$file" ]; do
        folder=$(dirname "$file")
        while [ "${folder#"$prefix"/}" != "$folder" ]; do
            printf '%s\n' "${folder#"$prefix"/}"
            folder=$(dirname "$folder")
        done
    done <"$list" | sort -ru
}
above | grep / | grep -vx 'share/man' | while read -r folder; do
    rmdir "$destination$prefix/$folder" 2>/dev/null || true # something else is in it
done
