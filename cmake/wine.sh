#!/bin/sh
# usage: wine.sh DIRECTORY PROGRAM [ARGUMENT...]
# Runs a Windows program. Wine keeps its registry in the directory and is asked for none of its
# optional parts.
export WINEPREFIX="$1" WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
shift
exec /usr/lib/wine/wine64 "$@"
