#!/usr/bin/env bash
# Builds ORB for both targets and runs the demo natively and under 32-bit wine.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
jobs=$(nproc)
cmake --preset linux-x64 >/dev/null
cmake --build --preset linux-x64 -j "$jobs"
tools/wine-init
cmake --preset win32 >/dev/null
cmake --build --preset win32 -j "$jobs"

echo "== demo, x86-64 Linux (liborb.so)"
build/linux-x64/bin/orb_demo
echo "== demo, 32-bit Windows under wine (orb.dll)"
tools/wine-run build/win32/bin/orb_demo.exe
