#!/bin/sh
# usage: test.sh EXPECTED PROGRAM [ARGUMENT...]
# Runs an example, whose document must be the expected one, in UTF-16 behind its mark.
set -eu
expected=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$@" "$work/page.svg"
{ printf '\377\376'; iconv -f UTF-8 -t UTF-16LE "$expected"; } | cmp - "$work/page.svg"
