#!/usr/bin/env python3
"""Peer timing for the ILU set-up benchmarks of iterative_bench: SciPy's
spilu (SuperLU's threshold ILU) on the same 5-point Poisson matrix of order
10^6, in the natural ordering (as ORB's factorisations run) and with
SuperLU's default COLAMD column ordering. Needs Debian's python3-scipy:

    /usr/bin/python3 bench/ilu_scipy.py [grid] [runs]
"""
import sys
import time

import numpy as np
import scipy
import scipy.sparse as sp
import scipy.sparse.linalg as spla


def poisson(m):
    t = sp.diags([-1.0, 4.0, -1.0], [-1, 0, 1], shape=(m, m))
    e = sp.identity(m)
    s = sp.diags([-1.0, -1.0], [-1, 1], shape=(m, m))
    return (sp.kron(e, t) + sp.kron(s, e)).tocsc()


def best_of(runs, fn):
    times = []
    result = None
    for _ in range(runs):
        t0 = time.perf_counter()
        result = fn()
        times.append(time.perf_counter() - t0)
    return min(times), result


def main():
    m = int(sys.argv[1]) if len(sys.argv) > 1 else 1000
    a = poisson(m)
    print(f"scipy {scipy.__version__}, numpy {np.__version__}; order {a.shape[0]}, nnz {a.nnz}")
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    settings = [
        ("drop_tol=0    fill_factor=1 (closest to ILU0)", dict(drop_tol=0.0, fill_factor=1)),
        ("drop_tol=1e-3 fill_factor=3 (beside ILUT 1e-3, 5)", dict(drop_tol=1e-3, fill_factor=3)),
    ]
    for order in ("NATURAL", "COLAMD"):
        for name, kw in settings:
            sec, ilu = best_of(runs, lambda: spla.spilu(a, permc_spec=order, **kw))
            print(f"spilu {order:7s} {name}: {sec * 1e3:9.1f} ms  nnz(L+U) {ilu.L.nnz + ilu.U.nnz}")


if __name__ == "__main__":
    main()
