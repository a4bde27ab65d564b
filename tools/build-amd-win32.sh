#!/usr/bin/env bash
# Cross-builds SuiteSparse's AMD (approximate minimum degree ordering) for the
# 32-bit Windows build of ORB.
#
# The Linux build links Debian's libsuitesparse-dev (libamd); the Windows build
# links a static libamd.a compiled by the mingw-w64 i686 compiler (posix thread
# model) from the very same Debian source package: AMD's sources plus
# SuiteSparse_config, nothing else of SuiteSparse. Result, in the prefix the
# top-level CMakeLists.txt looks in (beside METIS):
#
#   build/deps/win32/include/amd.h
#   build/deps/win32/include/SuiteSparse_config.h
#   build/deps/win32/lib/libamd.a
#
# Everything else (apt lists, source package, unpacked tree, objects, logs)
# lives in build/deps/amd/ and is never committed.
#
#   tools/build-amd-win32.sh           build once; a no-op when the library is there
#   tools/build-amd-win32.sh --force   unpack and build again
#
# Needs network access to Debian's archive only. Runs as root or through sudo for
# apt; installs dpkg-dev, xz-utils and the cross compiler when they are missing.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/build/deps
prefix=$deps/win32
work=$deps/amd
cross=i686-w64-mingw32

usage() { sed -n '2,/^set -euo/{/^set -euo/d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}"; }
say() { echo "build-amd-win32: $*"; }
die() { echo "build-amd-win32: error: $*" >&2; exit 1; }

force=0
for arg in "$@"; do
  case $arg in
    --force) force=1 ;;
    -h|--help) usage; exit 0 ;;
    *) usage >&2; exit 2 ;;
  esac
done

# Code generation matches ORB's (and METIS's): SSE2 scalar arithmetic.
codegen="-march=i686 -msse2 -mfpmath=sse"
installed() {
  [ -f "$prefix/lib/libamd.a" ] && [ -f "$prefix/include/amd.h" ] &&
    [ -f "$prefix/include/SuiteSparse_config.h" ] &&
    [ "$(cat "$prefix/lib/libamd.flags" 2>/dev/null)" = "$codegen" ]
}

if [ "$force" = 0 ] && installed; then
  say "already built: $prefix/lib/libamd.a (use --force to rebuild)"
  exit 0
fi

# One build at a time: a second caller waits, then finds the library in place.
mkdir -p "$deps"
exec 9>"$deps/.amd-win32.lock"
flock 9
if [ "$force" = 0 ] && installed; then
  say "already built by a concurrent run: $prefix/lib/libamd.a"
  exit 0
fi

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

. "$root/tools/lib/cross-build.sh"

# ---------------------------------------------------------------------------
# Tools: the cross compiler and archiver (normally from tools/install-deps.sh)
# and what unpacking a Debian source package needs. No build system: AMD is a
# dozen C files, compiled here directly.
# ---------------------------------------------------------------------------
cc=$cross-gcc-posix
ar=$cross-ar
missing=()
command -v dpkg-source >/dev/null || missing+=(dpkg-dev)
command -v xz          >/dev/null || missing+=(xz-utils)
command -v "$cc"       >/dev/null || missing+=(gcc-mingw-w64-i686-posix)
command -v "$ar"       >/dev/null || missing+=(binutils-mingw-w64-i686)
if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    { $SUDO apt-get update -qq && $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"; }
fi

# ---------------------------------------------------------------------------
# 1. Debian's suitesparse source package: the same source version as the Linux
#    build's libsuitesparse-dev when that is installed.
# ---------------------------------------------------------------------------
dsc=$(debian_source_dsc suitesparse "$(debian_installed_source_version libsuitesparse-dev)" "$work")
say "source package: $(basename "$dsc")"

# ---------------------------------------------------------------------------
# 2. Unpack (dpkg-source applies Debian's patches) into a fresh tree every time.
# ---------------------------------------------------------------------------
src=$work/src
obj=$work/obj
rm -rf "$src" "$obj"
run_logged "$work/unpack.log" dpkg-source --no-copy -x "$dsc" "$src"
for d in AMD/Source AMD/Include SuiteSparse_config; do
  [ -d "$src/$d" ] || die "$(basename "$dsc") has no $d"
done

# ---------------------------------------------------------------------------
# 3. Compile, -O2, as AMD's own makefile does: every amd_*.c twice, once for
#    int (DINT: amd_order) and once for SuiteSparse_long (DLONG: amd_l_order),
#    except amd_global.c (when present), which holds no integer-typed code;
#    SuiteSparse_config.c once. Its timer is left out (NTIMER): AMD never
#    times anything.
# ---------------------------------------------------------------------------
say "compiling AMD and SuiteSparse_config"
mkdir -p "$obj"
cflags=(-O2 $codegen -DNDEBUG -DNTIMER -I"$src/AMD/Include" -I"$src/SuiteSparse_config")
objs=()
compile() {  # compile OUT SOURCE FLAGS...
  local out=$1 file=$2; shift 2
  run_logged "$obj/$out.log" "$cc" "${cflags[@]}" "$@" -c "$file" -o "$obj/$out"
  objs+=("$obj/$out")
}
compile SuiteSparse_config.o "$src/SuiteSparse_config/SuiteSparse_config.c"
for f in "$src"/AMD/Source/amd_*.c; do
  base=$(basename "$f" .c)
  if [ "$base" = amd_global ]; then
    compile "$base.o" "$f"
  else
    compile "${base/amd_/amd_i_}.o" "$f" -DDINT
    compile "${base/amd_/amd_l_}.o" "$f" -DDLONG
  fi
done

lib=$obj/libamd.a
rm -f "$lib"
run_logged "$obj/ar.log" "$ar" rcs "$lib" "${objs[@]}"
# Every member must be an i386 COFF object, i.e. really cross-compiled, and the
# int version must be there.
formats=$($cross-objdump -a "$lib" | sed -n 's/.*file format //p' | sort -u)
[ "$formats" = pe-i386 ] || die "$lib holds objects of format(s): $formats"
symbols=$($cross-nm "$lib")
grep -q ' T _amd_order$' <<<"$symbols" || die "$lib does not define amd_order"

# ---------------------------------------------------------------------------
# 4. Install. The library goes in last, by rename, so that an interrupted run
#    never leaves a library that the next run would take as finished.
# ---------------------------------------------------------------------------
mkdir -p "$prefix/include" "$prefix/lib"
rm -f "$prefix/lib/libamd.a"
install -m 644 "$src/AMD/Include/amd.h" "$prefix/include/amd.h"
install -m 644 "$src/SuiteSparse_config/SuiteSparse_config.h" "$prefix/include/SuiteSparse_config.h"
install -m 644 "$lib" "$prefix/lib/libamd.a.tmp"
echo "$codegen" >"$prefix/lib/libamd.flags"
mv "$prefix/lib/libamd.a.tmp" "$prefix/lib/libamd.a"
say "installed $prefix/include/amd.h, SuiteSparse_config.h and $prefix/lib/libamd.a"
