#!/usr/bin/python3
"""Reference numbers for the regression tests, computed independently of VARO.

Writes two problems, each as a data file of rows "y x1 .. xk" holding single-precision
values, and a reference file with the least-squares coefficients (numpy's lstsq on those
values in double precision) and the optimum sum of absolute deviations of the centred
problem (scipy's linprog with HiGHS), the quantity a least-absolute-deviations fit must
reach. Run with Debian's python3: /usr/bin/python3 make_reference.py
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
    with open("reference.txt", "w") as out:
        out.write("\n".join(reference) + "\n")

main()
