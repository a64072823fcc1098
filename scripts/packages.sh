#!/usr/bin/env bash
# Usage: packages.sh NEED...   installs the Debian packages for native, fuzz, bench, windows, windows-clang, wine, packing, listing, release, fresh, format, lint, icons
set -euo pipefail

packagesFor() {
    case $1 in
        native) echo g++ cmake ninja-build python3 libgtest-dev nlohmann-json3-dev libsqlite3-dev zlib1g-dev ;;
        fuzz) echo clang libclang-rt-dev cmake ninja-build python3 libgtest-dev nlohmann-json3-dev libsqlite3-dev zlib1g-dev ;;
        bench) echo g++ cmake ninja-build nlohmann-json3-dev libbenchmark-dev libsqlite3-dev zlib1g-dev ;;
        windows) echo g++-mingw-w64-x86-64-posix cmake ninja-build python3 googletest nlohmann-json3-dev npm \
            libz-mingw-w64-dev ;;
        windows-clang) echo "$(packagesFor windows)" clang lld ;;
        # Wine only recommends the X libraries, but does without drawing, cursors or several screens if they lack.
        wine) echo wine wine64 fonts-wine xvfb libxcomposite1 libxcursor1 libxfixes3 libxi6 libxinerama1 \
            libxrandr2 libxrender1 ;;
        packing) echo python3 time zip unzip p7zip-full libarchive-tools ;;
        fresh) echo debootstrap git ;;
        format) echo clang-format ;;
        lint) echo clang-tidy ;;
        icons) echo librsvg2-bin imagemagick ;;
        release) echo python3 cmark-gfm ;;
        listing) echo chromium default-jre-headless python3 ;;
        *)
            echo "packages.sh: unknown need '$1'" >&2
            return 2
            ;;
    esac
}

if [ $# -eq 0 ]; then
    sed -n 2p "$0" >&2
    exit 2
fi
if ! command -v dpkg-query >/dev/null; then
    echo "packages.sh: no Debian package system here; going on with what is installed" >&2
    exit 0
fi

wanted=()
for need in "$@"; do
    list=$(packagesFor "$need")
    read -r -a packages <<<"$list"
    wanted+=("${packages[@]}")
done

# One query for all; a package that dpkg has never heard of is no line in its answer.
installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
    # npm may have come with another package of Node.js; Debian's own would clash with it.
    [ "$package" != npm ] || ! command -v npm >/dev/null || continue
    grep -qx "$package installed" <<<"$installed" || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "packages.sh: installing ${missing[*]} (minutes, on a bare system)"
asRoot=()
[ "$(id -u)" -eq 0 ] || asRoot=(sudo)
"${asRoot[@]}" apt-get update -qq
"${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >/dev/null
