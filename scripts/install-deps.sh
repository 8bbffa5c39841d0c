#!/usr/bin/env bash
# Installs the Debian packages that building, testing, the demo, the screenshots and the other
# make targets (bench: /usr/bin/time and hyperfine; format: clang-format) need.
# Does nothing when everything is already present; uses sudo when not root.
# `install-deps.sh --list` prints the packages, one a line, and installs nothing.
set -euo pipefail

packages=(
  cmake ninja-build g++ make ccache
  libgtest-dev libgmock-dev libbenchmark-dev
  libeigen3-dev libcli11-dev nlohmann-json3-dev
  qt6-base-dev qt6-charts-dev libqt6opengl6-dev qt6-svg-dev libgl1-mesa-dev
  # The chart screens ask for "Arial"; Liberation Sans (fonts-liberation2) has the same
  # metrics and stands in for it, so charts keep their layout without the original font.
  fonts-dejavu-core fonts-liberation2
  clang libclang-rt-14-dev
  xvfb xauth hyperfine time clang-format
  python3-numpy python3-scipy python3-statsmodels python3-pandas
)

if [ "${1:-}" = "--list" ]; then
  printf '%s\n' "${packages[@]}"
  exit 0
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
