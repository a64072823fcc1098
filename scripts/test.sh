#!/usr/bin/env bash
# Usage: test.sh [CTEST_ARGUMENT...]   builds for Linux with sanitizers and for Windows, runs all tests and checks
#
# Everything runs in one ctest, so that its summary at the end covers all of it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
echo "test.sh: building and testing the native and the Windows build"
"$root/scripts/packages.sh" native windows wine format packing

# A run that is stopped half way leaves no tests and no Wine session behind. Silent: nothing may follow ctest's
# summary.
cleanUp() {
    [ -z "${ctest:-}" ] || kill -TERM -- "-$ctest" 2>/dev/null || true
    [ ! -e "$root/build/wine/session" ] || "$root/scripts/wine.sh" stop >/dev/null || true
}
trap cleanUp EXIT
trap 'exit 1' HUP INT TERM

"$root/scripts/build.sh" native
"$root/scripts/build.sh" windows

# A test folder of its own that takes in those of both builds.
mkdir -p "$root/build/ctest"
cat >"$root/build/ctest/CTestTestfile.cmake" <<'T'
subdirs("../native" "../windows")
T
# In the background, so that a signal to this script is not kept waiting until ctest has ended; as a process group
# of its own, so that the tests end with it.
setsid ctest --test-dir "$root/build/ctest" --parallel "$(nproc)" --output-on-failure --no-tests=error "$@" </dev/null &
ctest=$!
result=0
wait $ctest || result=$?
ctest=
exit $result
