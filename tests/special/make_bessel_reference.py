#!/usr/bin/python3
"""Reference values of the single-precision Bessel entries, from scipy.special
(double precision) at the single-precision arguments and orders the entries
receive, written as a table compiled into the test:
    tests/special/make_bessel_reference.py > tests/special/bessel_reference.inc
Each row: function (0 I, 1 K, 2 J, 3 Y, 4 H1, 5 H2, 6 Ai, 7 Ai', 8 Bi, 9 Bi'), kode, Re z, Im z, fnu, n,
then n (at most 4) values as re, im pairs."""
import numpy as np
from scipy import special

F = [(special.iv, special.ive), (special.kv, special.kve), (special.jv, special.jve),
     (special.yv, special.yve), (special.hankel1, special.hankel1e),
     (special.hankel2, special.hankel2e)]
radii = [1e-6, 1e-2, 0.7, 2.0, 2.5, 9.0, 40.0, 300.0, 2000.0]
angles = [0.0, 0.5, np.pi / 2, 2.3, np.pi, -0.9, -np.pi / 2, -2.6]
orders = [0.0, 0.3, 1.0, 2.75, 12.5, 45.0, 100.0]
ELIM = 2.303 * (125 * np.log10(2.0) - 3.0)

rows = []
for func in range(6):
    for i, r in enumerate(radii):
        for j, a in enumerate(angles):
            z = complex(np.complex64(r * np.exp(1j * a)))
            # A sparse, deterministic subset keeps the table small.
            for k, nu in enumerate(orders):
                if (i + j + k + func) % 3:
                    continue
                fnu = float(np.float32(nu))
                n = 1 + (i + k) % 4
                for kode in (1, 2):
                    f = F[func][kode - 1]
                    v = f(fnu + np.arange(n), z)
                    if not np.all(np.isfinite(v)):
                        continue
                    mags = np.abs(v)
                    # Only values well inside the single-precision range, and
                    # no value at a zero of the function.
                    if np.any(mags == 0) or np.any(np.log(mags) > ELIM - 5) or \
                            np.any(np.log(mags) < -ELIM + 5):
                        continue
                    vals = []
                    for x in v:
                        vals += [x.real, x.imag]
                    vals += [0.0] * (8 - len(vals))
                    rows.append([func, kode, z.real, z.imag, fnu, n] + vals)
# The Airy functions: one value each, n = 1.
for r in [0.0, 1e-6, 0.3, 0.99, 1.01, 2.2, 6.0, 25.0, 90.0]:
    for j, a in enumerate(np.linspace(-np.pi, np.pi, 13)):
        z = complex(np.complex64(r * np.exp(1j * a)))
        for kode in (1, 2):
            w = (special.airy if kode == 1 else special.airye)(z)
            for func in range(4):
                v = w[func]
                if not np.isfinite(v) or v == 0 or abs(np.log(abs(v))) > ELIM - 5:
                    continue
                rows.append([6 + func, kode, z.real, z.imag, 0.0, 1, v.real, v.imag] + [0.0] * 6)
for row in rows:
    print("{%d, %d, %s}," % (row[0], row[1], ", ".join(repr(float(x)) for x in row[2:6]) +
                              ", {" + ", ".join(repr(float(x)) for x in row[6:]) + "}"))
