#!/usr/bin/env bash
# Usage: bench.sh [--quick]   runs the main measurements and prints one table (half an hour; --quick: fewer runs, smaller sizes, five minutes)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
case "$#:${1:-}" in
    0:)
        wine=(21 1000 100000)
        native=(--benchmark_repetitions=5)
        packing=(5)
        ;;
    1:--quick)
        wine=(5 1000 10000)
        native=(--benchmark_repetitions=3 "--benchmark_filter=/1000/|/10000/|Walk")
        packing=(1 10)
        ;;
    *)
        sed -n 2p "$0" >&2
        exit 2
        ;;
esac
echo "bench.sh: measuring the program; the parts' own tables come first"
load=$(cut -d' ' -f1-3 /proc/loadavg)
"$root/scripts/packages.sh" bench windows wine packing
# All of it is built before anything is measured.
"$root/scripts/build.sh" windows wine_benchmark
"$root/scripts/build.sh" bench working_table_benchmark export_benchmark pack_folder

results=$root/build/bench/results
rm -rf "$results"
mkdir -p "$results"

"$root/benchmarks/bench-wine.sh" "${wine[@]}" | tee "$results/wine.txt"

first=(taskset -c 0)
if chrt -r 5 true 2>/dev/null; then
    first+=(chrt -r 5)
fi
# measure NAME BENCHMARK: the runs of all its measurements come in a random order.
measure() {
    "${first[@]}" "$root/build/bench/$2" "${native[@]}" --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true --benchmark_out="$results/$1.json" --benchmark_out_format=json
}
measure table working_table_benchmark
measure export export_benchmark

"$root/benchmarks/bench-packing.sh" "${packing[@]}" | tee "$results/packing.txt"
(cd "$root/build/windows" && stat -c '%n %s' VelmoraInventor.exe bare_program.exe) >"$results/sizes.txt"

echo
echo "bench.sh: load at the beginning $load, at the end $(cut -d' ' -f1-3 /proc/loadavg); processors: $(nproc)"
"$root/benchmarks/report.py" "$results"
