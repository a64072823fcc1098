#!/usr/bin/env bash
# Usage: release.sh   builds build/release/VelmoraInventor-<version>-win64.zip, and its symbols beside it
#
# The same sources and packages give the same archive, byte for byte: nothing in it depends on the time, the machine or
# the folder of the build.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
release=$root/build/release
tree=$root/build/release-tree
version=$(sed -n 's/^project(VelmoraInventor VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
name=VelmoraInventor-$version-win64

say() {
    echo "release.sh: $*"
}

[ -n "$version" ] || { echo "release.sh: no version in CMakeLists.txt" >&2; exit 1; }
"$root/scripts/packages.sh" windows release
# The Windows libraries are made by the ordinary build.
"$root/scripts/build.sh" windows VelmoraInventor

say "building version $version"
(cd "$root" && cmake --preset release >/dev/null)
cmake --build "$tree" --parallel "$(nproc)" --target VelmoraInventor

rm -rf "$release"
mkdir -p "$release/$name"
# Without the protector's own function the compiler's switch has been lost.
x86_64-w64-mingw32-nm "$tree/VelmoraInventor.exe" | grep __stack_chk_fail >/dev/null ||
    { echo "release.sh: the executable is built without the stack protector" >&2; exit 1; }
x86_64-w64-mingw32-objcopy --only-keep-debug "$tree/VelmoraInventor.exe" "$release/VelmoraInventor.debug"
# The date is the one that stands in the header.
SOURCE_DATE_EPOCH=0 x86_64-w64-mingw32-strip --strip-all -o "$release/$name/VelmoraInventor.exe" "$tree/VelmoraInventor.exe"
"$root/scripts/check-executable.py" "$release/$name/VelmoraInventor.exe"

"$root/scripts/release/page.py" "$root/docs/anleitung.md" "$release/$name/Anleitung.html"
"$root/scripts/release/page.py" "$root/docs/host-integration.md" "$release/$name/Host-Integration.html"
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
