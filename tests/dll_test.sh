#!/bin/sh
# usage: dll_test.sh DLL SOURCE_DIRECTORY
# The DLL needs none but the system's own, and tells neither when nor where it was built.
# OBJDUMP is the tool for binaries.
set -eu
fail() { echo "$1"; exit 1; }
headers=$(LC_ALL=C TZ=UTC "$OBJDUMP" -p "$1")
imports=$(echo "$headers" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
[ "$imports" = "KERNEL32.dll msvcrt.dll " ] || fail "it imports: $imports"
echo "$headers" | grep -q '^Time/Date.* 1970$' || fail "it has a time stamp"
grep -aq "$2" "$1" && fail "it contains a path"
grep -aq '\.debug_info' "$1" && fail "it contains debug information"
[ -s "$1.debug" ] || fail "the debug symbols are missing"
"$OBJDUMP" -h "$1" | grep -q '\.gnu_debuglink' ||
  fail "it does not lead to its debug symbols"
