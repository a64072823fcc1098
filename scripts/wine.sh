#!/usr/bin/env bash
# Usage: wine.sh start | stop | run EXE ARGUMENT...   runs Windows programs in a Wine prefix and X server of the build tree's own
#
# start  begins a session: a fresh prefix below build/wine, its own X server, the simulator registered when it
#        is built. A session that a killed run left behind is ended first.
# stop   unregisters the simulator and ends every process of the session.
# run    runs one program and passes its exit code on: in the session, or in one made for this program alone.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
state=$root/build/wine
template=$state/template
simulator=$root/build/windows/ApprenticeSimulator.dll

# Counts up when the template's contents change, so that old ones are rebuilt.
templateVersion=1

# A UTF-8 locale keeps non-ASCII arguments whole; WINEDEBUG=-all also silences the notice about the 32-bit Wine
# that nobody needs here. HOME, the caches and TMPDIR stay below build/: Wine links the user's folders to HOME,
# moves deleted files to the waste bin there, and its server makes a folder for its socket in TMPDIR.
unset WINELOADER WINESERVER WAYLAND_DISPLAY XAUTHORITY
export WINEDEBUG=${WINEDEBUG:--all} LC_ALL=C.UTF-8 WINEARCH=win64
export HOME=$state/home XDG_CACHE_HOME=$state/home/.cache XDG_DATA_HOME=$state/home/.local/share
export TMPDIR=$state/tmp

fail() {
    echo "wine.sh: $*" >&2
    exit 1
}

# --- processes ----------------------------------------------------------------------------------------------

# The start time of a process tells it from a later one with the same number.
startTime() {
    local line
    line=$(cat "/proc/$1/stat" 2>/dev/null) || return 1
    read -r -a line <<<"${line##*) }"
    # A zombie has ended already; it only waits for its parent to ask.
    [ "${line[0]}" != Z ] || return 1
    echo "${line[19]}"
}

# waitUntil SECONDS COMMAND...: polls until the command succeeds.
waitUntil() {
    local rounds=$(($1 * 50))
    shift
    while ! "$@"; do
        [ $((rounds--)) -gt 0 ] || return 1
        sleep 0.02
    done
}

# Prints the numbers of the Wine processes that belong to prefix $1.
processesOf() {
    local folder pid
    for folder in /proc/[0-9]*; do
        pid=${folder#/proc/}
        case $(readlink "$folder/exe" 2>/dev/null) in
            */wine*) grep -zqxF "WINEPREFIX=$1" "$folder/environ" 2>/dev/null && echo "$pid" ;;
        esac
    done
    return 0
}

noProcessesOf() {
    [ -z "$(processesOf "$1")" ]
}

# Ends all Wine processes of prefix $1 and waits for them.
endWine() {
    local prefix=$1 pid
    [ -d "$prefix" ] || return 0
    if ! noProcessesOf "$prefix"; then
        WINEPREFIX=$prefix timeout 20 wineserver -k </dev/null >/dev/null 2>&1 || true
        if ! waitUntil 10 noProcessesOf "$prefix"; then
            for pid in $(processesOf "$prefix"); do
                kill -KILL "$pid" 2>/dev/null || true
            done
            waitUntil 10 noProcessesOf "$prefix" || return 1
        fi
    fi
    removeServerFolder "$prefix"
}

# The server leaves the folder of its socket behind. The prefix names it where it lies below TMPDIR; below
# /run/user its name is made of the prefix's device and inode.
removeServerFolder() {
    local name device inode
    if [ -s "$1/wineserver" ]; then
        name=$(<"$1/wineserver")
        [[ $name != wine-* ]] || rm -rf "${TMPDIR:?}/$name"
        rm -f "$1/wineserver"
    fi
    read -r device inode < <(stat -c '%D %i' "$1")
    rm -rf "/run/user/$(id -u)/wine/server-$device-$(printf %x "$inode")"
}

isGone() {
    [ "$(startTime "$1" || true)" != "$2" ]
}

# Ends the X server that $1/xserver names, unless the number has gone to another process since. What a killed one
# leaves of its display, the next one with that number takes over.
endXserver() {
    local pid started
    [ -s "$1/xserver" ] || return 0
    read -r pid started _ <"$1/xserver"
    if ! isGone "$pid" "$started"; then
        kill "$pid" 2>/dev/null || true
        if ! waitUntil 10 isGone "$pid" "$started"; then
            kill -KILL "$pid" 2>/dev/null || true
            waitUntil 5 isGone "$pid" "$started" || return 1
        fi
    fi
    rm -f "$1/xserver"
}

# --- the template prefix ------------------------------------------------------------------------------------

# Builds the prefix that every session's prefix is cloned from. It needs no X server.
buildTemplate() {
    local stamp new=$template.new
    stamp="$templateVersion $(wine --version 2>/dev/null)"
    if [ "$(cat "$template/.velmora-stamp" 2>/dev/null)" = "$stamp" ]; then
        return 0
    fi
    echo "wine.sh: building the Wine prefix template (about ten seconds, once)" >&2
    endWine "$new"
    rm -rf "$template" "$new"
    mkdir -p "$new"
    (
        unset DISPLAY
        export WINEPREFIX=$new WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe='
        exec </dev/null >/dev/null 2>&1 9>&-
        wineboot -i
        wineserver -w
        replaceFolderLinks "$new"
        # Wine finds no font outside its own prefix: Tahoma and Marlett come from here.
        cp /usr/share/wine/fonts/*.ttf "$new/drive_c/windows/Fonts/"
        writeSettings "$new/drive_c/setup.reg"
        wine regedit /S 'C:\setup.reg'
        winecfg -v win10
        wineserver -k
        wineserver -w
    ) || { endWine "$new"; fail "the template prefix could not be built"; }
    endWine "$new"
    echo "$stamp" >"$new/.velmora-stamp"
    mv "$new" "$template"
}

# Without a window manager a managed window takes two seconds to hide, hence Managed=N. With the debugger off a
# crash ends the process at once with status 5 instead of opening a dialog.
writeSettings() {
    cat >"$1" <<'R'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_CURRENT_USER\Software\Wine\DllOverrides]
"winedbg.exe"=""
"winemenubuilder.exe"=""
"mscoree"=""
"mshtml"=""
R
}

# Folders in place of the links to HOME that Wine makes of Desktop, Documents and their like.
replaceFolderLinks() {
    local link
    while read -r link; do
        rm "$link"
        mkdir "$link"
    done < <(find "$1/drive_c/users" -type l)
}

# clonePrefix NEW: hard links for the big unchanging files, copies for those that Wine writes in place.
clonePrefix() {
    cp -al "$template" "$1"
    cp -a --remove-destination "$template"/*.reg "$template/.update-timestamp" "$1/"
    cp -a --remove-destination "$template"/drive_c/windows/{win,system}.ini "$1/drive_c/windows/"
    replaceFolderLinks "$1"
}

# --- sessions -----------------------------------------------------------------------------------------------

# A session is a folder: prefix/ (the Wine prefix), xserver (process, its start time, display), registered
# (exists when the simulator is registered in it), ready (exists when the session can be used).

# Whatever a session starts lives on when this script has ended: it must hold none of the caller's pipes, else
# ctest waits for them, and not the lock.
startXserver() {
    local session=$1 display="" pid
    : >"$session/display"
    setsid Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp \
        3>"$session/display" </dev/null >"$session/xserver.log" 2>&1 9>&- &
    pid=$!
    disown
    echo "$pid $(startTime "$pid" || true) -" >"$session/xserver"
    waitUntil 20 displayIsKnown "$session" "$pid" || return 1
    display=$(<"$session/display")
    [ -n "$display" ] || return 1
    echo "$pid $(startTime "$pid") $display" >"$session/xserver"
}

# Also ends the waiting when the server has ended without a display.
displayIsKnown() {
    [ -s "$1/display" ] || ! startTime "$2" >/dev/null
}

# Runs a command of the session's prefix without any of the caller's files.
quietly() {
    WINEPREFIX=$1/prefix DISPLAY=:$(displayOf "$1") timeout 60 "${@:2}" </dev/null >/dev/null 2>&1 9>&-
}

displayOf() {
    local pid started display
    read -r pid started display <"$1/xserver"
    echo "$display"
}

beginSession() {
    local session=$1
    mkdir -p "$session"
    clonePrefix "$session/prefix"
    # The X server comes first: the session's first process decides whether windows can be made at all.
    startXserver "$session" || { echo "wine.sh: no X server" >&2; return 1; }
    # -p keeps the server between programs: a start then takes 20 ms instead of a second.
    quietly "$session" setsid wineserver -p || { echo "wine.sh: no wineserver" >&2; return 1; }
    quietly "$session" wine cmd.exe /c exit 0 || { echo "wine.sh: Wine does not start" >&2; return 1; }
    if [ -e "$simulator" ]; then
        quietly "$session" wine regsvr32 /s "$(windowsPath "$simulator")" ||
            { echo "wine.sh: the simulator does not register" >&2; return 1; }
        touch "$session/registered"
    fi
    touch "$session/ready"
}

# Ends all that the session started; answers non-zero when something of it went wrong.
endSession() {
    local session=$1 result=0
    [ -d "$session" ] || return 0
    if [ -e "$session/registered" ] && [ -e "$session/ready" ] && [ "${2:-}" != abandoned ]; then
        quietly "$session" wine regsvr32 /s /u "$(windowsPath "$simulator")" ||
            { echo "wine.sh: the simulator does not unregister" >&2; result=1; }
    fi
    rm -f "$session/ready"
    endWine "$session/prefix" || { echo "wine.sh: a Wine process does not end" >&2; return 1; }
    endXserver "$session" || { echo "wine.sh: the X server does not end" >&2; return 1; }
    rm -rf "$session"
    return $result
}

# Z: is the root of the file system. (winepath would do the same in half a second.)
windowsPath() {
    local path=Z:$1
    echo "${path//\//\\}"
}

# Sessions of single runs that were killed: their folder carries the number of the script that made them.
endAbandonedRuns() {
    local session pid started
    for session in "$state"/run.*; do
        [ -d "$session" ] || continue
        read -r pid started < <(cat "$session/owner" 2>/dev/null) || continue
        if isGone "$pid" "$started"; then
            endSession "$session" abandoned || true
        fi
    done
}

# The template and the common session are made by one script at a time.
lock() {
    mkdir -p "$state" "$HOME" "$TMPDIR"
    exec 9>"$state/lock"
    flock -w 120 9 || fail "another wine.sh holds $state/lock"
}

unlock() {
    exec 9>&-
}

start() {
    lock
    buildTemplate
    endAbandonedRuns
    endSession "$state/session" abandoned
    trap 'endSession "$state/session" abandoned || true' EXIT
    trap 'exit 1' HUP INT TERM
    beginSession "$state/session" || fail "the session does not start"
    trap - EXIT HUP INT TERM
    unlock
    echo "wine.sh: session started on display :$(displayOf "$state/session")"
}

stop() {
    lock
    endAbandonedRuns
    if [ ! -d "$state/session" ]; then
        echo "wine.sh: no session"
        return 0
    fi
    endSession "$state/session" || fail "the session did not end cleanly"
    echo "wine.sh: session ended"
}

sessionLives() {
    local pid started display
    [ -e "$state/session/ready" ] && [ -s "$state/session/xserver" ] || return 1
    read -r pid started display <"$state/session/xserver"
    ! isGone "$pid" "$started"
}

run() {
    [ $# -gt 0 ] || fail "run: which program?"
    if sessionLives; then
        runInSession "$@"
    else
        runAlone "$@"
    fi
}

# programStatus SESSION EXE ARGUMENT...: runs the program and answers its exit code. In the background, so that
# a signal ends this script's wait at once.
programStatus() {
    local status=0
    WINEPREFIX=$1/prefix DISPLAY=:$(displayOf "$1") wine "${@:2}" <&0 &
    program=$!
    wait "$program" || status=$?
    return $status
}

runInSession() {
    local server status=0
    server=$(<"$state/session/xserver")
    trap 'kill "${program:-}" 2>/dev/null; exit 1' HUP INT TERM
    programStatus "$state/session" "$@" || status=$?
    # A program that is ended together with its session seems to end with 0.
    if ! sessionLives || [ "$(<"$state/session/xserver")" != "$server" ]; then
        fail "the session ended under the program"
    fi
    exit $status
}

runAlone() {
    own=$state/run.$$
    lock
    buildTemplate
    endAbandonedRuns
    mkdir -p "$own"
    trap 'endSession "$own" || true' EXIT
    trap 'exit 1' HUP INT TERM
    echo "$$ $(startTime $$)" >"$own/owner"
    beginSession "$own" || fail "the session does not start"
    unlock
    local status=0
    programStatus "$own" "$@" || status=$?
    trap - EXIT
    endSession "$own" || fail "the session did not end cleanly"
    exit $status
}

case ${1:-} in
    start | stop) "$1" ;;
    run) run "${@:2}" ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
