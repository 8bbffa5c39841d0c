#!/usr/bin/python3
"""The fits of bench/calibration_bench.cpp done by statsmodels (and scipy's HiGHS for the
least-absolute-deviations problem), on the same 13 files. Prints one line per step:
"name seconds". Run with Debian's python3: calibration_statsmodels.py DIR
"""
import datetime
import sys
import time

import numpy as np
import statsmodels.api as sm
from scipy.optimize import linprog

folder = sys.argv[1]
started = time.perf_counter()
rain = np.fromfile(f"{folder}/rain.dat", sep=" ")
predictors = np.column_stack(
    [np.fromfile(f"{folder}/p{i:02d}.dat", sep=" ") for i in range(1, 13)])
read = time.perf_counter() - started
print(f"read {read:.4f}")

y = rain.astype(np.float32).astype(np.float64)
x = predictors.astype(np.float32).astype(np.float64)
start = datetime.date(1961, 1, 1)
months = np.array([(start + datetime.timedelta(days=int(d))).month for d in range(len(y))])

started = time.perf_counter()
for month in range(1, 13):
    rows = months == month
    design = sm.add_constant(x[rows])
    wet = (y[rows].astype(np.float32) > 0).astype(np.float64)
    occurrence = sm.OLS(wet, design).fit()
    amounts = sm.OLS(y[rows][wet == 1] ** 0.25, design[wet == 1]).fit()
    _ = (occurrence.params, occurrence.rsquared, amounts.params, amounts.rsquared)
print(f"monthly_conditional_fourth_root {time.perf_counter() - started:.4f}")

started = time.perf_counter()
lad = sm.QuantReg(y, sm.add_constant(x)).fit(q=0.5)
print(f"annual_lad_quantreg {time.perf_counter() - started:.4f}")

started = time.perf_counter()
yc = y - y.mean()
xc = x - x.mean(axis=0)
n, k = xc.shape
from scipy.sparse import eye, hstack, csr_matrix
a_eq = hstack([csr_matrix(xc), eye(n), -eye(n)]).tocsr()
cost = np.concatenate([np.zeros(k), np.ones(2 * n)])
result = linprog(cost, A_eq=a_eq, b_eq=yc, bounds=[(None, None)] * k + [(0, None)] * (2 * n),
                 method="highs")
print(f"annual_lad_highs {time.perf_counter() - started:.4f}")
print(f"annual_lad_objective {result.fun:.6f}")
