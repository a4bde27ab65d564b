#!/usr/bin/env bash
# Cross-builds METIS (with its bundled GKlib) for the 32-bit Windows build of ORB.
#
# The Linux build links Debian's libmetis-dev; the Windows build links a static
# libmetis.a compiled by the mingw-w64 i686 compiler (posix thread model) from the
# very same Debian source package, so both builds order matrices with the same
# code. (Not always to the same permutation: METIS seeds the C library's rand(),
# and glibc's and msvcrt's differ; both orderings are valid.) Result, in the
# prefix the top-level CMakeLists.txt looks in:
#
#   build/deps/win32/include/metis.h
#   build/deps/win32/lib/libmetis.a
#
# Everything else (apt lists, source package, unpacked tree, build tree, logs)
# lives in build/deps/metis/ and is never committed.
#
#   tools/build-metis-win32.sh           build once; a no-op when the library is there
#   tools/build-metis-win32.sh --force   unpack and build again
#
# Needs network access to Debian's archive only. Runs as root or through sudo for
# apt; installs dpkg-dev, xz-utils, cmake and friends when they are missing.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=$root/build/deps
prefix=$deps/win32
work=$deps/metis
cross=i686-w64-mingw32

usage() { sed -n '2,/^set -euo/{/^set -euo/d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}"; }
say() { echo "build-metis-win32: $*"; }
die() { echo "build-metis-win32: error: $*" >&2; exit 1; }

force=0
for arg in "$@"; do
  case $arg in
    --force) force=1 ;;
    -h|--help) usage; exit 0 ;;
    *) usage >&2; exit 2 ;;
  esac
done

# Code generation matches ORB's: SSE2 scalar arithmetic. A library built with
# other flags (an older tree's x87 build) is built again.
codegen="-march=i686 -msse2 -mfpmath=sse"
installed() {
  [ -f "$prefix/lib/libmetis.a" ] && [ -f "$prefix/include/metis.h" ] &&
    [ "$(cat "$prefix/lib/libmetis.flags" 2>/dev/null)" = "$codegen" ]
}

if [ "$force" = 0 ] && installed; then
  say "already built: $prefix/lib/libmetis.a (use --force to rebuild)"
  exit 0
fi

# One build at a time: a second caller waits, then finds the library in place.
mkdir -p "$deps"
exec 9>"$deps/.metis-win32.lock"
flock 9
if [ "$force" = 0 ] && installed; then
  say "already built by a concurrent run: $prefix/lib/libmetis.a"
  exit 0
fi

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

. "$root/tools/lib/cross-build.sh"

# ---------------------------------------------------------------------------
# Tools. The cross compiler normally comes from tools/install-deps.sh; the
# rest is what unpacking and building a Debian source package needs.
# ---------------------------------------------------------------------------
cc=$cross-gcc-posix
generator="Unix Makefiles"
command -v ninja >/dev/null && generator=Ninja
missing=()
command -v dpkg-source >/dev/null || missing+=(dpkg-dev)
command -v xz          >/dev/null || missing+=(xz-utils)
command -v patch       >/dev/null || missing+=(patch)
command -v cmake       >/dev/null || missing+=(cmake)
command -v make        >/dev/null || [ "$generator" = Ninja ] || missing+=(make)
command -v "$cc"       >/dev/null || missing+=(gcc-mingw-w64-i686-posix binutils-mingw-w64-i686)
if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    { $SUDO apt-get update -qq && $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"; }
fi

# ---------------------------------------------------------------------------
# 1. Debian's metis source package: the same source version as the Linux
#    build's libmetis-dev when that is installed.
# ---------------------------------------------------------------------------
dsc=$(debian_source_dsc metis "$(debian_installed_source_version libmetis-dev)" "$work")
say "source package: $(basename "$dsc")"

# ---------------------------------------------------------------------------
# 2. Unpack (dpkg-source applies Debian's patches) into a fresh tree every
#    time, then make it build with mingw.
# ---------------------------------------------------------------------------
src=$work/src
rm -rf "$src" "$work/build"
# (The .dsc's signature cannot be checked without debian-keyring, and need not
# be: apt fetched it against the signed Release file's checksums, and
# dpkg-source checks the tarballs against the .dsc.)
run_logged "$work/unpack.log" dpkg-source --no-copy -x "$dsc" "$src"

# METIS is used with 32-bit idx_t and real_t, the widths Debian builds with
# (debian/rules passes nothing, so metis.h's defaults hold). Refuse anything else
# rather than silently ship a library whose ABI differs from the Linux build.
grep -q '^#define IDXTYPEWIDTH 32$'  "$src/include/metis.h" &&
grep -q '^#define REALTYPEWIDTH 32$' "$src/include/metis.h" ||
  die "metis.h of $(basename "$dsc") does not define 32-bit idx_t and real_t"

# The smallest changes that let the tree build with mingw-w64:
#  - Debian's packaging patch hard-codes a shared libmetis; we want the static
#    library only (it is linked into orb.dll).
#  - <sys/resource.h> does not exist on Windows. GKlib includes it for all
#    non-MSVC compilers, but only uses it (getrusage) in timers.c, in a branch
#    that is already compiled out for __MINGW32__.
#  - gk_getopt.h names prototype parameters __argc/__argv, which mingw's
#    <stdlib.h> defines as macros (*__p___argc() ...), wrecking the prototypes.
# Regex is not patched: GKlib's CMake already selects its own regex (USE_GKREGEX)
# for MinGW, and gk_getopt is GKlib's own code, not the C library's.
(cd "$src" && run_logged "$work/patch.log" patch -p1 --forward --batch) <<'EOF'
--- a/CMakeLists.txt
+++ b/CMakeLists.txt
@@ -12,7 +12,7 @@
 endif()
 
 # Configure libmetis library.
-set(METIS_LIBRARY_TYPE SHARED)
+set(METIS_LIBRARY_TYPE STATIC)
 
 set(METIS_MAJOR_VERSION 5)
 set(METIS_MINOR_VERSION 1)
--- a/GKlib/gk_arch.h
+++ b/GKlib/gk_arch.h
@@ -41,7 +41,9 @@
 #endif
   #include <inttypes.h>
   #include <sys/types.h>
+#ifndef __MINGW32__
   #include <sys/resource.h>
+#endif
   #include <sys/time.h>
 #endif
 
--- a/GKlib/gk_getopt.h
+++ b/GKlib/gk_getopt.h
@@ -52,10 +52,10 @@
 
 
 /* Function prototypes */
-extern int gk_getopt(int __argc, char **__argv, char *__shortopts);
-extern int gk_getopt_long(int __argc, char **__argv, char *__shortopts,
+extern int gk_getopt(int argc, char **argv, char *__shortopts);
+extern int gk_getopt_long(int argc, char **argv, char *__shortopts,
               struct gk_option *__longopts, int *__longind);
-extern int gk_getopt_long_only (int __argc, char **__argv,
+extern int gk_getopt_long_only (int argc, char **argv,
               char *__shortopts, struct gk_option *__longopts, int *__longind);
 
 
EOF

# A toolchain of its own rather than cmake/toolchain-mingw-i686.cmake: METIS
# needs the cross compilers and search roots only, not ORB's emulator or static
# link flags.
# (project(METIS) enables C++ too, hence the C++ compiler.)
cat >"$work/toolchain.cmake" <<EOF
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(CMAKE_C_COMPILER $cross-gcc-posix)
set(CMAKE_CXX_COMPILER $cross-g++-posix)
set(CMAKE_RC_COMPILER $cross-windres)
set(CMAKE_FIND_ROOT_PATH /usr/$cross)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_C_FLAGS_INIT "$codegen")
set(CMAKE_CXX_FLAGS_INIT "$codegen")
EOF

# ---------------------------------------------------------------------------
# 3. Build the library target only (no programs), -O2. GKlib's own CMake logic
#    adds -std=c99 -DNDEBUG -DUSE_GKREGEX and detects __thread (emulated TLS).
# ---------------------------------------------------------------------------
say "configuring and building libmetis.a ($generator)"
run_logged "$work/configure.log" cmake -S "$src" -B "$work/build" -G "$generator" \
  -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS_RELEASE=-O2
run_logged "$work/build.log" cmake --build "$work/build" --target metis --parallel "$(nproc)"

lib=$work/build/libmetis/libmetis.a
[ -f "$lib" ] || die "the build produced no $lib"
# Every member must be an i386 COFF object, i.e. really cross-compiled.
formats=$($cross-objdump -a "$lib" | sed -n 's/.*file format //p' | sort -u)
[ "$formats" = pe-i386 ] || die "$lib holds objects of format(s): $formats"

# ---------------------------------------------------------------------------
# 4. Install. The library goes in last, by rename, so that an interrupted run
#    never leaves a library that the next run would take as finished.
# ---------------------------------------------------------------------------
mkdir -p "$prefix/include" "$prefix/lib"
rm -f "$prefix/lib/libmetis.a"
install -m 644 "$src/include/metis.h" "$prefix/include/metis.h"
install -m 644 "$lib" "$prefix/lib/libmetis.a.tmp"
echo "$codegen" >"$prefix/lib/libmetis.flags"
mv "$prefix/lib/libmetis.a.tmp" "$prefix/lib/libmetis.a"
say "installed $prefix/include/metis.h and $prefix/lib/libmetis.a"
