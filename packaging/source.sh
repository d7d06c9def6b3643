#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Makes the source archive of the last commit: the same commit gives the same bytes.
#
#   packaging/source.sh FOLDER     makes FOLDER/tallyquill-VERSION.tar.gz and prints its name
#
# In an unpacked archive it packs that again, with the time of its commit.
set -eu
mkdir -p "$1"
folder=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."

version=$(sed -n 's/^project(Tallyquill VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
name=tallyquill-$version

if [ -e .git ]; then
    # Who built it, and how his files are shared, does not matter to the archive.
    git() { command git -c safe.directory='*' -c tar.umask=0022 "$@"; }
    [ -z "$(git status --porcelain --untracked-files=no)" ] ||
        echo "source: what is not committed is left out" >&2
    git archive --format=tar --prefix="$name/" HEAD >"$folder/$name.tar"
else
    tar --create --file="$folder/$name.tar" --exclude=./build --transform="s,^\.,$name," --sort=name \
        --mtime="@$(cat packaging/commit-time)" --owner=0 --group=0 --numeric-owner --mode=go=u-w .
fi
gzip -9 -n -f "$folder/$name.tar"
echo "$folder/$name.tar.gz"
