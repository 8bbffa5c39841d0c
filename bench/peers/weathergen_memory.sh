#!/usr/bin/env bash
# Peak memory of `varo generate` with 100 members of a conditional Box-Cox model with 12
# predictors over 10 and over 100 years. The run streams from the predictor files to the
# OUT file, so the two peaks should be about equal.
# Usage: bench/peers/weathergen_memory.sh BUILD_DIR
set -euo pipefail
build=${1:-build/release}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
declare -A peak seconds
for years in 10 100; do
  folder="$work/y$years"
  days=$("$build/bench/weathergen_bench" --workload "$folder" "$years")
  /usr/bin/time -v "$build/src/cli/varo" --settings "$work/VARO.INI" --quiet \
    --set RandomSeed=False generate "$folder/model.PAR" --predictors "$folder" \
    -o "$folder/run.OUT" --start 01/01/1961 --days "$days" --ensemble 100 2>"$work/time.txt"
  peak[$years]=$(awk -F': ' '/Maximum resident set size/ {print $2}' "$work/time.txt")
  seconds[$years]=$(awk -F': ' '/Elapsed \(wall clock\)/ {print $2}' "$work/time.txt")
  printf 'years=%-4s days=%-6s out_MB=%-6s peak_RSS_kB=%-7s wall=%s\n' "$years" "$days" \
    "$(( $(stat -c %s "$folder/run.OUT") / 1000000 ))" "${peak[$years]}" "${seconds[$years]}"
  rm -rf "$folder"
done
awk -v a="${peak[10]}" -v b="${peak[100]}" \
  'BEGIN { printf "peak memory, 100 years / 10 years: %.2f\n", b / a }'
