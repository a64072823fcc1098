#!/usr/bin/env bash
# Usage: format.sh [--check]   lays out the C++ sources by .clang-format, or only tells which are not
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
scripts/packages.sh format
mapfile -t files < <(find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print | sort)
[ ${#files[@]} -gt 0 ] || { echo "format.sh: no sources found" >&2; exit 1; }

case ${1:-} in
    --check)
        echo "format.sh: checking the layout of ${#files[@]} files"
        # The places only; format.sh mends them. A failure without a place, as of a broken .clang-format, whole.
        output=$(clang-format --dry-run -Werror "${files[@]}" 2>&1) && exit 0
        grep -E '^[^ ]+:[0-9]+:[0-9]+: ' <<<"$output" || echo "$output"
        exit 1
        ;;
    "")
        echo "format.sh: laying out ${#files[@]} files"
        clang-format -i "${files[@]}"
        ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
