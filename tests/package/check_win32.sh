#!/bin/sh
# The win32 release: the installed tree, the zip of `--target package`, and
# programs linked against it the two ways Windows projects do: Microsoft's
# conventions (clang for i686-pc-windows-msvc and lld-link against orb.lib,
# no C runtime) and mingw (against orb.lib as well). Run under wine where this
# machine executes 32-bit programs.
set -eu
build=$1 repo=$2 cmake=$3 cpack=$4 cc=$5
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix

"$cmake" --install "$build" --prefix "$prefix" >/dev/null
for f in bin/orb.dll lib/orb.lib lib/liborb.dll.a lib/orb.def include/orb.h README.md LICENSE \
         lib/cmake/orb/orbConfig.cmake; do
  [ -e "$prefix/$f" ] || { echo "not installed: $f"; exit 1; }
done
echo "installed: orb.dll, orb.lib, liborb.dll.a, orb.def"

"$cpack" --config "$build/CPackConfig.cmake" -B "$tmp/archive" >/dev/null
archive=$(ls "$tmp"/archive/orb-*-win32.zip)
unzip -l "$archive" | grep -q '/lib/orb.lib$' || { echo "archive incomplete"; exit 1; }
echo "archive: $(basename "$archive")"

run=$tmp/run
mkdir -p "$run"
cp "$prefix/bin/orb.dll" "$run/"
clang --target=i686-pc-windows-msvc -ffreestanding -O1 -I"$prefix/include" \
  -c "$repo/tests/package/msvc_link.c" -o "$tmp/msvc_link.obj"
lld-link -nologo -entry:orb_entry -subsystem:console -nodefaultlib \
  -out:"$run/msvc_link.exe" "$tmp/msvc_link.obj" "$prefix/lib/orb.lib"
echo "orb.lib: linked by lld-link in Microsoft's conventions"
"$cc" -O1 -I"$prefix/include" "$repo/examples/demo.c" "$prefix/lib/orb.lib" -o "$run/demo.exe"
echo "orb.lib: linked by mingw"

if ! "$repo/tools/can-exec-i386"; then
  echo "not run: this machine cannot execute 32-bit programs"
  exit 0
fi
"$repo/tools/wine-run" "$run/msvc_link.exe" || { echo "msvc_link.exe failed"; exit 1; }
"$repo/tools/wine-run" "$run/demo.exe" --short | grep -q "checks within their bounds in .*: all good" || { echo "demo.exe failed"; exit 1; }
echo "both programs ran under wine"
