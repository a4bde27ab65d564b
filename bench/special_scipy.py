#!/usr/bin/python3
"""SciPy's double-precision jv, kv and airy per element over the argument set
of special_compare.cpp (same formula, same single-precision rounding)."""
import time
import numpy as np
from scipy import special

N = 1000
k = np.arange(N)
t = k / (N - 1)
angle = 2 * np.pi * np.fmod(k * 0.6180339887498949, 1.0) - np.pi
z = (10.0 ** (-2 + 4 * t) * np.exp(1j * angle)).astype(np.complex64).astype(complex)
za = (10.0 ** (-2 + 3.477 * t) * np.exp(1j * angle)).astype(np.complex64).astype(complex)
fnu = ((k % 7) * 1.3).astype(np.float32).astype(float)


def ns_per_element(f):
    repeats = 1
    while True:
        start = time.perf_counter()
        for _ in range(repeats):
            f()
        s = time.perf_counter() - start
        if s > 0.5:
            return s * 1e9 / (repeats * N)
        repeats *= 2


print("function  ns/element (SciPy, double precision, %d arguments)" % N)
print("jv        %8.0f" % ns_per_element(lambda: special.jv(fnu, z)))
print("kv        %8.0f" % ns_per_element(lambda: special.kv(fnu, z)))
print("airy      %8.0f" % ns_per_element(lambda: special.airy(za)))
