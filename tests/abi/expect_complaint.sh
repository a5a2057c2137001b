#!/bin/sh
# Runs a check that must fail with exit status 1 and print a line with the given text.
# usage: expect_complaint.sh TEXT COMMAND [ARGUMENT...]
set -eu

text=$1
shift
status=0
output=$("$@" 2>&1) || status=$?
echo "$output"
if [ "$status" -ne 1 ]; then
  echo "expected exit status 1, got $status"
  exit 1
fi
if ! echo "$output" | grep -qF -- "$text"; then
  echo "expected a complaint with: $text"
  exit 1
fi
