#!/usr/bin/env bash
# Checks that the first C program in a document is the text of an example.
# usage: readme_example.sh DOCUMENT EXAMPLE
set -euo pipefail

# shellcheck disable=SC2016
if ! sed -n '/^```c$/,/^```$/{/^```$/q;/^```/!p}' "$1" | diff "$2" -; then
  echo "$1: its first C program differs from $2"
  exit 1
fi
