#!/usr/bin/env bash
# Runs each libFuzzer target of the file readers for a fixed time on its corpus in
# tests/fuzz/<target>/, then merges what it found back into that corpus, minimised: the
# fewest inputs that cover all that the old and the new inputs cover, so the corpus stays
# small. Exits non-zero when a target crashed; the input that did it and the log are left
# in BUILD_DIR/findings/.
# Usage: scripts/run-fuzzers.sh [BUILD_DIR] [SECONDS_PER_TARGET]
set -euo pipefail

build=${1:-build/fuzz}
seconds=${2:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
findings="$build/findings"
mkdir -p "$findings"

failed=()
for fuzzer in "$build"/tests/fuzz/fuzz_*; do
  name=${fuzzer##*/fuzz_}
  corpus="$root/tests/fuzz/$name"
  mkdir -p "$corpus"
  found=$(mktemp -d)
  options=(-max_total_time="$seconds" -max_len=4096 -timeout=10 -rss_limit_mb=2048
           -artifact_prefix="$findings/$name-" -print_final_stats=1)
  if [ -f "$root/tests/fuzz/$name.dict" ]; then
    options+=(-dict="$root/tests/fuzz/$name.dict")
  fi
  echo "== $name: $seconds s on $(find "$corpus" -type f | wc -l) inputs"
  if ! "$fuzzer" "${options[@]}" "$found" "$corpus" > "$findings/$name.log" 2>&1; then
    failed+=("$name")
    tail -40 "$findings/$name.log"
  fi
  merged=$(mktemp -d)
  if "$fuzzer" -merge=1 -max_len=4096 "$merged" "$corpus" "$found" \
      > "$findings/$name-merge.log" 2>&1; then
    rm -rf "$corpus"
    mv "$merged" "$corpus"
    chmod 755 "$corpus"
  else
    rm -rf "$merged"
  fi
  rm -rf "$found"
  echo "   corpus now $(find "$corpus" -type f | wc -l) inputs, $(du -sk --apparent-size "$corpus" | cut -f1) KiB of bytes"
done

if [ ${#failed[@]} -ne 0 ]; then
  echo "Crashes in: ${failed[*]} (inputs and logs in $findings)"
  exit 1
fi
