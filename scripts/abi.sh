#!/usr/bin/env bash
# Builds the library with debug information and compares the binary interface that this describes with
# the one recorded in abi/oltmgmt.abi. Fails on any difference; --update records the current one.
# usage: scripts/abi.sh BUILD_FOLDER [--update]
#
# Debian packages: abigail-tools
set -euo pipefail
cd "$(dirname "$0")/.."

released=abi/oltmgmt.abi

mode=${2:---check}
case $mode in
  --check | --update) ;;
  *)
    echo "abi.sh: unknown argument '$mode'; expected --check or --update" >&2
    exit 2
    ;;
esac

cmake -S . -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOLT_HOST_TOOLS=OFF >/dev/null
cmake --build "$1" --target oltmgmt >&2
today=$(mktemp)
trap 'rm -f "$today"' EXIT
# Leaves out everything specific to this machine or internal to the library.
abidw --header-file "$PWD/include/oltmgmt.h" --drop-private-types --exported-interfaces-only \
  --no-corpus-path --no-comp-dir-path --no-architecture --no-show-locs --no-elf-needed \
  --no-parameter-names --type-id-style hash "$1/liboltmgmt.so.0" |
  sed "s| path='[^']*/\([^/']*/[^/']*\)'| path='\1'|" >"$today"

if [ "$mode" = --update ]; then
  cat "$today" >"$released"
  exit
fi
abidiff "$released" "$today" || {
  echo "abi.sh: the interface differs from the recorded one; if this is intended: ./dev renew"
  exit 1
}
