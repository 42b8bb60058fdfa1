#!/bin/sh
# usage: wine.sh DIRECTORY PROGRAM [ARGUMENT...]
# Runs a Windows program. Wine keeps its registry in the directory and is asked for none of its
# optional parts.
export WINEPREFIX="$1" WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
shift
set -- /usr/lib/wine/wine64 "$@"
# The kernel puts the heap of Wine's loader somewhere into the gigabyte behind it, and so at one
# start in some thousands onto the page 0x7ffe0000, which Windows programs need: Wine ends with 1
# and says nothing. Not so without random addresses, where a sandbox lets them be turned off.
setarch -R true 2>/dev/null && set -- setarch -R "$@"
exec "$@"
