#!/usr/bin/env bash
# A copy of the sources with an incompatible change must fail the check of the interface.
# usage: changed_interface.sh SOURCE_FOLDER WORK_FOLDER CHANGE COMPLAINT
# The change is a sed command that is applied to headers and sources.
set -euo pipefail

# A compiler cache may give objects whose debug information names another folder.
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER

source=$1
work=$2
rm -rf "$work"
mkdir -p "$work"
cp -r "$source"/{CMakeLists.txt,abi,capture,cmake,flash,include,ont,pon,scripts,snmp,switch,system,transport} "$work"
find "$work" \( -name '*.h' -o -name '*.cc' \) -exec sed -i -e "$3" {} +
! diff -r "$source/include" "$work/include" >/dev/null || {
  echo "the change '$3' changes nothing" >&2
  exit 1
}

"$source/tests/abi/expect_complaint.sh" "$4" "$work/scripts/abi.sh" build
