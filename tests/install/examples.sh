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
cp -r "$examples" "$work/faulty"
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
alone "$prefix/bin/oltreplay" --version >/dev/null || fail "oltreplay does not run"

# The tests of a front end with the mock pass, and fail with a front end that switches off another
# port. CMake has said which frameworks are not installed.
sed -i 's/set_port_enable(slot, port,/set_port_enable(slot, port + 1,/' "$work/faulty/mock/idle_port.c"
cmake -S "$work/faulty" -B "$work/faulty_build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/frameworks"
cmake --build "$work/faulty_build" >/dev/null
for name in googletest cmocka check; do
  ! grep "examples/mock/$name.* is skipped" "$work/frameworks" || continue
  test=mock/idle_port_$name
  alone "$work/with_cmake/$test" >"$work/test_output" 2>&1 || fail "$test: $(cat "$work/test_output")"
  ! alone "$work/faulty_build/$test" >"$work/test_output" 2>&1 || fail "$test misses a wrong port"
  grep -q '^  port: 4 sent; expected 3' "$work/test_output" || fail "$test: $(cat "$work/test_output")"
done

cat >"$work/plain.c" <<'END'
#include <oltmgmt.h>
#include <oltmock.h>
int main(void) {
  olt_mock_expect("save_system_config", "");
  return save_system_config() != 0 || olt_mock_finish() != 0;
}
END
read -ra flags < <(pkg-config --cflags --libs oltmgmt oltmock)
"${CC:-cc}" -std=c11 -Wall -Wextra -Werror "$work/plain.c" -o "$work/plain" "${flags[@]}" "-Wl,-rpath,$prefix/lib"
alone "$work/plain" || fail "a program with the mock fails"

# On SIGTERM, the box ends with exit status 0.
kill "$box"
wait "$box"
box=
