#!/usr/bin/env bash
# Usage: make-icons.sh   draws each vector image in resources/ as an icon file beside it
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
"$root/scripts/packages.sh" icons

# ImageMagick's own names, of Debian 12 and 13: "convert" may be another program.
convert=$(command -v convert-im6 convert-im7 | head -n 1)

drawings=$(mktemp -d "$root/resources/.icons.XXXXXX")
trap 'rm -rf "$drawings"' EXIT

# drawIcon NAME SIZE...
drawIcon() {
    local name=$1 size image images=()
    shift
    echo "make-icons.sh: drawing resources/$name.ico"
    for size in "$@"; do
        image=$drawings/$size.png
        rsvg-convert --width "$size" --height "$size" --output "$image" "$root/resources/$name.svg"
        images+=("$image")
    done
    "$convert" "${images[@]}" -strip "$root/resources/$name.ico"
}

drawIcon velmora 16 20 24 32 48 64 256
# Images in lists and on buttons: 16 pixels at 100 to 300 % of the usual size.
for name in part assembly drawing warning expand-all collapse-all export; do
    drawIcon $name 16 20 24 32 48
done
