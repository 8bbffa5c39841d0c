#!/usr/bin/python3
"""Reference numbers for the regression tests, computed independently of VARO.

Writes two problems, each as a data file of rows "y x1 .. xk" holding single-precision
values, and a reference file with the least-squares coefficients (numpy's lstsq on those
values in double precision) and the optimum sum of absolute deviations of the centred
problem (scipy's linprog with HiGHS), the quantity a least-absolute-deviations fit must
reach. Two more small problems (ties, flip) take the simplex's rarer paths; for them the
reference holds the optimum and, where the optimum pins them, the slopes. Run with Debian's python3: /usr/bin/python3 make_reference.py
"""
import numpy as np
from scipy.optimize import linprog

def problem(seed, n, k):
    rng = np.random.default_rng(seed)
    x = rng.normal(size=(n, k)) * rng.uniform(0.5, 20.0, size=k) + rng.uniform(-50, 1000, size=k)
    true = rng.normal(size=k)
    noise = rng.standard_t(df=2, size=n) * 3.0
    y = 5.0 + x @ true + noise
    return np.float32(y), np.float32(x)

def lad_optimum(y, x):
    yc = y - y.mean()
    xc = x - x.mean(axis=0)
    n, k = xc.shape
    # min sum(u + v) subject to xc b + u - v = yc, u, v >= 0, b free
    c = np.concatenate([np.zeros(k), np.ones(2 * n)])
    a_eq = np.hstack([xc, np.eye(n), -np.eye(n)])
    bounds = [(None, None)] * k + [(0, None)] * (2 * n)
    result = linprog(c, A_eq=a_eq, b_eq=yc, bounds=bounds, method="highs")
    assert result.status == 0
    return result.fun, result.x[:k]

def unique_slopes(y, x, optimum):
    """The slopes when every slope is pinned at the optimum: each one's range over the
    optimal face, found by two more programs, is a single value."""
    yc = y - y.mean()
    xc = x - x.mean(axis=0)
    n, k = xc.shape
    a_eq = np.hstack([xc, np.eye(n), -np.eye(n)])
    a_ub = np.concatenate([np.zeros(k), np.ones(2 * n)])[None, :]
    bounds = [(None, None)] * k + [(0, None)] * (2 * n)
    slopes = []
    for j in range(k):
        ends = []
        for sign in (1.0, -1.0):
            c = np.zeros(k + 2 * n)
            c[j] = sign
            r = linprog(c, A_ub=a_ub, b_ub=[optimum + 1e-9], A_eq=a_eq, b_eq=yc, bounds=bounds,
                        method="highs")
            assert r.status == 0
            ends.append(r.x[j])
        if abs(ends[0] - ends[1]) > 1e-7:
            return None
        slopes.append(ends[0])
    return slopes


def ties():
    # Integer predictors with few levels, every row three times, and integer responses with
    # outliers: many equal reduced costs and ratios.
    rng = np.random.default_rng(5)
    x = rng.integers(0, 4, size=(20, 2)).astype(float)
    y = 2.0 + x[:, 0] - 3.0 * x[:, 1] + rng.integers(-1, 2, size=20)
    y[[3, 11]] += [25.0, -40.0]
    return np.repeat(y, 3), np.repeat(x, 3, axis=0)


def flip():
    # One predictor whose mean is a value of it: the day standing there has no entry in the
    # predictor's row, and its large negative residual makes it enter first, so that it can
    # only move to its other bound.
    x = np.arange(9.0)[:, None]
    y = np.array([1.0, 2.5, 2.0, 4.5, -30.0, 6.0, 6.5, 8.0, 9.5])
    return y, x


def main():
    reference = []
    for name, seed, n, k in (("small", 11, 400, 3), ("wide", 23, 1200, 8)):
        y32, x32 = problem(seed, n, k)
        with open(f"{name}.dat", "w", newline="") as out:
            for row in range(n):
                values = [y32[row]] + list(x32[row])
                out.write(" ".join(repr(float(v)) for v in values) + "\r\n")
        y = y32.astype(np.float64)
        x = x32.astype(np.float64)
        design = np.hstack([np.ones((n, 1)), x])
        beta, *_ = np.linalg.lstsq(design, y, rcond=None)
        optimum, slopes = lad_optimum(y, x)
        reference.append(f"{name} {n} {k}")
        reference.append("ols " + " ".join(repr(float(b)) for b in beta))
        reference.append("lad_objective " + repr(float(optimum)))
    # Small problems that take the simplex's rarer paths, with the slopes where the
    # optimum pins them.
    for name, make in (("ties", ties), ("flip", flip)):
        y, x = make()
        with open(f"{name}.dat", "w", newline="") as out:
            for row in range(len(y)):
                out.write(" ".join(repr(float(v)) for v in [y[row], *x[row]]) + "\r\n")
        optimum, _ = lad_optimum(y, x)
        reference.append(f"{name} {len(y)} {x.shape[1]}")
        reference.append(f"{name}_objective {optimum!r}")
        slopes = unique_slopes(y, x, optimum)
        if slopes is not None:
            reference.append(f"{name}_slopes " + " ".join(repr(float(s)) for s in slopes))
    with open("reference.txt", "w") as out:
        out.write("\n".join(reference) + "\n")

main()
