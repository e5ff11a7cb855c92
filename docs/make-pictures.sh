#!/usr/bin/env bash
# Makes the pictures of README and gallery out of the shots: docs/make-pictures.sh SHOTS_FOLDER
# Shots have two pixels to a point. A window alone gets 1.25 pixels to a point, windows in a row get one.
set -euo pipefail
shots=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/pictures"

flat=(+dither -colors 192)                    # windows are mostly plain areas
glowing=(-dither FloydSteinberg -colors 255)  # the panel's orb would fall into rings
small=(-strip -define png:compression-level=9)
declare -A desk=([dark]='#23242c' [light]='#d9dae1')

# NAME THEME SHOT
window() {
    convert "$shots/$language-$2/$3.png" -resize 62.5% "${flat[@]}" "${small[@]}" "PNG8:$1-$language.png"
}

# NAME THEME SHOT…: side by side
row() {
    local name=$1 theme=$2 shot files=()
    shift 2
    for shot; do files+=("$shots/$language-$theme/$shot.png"); done
    convert "${files[@]}" -background "${desk[$theme]}" +append -resize 50% "${flat[@]}" "${small[@]}" \
        "PNG8:$name-$language.png"
}

# The same for panels, which stand on the desk: most of it is cut away.
panels() {
    local name=$1 theme=$2 shot files=()
    shift 2
    for shot; do files+=("$shots/$language-$theme/$shot.png"); done
    convert "${files[@]}" -shave 60x0 -gravity south -chop 0x40 -gravity north -background "${desk[$theme]}" +append \
        -resize 50% "${glowing[@]}" "${small[@]}" "PNG8:$name-$language.png"
}

for language in ru en; do
    panels panel dark panel-idle panel-recording panel-processing
    panels account dark panel-signed-out panel-signing-in panel-sign-in-wanted
    panels waiting light panel-starting panel-stopping panel-update
    row toasts dark toast-started toast-finished
    row setup dark setup-running setup-failed setup-complete
    row permissions light permissions-asking permissions-granted
    row update dark update-available update-uptodate
    window meetings dark main-meetings
    window search light main-search
    window protocol dark detail
    window remark dark detail-fixed-teach
    window analysis dark report
    row analysis-whole light report-unrolled
    window glossary dark assistant-dirty
    row settings dark settings-unrolled
    window settings-tab light settings-tab
done
mogrify -gravity north -crop x210+0+0 +repage permissions-*.png # nothing stands below

# What README begins with.
convert \( "$shots/ru-dark/detail.png" -bordercolor "${desk[dark]}" -border 40 \) \
    \( "$shots/ru-dark/panel-idle.png" -shave 20x0 \) -background "${desk[dark]}" -gravity center +append \
    -resize 50% "${glowing[@]}" "${small[@]}" PNG8:murmeli.png
du -ch ./*.png | tail -n 1
