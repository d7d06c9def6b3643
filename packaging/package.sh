#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Builds the Debian packages from the source archive.
#
#   packaging/package.sh FOLDER [VERSION]
#
# They are put into FOLDER; the sources are unpacked and built in FOLDER/source. VERSION takes the place of the
# sources' version, to have something to upgrade from.
set -eu
mkdir -p "$1"
folder=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)

rm -f "$folder"/tallyquill* "$folder"/libtallyquill*
archive=$("$here/source.sh" "$folder")
rm -rf "$folder/source"
mkdir "$folder/source"
tar --extract --file="$archive" --strip-components=1 --directory="$folder/source"
cd "$folder/source"

version=$(basename "$archive" .tar.gz)
version=${version#tallyquill-}
if [ $# -gt 1 ]; then
    sed -i "s/^project(Tallyquill VERSION $version /project(Tallyquill VERSION $2 /" CMakeLists.txt
    sed -i "s/^## \[$version\] /## [$2] /" CHANGELOG.md
    version=$2
fi

# All files of the packages are as old as the commit, so that it gives the same packages again.
SOURCE_DATE_EPOCH=$(cat packaging/commit-time)
export SOURCE_DATE_EPOCH
cp -R packaging/debian debian
cat >debian/changelog <<END
tallyquill ($version-1) bookworm; urgency=medium

  * Version $version. CHANGELOG.md tells what is new.

 -- The Tallyquill authors <maintainers@tallyquill.invalid>  $(LC_ALL=C date --utc --rfc-email --date="@$SOURCE_DATE_EPOCH")
END

dpkg-buildpackage --build=binary --unsigned-changes --unsigned-buildinfo >"$folder/build.log" 2>&1 || {
    tail -n 40 "$folder/build.log" >&2
    exit 1
}
cd "$folder"
rm -rf source
ls "$folder"/*.deb
