#!/bin/sh
# usage: trace_windows_test.sh HOST REAL_DLL TRACING_DLL PROGRAM EMULATOR...
# The tracing DLL in place of the real one: with that beside it, and with its path in a variable.
set -eu
host=$1 real=$2 tracing=$3 program=$4
shift 4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
cp "$host" host.exe
cp "$tracing" qzsvggen.dll

check() {  # check WHAT FILES: the host, started now, records so many files
  "$@" ./host.exe "$what" | grep -q 'come to its end' || { echo "the host failed"; exit 1; }
  set -- host-*.jsonl
  [ $# -eq "$files" ] && [ -e "$1" ] || { echo "$what: $# files instead of $files"; exit 1; }
}

cp "$real" qzsvggen-real.dll
what=page files=1 check "$@"
"$program" replay --verify host-*-0001.jsonl
rm host-*.jsonl
what=threads files=400 check "$@"
rm host-*.jsonl

mkdir elsewhere
mv qzsvggen-real.dll elsewhere/real.dll
QZSVGGEN_TRACE_LIBRARY=elsewhere/real.dll
export QZSVGGEN_TRACE_LIBRARY
what=misuse files=2 check "$@"
grep -q 'nothing was copied' host-*-0001.jsonl
grep -q 'never deleted' host-*-0002.jsonl
