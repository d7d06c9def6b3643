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

# The check boxes of the dark theme, with the space between box and title.
mkdir -p "$out/ThemeImages"
box='roundrectangle 0.5,0.5 13.5,13.5 3,3'
convert -size 20x15 xc:none -fill '#1c1c1c' -stroke '#5c5c5c' -draw "$box" "$out/ThemeImages/common_SwitchOff.png"
convert -size 20x15 xc:none -fill '#0d7075' -stroke '#0d7075' -draw "$box" -fill none -stroke white -strokewidth 1.8 \
    -draw 'polyline 3.5,7.2 6,9.8 10.6,4.4' "$out/ThemeImages/common_SwitchOn.png"

# The marks of pop-up buttons and of pull-down buttons.
convert -size 11x12 xc:none -fill none -stroke '#b8c0c4' -strokewidth 1.4 -draw 'polyline 2.5,4.5 5,2 7.5,4.5' \
    -draw 'polyline 2.5,7.5 5,10 7.5,7.5' "$out/ThemeImages/common_Nibble.png"
convert -size 11x8 xc:none -fill none -stroke '#b8c0c4' -strokewidth 1.4 -draw 'polyline 2,2.5 5,5.5 8,2.5' \
    "$out/ThemeImages/common_3DArrowDown.png"

# The mark of the chosen menu item.
convert -size 12x12 xc:none -fill none -stroke white -strokewidth 1.8 -draw 'polyline 2,6.2 4.8,9 10,3' \
    "$out/ThemeImages/NSMenuCheckmark.png"
cp "$out/ThemeImages/NSMenuCheckmark.png" "$out/ThemeImages/common_2DCheckMark.png"

# The mark of a default button, the arrows of scrollers and lists; a scroller's knob shows no hollow.
theme="$out/ThemeImages"
mark='-fill none -stroke #b8c0c4 -strokewidth 1.3'
# shellcheck disable=SC2086 # a list of options
{
    for state in '' H; do
        convert -size 15x10 xc:none $mark -draw 'polyline 12.5,1.5 12.5,6 3,6' -draw 'polyline 5.5,3.5 3,6 5.5,8.5' \
            "$theme/common_ret$state.png"
        convert -size 9x9 xc:none $mark -draw 'polyline 1.5,3 4,5.5 6.5,3' "$theme/common_ArrowDown$state.png"
        convert -size 9x9 xc:none $mark -draw 'polyline 1.5,5.5 4,3 6.5,5.5' "$theme/common_ArrowUp$state.png"
        convert -size 9x9 xc:none $mark -draw 'polyline 5.5,1.5 3,4 5.5,6.5' "$theme/common_ArrowLeft$state.png"
        convert -size 9x9 xc:none $mark -draw 'polyline 3,1.5 5.5,4 3,6.5' "$theme/common_ArrowRight$state.png"
    done
    for name in Dimple DimpleHoriz; do convert -size 6x6 xc:#404040 PNG24:"$theme/common_$name.png"; done

    # The places of the open and save panels.
    mark='-fill #0d7075 -stroke #5fb9bd -strokewidth 1.6'
    convert -size 48x48 xc:none $mark -draw 'polygon 6,12 19,12 23,17 42,17 42,38 6,38' "$theme/common_Folder.png"
    cp "$theme/common_Folder.png" "$theme/common_HomeDirectory.png"
    mark='-fill none -stroke #b8c0c4 -strokewidth 2.5'
    convert -size 48x48 xc:none $mark -draw 'polygon 11,5 28,5 37,14 37,43 11,43' -draw 'polyline 28,5 28,14 37,14' \
        "$theme/common_Unknown.png"
    mark='-fill none -stroke #b8c0c4 -strokewidth 1.5'
    convert -size 24x24 xc:none $mark -draw 'polyline 4,12 12,4 20,12' -draw 'polyline 6,11 6,20 18,20 18,11' \
        "$theme/common_Home.png"
    convert -size 24x24 xc:none $mark -draw 'roundrectangle 4,13 20,19 2,2' -draw 'line 12,3 12,10' \
        -draw 'polyline 9,7 12,10 15,7' "$theme/common_Mount.png"
    convert -size 24x24 xc:none $mark -draw 'roundrectangle 4,13 20,19 2,2' -draw 'line 12,10 12,3' \
        -draw 'polyline 9,6 12,3 15,6' "$theme/common_Unmount.png"
}

# A window in the menu of windows, where GNUstep would show the close button of a title bar.
for name in Close CloseH CloseBroken CloseBrokenH; do
    convert -size 13x11 xc:none -fill none -stroke '#b8c0c4' -strokewidth 1.2 \
        -draw 'roundrectangle 1,1 11,9 1.5,1.5' -draw 'line 1,3.5 11,3.5' "$theme/common_$name.png"
done

# The color panel: the magnifying glass that takes a color off the screen, the tab of the named colors.
convert -size 20x20 xc:none -fill none -stroke '#b8c0c4' -strokewidth 1.8 -draw 'circle 8,8 8,3' \
    -strokewidth 2.4 -draw 'line 12,12 17,17' "$theme/MagnifyGlass.png"
convert -size 32x24 xc:none -stroke none -fill '#d0484c' -draw 'rectangle 3,3 8,8' -fill '#3f9a58' \
    -draw 'rectangle 3,10 8,14' -fill '#3c78c8' -draw 'rectangle 3,16 8,20' -fill '#b8c0c4' \
    -draw 'rectangle 11,5 28,6' -draw 'rectangle 11,11 28,12' -draw 'rectangle 11,17 28,18' \
    "$theme/GSNamedColorPicker.png"

# The same for the light look: what is gray or white is turned around, what has a color stays.
light="$out/Light.bundle/Resources/ThemeImages"
mkdir -p "$light"
cp "$theme"/*.png "$light"
for image in "$light"/*.png; do
    case $image in *SwitchOn* | *Folder* | *HomeDirectory* | *NamedColor*) continue ;; esac
    convert "$image" -channel RGB -negate "$image"
done

# Without the time of their making, so that unchanged pictures stay unchanged files.
for image in "$theme"/*.png "$light"/*.png; do
    convert "$image" -strip -define png:exclude-chunks=date,time "$image"
done
