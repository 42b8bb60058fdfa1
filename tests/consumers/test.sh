#!/bin/bash
# usage: test.sh WAY BUILD [EMULATOR...]
# Builds an example as a host does that takes the library by WAY, and runs it. Installed trees are
# moved first; packages are unpacked somewhere and must hold the files of WAY.txt, no others.
# MACHINE is the processor.
set -euo pipefail
way=$1 build=$2
shift 2
consumers=$(cd "$(dirname "$0")" && pwd)
examples=$consumers/../../examples
guide=$consumers/../../docs/integration.md
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }; }
draw() { "$consumers/../examples/test.sh" "$examples/page.svg" "$@"; }
compare() {
  diff <(sed "s/x86-64/${MACHINE//_/-}/" "$consumers/$way.txt") \
    <(cd "$1" && find . -type f -o -type l | LC_ALL=C sort)
}

links() {  # in documents lead to what lies there, too
  local document link
  grep -rq --include=README.md '(docs/integration.md)' "$1" || { echo "README has lost its links"; exit 1; }
  find "$1" -name '*.md' | while read -r document; do
    for link in $(grep -oE '\]\([A-Za-z0-9_./-]+[#)]' "$document" | tr -d '](#)'); do
      [ -e "$(dirname "$document")/$link" ] || { echo "$document: $link"; exit 1; }
    done
  done
}

install_and_move() {
  quietly cmake --install "$build" --prefix "$work/first"
  mv "$work/first" "$prefix"
}

pack() {  # pack GENERATOR
  (cd "$work" && quietly cpack --config "$build/CPackConfig.cmake" -G "$1" -B "$work")
}

find_package() {
  quietly cmake -S "$consumers/find_package" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" "$@"
  quietly cmake --build "$work/build"
}

pkg_config() {
  PKG_CONFIG_PATH=$prefix/lib/pkgconfig quietly \
    make -C "$work" -f "$consumers/pkg_config/Makefile" EXAMPLES="$examples"
  LD_LIBRARY_PATH=$prefix/lib draw "$work/consumer"
}

case $way in
  find_package)
    install_and_move
    find_package
    draw "$work/build/consumer"
    ;;
  pkg_config)
    install_and_move
    pkg_config
    ;;
  subdirectory)  # which brings neither tests nor anything to install
    quietly cmake -S "$consumers/subdirectory" -B "$work/build"
    quietly cmake --build "$work/build" --parallel 2
    draw "$work/build/consumer"
    ctest --test-dir "$work/build" -N | grep -qx 'Total Tests: 0'
    cmake --install "$work/build" --prefix "$prefix" >"$work/log"
    [ ! -e "$prefix" ]
    ;;
  static)
    quietly cmake -S "$consumers/../.." -B "$work/library" -DBUILD_SHARED_LIBS=OFF \
      -DQZSVGGEN_DEVELOPER=OFF
    quietly cmake --build "$work/library" --parallel 2
    build=$work/library install_and_move
    pkg_config
    find_package
    draw "$work/build/consumer"
    ;;
  deb)
    pack DEB
    for package in "$work"/*.deb; do dpkg -x "$package" "$work/root"; done
    compare "$work/root"
    links "$work/root"
    prefix=$work/root/usr
    pkg_config
    find_package
    draw "$work/build/consumer"
    ;;
  zip)
    pack ZIP
    (cd "$work" && cmake -E tar xf ./*.zip && mv qzsvggen-*/ prefix)
    compare "$prefix"
    links "$prefix"
    # The guide's lines for MinGW, as they stand but for the machine.
    emulator=("$@")
    wine() { "${emulator[@]}" "$@"; }
    ln -s prefix "$work/qzsvggen"
    lines=$(sed -n '/^    x86_64-w64-mingw32-gcc/,/^    wine/p' "$guide")
    (cd "$work" && eval "${lines/x86_64/"$MACHINE"}")
    draw cp "$work/page.svg"
    find_package --toolchain "$consumers/../../cmake/mingw-w64.cmake" \
      -DCMAKE_SYSTEM_PROCESSOR="$MACHINE" -Dqzsvggen_DIR="$prefix/lib/cmake/qzsvggen"
    draw "$@" "$work/build/consumer.exe"
    ;;
  microsoft)
    install_and_move
    clang --target="$MACHINE-pc-windows-msvc" -ffreestanding -std=c11 -Wall -Wextra -Werror \
      -I"$prefix/include" -c "$consumers/microsoft/consumer.c" -o "$work/consumer.obj"
    lld-link /nologo /subsystem:console /entry:start /nodefaultlib "$work/consumer.obj" \
      "$prefix/lib/qzsvggen.lib" /out:"$prefix/bin/consumer.exe"
    "$@" "$prefix/bin/consumer.exe"
    ;;
esac
