#!/usr/bin/env bash
# Usage: demo.sh   builds the program and the simulator and runs all four tasks on sample documents, as a host does
#
# Leaves in build/demo/: the documents as they are after the tasks, the property list file, the archive and its listing
# as browsers show it, screenshots of the status window and of the export dialog, and the simulator's trace of each run.
# Ends with 0 only when every file holds what it should and the dialog shows what it should.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
demo=$root/build/demo
program=$root/build/windows/VelmoraInventor.exe
host=$root/build/demo-host/DemoHost.exe
dialogUser=$root/build/demo-host/DialogUser.exe
session=$root/build/wine/session

# The simulator waits this long before it opens a document: the working text would be gone before anybody sees it.
openMilliseconds=1200

# Bytes by which a part of the sample assembly grows.
bigPart=150000000

# Around the status window in the screenshots, so that they show the host's window and nothing else.
marginX=110
marginY=90

say() {
    echo "demo.sh: $*"
}

fail() {
    echo "demo.sh: FAILED: $*" >&2
    exit 1
}

# --- preparation --------------------------------------------------------------------------------------------

buildTool() {
    local tool=$1 source
    source=$root/scripts/demo/$(basename "$tool" .exe).cpp
    if [ "$tool" -nt "$source" ] && [ "$tool" -nt "$root/tests/e2e/RemoteListView.h" ]; then
        return 0
    fi
    mkdir -p "${tool%/*}"
    x86_64-w64-mingw32-g++-posix -std=c++20 -O2 -s -static -municode -mwindows -Wall -Wextra -Werror \
        -DUNICODE -D_UNICODE -D_WIN32_WINNT=0x0A00 -DNOMINMAX -DWIN32_LEAN_AND_MEAN -I "$root" "$source" -o "$tool"
}

# A session that is in use belongs to somebody else, to a test run for instance: starting one would end it.
refuseForeignSession() {
    local pid
    if [ -e "$session/ready" ] && read -r pid _ <"$session/xserver" && [ -d "/proc/$pid" ]; then
        fail "a Wine session of this checkout is in use; wait for its end, or end it with scripts/wine.sh stop"
    fi
}

startSession() {
    local line
    line=$("$root/scripts/wine.sh" start)
    own=$(<"$session/xserver")
    DISPLAY=${line##* }
    [[ $DISPLAY =~ ^:[0-9]+$ ]] || fail "the Wine session names no display: $line"
    export DISPLAY
    say "Wine session with an X server of its own, the simulator is registered"
}

cleanUp() {
    local status=$?
    trap - EXIT
    # bash leaves a function with status 0 after some of its own errors, as in an arithmetic expansion.
    if [ -z "${finished:-}" ] && [ $status -eq 0 ]; then
        status=1
    fi
    # Unless somebody else has begun a session in its place.
    if [ -n "${own:-}" ] && [ "$(cat "$session/xserver" 2>/dev/null)" = "$own" ]; then
        "$root/scripts/wine.sh" stop >/dev/null || status=1
    fi
    if [ -n "${run:-}" ]; then
        wait "$run" 2>/dev/null || true
    fi
    if [ $status -eq 0 ]; then
        say "done: /P, /R, /RI and /E did what they should"
    else
        echo "demo.sh: FAILED" >&2
    fi
    exit $status
}

# --- one run of the program ---------------------------------------------------------------------------------

# Z: is the root of the file system.
windowsPath() {
    local path=Z:$1
    echo "${path//\//\\}"
}

# expectEvent EVENT: reads the host's next line, which must be this one. "*" stands for any rest.
expectEvent() {
    local wanted=$1
    event=""
    read -r -t 30 -u "$events" event || [ -n "$event" ] || fail "nothing comes from the program; expected: $wanted"
    # shellcheck disable=SC2053
    [[ $event == $wanted ]] || fail "the program shows: $event; expected: $wanted"
}

# The label inside its bevels, away from the window's edges.
labelOf() {
    convert-im6 "$1" -gravity center -crop 290x60+0+0 +repage "${@:2}"
}

# True when the label shows anything but one colour.
showsText() {
    [ "$(labelOf "$1" -unique-colors -format '%w' info:)" -gt 1 ]
}

# True when both screenshots show the same label.
sameLabel() {
    [ "$(labelOf "$1" -format '%#' info:)" = "$(labelOf "$2" -format '%#' info:)" ]
}

# screenshot FILE [OTHER]: takes the status window and a little around it, as soon as its text has been painted and,
# with OTHER, is no longer the one on that screenshot.
screenshot() {
    local file=$demo/$1 other=${2:+$demo/$2} rounds=15
    while :; do
        import-im6 -silent -window root -crop "$crop" +repage "$file"
        if showsText "$file" && { [ -z "$other" ] || ! sameLabel "$file" "$other"; }; then
            break
        fi
        [ $((--rounds)) -gt 0 ] || fail "the text is not on the screen: $file"
    done
    say "  screenshot build/demo/$1"
}

# The task has let go of the component.
waitForRelease() {
    local rounds=500
    until grep -qx server.Release "$trace" 2>/dev/null; do
        [ $((rounds--)) -gt 0 ] || fail "the task keeps the component: see $trace"
        sleep 0.02
    done
}

# startProgram NAME DELAY ARGUMENT...: starts the program as the host does; each document opens DELAY milliseconds
# late. `crop` becomes the status window with a little around it.
startProgram() {
    local name=$1 delay=$2 left top width height file
    trace=$demo/$name-trace.txt
    say "running VelmoraInventor.exe ${*:3}"
    local arguments=("$3")
    for file in "${@:4}"; do
        arguments+=("$(windowsPath "$demo/$file")")
    done

    exec {events}< <(APPRENTICE_TRACE=$(windowsPath "$trace") APPRENTICE_DELAY_MS=$delay \
        exec "$root/scripts/wine.sh" run "$host" "$(windowsPath "$program")" "${arguments[@]}" 2>&1)
    run=$!
    expectEvent "window *"
    read -r _ left top width height <<<"$event"
    crop=$((width + 2 * marginX))x$((height + 2 * marginY))+$((left - marginX))+$((top - marginY))
}

expectEnd() {
    local status=0
    expectEvent "exit 0"
    wait "$run" || status=$?
    run=""
    exec {events}<&-
    [ $status -eq 0 ] || fail "the host ended with $status"
    [ "$(tail -n 1 "$trace")" = "alive 0" ] || fail "objects of the component were left alive: see $trace"
    say "  the program has ended with 0, no object of the component is alive"
}

# runTask NAME WORKING_TEXT RESULT_TEXT ARGUMENT...: starts the program and follows it to its end. A task whose
# result has no text of its own passes an empty one: the working text stays.
runTask() {
    local name=$1 working=$2 result=$3
    startProgram "$name" $openMilliseconds "${@:4}"
    expectEvent "text $working"
    say "  status window: $working"
    screenshot "$name-working.png"
    if [ -n "$result" ]; then
        expectEvent "text $result"
        say "  status window: $result"
        screenshot "$name-result.png" "$name-working.png"
    else
        waitForRelease
        screenshot "$name-result.png"
        say "  status window: the text stays"
    fi
    expectEnd
}

# --- the export dialog --------------------------------------------------------------------------------------

# useDialog place | rows | click TEXT | export PATH: see scripts/demo/DialogUser.cpp
useDialog() {
    "$root/scripts/wine.sh" run "$dialogUser" "$@" || fail "the export dialog cannot be used: $*"
}

# dialogScreenshot FILE [OTHER]: takes the dialog once it stands still and, with OTHER, no longer looks as there.
dialogScreenshot() {
    local file=$demo/$1 other=${2:+$demo/$2} rounds=30 last="" now=""
    while :; do
        import-im6 -silent -window root -crop "$crop" +repage "$file"
        last=$now
        now=$(convert-im6 "$file" -format '%#' info:)
        if [ "$now" = "$last" ] && { [ -z "$other" ] || [ "$now" != "$(convert-im6 "$other" -format '%#' info:)" ]; }; then
            break
        fi
        [ $((--rounds)) -gt 0 ] || fail "the dialog is not on the screen: $file"
    done
    say "  screenshot build/demo/$1"
}

# checkRows FILE COUNT MISSING: FILE has COUNT rows; those with the numbers in MISSING carry the warning.
checkRows() {
    local rows=$1 count=$2 missing=$3 found
    found=$(wc -l <"$rows")
    [ "$found" -eq "$count" ] || fail "the dialog shows $found rows and should show $count: see $rows"
    found=$(sed -n 's/ *\([0-9]*\) |.* | Datei nicht gefunden!.*/\1/p' "$rows" | paste -sd ' ')
    [ "$found" = "$missing" ] || fail "the rows with a warning are $found and should be $missing: see $rows"
}

# checkDocument FILE: the table of FILE before and after, and the check against the JSON on standard input.
checkDocument() {
    local expected=$demo/expected.json status=0
    cat >"$expected"
    echo
    python3 "$root/scripts/demo/documents.py" "$demo/before.json" "$demo/$1" "$expected" || status=$?
    echo
    rm -f "$expected" "$demo/before.json"
    [ $status -eq 0 ] || fail "build/demo/$1 does not hold what it should"
    say "  build/demo/$1 holds what it should"
}

# --- the four tasks -----------------------------------------------------------------------------------------

updateProperties() {
    cp "$demo/Deckel 4711.ipt" "$demo/before.json"
    runTask P "Properties werden aktualisiert..." "4 Properties neu angelegt... | keine Properties aktualisiert..." \
        /P "Deckel 4711.ipt" Properties.txt
    checkDocument "Deckel 4711.ipt" <<'J'
{
  "properties": {
    "Benennung": "Deckel mit Dichtnut",
    "Zeichnungsnummer": "4711-01",
    "Werkstoff": "EN AW-6082 T6",
    "Bearbeiter": "J. Müller",
    "Bemerkung": "",
    "Stückzahl": 4,
    "Freigabedatum": "2024-03-15",
    "Norm geprüft": true,
    "INTZUSTAND-EOF": "c",
    "Oberfläche": "eloxiert, 10 µm",
    "Kunde": "Größer & Söhne GmbH",
    "Stückpreis": "12,80 €",
    "IndexHinweis": "ACHTUNG! Geänderte Zeichnung"
  }
}
J
}

changeReferences() {
    local model
    model=$(windowsPath "$demo/Deckel 4711")
    model=${model//\\/\\\\}
    cp "$demo/Deckel 4711.idw" "$demo/before.json"
    runTask R "Referenz wird geändert..." "IDW Referenz geändert." /R "Deckel 4711.idw"
    checkDocument "Deckel 4711.idw" <<<"{ \"references\": [\"$model.ipt\", \"$model.iam\"] }"
}

removeIndexHint() {
    cp "$demo/Deckel 4711.ipt" "$demo/before.json"
    runTask RI "Indexhinweis wird entfernt..." "" /RI "Deckel 4711.ipt"
    python3 - "$demo/before.json" <<'P' | checkDocument "Deckel 4711.ipt"
import json, sys
with open(sys.argv[1], encoding="utf-8") as file:
    properties = json.load(file)["propertySets"][3]["properties"]
kept = {p["name"]: p["value"] for p in properties if p["name"] != "IndexHinweis"}
assert len(kept) == len(properties) - 1, "there was no hint to remove"
print(json.dumps({"properties": kept}))
P
}

exportAssembly() {
    local left top width height caption
    cp -R "$root/samples/Getriebe 08-15" "$demo/"
    # As big as parts are, so that the packing can be seen.
    head -c "$bigPart" /dev/urandom >>"$demo/Getriebe 08-15/Gehäuse/Unterteil.ipt"
    startProgram E 0 /E "Getriebe 08-15/Getriebe 08-15.iam"
    read -r left top width height caption < <(useDialog place)
    say "  dialog: $caption"
    crop=${width}x$height+$left+$top
    dialogScreenshot E-opened.png
    useDialog click "Alle Knoten öffnen"
    dialogScreenshot E-expanded.png E-opened.png
    useDialog rows >"$demo/E-rows.txt"
    echo
    sed 's/^/  /; s/Z:.*\\Getriebe 08-15\\/...\\/' "$demo/E-rows.txt"
    echo
    # The sample assembly names 40 files; two of them are missing.
    checkRows "$demo/E-rows.txt" 40 "39 40"
    say "  the dialog shows the files that it should"
    useDialog click Abbruch
    expectEnd

    startProgram E 0 /E "Getriebe 08-15/Getriebe 08-15.iam"
    read -r left top width height caption < <(useDialog place)
    crop=${width}x$height+$left+$top
    useDialog export "$(windowsPath "$demo/Getriebe 08-15.zip")"
    packingScreenshot E-packing.png
    expectEnd
    checkArchive "$demo/Getriebe 08-15.zip" "$demo/Getriebe 08-15"
}

# packingScreenshot FILE: takes the dialog while the archive stands beside its target under another name.
packingScreenshot() {
    local rounds=1500
    until [ -s "$demo/~Archiv1.tmp" ]; do
        [ $((rounds--)) -gt 0 ] || fail "the archive is not begun"
        sleep 0.02
    done
    import-im6 -silent -window root -crop "$crop" +repage "$demo/$1"
    say "  screenshot build/demo/$1"
}

# checkArchive ARCHIVE FOLDER: the archive holds each file of the folder once, and a listing that browsers like.
checkArchive() {
    local archive=$1 expected=$demo/expected-files
    mkdir -p "$expected"
    # Two files of the sample are called Dichtung.ipt; the one in Abdeckung comes later in the tree and wins.
    find "$2" -type f -not -path '*/Gehäuse/Dichtung.ipt' -exec cp -p -t "$expected" {} +
    unzip -q -o "$archive" Export.html -d "$demo/listing"
    cp -p "$demo/listing/Export.html" "$expected/"
    python3 "$root/scripts/packing/check.py" "$archive" "$expected"
    rm -rf "$expected"
    say "  build/demo/${archive##*/} holds what it should, say Python, unzip, 7-Zip and bsdtar"
    "$root/scripts/check-listing.sh" "$demo/listing/Export.html" "$demo/listing"
}

main() {
    local name
    trap cleanUp EXIT
    trap 'exit 1' HUP INT TERM
    # One's own settings for the simulator must not change what the demonstration shows.
    for name in "${!APPRENTICE_@}"; do
        unset "$name"
    done

    refuseForeignSession
    say "installing what is missing and building"
    "$root/scripts/packages.sh" windows wine demo packing listing
    "$root/scripts/build.sh" windows VelmoraInventor ApprenticeSimulator
    buildTool "$host"
    buildTool "$dialogUser"

    # Builds take their time: once more before the results of another run go.
    refuseForeignSession
    rm -rf "$demo"
    mkdir -p "$demo"
    cp "$root"/samples/*.ipt "$root"/samples/*.iam "$root"/samples/*.idw "$demo/"
    # As a host on a German or English Windows writes it: code page 1252, lines that end with CR LF.
    sed 's/$/\r/' "$root/samples/Properties.txt" | iconv -f UTF-8 -t CP1252 >"$demo/Properties.txt"
    say "sample documents and the property list file are in build/demo/"

    startSession
    updateProperties
    changeReferences
    removeIndexHint
    exportAssembly
    finished=1
}

main
