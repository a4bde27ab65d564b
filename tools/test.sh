#!/usr/bin/env bash
# Builds ORB for both targets and runs every test: natively on x86-64 Linux,
# then the cross-built test programs under 32-bit wine against orb.dll. On a
# machine that cannot execute 32-bit programs the win32 build and the checks that
# need no execution still run; the tests that run under wine are counted as
# skipped. The win32 tests include the reference BLAS and LAPACK test programs
# linked against orb.dll (cross-built once by tools/build-lapack-win32.sh). Last, NumPy's and SciPy's own tests run against liborb.so
# (tools/client-check.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install-deps.sh
tools/build-lapack-win32.sh
jobs=$(nproc)
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT

win32_runs=1
tools/can-exec-i386 || win32_runs=0

echo "== linux-x64: build"
cmake --preset linux-x64 >/dev/null
cmake --build --preset linux-x64 -j "$jobs"
echo "== win32: cross build"
if [ "$win32_runs" = 1 ]; then tools/wine-init; fi
cmake --preset win32 >/dev/null
cmake --build --preset win32 -j "$jobs"

echo "== exports"
for p in linux-x64 win32; do
  cmake --build --preset "$p" --target export-report | grep -v '^\[' | sed "s/^/$p: /"
done

status=0 skipped=0
echo "== linux-x64: tests"
ctest --preset linux-x64 -j "$jobs" 2>&1 | tee "$logs/linux-x64.log" || status=1
echo "== win32: tests (under wine)"
if [ "$win32_runs" = 1 ]; then
  ctest --preset win32 -j "$jobs" 2>&1 | tee "$logs/win32.log" || status=1
else
  echo "this machine cannot execute 32-bit programs: win32 tests skipped"
  skipped=$(ctest --preset win32 -N -L wine | sed -n 's/^Total Tests: //p')
  ctest --preset win32 -j "$jobs" -LE wine 2>&1 | tee "$logs/win32.log" || status=1
fi

# A real client: NumPy's and SciPy's tests with the reference BLAS and LAPACK
# and with liborb.so in front of them (about two and a half minutes).
echo "== linux-x64: client check (NumPy and SciPy test suites)"
client=0
tools/client-check.sh || client=1

# One closing line for both runs and the client check.
passed=0 failed=0
for p in linux-x64 win32; do
  line=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$logs/$p.log" || true)
  if [ -z "$line" ]; then status=1; continue; fi
  f=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\1/' <<<"$line")
  t=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\2/' <<<"$line")
  passed=$((passed + t - f))
  failed=$((failed + f))
done
if [ "$client" = 0 ]; then passed=$((passed + 1)); else failed=$((failed + 1)) status=1; fi
if [ "$skipped" -gt 0 ]; then
  echo "$passed passed, $failed failed, $skipped skipped"
else
  echo "$passed passed, $failed failed"
fi
exit $status
