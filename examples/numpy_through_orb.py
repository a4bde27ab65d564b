#!/usr/bin/python3
"""NumPy's float32 matmul and linalg.solve with liborb.so preloaded.

Runs the computation in a child process with LD_PRELOAD pointing at liborb.so
and the dynamic loader's binding log switched on (LD_DEBUG=bindings), then
reports which library each BLAS/LAPACK symbol the computation used was bound
to. Usage:

    python3 examples/numpy_through_orb.py [build/linux-x64/bin/liborb.so]

numpy.linalg.solve calls sgesv_, which ORB does not export: that routine comes
from the system LAPACK, and the sgetrf_/sgetrs_ it calls in turn bind to the
preloaded ORB. float32 matmul calls cblas_sgemm, which ORB exports. Exits 0
with a message when NumPy is absent or the platform has no LD_PRELOAD.
"""
import glob
import os
import subprocess
import sys
import tempfile

SYMBOLS = ("cblas_sgemm", "sgemm_", "sgesv_", "sgetrf_", "sgetrs_", "sgetrf2_", "slaswp_")


def child():
    import numpy as np

    rng = np.random.default_rng(1)
    n = 300
    a = rng.standard_normal((n, n)).astype(np.float32) + n * np.eye(n, dtype=np.float32)
    b = rng.standard_normal((n, 4)).astype(np.float32)
    c = a @ b
    exact = a.astype(np.float64) @ b.astype(np.float64)
    err_mm = np.abs(c - exact).max() / np.abs(exact).max()
    x = np.linalg.solve(a, b)
    err_solve = np.abs(a.astype(np.float64) @ x - b).max()
    print(f"float32 matmul {n}x{n} by {n}x4: max relative error {err_mm:.2e}")
    print(f"float32 solve  {n}x{n}: max residual {err_solve:.2e}")
    return 0 if err_mm < 1e-5 and err_solve < 1e-4 else 1


def main():
    if len(sys.argv) > 1 and sys.argv[1] == "--child":
        return child()
    try:
        import numpy  # noqa: F401
    except ImportError:
        print("NumPy is not installed (Debian: python3-numpy); nothing to show, skipping")
        return 0
    if not sys.platform.startswith("linux"):
        print("LD_PRELOAD is a Linux loader feature; skipping")
        return 0
    here = os.path.dirname(os.path.abspath(__file__))
    default = os.path.join(here, "..", "build", "linux-x64", "bin", "liborb.so")
    orb = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else default)
    if not os.path.exists(orb):
        print(f"{orb} not found: build the orb target first")
        return 1
    with tempfile.TemporaryDirectory() as tmp:
        env = dict(os.environ, LD_PRELOAD=orb, LD_DEBUG="bindings",
                   LD_DEBUG_OUTPUT=os.path.join(tmp, "bindings"))
        rc = subprocess.call([sys.executable, os.path.abspath(__file__), "--child"], env=env)
        # Lines read "binding file <user> [0] to <provider> [0]: normal symbol `name'".
        bound = {}
        for path in glob.glob(os.path.join(tmp, "bindings*")):
            with open(path, errors="replace") as f:
                for line in f:
                    if "binding file" not in line or "`" not in line:
                        continue
                    name = line.split("`")[1].split("'")[0].split("[")[0]
                    if name in SYMBOLS:
                        user = line.split("binding file ")[1].split(" [")[0]
                        provider = line.split(" to ")[1].split(" [")[0]
                        bound.setdefault(name, set()).add((os.path.basename(user),
                                                           os.path.basename(provider)))
    print("symbol bindings (caller -> provider):")
    for name in SYMBOLS:
        for user, provider in sorted(bound.get(name, ())):
            print(f"  {name:12s} {user} -> {provider}")
    ours = [n for n in ("cblas_sgemm", "sgetrf_", "sgetrs_")
            if any("liborb" in p for _, p in bound.get(n, ()))]
    print("served by ORB:", ", ".join(ours) if ours else "nothing")
    return rc


if __name__ == "__main__":
    sys.exit(main())
