#!/usr/bin/env bash
# Builds ORB for both targets and runs every test: natively on x86-64 Linux,
# then the cross-built test programs under 32-bit wine against orb.dll.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
jobs=$(nproc)

echo "== linux-x64: build and test"
cmake --preset linux-x64 >/dev/null
cmake --build --preset linux-x64 -j "$jobs"
ctest --preset linux-x64 -j "$jobs"

echo "== win32: cross build, tests under wine"
tools/wine-init
cmake --preset win32 >/dev/null
cmake --build --preset win32 -j "$jobs"
ctest --preset win32 -j "$jobs"

echo "== exports"
cmake --build --preset linux-x64 --target export-report | grep -v '^\[' | sed 's/^/linux: /'
cmake --build --preset win32 --target export-report | grep -v '^\[' | sed 's/^/win32: /'
