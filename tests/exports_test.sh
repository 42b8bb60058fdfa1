#!/bin/sh
# The header, the linker's list and the shared object name the same 39 functions and no others.
# usage: exports_test.sh HEADER LIST LIBRARY
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
declared='SVG_[A-Za-z]*( *\(SvgGenerator\|const\|void\)'
tr '\n' ' ' <"$1" | grep -o "$declared" | sed 's/(.*//' | sort >"$work/header"
grep -o 'SVG_[A-Za-z]*' "$2" | sort >"$work/list"
# The version itself is an absolute symbol (A).
nm -D --defined-only "$3" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort >"$work/library"
diff "$work/header" "$work/list"
diff "$work/header" "$work/library"
count=$(wc -l <"$work/header")
[ "$count" -eq 39 ] || { echo "$count functions instead of 39"; exit 1; }
