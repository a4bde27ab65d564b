#!/usr/bin/env bash
# Cross-builds a 32-bit Windows OpenBLAS DLL, the peer that bench/blas_compare
# measures orb.dll against under wine. It is a benchmark dependency only:
# nothing of ORB links it, and neither the tests nor tools/install-deps.sh
# build it. Source: Debian's openblas source package, the version of the Linux
# build's libopenblas0-pthread when that is installed (0.3.21 on Debian 12), so
# both targets compare against the same code. Built as Debian builds i386
# (DYNAMIC_ARCH, kernels chosen at run time from the processor), threaded with
# OpenBLAS's own Win32 threads, BLAS interface only (no Fortran, no LAPACK, no
# CBLAS). Result:
#
#   build/deps/win32-openblas/bin/libopenblas.dll      self-contained (system DLLs only)
#   build/deps/win32-openblas/lib/libopenblas.dll.a    its import library
#   build/deps/win32-openblas/lib/libopenblas.def      its export list
#
# Everything else (apt lists, source package, unpacked tree, logs) lives in
# build/deps/openblas-win32/ and is never committed.
#
#   tools/build-openblas-win32.sh            build once; a no-op when the DLL is there
#   tools/build-openblas-win32.sh --force    unpack and build again
#   JOBS=4 tools/build-openblas-win32.sh     more make jobs (default 2)
#
# About an hour of processor time, half an hour with 2 jobs on an idle
# machine (every kernel is compiled once for each of 16 processor types). Needs network access to Debian's archive only. Runs as root
# or through sudo for apt; installs dpkg-dev, xz-utils, make, perl, a host gcc
# and the mingw-w64 i686 compiler when they are missing.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/build/deps
prefix=$deps/win32-openblas
work=$deps/openblas-win32
cross=i686-w64-mingw32
jobs=${JOBS:-2}

usage() { sed -n '2,/^set -euo/{/^set -euo/d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}"; }
say() { echo "build-openblas-win32: $*"; }
die() { echo "build-openblas-win32: error: $*" >&2; exit 1; }

force=0
for arg in "$@"; do
  case $arg in
    --force) force=1 ;;
    -h|--help) usage; exit 0 ;;
    *) usage >&2; exit 2 ;;
  esac
done

. "$root/tools/lib/cross-build.sh"

# Debian's i386 options (debian/rules: DYNAMIC_ARCH=1 DYNAMIC_OLDER=1
# TARGET=GENERIC NO_AFFINITY=1 NO_WARMUP=1, the pthread flavour), with a
# thread cap of 8 rather than 64: every thread slot reserves buffers in a
# 32-bit address space. HOSTCC builds getarch, which runs on this machine.
want=$(debian_installed_source_version libopenblas0-pthread)
options=(
  BINARY=32 DYNAMIC_ARCH=1 DYNAMIC_OLDER=1 TARGET=GENERIC
  USE_THREAD=1 USE_OPENMP=0 NUM_THREADS=8 NO_AFFINITY=1 NO_WARMUP=1
  NOFORTRAN=1 NO_LAPACK=1 NO_LAPACKE=1 NO_CBLAS=1
)
stamp="openblas ${want:-newest}; ${options[*]}"
installed() {
  [ -f "$prefix/bin/libopenblas.dll" ] && [ "$(cat "$prefix/stamp" 2>/dev/null)" = "$stamp" ]
}

if [ "$force" = 0 ] && installed; then
  say "already built: $prefix/bin/libopenblas.dll (use --force to rebuild)"
  exit 0
fi

# One build at a time: a second caller waits, then finds the DLL in place.
mkdir -p "$deps"
exec 9>"$deps/.openblas-win32.lock"
flock 9
if [ "$force" = 0 ] && installed; then
  say "already built by a concurrent run: $prefix/bin/libopenblas.dll"
  exit 0
fi

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

missing=()
command -v dpkg-source >/dev/null || missing+=(dpkg-dev)
command -v xz          >/dev/null || missing+=(xz-utils)
command -v make        >/dev/null || missing+=(make)
command -v perl        >/dev/null || missing+=(perl)
command -v gcc         >/dev/null || missing+=(gcc)
command -v "$cross-gcc-posix" >/dev/null || missing+=(gcc-mingw-w64-i686-posix binutils-mingw-w64-i686)
if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    { $SUDO apt-get update -qq && $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"; }
fi

# 1. The source package, unpacked with Debian's patches into a fresh tree.
dsc=$(debian_source_dsc openblas "$want" "$work")
say "source package: $(basename "$dsc")"
src=$work/src
rm -rf "$src"
run_logged "$work/unpack.log" dpkg-source --no-copy -x "$dsc" "$src"

# 2. Build the static library (every processor type's kernels), then the DLL
#    from it and the generated export list. The tree's own tests need Fortran
#    or CBLAS and are not built. LDFLAGS links libgcc and winpthreads into the
#    DLL, so that nothing but system DLLs has to lie beside it.
make_args=(
  -C "$src" "${options[@]}"
  CC="$cross-gcc-posix" HOSTCC=gcc AR="$cross-ar" RANLIB="$cross-ranlib"
  LDFLAGS="-static-libgcc -static"
)
say "building the library with make -j$jobs (log: $work/build.log)"
start=$SECONDS
run_logged "$work/build.log" make -j"$jobs" "${make_args[@]}" libs
say "building the DLL (log: $work/dll.log)"
run_logged "$work/dll.log" make "${make_args[@]}" shared

dll=$src/libopenblas.dll
implib=$src/libopenblas.dll.a
[ -f "$dll" ] && [ -f "$implib" ] || die "the build produced no $dll with its import library"

# 3. Checks: a 32-bit DLL, the Fortran-convention BLAS names and the thread
#    control exported, and nothing imported but the system's own DLLs.
format=$($cross-objdump -f "$dll" | sed -n 's/.*file format //p')
[ "$format" = pei-i386 ] || die "$dll has file format $format"
exports=$($cross-objdump -p "$dll" | sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p')
for name in sgemm_ dgemm_ cgemm_ zgemm_ sdot_ sgemv_ strsm_ openblas_set_num_threads; do
  grep -qw "$name" <<<"$exports" || die "$dll does not export $name"
done
imports=$($cross-objdump -p "$dll" | sed -n 's/^[[:space:]]*DLL Name: //p' | tr '[:upper:]' '[:lower:]' | sort -u)
for d in $imports; do
  case $d in
    kernel32.dll|msvcrt.dll|advapi32.dll|user32.dll|api-ms-win-*) ;;
    *) die "$dll needs $d, which would have to ship beside it" ;;
  esac
done

# 4. Install. The stamp goes last, so an interrupted run is redone.
rm -rf "$prefix"
mkdir -p "$prefix/bin" "$prefix/lib"
install -m 755 "$dll" "$prefix/bin/"
install -m 644 "$implib" "$prefix/lib/"
install -m 644 "$src/exports/libopenblas.def" "$prefix/lib/"
echo "$stamp" >"$prefix/stamp"
say "installed $prefix/bin/libopenblas.dll ($(((SECONDS - start) / 60)) min)"
