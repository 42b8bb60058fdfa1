#!/bin/sh
# usage: test.sh EXPECTED PROGRAM [ARGUMENT...]
# Runs an example, whose document must be the expected one, in UTF-16 behind its mark.
set -eu
export LC_ALL=C.UTF-8
expected=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$@" "$work/page.svg"
if [ "$(od -An -tx1 -N2 "$work/page.svg")" = " fe ff" ]; then  # by a machine of the other byte order
  dd if="$work/page.svg" of="$work/swapped.svg" conv=swab status=none
  mv "$work/swapped.svg" "$work/page.svg"
fi
{ printf '\377\376'; iconv -f UTF-8 -t UTF-16LE "$expected"; } >"$work/expected"
difference=$(cmp "$work/expected" "$work/page.svg" 2>&1) && exit

# The 60 characters around the first that differs. The mark counts as one.
byte=$(echo "$difference" | sed 's/.* byte \([0-9]*\).*/\1/')
character=$(((byte + 1) / 2))
from=$((character > 30 ? character - 30 : 1))
around() { tail -c +$((2 * from - 1)) "$1" | head -c 120 | iconv -c -f UTF-16LE -t UTF-8; }
echo "$expected differs from character $((character - 1)) on
expected: $(around "$work/expected")
actual:   $(around "$work/page.svg")"
exit 1
