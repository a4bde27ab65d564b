#!/usr/bin/env bash
# Builds ORB for both targets and runs every test: natively on x86-64 Linux,
# then the cross-built test programs under 32-bit wine against orb.dll.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
jobs=$(nproc)
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT

echo "== linux-x64: build"
cmake --preset linux-x64 >/dev/null
cmake --build --preset linux-x64 -j "$jobs"
echo "== win32: cross build"
tools/wine-init
cmake --preset win32 >/dev/null
cmake --build --preset win32 -j "$jobs"

echo "== exports"
for p in linux-x64 win32; do
  cmake --build --preset "$p" --target export-report | grep -v '^\[' | sed "s/^/$p: /"
done

status=0
for p in linux-x64 win32; do
  echo "== $p: tests${p/linux-x64/}${p/win32/ (under wine)}"
  ctest --preset "$p" -j "$jobs" 2>&1 | tee "$logs/$p.log" || status=1
done

# One closing line for both runs.
passed=0 failed=0
for p in linux-x64 win32; do
  line=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$logs/$p.log" || true)
  if [ -z "$line" ]; then status=1; continue; fi
  f=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\1/' <<<"$line")
  t=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\2/' <<<"$line")
  passed=$((passed + t - f))
  failed=$((failed + f))
done
echo "$passed passed, $failed failed"
exit $status
