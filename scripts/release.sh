#!/usr/bin/env bash
# Usage: [VELMORA_SIGN=COMMAND] release.sh   builds build/release/VelmoraInventor-<version>-win64.zip, and its symbols beside it
#
# The same sources and packages give the same archive, byte for byte: nothing in it depends on the time, the machine or
# the folder of the build. VELMORA_SIGN is a shell command that signs the executable in place; its path is added to it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
release=$root/build/release
tree=$root/build/windows
version=$(sed -n 's/^project(VelmoraInventor VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
name=VelmoraInventor-$version-win64

say() {
    echo "release.sh: $*"
}

[ -n "$version" ] || { echo "release.sh: no version in CMakeLists.txt" >&2; exit 1; }
"$root/scripts/packages.sh" windows release
say "building version $version"
"$root/scripts/build.sh" windows VelmoraInventor

rm -rf "$release"
mkdir -p "$release/$name"
cp "$tree/VelmoraInventor.exe" "$release/$name/"
cp "$tree/VelmoraInventor.debug" "$release/"
if [ -n "${VELMORA_SIGN:-}" ]; then
    say "signing"
    bash -c "$VELMORA_SIGN \"\$1\"" sign "$release/$name/VelmoraInventor.exe"
fi
"$root/scripts/check-executable.py" "$release/$name/VelmoraInventor.exe" "$release/VelmoraInventor.debug"

"$root/scripts/release/page.py" "$root/docs/anleitung.md" "$release/$name/Anleitung.html"
"$root/scripts/release/page.py" "$root/docs/host-integration.md" "$release/$name/Host-Integration.html"
"$root/scripts/release/page.py" "$root/docs/formats.md" "$release/$name/Formats.html"
"$root/scripts/release/page.py" "$root/docs/third-party.md" "$release/$name/Third-Party-Notices.html"

python3 - "$release" "$name" <<'P'
import os, sys, zipfile
folder, name = sys.argv[1:]
with zipfile.ZipFile(os.path.join(folder, name + ".zip"), "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for file in sorted(os.listdir(os.path.join(folder, name))):
        entry = zipfile.ZipInfo(f"{name}/{file}", (2000, 1, 1, 0, 0, 0))
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.external_attr = 0o644 << 16
        with open(os.path.join(folder, name, file), "rb") as data:
            archive.writestr(entry, data.read())
P
say "build/release/$name.zip, symbols in build/release/VelmoraInventor.debug"
(cd "$release" && sha256sum "$name.zip")
