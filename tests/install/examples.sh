#!/usr/bin/env bash
# Installs a build under a temporary prefix, builds the examples against it through pkg-config and
# through CMake's find_package, and runs them on an installed box.
# usage: examples.sh BUILD_FOLDER EXAMPLES_FOLDER
set -euo pipefail

work=$(mktemp -d)
box=

finish() {
  [ -z "$box" ] || kill "$box" 2>/dev/null || true
  wait
  rm -rf "$work"
}
trap finish EXIT

prefix=$work/prefix
cmake --install "$1" --prefix "$prefix" >/dev/null
export LD_LIBRARY_PATH=$prefix/lib OLT_RUN_DIR=$work/run

cp -r "$2" "$work/with_make"
PKG_CONFIG_PATH=$prefix/lib/pkgconfig make -C "$work/with_make" \
  CFLAGS='-Wall -Wextra -Werror' CXXFLAGS='-Wall -Wextra -Werror' >"$work/make.log"
cmake -S "$2" -B "$work/with_cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/with_cmake" >/dev/null

"$prefix/bin/oltbox" --state-dir "$work/state" >"$work/output" &
box=$!
for ((i = 0; i < 300; i++)); do
  ! grep -q '^oltbox: serving' "$work/output" || break
  kill -0 "$box" || exit 1
  sleep 0.1
done

cat >"$work/expected" <<'END'
VLANs of olt
============

3 VLANs
VLAN  Tagged ports  Untagged ports  Description
----  ------------  --------------  -----------
1     -             1/1-4           default
7     -             -               -
4094  -             -               -
END
for folder in "$work/with_make" "$work/with_cmake"; do
  [ "$("$folder/mac_address")" = 02:00:00:00:00:01 ]
  "$folder/vlan_report" "$OLT_RUN_DIR" 7 4094 | diff -u "$work/expected" -
done
