#!/usr/bin/env bash
# Usage: test-share.sh   prints the tests' lines against the program's; fails outside a quarter to a third
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Lines that are not blank. Benchmarks count on neither side.
linesBelow() {
    local folders=() folder
    for folder in "$@"; do
        [ ! -d "$folder" ] || folders+=("$folder")
    done
    find "${folders[@]}" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.py' -o -name '*.sh' -o -name '*.cmake' \) \
        -exec cat {} + | grep -c '[^[:space:]]' || true
}

tests=$(linesBelow tests)
program=$(linesBelow app inventor export zip database ui platform headless simulator)
[ "$program" -gt 0 ] || { echo "test-share.sh: no code found" >&2; exit 1; }
tenths=$((tests * 1000 / program))
echo "test-share.sh: tests $tests lines against $program of program, headless and simulator: $((tenths / 10)).$((tenths % 10)) %"

if [ $tenths -lt 250 ] || [ $tenths -gt 333 ]; then
    echo "test-share.sh: outside a quarter to a third" >&2
    exit 1
fi
