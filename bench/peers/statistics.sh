#!/usr/bin/env bash
# Whole-command timing of `varo stats` on a 100-member OUT file of 30 years beside a pandas
# script computing monthly, seasonal and annual means and percentiles of the same file.
# The file is the one bench/statistics_bench writes (run it first); usage: statistics.sh BUILD_DIR
set -euo pipefail
build=${1:-build/release}
folder=${TMPDIR:-/tmp}/varo-statistics-bench
here=$(cd "$(dirname "$0")" && pwd)
if [ ! -f "$folder/run.OUT" ]; then
  "$build/bench/statistics_bench" --benchmark_filter=ReadOutFile --benchmark_min_time=0.01 >/dev/null
fi
hyperfine --warmup 1 --runs 5 \
  -n "varo stats" "$build/src/cli/varo --settings $folder/VARO.INI --quiet stats $folder/run.OUT -o $folder/results.txt --ensemble-mean --start 01/01/1961 --end 31/12/1990 --stats Mean,Maximum,Median,Percentile,Sum,Max_NTot,Wet-spell,Dry-spell" \
  -n "pandas" "/usr/bin/python3 $here/statistics_pandas.py $folder/run.OUT 1961-01-01 > $folder/pandas.csv"
