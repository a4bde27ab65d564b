#!/bin/sh
# The Linux release: the installed tree, the archive of `--target package`,
# and the demo built against the installed package with find_package(orb)
# and with pkg-config, then run.
set -eu
build=$1 repo=$2 cmake=$3 cpack=$4 cc=$5
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix

"$cmake" --install "$build" --prefix "$prefix" >/dev/null
for f in lib/liborb.so include/orb.h lib/pkgconfig/orb.pc lib/cmake/orb/orbConfig.cmake \
         lib/cmake/orb/orbConfigVersion.cmake lib/cmake/orb/orbTargets.cmake \
         share/doc/orb/README.md share/doc/orb/LICENSE; do
  [ -e "$prefix/$f" ] || { echo "not installed: $f"; exit 1; }
done
soname=$(objdump -p "$prefix/lib/liborb.so" | awk '$1 == "SONAME" { print $2 }')
case $soname in
  liborb.so.[0-9]*) [ -e "$prefix/lib/$soname" ] || { echo "no file for the soname $soname"; exit 1; } ;;
  *) echo "unexpected soname: '$soname'"; exit 1 ;;
esac
echo "installed: liborb.so ($soname), orb.pc, orbConfig.cmake"

"$cpack" --config "$build/CPackConfig.cmake" -B "$tmp/archive" >/dev/null
archive=$(ls "$tmp"/archive/orb-*-linux.tar.gz)
tar tzf "$archive" | grep -q '/lib/cmake/orb/orbConfig.cmake$' || { echo "archive incomplete"; exit 1; }
echo "archive: $(basename "$archive")"

# find_package(orb) in a project of its own.
"$cmake" -S "$repo/tests/package/consumer" -B "$tmp/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" -DDEMO_SOURCE="$repo/examples/demo.c" >/dev/null
"$cmake" --build "$tmp/consumer" >/dev/null
"$tmp/consumer/demo" --short | grep -q "checks within their bounds in .*: all good" || { echo "the CMake-built demo failed"; exit 1; }
echo "find_package(orb): demo built and run"

# pkg-config.
flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs orb)
"$cc" "$repo/examples/demo.c" $flags -lm -Wl,-rpath,"$prefix/lib" -o "$tmp/demo_pc"
"$tmp/demo_pc" --short | grep -q "checks within their bounds in .*: all good" || { echo "the pkg-config demo failed"; exit 1; }
echo "pkg-config: demo built and run"
