#!/usr/bin/env bash
# Usage: fuzz.sh [SECONDS [TARGET...]]   lets libFuzzer look for inputs that break a target of tests/fuzz/; 600 s each
#
# As many targets at a time as the machine has processors. What was learnt stays in build/fuzz/corpus/; inputs that
# break something are left in build/fuzz/findings/. Ends with 0 only when all targets ran and nothing was found.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
seconds=${1:-600}
targets=("${@:2}")
if [[ ! $seconds =~ ^[1-9][0-9]*$ ]]; then
    sed -n 2p "$0" >&2
    exit 2
fi
sources=$root/tests/fuzz
build=$root/build/fuzz
if [ ${#targets[@]} -eq 0 ]; then
    mapfile -t targets < <(ls "$sources/seeds")
fi
echo "fuzz.sh: $seconds s for each of ${targets[*]}"
"$root/scripts/build.sh" fuzz "${targets[@]/#/fuzz_}"

# runTarget TARGET: one target's run, and its line of the result.
runTarget() {
    local target=$1 log=$build/logs/$1.log dictionary=() result=0 executions
    mkdir -p "$build/corpus/$target" "$build/findings" "$build/logs"
    [ ! -e "$sources/$target.dict" ] || dictionary=("-dict=$sources/$target.dict")
    "$build/fuzz_$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" "${dictionary[@]}" \
        "$build/corpus/$target" "$sources/seeds/$target" >"$log" 2>&1 </dev/null || result=$?
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    if [ $result -eq 0 ] && [ "${executions:-0}" -gt 0 ]; then
        echo "$target: $executions executions, no findings"
    else
        echo "$target: ${executions:-unknown} executions, FOUND: $(grep -m1 -E '^(broken:|terminate |.*ERROR: |.*runtime error: )' "$log" ||
            echo "status $result"), see $log"
        return 1
    fi
}
export -f runTarget
export sources build seconds
printf '%s\0' "${targets[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'runTarget "$0"'
