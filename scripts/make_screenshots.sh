#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Takes the pictures of docs/images: runs the end-to-end test that takes them, on an X server of its own, and
# keeps what it took.
#
#   scripts/make_screenshots.sh BUILD_DIR
#
# Run it after a change of the looks, and look at the pictures.
set -eu
build=$(cd "$1" && pwd)
cd "$(dirname "$0")/.."
mkdir -p docs/images
TALLYQUILL_APP="$build/bin/Tallyquill.app/Tallyquill" TALLYQUILL_PICTURES="$PWD/docs/images" PYTHONDONTWRITEBYTECODE=1 \
    tests/app/with_display.sh --wm --limit 200 python3 tests/app/end_to_end/pictures.py
