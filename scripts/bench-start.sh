#!/usr/bin/env bash
# Usage: bench-start.sh [RUNS]   measures under Wine what a start of the program costs (at least 11 runs, default 21)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runs=${1:-21}
case $runs in
    '' | *[!0-9]*)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
echo "bench-start.sh: measuring what a start costs"
"$root/scripts/packages.sh" windows wine
"$root/scripts/build.sh" windows start_benchmark

bench=$root/build/bench/start
mkdir -p "$bench/AppData"
cat >"$bench/original.ipt" <<'D'
{
  "displayName": "Teil",
  "pastEnd": "empty",
  "propertySets": [
    {"name": "1", "properties": []}, {"name": "2", "properties": []}, {"name": "3", "properties": []},
    {"name": "4", "properties": [
      {"name": "Bezeichnung", "type": "text", "value": "Deckel"},
      {"name": "Anzahl", "type": "integer", "value": 4},
      {"name": "Datum", "type": "date", "value": "2024-03-15"},
      {"name": "INTZUSTAND-EOF", "type": "text", "value": "a"}]}]
}
D
printf '%s\r\n' Bezeichnung Haube INTZUSTAND-EOF b Preis 5 >"$bench/list.txt"

# Z: is the root of the file system.
windowsPath() {
    local path=Z:$1
    echo "${path//\//\\}"
}

trap '"$root/scripts/wine.sh" stop || true' EXIT
trap 'exit 1' HUP INT TERM

# Ahead of all other work on the machine where that is permitted, Wine's and the X server included: a compiler
# that runs beside it doubles the times otherwise.
first=()
if chrt -r 5 true 2>/dev/null; then
    first=(chrt -r 5)
fi
"${first[@]}" "$root/scripts/wine.sh" start

echo "bench-start.sh: load before: $(cut -d' ' -f1-3 /proc/loadavg), processors: $(nproc), real-time priority: ${first[*]:-no}"
export APPDATA
APPDATA=$(windowsPath "$bench/AppData")
build=$root/build/windows
"${first[@]}" "$root/scripts/wine.sh" run "$build/start_timer.exe" \
    "$(windowsPath "$build/VelmoraInventor.exe")" "$(windowsPath "$build/bare_program.exe")" \
    "$(windowsPath "$bench/original.ipt")" "$(windowsPath "$bench/document.ipt")" \
    "$(windowsPath "$bench/list.txt")" "$runs" </dev/null &
wait $!
echo "bench-start.sh: load after: $(cut -d' ' -f1-3 /proc/loadavg)"
