#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Renders the pictures of the svg folder beside this script. The same sources give the same bytes.
#
#   art/render.sh                the pictures of the program, into res/
#   art/render.sh hicolor DIR    the application icon in the sizes of the hicolor theme, below DIR
#
# Needs rsvg-convert (package librsvg2-bin) and, for res/, convert (package imagemagick).
set -eu

here=$(cd "$(dirname "$0")" && pwd)
src=$here/svg
application=tessaport-monitor
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

need() {
    command -v "$1" >/dev/null || { echo "$1 is missing (package $2)" >&2; exit 1; }
}

# Width and height as the PNG header holds them: bytes 16 to 23, big-endian.
png_size() {
    od -An -tu1 -j16 -N8 "$1" |
        awk '{ print (($1*256+$2)*256+$3)*256+$4 "x" (($5*256+$6)*256+$7)*256+$8 }'
}

# The size a picture is made for; an empty answer is a picture whose size nothing fixes.
required_size() {
    case $1 in
        images/pb|images/pb-*|*/pb_disabled)            echo 73x23 ;;
        images/le)                                      echo 212x21 ;;
        images/pbLoginClose*)                           echo 31x19 ;;
        images/pbMenu*)                                 echo 25x16 ;;
        images/pbMinimize*)                             echo 23x16 ;;
        images/pbTask*|images/pbComment)                echo 16x16 ;;
        images/pbPlay_*|images/pbPause_*)               echo 40x40 ;;
        images/pbAttention_*|*/pbTimeExtend_*)          echo 26x26 ;;
        images/login)                                   echo 369x146 ;;
        images/wlogin-top)                              echo 369x40 ;;
        images/main)                                    echo 392x73 ;;
        images/bg_notifications_withLogo)               echo 250x100 ;;
        images/logo)                                    echo 20x20 ;;
        */big_fon)                                      echo 394x565 ;;
        */kalendar_fon)                                 echo 216x360 ;;
        */reasonLabel)                                  echo 186x87 ;;
        */timeLabel)                                    echo 83x25 ;;
        */TP)                                           echo 181x181 ;;
        */spinup_*)                                     echo 25x12 ;;
        */spindown_*)                                   echo 25x13 ;;
        */descr_button*)                                echo 165x43 ;;
        */task_target_button*)                          echo 84x24 ;;
        */pbarrow_*|*/calendar_icon)                    echo 16x16 ;;
        */attachment_icon|*/hide_icon)                  echo 16x16 ;;
        */back_button)                                  echo 18x18 ;;
        icons/64|icons/tray*)                           echo 64x64 ;;
    esac
}

# The application icon at one size. Below 48 pixels its two ticks would be mere dirt.
application_icon() {
    size=$1
    drawing=$src/icons/64.svg
    if [ "$size" -lt 48 ]; then
        grep -v 'id="ticks"' "$drawing" >"$scratch/noticks.svg"
        drawing=$scratch/noticks.svg
    fi
    rsvg-convert -w "$size" -h "$size" -o "$2" "$drawing"
}

render_hicolor() {
    for size in 16 22 24 32 48 64 128 256; do
        folder=$1/${size}x${size}/apps
        mkdir -p "$folder"
        application_icon "$size" "$folder/$application.png"
    done
    mkdir -p "$1/scalable/apps"
    cp "$src/icons/64.svg" "$1/scalable/apps/$application.svg"
}

render_ico() {
    set --
    for size in 16 24 32 48 64 256; do
        application_icon "$size" "$scratch/$size.png"
        set -- "$@" "$scratch/$size.png"
    done
    convert "$@" -strip -define png:exclude-chunks=date,time "$scratch/64.ico"
    cp "$scratch/64.ico" "$out/icons/64.ico"
}

render_pictures() {
    out=$1
    bad=0
    count=0
    (cd "$src" && find . -type f -name '*.svg' | sed 's|^\./||' | LC_ALL=C sort) >"$scratch/list"

    while IFS= read -r file; do
        name=${file%.svg}
        # The application icon becomes a file of many sizes instead.
        [ "$name" != icons/64 ] || continue
        said=$(sed -n '1s/.*<svg[^>]* width="\([0-9]*\)" height="\([0-9]*\)".*/\1x\2/p' "$src/$file")
        want=$(required_size "$name")
        if [ -z "$said" ]; then
            echo "$file: no whole width and height in its first line" >&2; bad=1; continue
        fi
        if [ -n "$want" ] && [ "$said" != "$want" ]; then
            echo "$file: is $said, has to be $want" >&2; bad=1; continue
        fi
        w=${said%x*}; h=${said#*x}
        mkdir -p "$out/$(dirname "$name")"
        rsvg-convert -w "$w" -h "$h" -o "$out/$name.png" "$src/$file"
        rsvg-convert -w $((w * 2)) -h $((h * 2)) -o "$out/$name@2x.png" "$src/$file"
        for pair in "$name.png $said" "$name@2x.png $((w * 2))x$((h * 2))"; do
            png=${pair% *}
            got=$(png_size "$out/$png")
            if [ "$got" != "${pair##* }" ]; then
                echo "$png: rendered $got instead of ${pair##* }" >&2; bad=1
            fi
        done
        count=$((count + 1))
    done <"$scratch/list"

    echo "$count pictures, each at 1x and 2x, and the application icon"
    return $bad
}

need rsvg-convert librsvg2-bin
case $#:${1-} in
    0:)
        need convert imagemagick
        render_pictures "$here/../res"
        render_ico
        ;;
    2:hicolor)
        render_hicolor "$2"
        ;;
    *)
        echo "usage: $0 [hicolor FOLDER]" >&2
        exit 2
        ;;
esac
