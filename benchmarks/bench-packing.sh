#!/usr/bin/env bash
# Usage: bench-packing.sh [RUNS [DIVISOR]]   measures the packing of folders against other packers (default 5 runs each); DIVISOR 10 packs a tenth of the usual data
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runs=${1:-5}
divisor=${2:-1}
case $runs$divisor in
    '' | *[!0-9]*)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
echo "bench-packing.sh: measuring the packing of folders"
"$root/scripts/packages.sh" bench packing
"$root/scripts/build.sh" bench pack_folder

bench=$root/build/bench/packing-$divisor
mixes=("$root"/benchmarks/packing/{mixes,kinds}.py)
if ! cmp -s <(cat "${mixes[@]}") "$bench/mixes.stamp"; then
    echo "bench-packing.sh: making the mixes (two minutes)"
    rm -rf "$bench"
    mkdir -p "$bench"
    python3 "${mixes[0]}" "$bench/mixes" "$divisor" report
    cat "${mixes[@]}" >"$bench/mixes.stamp"
fi

# On one core, and ahead of all other work on the machine where that is permitted.
first=(taskset -c 0)
if chrt -r 5 true 2>/dev/null; then
    first+=(chrt -r 5)
fi
echo "bench-packing.sh: load before: $(cut -d' ' -f1-3 /proc/loadavg), started by: ${first[*]}"
"${first[@]}" python3 "$root/benchmarks/packing/measure.py" "$root/build/bench/pack_folder" "$bench" "$runs"
echo "bench-packing.sh: load after: $(cut -d' ' -f1-3 /proc/loadavg)"
