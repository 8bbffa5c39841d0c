#!/usr/bin/python3
"""Data and reference numbers of the stepwise search with the lag term.

Writes 120 days (01/01/1961 to 30/04/1961) of a predictand y.dat that follows its own
previous day, two predictors a.dat and b.dat, dup.dat (a copy of a.dat) and ylag.dat (the
predictand one day later, so that its column equals the lag column). An annual
unconditional model with the lag term pairs day r + 1 with the predictand of day r.

Every non-empty subset of the candidates (the predictors, then the lag column) is fitted
by numpy's lstsq on the values rounded to single precision; a subset whose design is not
of full rank cannot be judged. The criterion is AIC with the regression sum of squares
inside the logarithm, N ln(sqrt(RegSS / N)) + 2 (p - 1), and the highest wins, the first
of equals in the order singles, full set, then each size from 2 up.
  kept     candidates a, dup, b, lag: the lag term is kept (a, b, lag).
  dropped  candidates a, ylag, lag: ylag ties with the lag and comes first (a, ylag).
Each case prints: the chosen candidates (1-based), the criterion, then the coefficients
(constant first). Run with Debian's python3: /usr/bin/python3 make_reference.py
"""
import numpy as np

N_DAYS = 120


def single(values):
    return np.asarray(values, dtype=np.float32).astype(np.float64)


def make():
    t = np.arange(N_DAYS)
    a = np.round(4.0 * np.sin(t * 0.37) + 1.5 * np.cos(t * 1.3), 3)
    b = np.round(2.0 * np.cos(t * 0.23) - 1.0 * np.sin(t * 2.1), 3)
    y = np.zeros(N_DAYS)
    y[0] = 2.0
    for d in range(1, N_DAYS):
        y[d] = 0.55 * y[d - 1] + 0.8 * a[d] - 0.3 * b[d] + 0.4 * np.sin(d * 5.7) + 1.0
    y = np.round(y, 3)
    ylag = np.concatenate([[0.0], y[:-1]])
    return {"y": y, "a": a, "dup": a.copy(), "b": b, "ylag": ylag}


def write(name, values):
    with open(name + ".dat", "w", newline="") as out:
        for v in values:
            out.write(f"{v:.3f}\r\n")


def subsets(k):
    """Subsets of 1..k in the search's order."""
    out = [[i] for i in range(1, k + 1)]
    if k >= 2:
        out.append(list(range(1, k + 1)))

    def of_size(n, r, built):
        if n == r:
            out.append(list(range(1, n + 1)) + built)
        elif r == 1:
            out.extend([i] + built for i in range(1, n + 1))
        else:
            of_size(n - 1, r, built)
            of_size(n - 1, r - 1, [n] + built)

    for r in range(2, k):
        of_size(k, r, [])
    return out


def search(series, predictors):
    y = single(series["y"])
    columns = [single(series[p])[1:] for p in predictors] + [y[:-1]]
    response = y[1:]
    n = len(response)
    best, chosen, beta_best = -99999.0, None, None
    for subset in subsets(len(columns)):
        x = np.column_stack([np.ones(n)] + [columns[i - 1] for i in subset])
        if np.linalg.matrix_rank(x) < x.shape[1]:
            continue
        beta, *_ = np.linalg.lstsq(x, response, rcond=None)
        regression_ss = beta @ x.T @ response - response.sum() ** 2 / n
        criterion = n * np.log(np.sqrt(regression_ss / n)) + 2 * (x.shape[1] - 1)
        if criterion > best:
            best, chosen, beta_best = criterion, subset, beta
    return chosen, best, beta_best


def main():
    series = make()
    for name, values in series.items():
        write(name, values)
    with open("reference.txt", "w") as out:
        for case, predictors in [("kept", ["a", "dup", "b"]), ("dropped", ["a", "ylag"])]:
            chosen, criterion, beta = search(series, predictors)
            out.write(f"{case}_chosen " + " ".join(str(c) for c in chosen) + "\n")
            out.write(f"{case}_criterion {criterion!r}\n")
            out.write(f"{case}_coefficients " + " ".join(repr(float(v)) for v in beta) + "\n")


main()
