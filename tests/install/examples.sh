#!/usr/bin/env bash
# Installs a build under a temporary prefix and moves it. Builds the installed examples against it,
# through pkg-config and through CMake's find_package. Runs them and the programs in an empty
# environment: only the files may tell them where the libraries are.
# usage: examples.sh BUILD_FOLDER SKELETON_CHECK
set -euo pipefail

work=$(mktemp -d)
box=

finish() {
  [ -z "$box" ] || ! kill -0 "$box" 2>/dev/null || kill -KILL "$box"
  rm -rf "$work"
}
trap finish EXIT

fail() {
  echo "examples.sh: $*" >&2
  exit 1
}

alone() {
  env -i OLT_RUN_DIR="$work/run" HOME="$work/home" "$@"
}

expect() { # TEXT PROGRAM [ARGUMENT...]
  local output
  output=$(alone "${@:2}") || fail "$2 failed"
  [ "$output" = "$1" ] || fail "$2 prints '$output'; expected '$1'"
}

cmake --install "$1" --prefix "$work/first" >/dev/null
mkdir "$work/home" "$work/elsewhere"
prefix=$work/elsewhere/prefix
mv "$work/first" "$prefix"

for file in "$prefix"/bin/* "$prefix"/lib/*.so.?; do
  ! readelf -SW "$file" | grep -q ' \.symtab ' || fail "$file is not stripped"
done

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
examples=$prefix/share/doc/oltmgmt/examples
cp -r "$examples" "$work/with_make"
make -C "$work/with_make" \
  CFLAGS='-Wall -Wextra -Werror' CXXFLAGS='-Wall -Wextra -Werror' >"$work/make.log"
cmake -S "$examples" -B "$work/with_cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/with_cmake" >/dev/null

# Without a box, over the skeleton of a platform library.
for folder in "$work/with_make" "$work/with_cmake"; do
  expect 02:00:5e:10:20:30 "$folder/mac_address_alone"
done
# shellcheck disable=SC2046
"${CC:-cc}" -std=c11 -Wall -Wextra -Wpedantic -Wconversion -Werror "$2" \
  "$examples/platform_skeleton.c" $(pkg-config --cflags --libs oltmgmt) \
  -Wl,-rpath,"$prefix/lib" -pthread -o "$work/skeleton_check"
expect 'all checks passed' "$work/skeleton_check"

# Without exec, the job would be a shell of this script.
(exec env -i OLT_RUN_DIR="$work/run" HOME="$work/home" "$prefix/bin/oltbox" --state-dir "$work/state" >"$work/output") &
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
  expect 02:00:00:00:00:01 "$folder/mac_address"
  alone "$folder/vlan_report" "$work/run" 7 4094 | diff -u "$work/expected" -
done
expect 'mac = 02:00:00:00:00:01' "$prefix/bin/oltctl" get_olt_mac

# On SIGTERM, the box ends with exit status 0.
kill "$box"
wait "$box"
box=
