#!/usr/bin/env bash
# Usage: test-share.sh [--strict]   prints the share of the tests in the code; --strict wants 25 to 33 percent
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
program=$(linesBelow app inventor export database ui platform simulator)
all=$((tests + program))
[ "$all" -gt 0 ] || { echo "test-share.sh: no code found" >&2; exit 1; }
tenths=$((tests * 1000 / all))
echo "test-share.sh: tests $tests lines, program and simulator $program lines: tests are $((tenths / 10)).$((tenths % 10)) % of the code"

if [ "${1:-}" = --strict ] && { [ $tenths -lt 250 ] || [ $tenths -gt 330 ]; }; then
    echo "test-share.sh: outside 25 to 33 %" >&2
    exit 1
fi
