#!/usr/bin/python3
"""Makes the screening test files and their reference numbers with numpy.

Run with Debian's /usr/bin/python3 from this folder. Writes predictand.dat, the three
predictor files p1_mslp.dat, p2_p500.dat, p3_rhum.dat (three years from 01/01/1961, one
value a day, a few missing values) and reference.json with:

- correlation: Pearson correlations of the rows with no missing value, the partial
  correlation of each predictor with the predictand given the others from the inverse of
  the correlation matrix, and the P expression evaluated on them (annual and July only);
- variance: r squared per predictor and month over the pairs with no missing value, the
  values rounded to single precision first, and the same for the predictand against its
  previous day within each month's stretch of days.
"""
import datetime
import json

import numpy as np

MISSING = -999.0
PI_SINGLE = float(np.float32(np.pi))

rng = np.random.default_rng(20240611)
start = datetime.date(1961, 1, 1)
days = [start + datetime.timedelta(d) for d in range(3 * 365)]  # 1961-1963, no leap year
n = len(days)
month = np.array([d.month for d in days])
season = np.sin(2 * np.pi * (month - 1) / 12.0)

x1 = np.round(1013 + 8 * rng.standard_normal(n) + 4 * season, 2)
x2 = np.round(5500 + 60 * rng.standard_normal(n) + 0.5 * (x1 - 1013) * 10, 2)
x3 = np.round(70 + 10 * rng.standard_normal(n), 2)
weight = 0.4 + 0.3 * np.cos(2 * np.pi * (month - 1) / 12.0)
y = np.zeros(n)
for i in range(n):
    previous = y[i - 1] if i > 0 else 0.0
    y[i] = (0.6 * previous + weight[i] * (x1[i] - 1013) - 0.02 * (x2[i] - 5500)
            + 0.1 * (x3[i] - 70) + 3 * rng.standard_normal())
y = np.round(y, 2)

series = [y, x1, x2, x3]
# A few missing values, some on the same day in two files.
for index, rows in enumerate([[5, 100, 400, 731], [17, 100, 555], [250, 800, 801], [40]]):
    for row in rows:
        series[index][row] = MISSING

names = ["predictand.dat", "p1_mslp.dat", "p2_p500.dat", "p3_rhum.dat"]
for name, values in zip(names, series):
    with open(name, "w", newline="") as out:
        for value in values:
            out.write("%.2f\r\n" % value)


def probability(t, count):
    return (1 + t * t / count) ** (-(count + 1) / 2) / np.sqrt(PI_SINGLE * count) * np.sqrt(count)


def correlation_reference(keep):
    data = np.array(series)[:, keep]
    complete = np.all(data != MISSING, axis=0)
    data = data[:, complete]
    count = data.shape[1]
    r = np.corrcoef(data)
    inverse = np.linalg.inv(r)
    partial = []
    p_value = []
    for i in range(1, len(series)):
        p = -inverse[0, i] / np.sqrt(inverse[0, 0] * inverse[i, i])
        partial.append(p)
        t = np.sqrt(count - 2) * p / np.sqrt(1 - p * p)
        p_value.append(1.0 if abs(p) >= 0.999 else probability(t, count))
    return {"n": int(count), "r": r.tolist(), "partial": partial, "pValue": p_value}


def variance_cell(xs, ys):
    xs = np.array(xs, dtype=np.float64)
    ys = np.array(ys, dtype=np.float64)
    count = len(xs)
    r = np.corrcoef(xs, ys)[0, 1]
    r2 = r * r
    t = 10001.0 if r2 > 0.999 else np.sqrt(count - 2) * r / np.sqrt(1 - r2)
    return {"n": count, "r": r, "rSquared": r2, "t": t, "p": probability(t, count)}


single = [np.float32(values).astype(np.float64) for values in series]
variance = []
for k in range(1, len(series)):
    cells = []
    for m in range(1, 13):
        pairs = [(single[k][i], single[0][i]) for i in range(n)
                 if month[i] == m and single[k][i] != MISSING and single[0][i] != MISSING]
        cells.append(variance_cell([p[0] for p in pairs], [p[1] for p in pairs]))
    variance.append(cells)
cells = []
for m in range(1, 13):
    pairs = [(single[0][i - 1], single[0][i]) for i in range(1, n)
             if month[i] == m and days[i - 1].month == m
             and single[0][i - 1] != MISSING and single[0][i] != MISSING]
    cells.append(variance_cell([p[0] for p in pairs], [p[1] for p in pairs]))
variance.append(cells)

reference = {
    "annual": correlation_reference(np.ones(n, dtype=bool)),
    "july": correlation_reference(month == 7),
    "variance": variance,
}
with open("reference.json", "w") as out:
    json.dump(reference, out, indent=1)
