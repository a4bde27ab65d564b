#!/usr/bin/env bash
# Builds ORB for both targets and runs the demo natively and under 32-bit wine
# (where this machine can execute 32-bit programs).
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
jobs=$(nproc)
win32_runs=1
tools/can-exec-i386 || win32_runs=0

cmake --preset linux-x64 >/dev/null
cmake --build --preset linux-x64 -j "$jobs"
if [ "$win32_runs" = 1 ]; then tools/wine-init; fi
cmake --preset win32 >/dev/null
cmake --build --preset win32 -j "$jobs"

echo "== demo, x86-64 Linux (liborb.so)"
build/linux-x64/bin/orb_demo
echo "== demo, 32-bit Windows under wine (orb.dll)"
if [ "$win32_runs" = 1 ]; then
  tools/wine-run build/win32/bin/orb_demo.exe
else
  echo "this machine cannot execute 32-bit programs: win32 demo skipped"
fi
