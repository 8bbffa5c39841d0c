#!/usr/bin/env bash
# Cases of scripts/check-deps.sh: it passes on the build's own cache, and fails, naming the
# package, when a cache names a package configuration the install script does not install.
#
#   check_deps_test.sh CHECK_SCRIPT INSTALL_SCRIPT REAL_CACHE
set -uo pipefail

check="$1"
install_script="$2"
real_cache="$3"
if ! command -v dpkg >/dev/null 2>&1; then
  echo "no dpkg: the package check has nothing to check on this system"
  exit 77
fi
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0

# expect NAME STATUS PATTERN CACHE SCRIPT: the check exits with STATUS and its output matches.
expect() {
  local name="$1" want="$2" pattern="$3" cache="$4" script="$5" output status
  output="$("$check" "$cache" "$script" 2>&1)"
  status=$?
  if [ "$status" -ne "$want" ] || ! grep -qE -- "$pattern" <<<"$output"; then
    echo "FAIL ${name}: status ${status} (wanted ${want}), output:"
    echo "$output"
    failures=$((failures + 1))
  else
    echo "ok   ${name}"
  fi
}

opengl_entry="$(grep -E '^Qt6OpenGL_DIR:PATH=/usr/' "$real_cache")"
if [ -z "$opengl_entry" ]; then
  echo "FAIL the build's cache has no Qt6OpenGL_DIR entry to build test caches from"
  exit 1
fi

# A cache with one package configuration among entries that are not configurations.
cat >"$work/CMakeCache.txt" <<CACHE
# This is the CMakeCache file.
${opengl_entry}
OPENGL_INCLUDE_DIR:PATH=/usr/include
XKB_INCLUDE_DIR:PATH=XKB_INCLUDE_DIR-NOTFOUND
Missing_DIR:PATH=Missing_DIR-NOTFOUND
varo_SOURCE_DIR:STATIC=${work}
CACHE

# The install script without the package of that configuration.
sed 's/ libqt6opengl6-dev//' "$install_script" >"$work/install-deps.sh"
chmod +x "$work/install-deps.sh"
if "$work/install-deps.sh" --list | grep -qx libqt6opengl6-dev; then
  echo "FAIL could not take libqt6opengl6-dev out of a copy of the install script"
  exit 1
fi

expect "passes on the real cache" 0 "all installed" "$real_cache" "$install_script"
expect "passes on a small cache whose package is listed" 0 "1 package configurations" \
  "$work/CMakeCache.txt" "$install_script"
expect "fails naming a package the script lacks" 1 \
  "Qt6OpenGL comes from package libqt6opengl6-dev, which install-deps.sh does not install" \
  "$work/CMakeCache.txt" "$work/install-deps.sh"
expect "fails on the real cache when the script lacks a package" 1 "libqt6opengl6-dev" \
  "$real_cache" "$work/install-deps.sh"

# A configuration owned by a package the real script does not list at all: the first one
# the package database knows, if this machine has any.
listed="$("$install_script" --list)"
while IFS= read -r line; do
  package="${line%%: *}"
  package="${package%%:*}"
  file="${line#*: }"
  case "$package" in *,*) continue ;; esac
  grep -qxF "$package" <<<"$listed" && continue
  base="$(basename "$file")"
  name="${base%Config.cmake}"
  [ "$name" != "$base" ] && [ -n "$name" ] || continue
  printf '%s_DIR:PATH=%s\n' "$name" "$(dirname "$file")" >"$work/Unlisted.txt"
  expect "fails on a cache naming unlisted ${package}" 1 "package ${package}," \
    "$work/Unlisted.txt" "$install_script"
  break
done < <(dpkg -S 'Config.cmake' 2>/dev/null | grep -E '^[^ ]+: /usr/.*/[A-Za-z0-9_]+Config\.cmake$')

expect "refuses a cache that is not there" 2 "no CMake cache" "$work/none.txt" "$install_script"

exit $((failures > 0 ? 1 : 0))
