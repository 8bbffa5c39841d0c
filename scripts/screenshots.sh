#!/usr/bin/env bash
# Renders every screen of the desktop program at its opening state into docs/images/, and
# the screens with results after a run on the sample data (NAME-results) and the charts such
# runs open (screen-scatter, calibrate-scatter, calibrate-histogram), so that the user
# guide's pictures come from the program itself.
# Usage: scripts/screenshots.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
build=${1:-build/release}
top=$(cd "$(dirname "$0")/.." && pwd)
gui="$build/src/gui/varo-gui"
out="$top/docs/images"
mkdir -p "$out"
export QT_QPA_PLATFORM=offscreen
# A home folder of no one in particular, so that the pictures show no local paths; the
# screenshot mode reads the settings file there (absent) and writes nothing.
# The chart screens open with sample charts; "chart1-settings" shows a chart's settings screen.
screens=(intro home quality transform screen calibrate generate stats scenario compare settings advsettings
  screen-results stats-results screen-scatter calibrate-scatter calibrate-histogram
  chart1 chart1-settings scatterchart linechart pdfchart histogram timeserieschart fachart)
failed=()
for screen in "${screens[@]}"; do
  if env -u XDG_CONFIG_HOME HOME=/home/you "$gui" --screen "$screen" --screenshot "$out/$screen.png" 2>/dev/null; then
    echo "docs/images/$screen.png"
  else
    failed+=("$screen")
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  echo "screenshots.sh: these screens failed: ${failed[*]}" >&2
  exit 1
fi
