#!/bin/sh
# usage: exports_test.sh HEADER FILE...
# Each file (.def, version script, shared object, DLL, import libraries) names exactly the 39
# functions of the header. NM and OBJDUMP are the tools for binaries.
set -eu
names() {
  case $1 in
    *.h)
      tr '\n' ' ' <"$1" | grep -o 'SVG_[A-Za-z]*( *\(SvgGenerator\|const\|void\)' | sed 's/(.*//'
      ;;
    *.def | *.map) sed -n 's/^  \([A-Za-z0-9_]*\);\?$/\1/p' "$1" ;;
    *.dll) "$OBJDUMP" -p "$1" | sed -n 's/^\t\[ *[0-9]*\] \([^ ]*\)$/\1/p' ;;
    # For 32-bit x86 linkers' names begin with an underscore, those in the DLL do not.
    *.lib | *.a) "$NM" "$1" 2>/dev/null | sed -n 's/.* I __imp__\?//p' ;;
    *) "$NM" -D --defined-only "$1" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' ;;
  esac | sort
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
names "$1" >"$work/header"
count=$(wc -l <"$work/header")
[ "$count" -eq 39 ] || { echo "$1: $count functions instead of 39"; exit 1; }
shift
for file; do
  names "$file" >"$work/names"
  diff "$work/header" "$work/names" || { echo "$file differs from the header"; exit 1; }
done
