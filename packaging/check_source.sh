#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Makes the source archive twice, compares the two, and builds and tests what is in it without a network; as root.
#
#   packaging/check_source.sh FOLDER     where the archive is; it is unpacked in FOLDER/check
set -eu
folder=$(cd "$1" && pwd)
archive=$(ls "$folder"/tallyquill-*.tar.gz)
here=$(cd "$(dirname "$0")" && pwd)

cmp "$archive" "$("$here/source.sh" "$folder/again")"
rm -rf "$folder/again" "$folder/check"
mkdir "$folder/check"
tar --extract --file="$archive" --strip-components=1 --directory="$folder/check"
cd "$folder/check"
# Tests ask services on this machine, so that it is to have its own address; and they become other users, who
# would not be there in a space of users of its own.
unshare --net sh -c 'ip link set lo up && make test'
