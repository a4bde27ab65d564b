#!/usr/bin/env bash
# Cross-builds the reference BLAS and LAPACK and their test programs for 32-bit
# Windows, from Debian's lapack source package (the version of the Linux
# build's liblapack3), for running the reference testers against orb.dll
# (tools/run-reference-win32.sh). Result, in the prefix the win32 tests look in:
#
#   build/deps/win32/lapack-testers/lib/lib{blas,lapack,tmglib}.a
#   build/deps/win32/lapack-testers/objects/<program>.a   an archive of each tester's objects
#   build/deps/win32/lapack-testers/bin/<program>.exe     linked with the reference only
#   build/deps/win32/lapack-testers/input/*.in            the testers' input files
#
# A tester is relinked against orb.dll by placing forwarding definitions before
# the libraries: reference LAPACK keeps one routine per object file, so the
# linker then takes no reference copy of a forwarded name. Everything else
# (source package, unpacked tree, build tree, logs) lives in
# build/deps/lapack-win32/ and is never committed.
#
#   tools/build-lapack-win32.sh           build once; a no-op when the testers are there
#   tools/build-lapack-win32.sh --force   unpack and build again
#
# Needs network access to Debian's archive only (about 6 minutes on 2 cores).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/build/deps
prefix=$deps/win32/lapack-testers
work=$deps/lapack-win32
cross=i686-w64-mingw32

usage() { sed -n '2,/^set -euo/{/^set -euo/d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}"; }
say() { echo "build-lapack-win32: $*"; }
die() { echo "build-lapack-win32: error: $*" >&2; exit 1; }

force=0
for arg in "$@"; do
  case $arg in
    --force) force=1 ;;
    -h|--help) usage; exit 0 ;;
    *) usage >&2; exit 2 ;;
  esac
done

# The testers compute as orb.dll does: SSE2 scalar arithmetic, never x87.
# -frecursive: the testers' work arrays live on the stack, as in Debian's build.
codegen="-O2 -march=i686 -msse2 -mfpmath=sse"
# The main programs keep arrays of about 2 MB on the stack (-frecursive), the
# size of the default main-thread stack: the eigenvalue tester overflowed it in
# its condition-estimation tests. Each tester gets 32 MB.
link="-static -Wl,--stack,33554432"
want=$(dpkg-query -W -f='${source:Version}' liblapack3 2>/dev/null || true)
stamp="lapack ${want:-newest}; $codegen; $link"
installed() { [ "$(cat "$prefix/stamp" 2>/dev/null)" = "$stamp" ]; }

if [ "$force" = 0 ] && installed; then
  say "already built: $prefix (use --force to rebuild)"
  exit 0
fi

mkdir -p "$deps"
exec 9>"$deps/.lapack-win32.lock"
flock 9
if [ "$force" = 0 ] && installed; then
  say "already built by a concurrent run: $prefix"
  exit 0
fi

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

. "$root/tools/lib/cross-build.sh"

generator="Unix Makefiles"
command -v ninja >/dev/null && generator=Ninja
missing=()
command -v dpkg-source >/dev/null || missing+=(dpkg-dev)
command -v xz          >/dev/null || missing+=(xz-utils)
command -v cmake       >/dev/null || missing+=(cmake)
command -v "$cross-gfortran-posix" >/dev/null || missing+=(gfortran-mingw-w64-i686-posix)
command -v "$cross-gcc-posix"      >/dev/null || missing+=(gcc-mingw-w64-i686-posix)
if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    { $SUDO apt-get update -qq && $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"; }
fi

# 1. The source package, unpacked with Debian's patches into a fresh tree.
dsc=$(debian_source_dsc lapack "$want" "$work")
say "source package: $(basename "$dsc")"
src=$work/src
rm -rf "$src" "$work/build"
run_logged "$work/unpack.log" dpkg-source --no-copy -x "$dsc" "$src"

# 2. Static libraries and the test programs.
cat >"$work/toolchain.cmake" <<EOT
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(CMAKE_C_COMPILER $cross-gcc-posix)
set(CMAKE_Fortran_COMPILER $cross-gfortran-posix)
set(CMAKE_RC_COMPILER $cross-windres)
set(CMAKE_FIND_ROOT_PATH /usr/$cross)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
EOT
programs=()
for p in s c d z; do programs+=(xblat1$p xblat2$p xblat3$p xlintst$p xeigtst$p); done

say "configuring and building the reference libraries and ${#programs[@]} testers ($generator)"
run_logged "$work/configure.log" cmake -S "$src" -B "$work/build" -G "$generator" \
  -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DCMAKE_BUILD_TYPE=None \
  -DCMAKE_Fortran_FLAGS="$codegen -frecursive" -DCMAKE_C_FLAGS="$codegen" \
  -DCMAKE_EXE_LINKER_FLAGS="$link" -DBUILD_TESTING=ON -DBUILD_SHARED_LIBS=OFF \
  -DCBLAS=OFF -DLAPACKE=OFF -DTEST_FORTRAN_COMPILER=OFF
run_logged "$work/build.log" cmake --build "$work/build" --parallel "$(nproc)" \
  --target "${programs[@]}"

# 3. Install: libraries, each tester's object archive, the baseline programs
#    and the inputs. The stamp goes last, so an interrupted run is redone.
rm -rf "$prefix"
mkdir -p "$prefix/lib" "$prefix/objects" "$prefix/bin" "$prefix/input"
for l in blas lapack tmglib; do
  a=$(find "$work/build" -name "lib$l.a" | head -n 1)
  [ -n "$a" ] || die "the build produced no lib$l.a"
  install -m 644 "$a" "$prefix/lib/"
done
for p in "${programs[@]}"; do
  exe=$(find "$work/build" -name "$p.exe" | head -n 1)
  dir=$(find "$work/build" -type d -name "$p.dir" | head -n 1)
  [ -n "$exe" ] && [ -n "$dir" ] || die "the build produced no $p.exe with its objects"
  install -m 755 "$exe" "$prefix/bin/"
  find "$dir" -name '*.o' -print0 | sort -z | xargs -0 "$cross-ar" rcs "$prefix/objects/$p.a"
done
install -m 644 "$src"/BLAS/TESTING/*.in "$src"/TESTING/*.in "$prefix/input/"
echo "$stamp" >"$prefix/stamp"
say "installed $prefix"
