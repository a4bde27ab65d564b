#!/usr/bin/env bash
# Runs one of Debian's reference BLAS test programs (package libblas-test) with
# ORB in front of the system BLAS and checks its report: the program ends
# normally, no test fails, and every tested routine that ORB exports under
# its Fortran name was bound to ORB and passed. The other routines come from
# the system BLAS and must pass too.
#
#   run-reference-blas.sh LIBORB PROGRAM [INPUT]
#
# INPUT is the input file of a level-2 or level-3 program (read on standard
# input); the program gets a copy with the error-exit tests switched off,
# since those test the program's own XERBLA. The level-1 programs take none.
# PRELOAD_EXTRA, when set, goes in front of LIBORB in LD_PRELOAD (the
# sanitizer runtimes of a checking build).
set -euo pipefail

if [ $# -lt 2 ] || [ $# -gt 3 ]; then
  echo "usage: $0 LIBORB PROGRAM [INPUT]" >&2
  exit 2
fi
lib=$(realpath "$1")
prog=$(realpath "$2")
input=${3:+$(realpath "$3")}
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

summary=
if [ -n "$input" ]; then
  if [ "$(python3 "$tools/reference_testers.py" input "$input" in)" = 0 ]; then
    echo "FAIL: no error-exit flag found in $input"
    exit 1
  fi
  # The summary goes to the file named on the first line.
  summary=$(sed -n "1s/^ *'\([^']*\)'.*/\1/p" in)
else
  : >in
fi

# Bind everything at start-up and log the bindings, to see which library
# each routine came from.
set +e
env LD_PRELOAD="${PRELOAD_EXTRA:+$PRELOAD_EXTRA }$lib" LD_BIND_NOW=1 LD_DEBUG=bindings \
  LD_DEBUG_OUTPUT="$work/bindings" "$prog" <in >out 2>&1
status=$?
set -e
if [ -n "$summary" ] && [ -f "$summary" ]; then cat "$summary" >>out; fi
cat out
echo "----"

fail=0
if [ $status -ne 0 ]; then
  echo "FAIL: $(basename "$prog") exited with status $status"
  fail=1
fi
if grep -Eq 'FAIL|FATAL|SUSPECT' out; then
  echo "FAIL: the report shows failures"
  fail=1
fi

# Tested routines and whether each passed. Level 1: a "Test of subprogram
# number" header, then a PASS line. Levels 2 and 3: "NAME PASSED THE
# COMPUTATIONAL TESTS", and "END OF TESTS" at the end.
awk '
  /Test of subprogram number/ { name = $NF; tested[name] = 1; order[++n] = name; next }
  /----- PASS -----/ && name != "" { passed[name] = 1; next }
  /PASSED THE COMPUTATIONAL TESTS/ { tested[$1] = 1; passed[$1] = 1; order[++n] = $1; next }
  /COMPLETED THE COMPUTATIONAL TESTS/ { tested[$1] = 1; order[++n] = $1; next }
  END { for (i = 1; i <= n; ++i) print order[i], (order[i] in passed) ? "pass" : "fail" }
' out >routines
if [ ! -s routines ]; then
  echo "FAIL: no tested routine found in the report"
  fail=1
fi
if [ -n "$input" ] && ! grep -q 'END OF TESTS' out; then
  echo "FAIL: the program did not reach the end of its tests"
  fail=1
fi

nm -D --defined-only "$lib" | awk '{ print $NF }' | sort -u >orb-symbols
ours=() theirs=()
while read -r name result; do
  sym=$(tr '[:upper:]' '[:lower:]' <<<"$name")_
  if [ "$result" != pass ]; then
    echo "FAIL: $name did not pass"
    fail=1
  fi
  if grep -qx "$sym" orb-symbols; then
    ours+=("$name")
    if ! grep -qs "to $lib \[[0-9]*\]: normal symbol \`$sym'" bindings.*; then
      echo "FAIL: $name ($sym) was not taken from $lib"
      fail=1
    fi
  else
    theirs+=("$name")
  fi
done <routines

echo "ORB: ${ours[*]:-none}"
echo "system BLAS: ${theirs[*]:-none}"
if [ $fail -ne 0 ]; then
  echo "FAILED"
  exit 1
fi
echo "PASSED"
