#!/bin/sh
# usage: sources_test.sh SOURCE_DIRECTORY
# Compilers' own words stand in one file, and includes run downwards.
set -eu
cd "$1"

# absent GREP_ARGUMENT...: nothing is found. When grep itself fails that is not known.
absent() {
  status=0
  grep -rn "$@" || status=$?
  [ "$status" -eq 1 ] || exit 1
}

absent -E '__(attribute|builtin|declspec|restrict)|_mm_|\[\[(gnu|clang|msvc)|#pragma [^o]' \
  --exclude=portability.h .

# A folder includes from itself and from those before it; those of one line know nothing of each
# other.
below=qzsvggen
while read -r folders; do
  for folder in $folders; do absent -P "#include \"(?!($below|$folder)/)" "$folder"; done
  below=$below$(printf '|%s' $folders)
done <<END
base
markup
shapes paint
images clip invert structures
text
page
api
END
for folder in */; do
  case "|$below|" in *"|${folder%/}|"*) ;; *) echo "$folder stands nowhere"; exit 1 ;; esac
done
