#!/usr/bin/python3
"""SciPy's least_squares(method='trf') on the bounded cases of nls_compare."""
import numpy as np
from scipy.optimize import least_squares


def rosenbrock(x):
    return np.array([10 * (x[1] - x[0] ** 2), 1 - x[0]])


def beale(x):
    y = np.array([1.5, 2.25, 2.625])
    return y - x[0] * (1 - x[1] ** np.arange(1, 4))


def wood(x):
    return np.array([10 * (x[1] - x[0] ** 2), 1 - x[0], np.sqrt(90) * (x[3] - x[2] ** 2),
                     1 - x[2], np.sqrt(10) * (x[1] + x[3] - 2), (x[1] - x[3]) / np.sqrt(10)])


def powell(x):
    return np.array([x[0] + 10 * x[1], np.sqrt(5) * (x[2] - x[3]), (x[1] - 2 * x[2]) ** 2,
                     np.sqrt(10) * (x[0] - x[3]) ** 2])


def box3d(x):
    t = 0.1 * np.arange(1, 11)
    return np.exp(-t * x[0]) - np.exp(-t * x[1]) - x[2] * (np.exp(-t) - np.exp(-10 * t))


def helical(x):
    theta = np.arctan(x[1] / x[0]) / (2 * np.pi) + (0.5 if x[0] < 0 else 0)
    return np.array([10 * (x[2] - 10 * theta), 10 * (np.hypot(x[0], x[1]) - 1), x[2]])


def watson(x):
    t = np.arange(1, 30) / 29.0
    j = np.arange(6)
    value = (x[None, :] * t[:, None] ** j).sum(1)
    slope = (j[1:] * x[None, 1:] * t[:, None] ** (j[1:] - 1)).sum(1)
    return np.concatenate([slope - value ** 2 - 1, [x[0], x[1] - x[0] ** 2 - 1]])


def brown_almost_linear(x):
    return np.concatenate([x[:-1] + x.sum() - 11, [np.prod(x) - 1]])


CASES = [
    ("rosenbrock", rosenbrock, [-1.2, 1], [-2, -2], [0.5, 2]),
    ("beale", beale, [1, 1], [0.5, 0.8], [2.5, 2]),
    ("wood", wood, [-3, -1, -3, -1], [-4] * 4, [0.9, 4, 4, 4]),
    ("powell_singular", powell, [3, -1, 0, 1], [0.1, -10, -10, -10], [10] * 4),
    ("box_3d", box3d, [0, 10, 20], [0, 5, 0], [2, 9.5, 20]),
    ("helical_valley", helical, [-1, 0, 0], [-100, -1, -1], [0.8, 1, 1]),
    ("watson_6", watson, [0] * 6, [-10] * 6, [10, 10, 10, 1, 10, 10]),
    ("brown_almost_linear", brown_almost_linear, [0.5] * 10, [0] * 10, [0.9] * 10),
]

for name, fun, x0, lw, up in CASES:
    x0 = np.clip(np.array(x0, float), lw, up)
    r = least_squares(fun, x0, bounds=(lw, up), method="trf", xtol=1e-12, ftol=1e-12, gtol=1e-12)
    print(f"trf {name:20s} f={2 * r.cost:.10g} nfev={r.nfev} njev={r.njev} status={r.status}")
