#!/usr/bin/env bash
# Usage: make-icons.sh   draws resources/velmora.ico from resources/velmora.svg
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
echo "make-icons.sh: drawing resources/velmora.ico"
"$root/scripts/packages.sh" icons

drawings=$(mktemp -d "$root/resources/.icons.XXXXXX")
trap 'rm -rf "$drawings"' EXIT
images=()
for size in 16 20 24 32 48 64 256; do
    image=$drawings/$size.png
    rsvg-convert --width $size --height $size --output "$image" "$root/resources/velmora.svg"
    images+=("$image")
done
# convert-im6: the name that stays ImageMagick's own where another program is called "convert".
convert-im6 "${images[@]}" -strip "$root/resources/velmora.ico"
