#!/usr/bin/env bash
# Usage: demo.sh   builds the program and the simulator and runs all four tasks on sample documents, as a host does
#
# Leaves in build/demo/: the documents as they are after the tasks, the property list file, the archive and its listing
# as browsers show it, pictures of the status window and of the export dialog, and the simulator's trace of each run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
demo=$root/build/demo
build=$root/build/windows

# The simulator waits this long before it opens a document: the working text would be gone before anybody sees it.
openMilliseconds=1200
# Bytes by which a part of the sample assembly grows, so that the packing can be seen.
bigPart=150000000

# Z: is the root of the file system.
windowsPath() {
    local path=Z:$1
    echo "${path//\//\\}"
}

# runTask NAME MILLISECONDS SWITCH FILE...: runs the program on files in build/demo/ as a host does; each document
# opens late by MILLISECONDS.
runTask() {
    local name=$1 file arguments=("$3")
    echo "demo.sh: running VelmoraInventor.exe ${*:3}"
    for file in "${@:4}"; do
        arguments+=("$(windowsPath "$demo/$file")")
    done
    APPRENTICE_TRACE=$(windowsPath "$demo/$name-trace.txt") APPRENTICE_DELAY_MS=$2 \
        "$root/scripts/wine.sh" run "$build/DemoHost.exe" "$(windowsPath "$demo")" "$name" \
        "$(windowsPath "$build/VelmoraInventor.exe")" "${arguments[@]}"
}

# runDocumentTask NAME SWITCH DOCUMENT [LIST]: the same, and what it has changed in the document.
runDocumentTask() {
    cp "$demo/$3" "$demo/before.json"
    runTask "$1" $openMilliseconds "${@:2}"
    echo
    python3 "$root/scripts/demo/documents.py" "$demo/before.json" "$demo/$3"
    echo
}

# One's own settings for the simulator must not change what the demonstration shows.
for name in "${!APPRENTICE_@}"; do
    unset "$name"
done
echo "demo.sh: installing what is missing and building"
"$root/scripts/packages.sh" windows wine packing listing
"$root/scripts/build.sh" windows VelmoraInventor ApprenticeSimulator DemoHost
if [ -e "$root/build/wine/session" ]; then
    echo "demo.sh: a Wine session of this checkout is in use; wait for its end, or end it with scripts/wine.sh stop" >&2
    exit 1
fi

rm -rf "$demo"
mkdir -p "$demo"
cp "$root"/samples/*.ipt "$root"/samples/*.iam "$root"/samples/*.idw "$demo/"
cp -R "$root/samples/Getriebe 08-15" "$demo/"
head -c $bigPart /dev/urandom >>"$demo/Getriebe 08-15/Gehäuse/Unterteil.ipt"
# As a host on a German or English Windows writes it: code page 1252, lines that end with CR LF.
sed 's/$/\r/' "$root/samples/Properties.txt" | iconv -f UTF-8 -t CP1252 >"$demo/Properties.txt"

trap '"$root/scripts/wine.sh" stop' EXIT
trap 'exit 1' HUP INT TERM
"$root/scripts/wine.sh" start
runDocumentTask P /P "Deckel 4711.ipt" Properties.txt
runDocumentTask R /R "Deckel 4711.idw"
runDocumentTask RI /RI "Deckel 4711.ipt"
rm "$demo/before.json"
runTask E 0 /E "Getriebe 08-15/Getriebe 08-15.iam"

unzip -q "$demo/Getriebe 08-15.zip" -d "$demo/archive"
ls -l "$demo/Getriebe 08-15.zip" "$demo/archive"
"$root/scripts/check-listing.sh" "$demo/archive/Export.html" "$demo/listing"
echo "demo.sh: documents, archive, listing and pictures are in build/demo/"
