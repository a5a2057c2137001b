#!/usr/bin/env bash
# A library configured with OLT_PLATFORM_LIBRARY needs only libc and that library.
# usage: check_platform_option.sh SOURCE_FOLDER WORK_FOLDER PLATFORM_LIBRARY
set -euo pipefail

rm -rf "$2"
cmake -S "$1" -B "$2" -G Ninja -DOLT_HOST_TOOLS=OFF -DOLT_PLATFORM_LIBRARY="$3" >/dev/null
cmake --build "$2" --target oltmgmt >/dev/null
needed=$(readelf -d "$2/liboltmgmt.so.0" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort | tr '\n' ' ')
[ "$needed" = "libc.so.6 liboltplatform.so.0 " ] || {
  echo "needs $needed; expected libc.so.6 and liboltplatform.so.0" >&2
  exit 1
}
