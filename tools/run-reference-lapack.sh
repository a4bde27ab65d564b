#!/usr/bin/env bash
# Runs one of Debian's reference LAPACK test programs (package liblapack-test:
# xlintst[scdz] for linear equations, xeigtst[scdz] for eigenproblems and
# the SVD) with ORB in front of the reference LAPACK and BLAS, and checks its
# report: the program ends normally ("End of tests"), it ran tests, and no
# line reports a test ratio over the threshold, an error message, an
# unexpected INFO, an illegal argument or an input it could not use.
#
#   run-reference-lapack.sh LIBORB PROGRAM INPUT
#
# The program reads INPUT on standard input; it gets a copy with the
# error-exit tests switched off, since those test the program's own XERBLA.
# A path that tests them regardless passes a case when ORB's own message
# names the same parameter of the same routine.
# Behind ORB are Debian's reference LAPACK and BLAS, taken from the lapack
# directory that holds the program and the blas directory beside it, whatever
# the system's alternatives select: every routine ORB does not export then
# comes from the reference, and the reference LAPACK's own BLAS calls reach
# ORB (an optimised LAPACK does much of its work in its own kernels).
# PRELOAD_EXTRA, when set, goes in front of LIBORB in LD_PRELOAD (the
# sanitizer runtimes of a checking build).
set -euo pipefail

if [ $# -ne 3 ]; then
  echo "usage: $0 LIBORB PROGRAM INPUT" >&2
  exit 2
fi
lib=$(realpath "$1")
prog=$(realpath "$2")
input=$(realpath "$3")
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

flags=$(python3 "$tools/reference_testers.py" input "$input" in)
echo "$(basename "$prog") < $(basename "$input"): $flags error-exit flag(s) switched off"

libdir=$(dirname "$prog")
refpath=
for d in "$libdir" "$(dirname "$libdir")/blas"; do
  if compgen -G "$d/lib*.so.3" >/dev/null; then refpath=${refpath:+$refpath:}$d; fi
done

# Bind everything at start-up and log the bindings, to see what came from ORB.
set +e
env LD_PRELOAD="${PRELOAD_EXTRA:+$PRELOAD_EXTRA }$lib" \
  LD_LIBRARY_PATH="$refpath${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" \
  LD_BIND_NOW=1 LD_DEBUG=bindings LD_DEBUG_OUTPUT="$work/bindings" \
  "$prog" <in >out 2>&1
status=$?
set -e
cat out
echo "----"

# Error-exit cases that ORB's own argument check answered are set aside
# (reference_testers.py explains when).
answered=$(python3 "$tools/reference_testers.py" exits out judged)
if [ "$answered" -gt 0 ]; then
  echo "$answered error-exit case(s) answered by ORB's own message, set aside"
fi

fail=0
if [ $status -ne 0 ]; then
  echo "FAIL: $(basename "$prog") exited with status $status"
  fail=1
fi
if ! grep -q 'End of tests' out; then
  echo "FAIL: the program did not reach the end of its tests"
  fail=1
fi

# The summaries: "All tests for SGE routines passed the threshold ( 3653
# tests run)", "SGE:   12 out of  3653 tests failed to pass the threshold",
# and in the balancing tests "total number of examples tested = 13". A
# failure shows as one of the lines below; the balancing tests' "largest
# test error" has no threshold and is not judged.
awk '
  / tests run\)/ { s = $0; sub(/ tests run\).*/, "", s); n = split(s, w, /[ (]+/); run += w[n] }
  / out of .* tests failed/ { s = $0; sub(/ tests failed.*/, "", s); n = split(s, w, / +/); run += w[n] }
  /total number of examples tested/ { run += $NF }
  /failed/ || /error messages? recorded/ || /\*\*\*/ || /[Ii]llegal/ || /INFO/ ||
  /^ *Error in / || /[Ii]nvalid/ || /[Uu]nrecognized/ || /not attempted/ ||
  /ORB ERROR/ || /[Ff]ortran runtime error/ ||
  /(info is not (0|zero)|ILO or IHI (is )?wrong) *= *[1-9]/ { print "FAIL: " $0; bad++ }
  END { print run + 0 >"run"; exit (bad > 0) }
' judged >failures || fail=1
head -n 40 failures
if [ "$(cat run)" -eq 0 ]; then
  echo "FAIL: no test summary found in the report"
  fail=1
fi

# The names the program and the reference LAPACK took from ORB.
ours=$(grep -hs "to $lib \[[0-9]*\]: normal symbol" bindings.* |
  sed -n "s/.*normal symbol \`\([a-z0-9]*_\)'.*/\1/p" | sort -u | tr '\n' ' ' || true)
echo "from ORB: ${ours:-nothing}"
if [ -z "$ours" ]; then
  echo "FAIL: no routine of the program came from $lib"
  fail=1
fi

if [ $fail -ne 0 ]; then
  echo "FAILED"
  exit 1
fi
echo "PASSED: $(cat run) tests run"
