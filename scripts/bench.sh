#!/usr/bin/env bash
# Usage: bench.sh [--quick]   measures the program and prints one table; what belongs to it is in benchmarks/
exec "$(dirname "${BASH_SOURCE[0]}")/../benchmarks/bench.sh" "$@"
