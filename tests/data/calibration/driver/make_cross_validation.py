#!/usr/bin/python3
"""Reference cross-validation metrics for the calibration tests, computed with numpy and
scipy on the files of make_data.py, fit from 01/01/1962 to 31/12/1966, threshold 0.

  annual    the annual unconditional model of rain on both predictors, 5 folds:
            SE, Spearman, bias, R squared, Durbin-Watson of the predictions;
  amounts   the wet days of January under the fourth-root transformation, 4 folds:
            R squared, SE and Spearman of the predictions turned back into amounts.

Folds: N // folds rows each, the first folds * (N // folds) rows used; each fold is
predicted by least squares on the other used rows. Ranks are places in ascending order,
ties in the order of the rows (no averaging). Run with Debian's python3.
"""
import datetime
import numpy as np
from scipy.stats import rankdata

START = datetime.date(1961, 1, 1)
FIRST = (datetime.date(1962, 1, 1) - START).days

def load():
    rain, mslp, shum = (np.loadtxt(f"{name}.dat") for name in ("rain", "mslp", "shum"))
    data = np.column_stack([rain, mslp, shum])
    kept = [i for i in range(FIRST, len(rain)) if not (data[i] == -999).any()]
    dates = [START + datetime.timedelta(days=i) for i in kept]
    values = data[kept].astype(np.float32).astype(np.float64)
    return values, dates

def predictions(x, y, folds, transform=None, back=None):
    per = len(y) // folds
    used = per * folds
    design = np.hstack([np.ones((len(y), 1)), x])
    predicted = np.empty(used)
    for f in range(folds):
        test = np.arange(f * per, (f + 1) * per)
        train = np.setdiff1d(np.arange(used), test)
        target = y[train] if transform is None else transform(y[train])
        beta, *_ = np.linalg.lstsq(design[train], target, rcond=None)
        fit = design[test] @ beta
        predicted[test] = fit if back is None else back(fit)
    return y[:used], predicted

def metrics(o, p):
    n = len(o)
    se = np.sqrt(((o - p) ** 2).sum() / (n - 1))
    sxx = (o * o).sum() - o.sum() ** 2 / n
    syy = (p * p).sum() - p.sum() ** 2 / n
    sxy = (o * p).sum() - o.sum() * p.sum() / n
    r2 = sxy * sxy / (sxx * syy)
    d = ((rankdata(o, method="ordinal") - rankdata(p, method="ordinal")) ** 2).sum()
    spearman = 1 - 6 * d / (n * (n * n - 1))
    e = o - p
    dw = (np.diff(e) ** 2).sum() / (e * e).sum()
    bias = (p.mean() - o.mean()) / o.mean()
    return se, spearman, bias, r2, dw

def main():
    values, dates = load()
    o, p = predictions(values[:, 1:], values[:, 0], 5)
    se, spearman, bias, r2, dw = metrics(o, p)
    lines = [f"annual {se!r} {spearman!r} {bias!r} {r2!r} {dw!r}"]
    january = [i for i, d in enumerate(dates) if d.month == 1 and np.float32(values[i, 0]) > 0]
    wet = values[january]
    o, p = predictions(wet[:, 1:], wet[:, 0], 4, lambda v: v ** 0.25, lambda z: z ** 4)
    se, spearman, _, r2, _ = metrics(o, p)
    lines.append(f"amounts {r2!r} {se!r} {spearman!r}")
    with open("reference_cross_validation.txt", "w") as out:
        out.write("\n".join(lines) + "\n")

main()
