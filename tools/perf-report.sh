#!/usr/bin/env bash
# Runs the benchmarks that feed docs/performance.md and draws its graphs:
# GFLOP/s against n for the dense routines, one line per library and one panel
# per thread count, and the sparse solver's factor and solve times beside
# CHOLMOD, UMFPACK and MUMPS. The machine should be otherwise idle.
#
#   tools/perf-report.sh           the sizes of docs/performance.md (see its run time there)
#   tools/perf-report.sh --quick   small sizes only, to try the pipeline (a few minutes)
#
# Results go to build/perf/results.csv (kept for other plots); the graphs to
# docs/perf/*.svg and the page to docs/performance.md. Progress goes to
# standard error. orb.dll is measured under wine where this machine runs
# 32-bit programs, beside the 32-bit OpenBLAS of tools/build-openblas-win32.sh
# when that has been built.
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0
[ "${1:-}" = "--quick" ] && quick=1
say() { echo "perf-report: $*" >&2; }

tools/install-deps.sh --bench >&2
out=build/perf
mkdir -p "$out"
csv="$out/results.csv"
rm -f "$csv"
start=$(date +%s)

say "building the native benchmarks"
cmake --preset linux-x64 -DORB_BUILD_BENCH=ON >/dev/null
cmake --build --preset linux-x64 -j "$(nproc)" --target orb blas_compare lapack_compare \
  sparse_compare >&2
bin=build/linux-x64/bin

if [ "$quick" = 1 ]; then
  lapack_sizes=256,500
  max_n=512
  sparse_args=(--quick --reps 1)
else
  lapack_sizes=250,500,1000,2000
  max_n=2048
  # The benchmark's full set less its two largest matrices (lap2d-1000,
  # lap3d-80), which alone take longer than all the rest.
  sparse_args=(--reps 2 --matrices lap3d-60,st27-40,convdiff-50,saddle-180,helm-40,helmh-40,helmc-40)
fi
ref_blas=/usr/lib/x86_64-linux-gnu/blas/libblas.so.3
blas_peers=()
[ -e "$ref_blas" ] && blas_peers=(--peer "refBLAS=$ref_blas")

for routine in sgemm cgemm dgemm ssyrk strsm; do
  say "BLAS: $routine (linux-x64)"
  (cd "$bin" && ./blas_compare --orb ./liborb.so --threads 1,2 --filter "$routine" --max-n "$max_n" "${blas_peers[@]}" \
    --csv "$OLDPWD/$csv") >"$out/blas-$routine.txt"
done
for routine in sgetrf spotrf sgeqrf ssyevrA sgesddA; do
  say "LAPACK: $routine (linux-x64, n = $lapack_sizes)"
  (cd "$bin" && ./lapack_compare --orb ./liborb.so --threads 1,2 --filter "$routine" --sizes "$lapack_sizes" \
    --csv "$OLDPWD/$csv") >"$out/lapack-$routine.txt"
done
say "sparse: TESSERA, CHOLMOD, UMFPACK, MUMPS"
"$bin/sparse_compare" --threads 1,2 "${sparse_args[@]}" --csv "$csv" >"$out/sparse.txt"

if tools/can-exec-i386; then
  say "building the win32 benchmark"
  tools/wine-init >&2
  cmake --preset win32 -DORB_BUILD_BENCH=ON >/dev/null
  cmake --build --preset win32 -j "$(nproc)" --target orb blas_compare lapack_rates >&2
  win_peers=()
  openblas32=build/deps/win32-openblas/bin/libopenblas.dll
  [ -e "$openblas32" ] && win_peers=(--peer "OpenBLAS=$(winepath -w "$openblas32")")
  for routine in sgemm cgemm dgemm ssyrk strsm; do
    say "BLAS: $routine (orb.dll under wine)"
    (cd build/win32/bin && ../../../tools/wine-run ./blas_compare.exe --threads 1,2 \
      --filter "$routine" --max-n "$max_n" "${win_peers[@]}" --csv results-win32.csv) \
      >"$out/blas-$routine-win32.txt"
  done
  say "LAPACK: sgetrf spotrf sgeqrf ssyevr sgesdd (orb.dll under wine, n = $lapack_sizes)"
  (cd build/win32/bin && ../../../tools/wine-run ./lapack_rates.exe --threads 1,2 \
    --sizes "$lapack_sizes" --csv results-win32.csv) >"$out/lapack-win32.txt"
  # wine writes with CR LF line ends.
  tr -d '\r' <build/win32/bin/results-win32.csv | tail -n +2 >>"$csv"
  rm -f build/win32/bin/results-win32.csv
else
  say "this machine cannot execute 32-bit programs: no orb.dll lines"
fi

say "drawing"
/usr/bin/python3 tools/perf_plot.py "$csv" docs --seconds $(($(date +%s) - start)) \
  --command "tools/perf-report.sh${1:+ $1}"
say "done in $(($(date +%s) - start)) s: docs/performance.md"
