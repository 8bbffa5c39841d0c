#!/usr/bin/env bash
# Runs every benchmark of a build, then the whole-command timings beside their peers.
# Usage: bench/run-all.sh BUILD_DIR
set -euo pipefail
build=${1:-build/release}
here=$(cd "$(dirname "$0")" && pwd)
for exe in "$build"/bench/*_bench; do
  [ -x "$exe" ] || continue
  echo "== $(basename "$exe")"
  "$exe" --benchmark_counters_tabular=true
done
for script in "$here"/peers/*.sh; do
  [ -x "$script" ] || continue
  echo "== $(basename "$script")"
  "$script" "$build"
done
