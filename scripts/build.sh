#!/usr/bin/env bash
# Usage: build.sh native|fuzz|bench|windows|windows-clang [TARGET...]   installs what is missing, configures and builds one preset
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${1:-}
targets=("${@:2}")
case $preset in
    native | fuzz | bench | windows | windows-clang) ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
build=$root/build/$preset

deps=$root/build/deps/windows

# isCurrent NAME STAMP: true when the package NAME was built under this stamp.
isCurrent() {
    [ "$(cat "$deps/$1.stamp" 2>/dev/null)" = "$2" ]
}

# GoogleTest and nlohmann-json for the Windows target, where Debian has them for its own only. GoogleTest is
# built from the source that Debian ships; the headers are copied, as the cross compiler must never see those of
# the machine that builds.
prepareDebianPackages() {
    local stamp
    stamp="2 $(dpkg-query -W -f='${Package} ${Version} ' googletest nlohmann-json3-dev g++-mingw-w64-x86-64-posix)"
    if isCurrent debian "$stamp"; then
        return 0
    fi
    echo "build.sh: building GoogleTest for Windows"
    rm -rf "$root/build/deps/googletest"
    cmake -S /usr/src/googletest -B "$root/build/deps/googletest" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$deps" -DCMAKE_INSTALL_LIBDIR=lib >/dev/null
    cmake --build "$root/build/deps/googletest" --target install >/dev/null
    mkdir -p "$deps/include" "$deps/share/cmake"
    cp -R /usr/include/nlohmann "$deps/include/"
    cp -R /usr/share/cmake/nlohmann_json "$deps/share/cmake/"
    echo "$stamp" >"$deps/debian.stamp"
}

# SQLite for the Windows target. Debian has none; this package of the npm registry carries its one-file source.
prepareSqlite() {
    local package=better-sqlite3@12.11.1 folder=$root/build/deps/sqlite stamp archive
    local hash=ebf0ed75a7a59dbcb3b24bbd014ef49d9f15bc328e4adcbf516f2a8fadfa2835
    # One thread; temporary tables never in a file; no names in double quotes that pass for texts; results name
    # their tables. What the program does not use is left out.
    local options=(-DSQLITE_THREADSAFE=0 -DSQLITE_TEMP_STORE=3 -DSQLITE_DQS=0 -DSQLITE_DEFAULT_MEMSTATUS=0
        -DSQLITE_ENABLE_COLUMN_METADATA
        -DSQLITE_OMIT_{AUTHORIZATION,COMPILEOPTION_DIAGS,DEPRECATED,DESERIALIZE,EXPLAIN,GET_TABLE,INCRBLOB}
        -DSQLITE_OMIT_{INTROSPECTION_PRAGMAS,JSON,LOAD_EXTENSION,PROGRESS_CALLBACK,SHARED_CACHE,TCL_VARIABLE}
        -DSQLITE_OMIT_{TRACE,WAL})
    stamp="2 $hash ${options[*]} $(dpkg-query -W -f='${Version}' g++-mingw-w64-x86-64-posix)"
    if isCurrent sqlite "$stamp"; then
        return 0
    fi
    echo "build.sh: building SQLite for Windows"
    rm -rf "$folder"
    mkdir -p "$folder" "$deps/include" "$deps/lib"
    if ! archive=$folder/$(cd "$folder" && npm pack --loglevel=error "$package"); then
        echo "build.sh: npm cannot fetch $package, which brings SQLite's source; what it says is above" >&2
        return 1
    fi
    if ! sha256sum --quiet --check <<<"$hash  $archive"; then
        echo "build.sh: the package $package is not the one that was checked" >&2
        return 1
    fi
    tar -xzf "$archive" -C "$folder" --strip-components=3 package/deps/sqlite3
    x86_64-w64-mingw32-gcc-posix -Os -ffunction-sections -fdata-sections -fstack-protector-strong "${options[@]}" \
        -c "$folder/sqlite3.c" -o "$folder/sqlite3.o"
    rm -f "$deps/lib/libsqlite3.a"
    x86_64-w64-mingw32-ar rcs "$deps/lib/libsqlite3.a" "$folder/sqlite3.o"
    cp "$folder/sqlite3.h" "$deps/include/"
    echo "$stamp" >"$deps/sqlite.stamp"
}

echo "build.sh: building build/$preset"
"$root/scripts/packages.sh" "$preset"

# One build of a tree at a time; two would spoil each other's files.
mkdir -p "$root/build"
exec 9>"$root/build/.lock-$preset"
flock 9

if [[ $preset == windows* ]]; then
    # Both put them into one folder.
    exec 8>"$root/build/.lock-deps"
    flock 8
    prepareDebianPackages 8>&- 9>&-
    prepareSqlite 8>&- 9>&-
    exec 8>&-
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
