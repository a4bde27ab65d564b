#!/usr/bin/env bash
# NumPy's and SciPy's own tests (numpy.linalg, numpy.core dot/matmul,
# scipy.linalg, scipy.sparse.linalg and a linprog case) with the reference
# BLAS and LAPACK, then again with liborb.so preloaded in front of them; prints
# the names that bind to ORB, both runs' counts, and every test that passes
# with the reference and fails, errors, crashes or hangs with ORB (then exits 1).
#
#   tools/client-check.sh [--jobs 2] [--threads 1] [--suite scipy.linalg] ...
#
# Uses Debian's python3 and its python3-numpy, python3-scipy, python3-pytest
# and python3-hypothesis; builds liborb.so (preset linux-x64) when needed.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! /usr/bin/python3 -c "import numpy, scipy, pytest, hypothesis" 2>/dev/null; then
  tools/install-deps.sh
fi
if [ ! -f build/linux-x64/bin/liborb.so ]; then
  cmake --preset linux-x64 >/dev/null
fi
cmake --build --preset linux-x64 --target orb -j "$(nproc)" >/dev/null
exec /usr/bin/python3 tools/client_check.py --orb build/linux-x64/bin/liborb.so "$@"
