#!/usr/bin/env bash
# Usage: wine.sh start | stop | run EXE ARGUMENT...   runs Windows programs in a Wine session of this checkout's own
#
# start  begins a session: a Wine server and an X server, with the simulator registered if it is built. What a
#        killed run left behind is ended first.
# stop   ends every process of the session.
# run    runs one program and passes its exit code on: in the session, or in one made for this program alone.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
state=$root/build/wine
prefix=$state/prefix
# Holds the display's number while the session can be used.
session=$state/session
simulator=$root/build/windows/ApprenticeSimulator.dll
# Rises when makePrefix makes another prefix, so that old ones are replaced.
prefixVersion=2

# Wine 10 aborts if TMPDIR is set. A UTF-8 locale keeps non-ASCII arguments whole; WINEDEBUG also silences the notice
# about the 32-bit Wine that nobody needs here. Wine links the user's folders to HOME.
unset TMPDIR WINELOADER WINESERVER WAYLAND_DISPLAY XAUTHORITY XDG_CACHE_HOME XDG_DATA_HOME
export WINEDEBUG=${WINEDEBUG:--all} LC_ALL=C.UTF-8 WINEARCH=win64 HOME=$state/home

fail() {
    echo "wine.sh: $*" >&2
    exit 1
}

# --- the session's processes --------------------------------------------------------------------------------

# inSession COMMAND...: whatever is started this way, the X server included, is known by its WINEPREFIX. It lives on
# after this script: it must hold neither the lock nor any of the caller's files, else ctest would wait for them.
inSession() {
    WINEPREFIX=$prefix DISPLAY=${display:-} "$@" </dev/null >/dev/null 2>&1 9>&-
}

# Prints the numbers of all processes of the session. Those of other checkouts have other prefixes.
processes() {
    local file
    grep -lzxsF "WINEPREFIX=$prefix" /proc/[0-9]*/environ | while IFS=/ read -r _ _ file _; do echo "$file"; done
}

# endsWithin SECONDS: whether all of them are gone by then. A zombie has no environment left.
endsWithin() {
    local rounds=$(($1 * 20))
    while [ -n "$(processes)" ]; do
        [ $((rounds--)) -gt 0 ] || return 1
        sleep 0.05
    done
}

signalAll() {
    local process
    for process in $(processes); do
        kill "-$1" "$process" 2>/dev/null || true
    done
}

endSession() {
    rm -f "$session"
    [ -d "$prefix" ] || return 0
    if [ -n "$(processes)" ]; then
        # Asked to, the server ends all programs and saves the registry.
        inSession timeout 20 wineserver -k || true
        signalAll TERM
        endsWithin 10 || signalAll KILL
        endsWithin 10 || fail "a process of the session does not end: $(processes)"
    fi
    removeSocket
}

# Debian's Wine server leaves the folder of its socket behind: in the system's temporary folder (TMPDIR is
# unset here), named in the prefix, or below /run/user.
removeSocket() {
    local name="" temporary device inode
    temporary=$(dirname "$(mktemp -u)")
    [ ! -s "$prefix/wineserver" ] || name=$(<"$prefix/wineserver")
    [[ $name != wine-* ]] || rm -rf "${temporary:?}/$name"
    rm -f "$prefix/wineserver"
    read -r device inode < <(stat -c '%D %i' "$prefix")
    rm -rf "/run/user/$(id -u)/wine/server-$device-$(printf %x "$inode")"
}

# --- the beginning ------------------------------------------------------------------------------------------

# Without a window manager a managed window takes two seconds to hide, hence Managed=N. With the debugger off a
# crash ends the process at once with status 5 instead of opening a dialog.
settings='REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"

[HKEY_CURRENT_USER\Software\Wine\DllOverrides]
"winedbg.exe"=""
"winemenubuilder.exe"=""
"mscoree"=""
"mshtml"=""
'

# Made once. It needs no X server.
makePrefix() {
    local stamp
    stamp="$prefixVersion $(wine --version 2>/dev/null)"
    [ "$(cat "$prefix/.velmora-stamp" 2>/dev/null)" != "$stamp" ] || return 0
    echo "wine.sh: making the Wine prefix (about ten seconds, once)" >&2
    rm -rf "$prefix" "$HOME"
    mkdir -p "$prefix" "$HOME"
    WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=' inSession wineboot -i || fail "wineboot fails"
    # Wine finds no font outside its own prefix: Tahoma and Marlett come from here.
    cp /usr/share/wine/fonts/*.ttf "$prefix/drive_c/windows/Fonts/"
    echo "$settings" >"$prefix/drive_c/settings.reg"
    inSession wine regedit /S 'C:\settings.reg' || fail "the prefix takes no settings"
    inSession winecfg -v win10 || fail "the prefix does not become one of Windows 10"
    endSession
    echo "$stamp" >"$prefix/.velmora-stamp"
}

# Sets `display`.
startXserver() {
    local rounds=400 file=$state/display
    : >"$file"
    WINEPREFIX=$prefix setsid Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp \
        3>"$file" </dev/null >/dev/null 2>&1 9>&- &
    until [ -s "$file" ]; do
        [ $((rounds--)) -gt 0 ] || fail "no X server"
        sleep 0.05
    done
    display=:$(<"$file")
}

# Ends a session that is still there and begins a new one: then `display` is known.
beginSession() {
    endSession
    makePrefix
    trap endSession EXIT
    rm -rf "$prefix"/drive_c/users/*/Temp/* "$prefix"/drive_c/users/*/AppData/Local/Temp/*
    # The X server comes first: the session's first process decides whether windows can be made at all.
    startXserver
    # -p keeps the server between programs: a start then takes 20 ms instead of a second.
    inSession timeout 60 wineserver -p || fail "no Wine server"
    inSession timeout 60 wine cmd.exe /c exit 0 || fail "Wine does not start"
    if [ -e "$simulator" ]; then
        inSession timeout 60 wine regsvr32 /s "Z:${simulator//\//\\}" || fail "the simulator does not register"
    fi
}

# One script at a time begins or ends a session; one that has a session of its own keeps others waiting.
lock() {
    mkdir -p "$state"
    exec 9>"$state/lock"
    flock -w 120 9 || fail "another wine.sh holds $state/lock"
}

start() {
    lock
    beginSession
    echo "$display" >"$session"
    trap - EXIT
    echo "wine.sh: session started on display $display"
}

stop() {
    lock
    endSession
    echo "wine.sh: session ended"
}

run() {
    local status=0 own=""
    [ $# -gt 0 ] || fail "run: which program?"
    display=$(cat "$session" 2>/dev/null || true)
    if [ -z "$display" ]; then
        own=1
        lock
        beginSession
    fi
    # In the background, so that a signal ends this script's wait at once.
    WINEPREFIX=$prefix DISPLAY=$display wine "$@" <&0 9>&- &
    trap 'kill $! 2>/dev/null || true; exit 1' HUP INT TERM
    wait $! || status=$?
    # A program that is ended together with its session seems to end with 0.
    [ -n "$own" ] || [ "$(cat "$session" 2>/dev/null)" = "$display" ] || fail "the session ended under the program"
    exit $status
}

trap 'exit 1' HUP INT TERM
case ${1:-} in
    start | stop) "$1" ;;
    run) run "${@:2}" ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
