#!/usr/bin/env bash
# Installs everything ORB's builds and tests need on a fresh Debian 12 machine:
# the native toolchain, the mingw-w64 i686 cross compilers (posix threads), 32-bit
# wine, METIS, SuiteSparse (AMD), GoogleTest, and NumPy, SciPy and pytest for the client check. Safe to run again; it skips what is already there.
#
#   tools/install-deps.sh            build and test dependencies
#   tools/install-deps.sh --bench    also the peer libraries the benchmarks compare with
set -euo pipefail

want_bench=0
[ "${1:-}" = "--bench" ] && want_bench=1

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

native_pkgs=(build-essential cmake ninja-build pkg-config python3 googletest libgtest-dev
             libmetis-dev libsuitesparse-dev g++-mingw-w64-i686-posix gcc-mingw-w64-i686-posix
             binutils-mingw-w64-i686 gfortran-mingw-w64-i686-posix xz-utils dpkg-dev
             libblas-test liblapack-test
             libblas3 liblapack3 python3-numpy python3-scipy python3-pytest python3-hypothesis
             clang lld llvm zip unzip)
bench_pkgs=(libbenchmark-dev libopenblas-pthread-dev libblis-pthread-dev libmumps-seq-dev libcminpack-dev
            python3-matplotlib)

missing=()
for p in "${native_pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "$want_bench" = 1 ]; then
  for p in "${bench_pkgs[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
fi
if [ "${#missing[@]}" -gt 0 ]; then
  # A suite that fails to refresh (a mirror in the middle of a sync, an i386
  # index of the security suite) must not stop the install: the lists at hand
  # usually hold what is needed, and the install itself says when they do not.
  $SUDO apt-get update -qq ||
    echo "install-deps: some package lists could not be refreshed; using the ones at hand"
  $SUDO apt-get install -y -qq "${missing[@]}"
fi

# 32-bit wine: the tests use the packages wine and wine32:i386 (with its
# libwine:i386). The security suite carries no i386 packages, so apt cannot match
# amd64 and i386 versions while it is in the list; resolve against the main
# suites only. Where wine64 is installed and the libraries it shares with wine32
# come from the security suite, the two cannot be installed together and replace
# each other: wine32 is kept, since the test programs are 32-bit.
wine_ready() {
  local p
  for p in wine wine32:i386 libwine:i386; do
    [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$p" 2>/dev/null)" = "ii " ] || return 1
  done
  [ -x /usr/lib/wine/wine ]
}
if ! wine_ready; then
  had_wine64=0
  dpkg-query -W -f='${db:Status-Abbrev}' wine64 2>/dev/null | grep -q '^ii' && had_wine64=1
  $SUDO dpkg --add-architecture i386
  work=$(mktemp -d)
  mkdir -p "$work/parts" "$work/lists/partial"
  if [ -f /etc/apt/sources.list.d/debian.sources ]; then
    awk 'BEGIN{RS="";ORS="\n\n"} !/security/' /etc/apt/sources.list.d/debian.sources \
      > "$work/parts/main-only.sources"
  fi
  if [ -f /etc/apt/sources.list ]; then
    grep -E '^[[:space:]]*deb[[:space:]]' /etc/apt/sources.list | grep -v security \
      > "$work/parts/main-only.list" || true
  fi
  O=(-o Dir::Etc::sourcelist=/nonexistent -o "Dir::Etc::sourceparts=$work/parts"
     -o "Dir::State::Lists=$work/lists")
  $SUDO apt-get "${O[@]}" update -qq
  $SUDO apt-get "${O[@]}" install -y -qq wine32:i386 libwine:i386 wine
  rm -rf "$work"
  if [ "$had_wine64" = 1 ] && ! dpkg-query -W -f='${db:Status-Abbrev}' wine64 2>/dev/null | grep -q '^ii'; then
    echo "install-deps: wine64 could not stay beside wine32:i386 (security-suite library versions); kept wine32"
  fi
  wine_ready || { echo "install-deps: 32-bit wine did not install" >&2; exit 1; }
fi
# METIS for the Windows build, cross-compiled from Debian's source package.
"$(dirname "$0")/build-metis-win32.sh"
# AMD (SuiteSparse's minimum degree ordering) likewise.
"$(dirname "$0")/build-amd-win32.sh"
echo "install-deps: done"
