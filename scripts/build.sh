#!/usr/bin/env bash
# Usage: build.sh native|bench|windows [TARGET...]   installs what is missing, configures and builds one preset
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${1:-}
targets=("${@:2}")
case $preset in
    native | bench | windows) ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
build=$root/build/$preset

# GoogleTest and nlohmann-json for the Windows target, where Debian has them for its own only. GoogleTest is
# built from the source that Debian ships; the headers are copied, as the cross compiler must never see those of
# the machine that builds.
prepareWindowsPackages() {
    local deps=$root/build/deps/windows stamp
    stamp="1 $(dpkg-query -W -f='${Package} ${Version} ' googletest nlohmann-json3-dev g++-mingw-w64-x86-64-posix)"
    if [ "$(cat "$deps/stamp" 2>/dev/null)" = "$stamp" ]; then
        return 0
    fi
    echo "build.sh: building GoogleTest for Windows"
    rm -rf "$deps" "$root/build/deps/googletest"
    cmake -S /usr/src/googletest -B "$root/build/deps/googletest" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$deps" -DCMAKE_INSTALL_LIBDIR=lib >/dev/null
    cmake --build "$root/build/deps/googletest" --target install >/dev/null
    mkdir -p "$deps/include" "$deps/share/cmake"
    cp -R /usr/include/nlohmann "$deps/include/"
    cp -R /usr/share/cmake/nlohmann_json "$deps/share/cmake/"
    echo "$stamp" >"$deps/stamp"
}

echo "build.sh: building build/$preset"
"$root/scripts/packages.sh" "$preset"

# One build of a tree at a time; two would spoil each other's files.
mkdir -p "$root/build"
exec 9>"$root/build/.lock-$preset"
flock 9

if [ "$preset" = windows ]; then
    prepareWindowsPackages 9>&-
fi

# The build itself sees changes of every CMakeLists.txt, but neither of the presets nor of a failed first try.
stamp=$build/.configured
if [ ! -e "$stamp" ] || [ ! -e "$build/build.ninja" ] || [ "$root/CMakePresets.json" -nt "$stamp" ]; then
    (cd "$root" && cmake --preset "$preset" 9>&-)
    touch "$stamp"
fi
arguments=(--parallel "$(nproc)")
if [ ${#targets[@]} -gt 0 ]; then
    arguments+=(--target "${targets[@]}")
fi
cmake --build "$build" "${arguments[@]}" 9>&-
