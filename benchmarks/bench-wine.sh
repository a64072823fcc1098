#!/usr/bin/env bash
# Usage: bench-wine.sh [RUNS [ROWS...]]   measures under Wine what each task costs against a bare program (default 21 runs), and how the export dialog answers with so many rows (default 1000 and 100000; a quarter of the runs)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runs=${1:-21}
sizes=("${@:2}")
[ ${#sizes[@]} -gt 0 ] || sizes=(1000 100000)
case $runs${sizes[*]} in
    *[!0-9\ ]*)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
echo "bench-wine.sh: measuring the program under Wine"
"$root/scripts/packages.sh" windows wine
"$root/scripts/build.sh" windows wine_benchmark

bench=$root/build/bench/wine
rm -rf "$bench"
mkdir -p "$bench/AppData"

# Z: is the root of the file system.
windowsPath() {
    local path=Z:$1
    echo "${path//\//\\}"
}

# writeDocument NAME HINT: a document of four property sets; HINT is one more property.
writeDocument() {
    cat >"$bench/$1" <<D
{
  "displayName": "Teil",
  "pastEnd": "empty",
  "propertySets": [
    {"name": "1", "properties": []}, {"name": "2", "properties": []}, {"name": "3", "properties": []},
    {"name": "4", "properties": [
      {"name": "Bezeichnung", "type": "text", "value": "Deckel"},
      {"name": "Anzahl", "type": "integer", "value": 4},
      {"name": "Datum", "type": "date", "value": 45366},
      {"name": "INTZUSTAND-EOF", "type": "text", "value": "a"}$2]}]
}
D
}

writeDocument original.ipt ""
writeDocument marked.ipt ', {"name": "IndexHinweis", "type": "text", "value": "Achtung"}'
echo '{"references": ["Deckel.ipt", "Gruppe.iam"]}' >"$bench/original.idw"
printf '%s\r\n' Bezeichnung Haube INTZUSTAND-EOF b Preis 5 >"$bench/list.txt"
assemblies=()
for rows in "${sizes[@]}"; do
    assemblies+=("$(windowsPath "$("$root/benchmarks/assembly.py" "$bench/$rows" "$rows")")")
done

awake=()
trap 'kill "${awake[@]}" 2>/dev/null || true; "$root/scripts/wine.sh" stop || true' EXIT
trap 'exit 1' HUP INT TERM

# Ahead of all other work on the machine where that is permitted, Wine's and the X server included: a compiler
# that runs beside it doubles the times otherwise.
first=()
if chrt -r 5 true 2>/dev/null; then
    first=(chrt -r 5)
fi
"${first[@]}" "$root/scripts/wine.sh" start
# A virtual processor that has gone to sleep takes long to wake, and Wine's processes wake each other all the time: on
# an idle machine everything takes a third to a half longer. These loops run when nothing else wants to.
for _ in $(seq "$(nproc)"); do
    timeout 3600 nice -n 19 bash -c 'while :; do :; done' </dev/null >/dev/null 2>&1 &
    awake+=($!)
done

echo "bench-wine.sh: load before: $(cut -d' ' -f1-3 /proc/loadavg), processors: $(nproc), real-time priority: ${first[*]:-no}"
export APPDATA
APPDATA=$(windowsPath "$bench/AppData")

# timer NAME ARGUMENT...: in the background, so that a signal ends this script's wait at once.
timer() {
    local build=$root/build/windows
    "${first[@]}" "$root/scripts/wine.sh" run "$build/$1.exe" "$(windowsPath "$build/VelmoraInventor.exe")" \
        "$(windowsPath "$build/bare_program.exe")" "${@:2}" </dev/null &
    wait $!
}
timer start_timer "$(windowsPath "$root/build/windows/bare_window.exe")" "$(windowsPath "$bench")" "$runs"
echo
timer dialog_timer $(((runs + 3) / 4)) "${assemblies[@]}"
echo "bench-wine.sh: load after: $(cut -d' ' -f1-3 /proc/loadavg)"
