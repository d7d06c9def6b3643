#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Lets the desktop read again which programs and kinds of files there are. Packages have this done by the system.
#
#   packaging/refresh.sh PREFIX
set -eu
mime=$1/share/mime
applications=$1/share/applications

# What was made of the last files goes with them.
if [ -d "$mime/packages" ]; then
    if command -v update-mime-database >/dev/null; then update-mime-database "$mime"; fi
elif [ -f "$mime/mime.cache" ]; then
    rm -rf "$mime"
fi
if [ -n "$(find "$applications" -name '*.desktop' 2>/dev/null)" ]; then
    if command -v update-desktop-database >/dev/null; then update-desktop-database -q "$applications"; fi
elif [ -d "$applications" ]; then
    rm -f "$applications/mimeinfo.cache"
    rmdir "$applications" 2>/dev/null || true
fi
