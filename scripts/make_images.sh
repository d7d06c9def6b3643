#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Draws the images of app/resources and packaging/icons from their sources in app/art. It needs ImageMagick, an
# SVG renderer for it (Debian: librsvg2-bin) and python3. The images are kept in the repository; run this after
# changing a source.
set -eu
cd "$(dirname "$0")/.."
art=app/art
out=app/resources
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The icon in the sizes that desktops ask for; the small ones have a drawing of their own.
icons=packaging/icons/hicolor
for size in 16 24 32 48 64 128 256 512; do
    source=$art/icon.svg
    if [ "$size" -le 32 ]; then source=$art/icon_small.svg; fi
    rsvg-convert -w "$size" -h "$size" "$source" -o "$work/icon_$size.png"
    mkdir -p "$icons/${size}x$size/apps"
    cp "$work/icon_$size.png" "$icons/${size}x$size/apps/org.tallyquill.Tallyquill.png"
done
cp "$work/icon_256.png" "$out/Tallyquill.png"

# An icon file of macOS is a list of PNG images, each behind its type and length.
python3 - "$work" "$out/Tallyquill.icns" <<'PYTHON'
import struct, sys
work, path = sys.argv[1:]
parts = b""
for kind, size in ((b"icp4", 16), (b"icp5", 32), (b"ic07", 128), (b"ic08", 256), (b"ic09", 512)):
    image = open(f"{work}/icon_{size}.png", "rb").read()
    parts += kind + struct.pack(">I", len(image) + 8) + image
open(path, "wb").write(b"icns" + struct.pack(">I", len(parts) + 8) + parts)
PYTHON

for state in tray:#202020 tray_clicked:#ffffff; do
    sed "s/INK/${state#*:}/" "$art/tray.svg" >"$work/tray.svg"
    rsvg-convert "$work/tray.svg" -o "$out/Pelmo_${state%%:*}.png"
done

# The scroller: a rounded knob, 7 points wide, in a track of which only a fine line is drawn. What is
# repeated is 16 points high: the higher, the less often it is drawn; the track is never lower than two of them.
convert -size 7x7 xc:none -fill '#6f787c' -draw 'roundrectangle 0,0 6,6 3,3' "$work/knob.png"
convert "$work/knob.png" -crop 7x3+0+0 +repage -depth 8 -type TrueColorAlpha -define tiff:alpha=associated -compress none "$out/TransparentScrollerKnobTop.tif"
convert "$work/knob.png" -crop 7x1+0+3 +repage -scale '7x16!' -depth 8 -type TrueColorAlpha -define tiff:alpha=associated -compress none "$out/TransparentScrollerKnobVerticalFill.tif"
convert "$work/knob.png" -crop 7x3+0+4 +repage -depth 8 -type TrueColorAlpha -define tiff:alpha=associated -compress none "$out/TransparentScrollerKnobBottom.tif"
convert -size 15x16 xc:none -fill 'rgba(255,255,255,0.05)' -draw 'rectangle 0,0 14,15' -depth 8 -type TrueColorAlpha -define tiff:alpha=associated -compress none \
    "$out/TransparentScrollerSlotVerticalFill.tif"
