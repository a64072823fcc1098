#!/usr/bin/env bash
# Usage: lint.sh [FILE...]   runs clang-tidy over our sources of the native build, or over FILEs, named from the root; every warning is an error
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
echo "lint.sh: analysing the sources of build/native"
scripts/packages.sh native lint
# The configuration alone writes the compile database; nothing needs to be built.
scripts/build.sh native rebuild_cache >/dev/null

files=("$@")
if [ ${#files[@]} -eq 0 ]; then
    # Our own sources only, not the generated ones below build/.
    mapfile -t files < <(python3 - "$root" <<'P'
import json, os, sys
root = sys.argv[1]
with open(os.path.join(root, "build/native/compile_commands.json"), encoding="utf-8") as database:
    files = {os.path.relpath(entry["file"], root) for entry in json.load(database)}
print("\n".join(sorted(f for f in files if not f.startswith(("build/", "..")))))
P
    )
fi
[ -n "${files[0]:-}" ] || { echo "lint.sh: no sources found" >&2; exit 1; }
# It counts on stderr what it did not show, the system's headers' warnings: that is left out, errors are not.
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build/native --quiet --warnings-as-errors='*' \
        2> >(grep -vE '^[0-9]+ warnings generated\.$' >&2)
echo "lint.sh: ${#files[@]} files, no warnings"
