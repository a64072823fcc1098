#!/usr/bin/env bash
# Usage: check-clang.sh   builds everything with clang as well, analyses it, and runs the native tests of that build
#
# Warnings are errors throughout: of clang for Linux (the tests run with its sanitizers) and for Windows, of clang-tidy
# with the static analyser for the native sources and of the analyser alone for the Windows ones.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
scripts/packages.sh fuzz windows-clang lint

echo "check-clang.sh: native part"
scripts/build.sh fuzz
ctest --test-dir build/fuzz --parallel "$(nproc)" --output-on-failure --no-tests=error -R "^native\."

echo "check-clang.sh: Windows part"
scripts/build.sh windows-clang

scripts/lint.sh
echo "check-clang.sh: analysing the sources of the Windows part"
mapfile -t files < <(find platform/windows ui/windows simulator/com scripts/demo -name '*.cpp' | sort)
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/windows-clang --quiet --checks='-*,clang-analyzer-*' \
        --warnings-as-errors='*' 2> >(grep -vE '^[0-9]+ warnings generated\.$' >&2)
echo "check-clang.sh: no warnings"
