#!/usr/bin/env bash
# Usage: check-listing.sh PAGE FOLDER   has a listing read by an HTML validator and a browser; pictures go to FOLDER
#
# Leaves there the page as a wide and a narrow screen show it, light and dark, and as it is printed.
set -euo pipefail

if [ $# -ne 2 ] || [ ! -f "$1" ]; then
    sed -n 2p "$0" >&2
    exit 2
fi
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
page=$(realpath "$1")
mkdir -p "$2"
pictures=$(cd "$2" && pwd)
"$root/scripts/packages.sh" listing
command -v npm >/dev/null || { echo "check-listing.sh: npm is missing, which brings the validator" >&2; exit 1; }

validator=$root/build/deps/validator
if [ ! -d "$validator/node_modules/vnu-jar" ]; then
    echo "check-listing.sh: installing the validator"
    mkdir -p "$validator"
    npm install --silent --no-audit --no-fund --prefix "$validator" vnu-jar@26.9.27 </dev/null
fi
java -Xss8m -jar "$validator/node_modules/vnu-jar/build/dist/vnu.jar" "$page"
echo "check-listing.sh: valid: $1"

address=$(python3 -c 'import pathlib, sys; print(pathlib.Path(sys.argv[1]).as_uri())' "$page")
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT

# browse OPTION...: opens the page in a browser of its own that ends by itself.
browse() {
    timeout 300 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync --hide-scrollbars \
        --user-data-dir="$profile" "$@" "$address" </dev/null >"$profile/log" 2>&1 || {
        cat "$profile/log" >&2
        echo "check-listing.sh: the browser failed" >&2
        return 1
    }
}

# What the browser calls the preferred scheme.
declare -A schemes=([dark]=0 [light]=1)
for scheme in "${!schemes[@]}"; do
    setting=--blink-settings=preferredColorScheme=${schemes[$scheme]}
    browse "$setting" --window-size=1280,900 --screenshot="$pictures/wide-$scheme.png"
    browse "$setting" --window-size=390,844 --screenshot="$pictures/narrow-$scheme.png"
done
browse --no-pdf-header-footer --print-to-pdf="$pictures/print.pdf"
for picture in wide-light.png wide-dark.png narrow-light.png narrow-dark.png print.pdf; do
    [ -s "$pictures/$picture" ] || { echo "check-listing.sh: the browser left no $picture" >&2; exit 1; }
done
echo "check-listing.sh: pictures in $2"
