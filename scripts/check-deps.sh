#!/usr/bin/env bash
# Checks that every package configuration the build found comes from a Debian package that
# scripts/install-deps.sh installs, so that a fresh machine builds what this one built.
#
#   check-deps.sh CMAKECACHE [INSTALL_SCRIPT]
#
# A configuration is a `NAME_DIR` entry of the cache whose folder, under /usr, holds
# NAMEConfig.cmake or name-config.cmake; `dpkg -S` names the package that owns that file
# (multiarch suffixes such as ":amd64" dropped). Exit status: 0 all listed, 1 a package is
# missing from the install script or a file belongs to no package, 2 bad arguments,
# 77 no dpkg on this machine (not a Debian system: nothing to check).
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
cache="${1:-}"
install_script="${2:-$here/install-deps.sh}"

if [ -z "$cache" ] || [ ! -f "$cache" ]; then
  echo "check-deps: no CMake cache at '${cache}'" >&2
  exit 2
fi
if [ ! -x "$install_script" ]; then
  echo "check-deps: cannot run the install script '${install_script}'" >&2
  exit 2
fi
if ! command -v dpkg >/dev/null 2>&1; then
  echo "check-deps: dpkg not found; the package check needs a Debian system" >&2
  exit 77
fi

listed="$("$install_script" --list)"

# The config file a NAME_DIR folder holds, or nothing when it is not a package config.
config_file() {
  local name="$1" folder="$2" lower
  lower="$(printf '%s' "$name" | tr '[:upper:]' '[:lower:]')"
  for candidate in "$folder/${name}Config.cmake" "$folder/${lower}-config.cmake"; do
    if [ -f "$candidate" ]; then
      printf '%s\n' "$candidate"
      return
    fi
  done
}

status=0
names=()
files=()
while IFS= read -r entry; do
  name="${entry%%_DIR:*}"
  folder="${entry#*=}"
  case "$folder" in
    /usr/*) ;;
    *) continue ;;
  esac
  file="$(config_file "$name" "$folder")"
  [ -n "$file" ] || continue
  names+=("$name")
  files+=("$file")
done < <(grep -E '^[A-Za-z0-9_.+-]+_DIR:[A-Z]+=' "$cache")

# One query for every file: lines "package[:arch][, package[:arch]]...: path".
owners_of_all="$(dpkg -S "${files[@]}" 2>/dev/null | grep -v '^diversion by' || true)"

for i in "${!files[@]}"; do
  name="${names[$i]}"
  file="${files[$i]}"
  # The line that ends in exactly this path; its packages without architecture suffixes.
  packages="$(awk -v tail=": ${file}" 'substr($0, length($0) - length(tail) + 1) == tail' \
    <<<"$owners_of_all" | sed 's/: .*//' | tr ',' '\n' | sed 's/^ *//; s/:.*//' | sort -u)"
  if [ -z "$packages" ]; then
    echo "check-deps: ${name} (${file}) belongs to no Debian package; a fresh machine will not have it" >&2
    status=1
    continue
  fi
  if ! grep -qxF -f <(printf '%s\n' "$packages") <<<"$listed"; then
    for package in $packages; do
      echo "check-deps: ${name} comes from package ${package}, which ${install_script##*/} does not install; add it there" >&2
    done
    status=1
  fi
done

if [ "$status" -eq 0 ]; then
  echo "check-deps: ${#files[@]} package configurations, all installed by ${install_script##*/}"
fi
exit "$status"
