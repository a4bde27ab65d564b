#!/usr/bin/python3
"""Reference values of I_nu(z) in the power-series region, from scipy.special
(double precision), written as a table compiled into the test:
    tests/special/make_reference.py > tests/special/series_reference.inc
Each row: Re z, Im z, nu, kode, value re, value im."""
import numpy as np
from scipy import special

rows = []
radii = [1e-6, 1e-3, 0.1, 0.7, 1.5, 2.0, 5.0, 14.0]
angles = [0.3, 1.2, 1.5707963267948966, 2.0, 3.0, -0.4, -1.9, -2.8]
orders = [0.0, 0.25, 1.0, 2.5, 7.0, 20.0, 55.5, 100.0]
for r in radii:
    for a in angles:
        z = r * np.exp(1j * a)
        for nu in orders:
            if not (r <= 2.0 or r * r / 4 <= nu + 1):
                continue
            for kode in (1, 2):
                v = special.iv(nu, z) if kode == 1 else special.ive(nu, z)
                if not np.isfinite(v) or abs(v) < 1e-290:
                    continue
                rows.append((z.real, z.imag, nu, kode, v.real, v.imag))
for row in rows:
    print("{%s}," % ", ".join(repr(float(x)) for x in row))
