#!/usr/bin/env bash
# Whole `varo calibrate` commands on 30 years x 12 predictors beside the time to read their
# 13 files and beside statsmodels (and scipy's HiGHS) doing the same fits, as ratios from
# one run.
# Usage: bench/peers/calibration_peer.sh BUILD_DIR
set -euo pipefail
build=${1:-build/release}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build/bench/calibration_bench" --workload "$work"
printf '[VARO]\r\nYearIndicator=366\r\nGlobalSDate=01/01/1961\r\nGlobalEDate=31/12/1990\r\n' >"$work/VARO.INI"
predictors=$(for i in $(seq -w 1 12); do printf '%s ' "$work/p$i.dat"; done)
varo="$build/src/cli/varo --settings $work/VARO.INI --quiet"
monthly="$varo --set ModelTransformation=2 calibrate $work/rain.dat $predictors -o $work/m.PAR --model monthly --process conditional"
annual="$varo --set OptimisationChoice=2 calibrate $work/rain.dat $predictors -o $work/a.PAR --model annual"
hyperfine --style none --warmup 1 --runs 10 --export-json "$work/commands.json" "$monthly" "$annual" >/dev/null
"$build/bench/calibration_bench" --benchmark_filter='BM_ReadThirteenFiles|BM_SimplexAnnual' \
  --benchmark_format=json --benchmark_min_time=1 >"$work/kernels.json"
/usr/bin/python3 "$here/calibration_statsmodels.py" "$work" >"$work/peer.txt"
/usr/bin/time -v $annual 2>"$work/time.txt" >/dev/null
/usr/bin/python3 - "$work" <<'PY'
import json, sys
work = sys.argv[1]
commands = {i: r["mean"] for i, r in enumerate(json.load(open(f"{work}/commands.json"))["results"])}
kernels = {b["name"].split("/")[0]: b["real_time"] / 1000.0 for b in json.load(open(f"{work}/kernels.json"))["benchmarks"]}
peer = dict(line.split() for line in open(f"{work}/peer.txt"))
peer = {k: float(v) for k, v in peer.items()}
rss = [l.split(": ")[1] for l in open(f"{work}/time.txt") if "Maximum resident" in l][0]
read = kernels["BM_ReadThirteenFiles"]
monthly, annual = commands[0], commands[1]
print(f"read 13 files (VARO)                      {read:8.3f} s")
print(f"monthly conditional, fourth root command  {monthly:8.3f} s  = {monthly / read:5.2f} x reading")
print(f"annual least absolute deviations command  {annual:8.3f} s  (simplex alone {kernels['BM_SimplexAnnual']:.3f} s)")
print(f"statsmodels monthly conditional fits      {peer['monthly_conditional_fourth_root']:8.3f} s  (+ numpy reading {peer['read']:.3f} s)")
print(f"statsmodels QuantReg median, annual       {peer['annual_lad_quantreg']:8.3f} s")
print(f"scipy HiGHS, annual LAD                   {peer['annual_lad_highs']:8.3f} s")
print(f"ratio monthly: statsmodels fits+read / VARO command  {(peer['monthly_conditional_fourth_root'] + peer['read']) / monthly:6.2f}")
print(f"ratio annual LAD: HiGHS / VARO command               {peer['annual_lad_highs'] / annual:6.2f}")
print(f"ratio annual LAD: QuantReg / VARO command            {peer['annual_lad_quantreg'] / annual:6.2f}")
print(f"peak memory of the annual LAD command: {rss.strip()} kB")
PY
