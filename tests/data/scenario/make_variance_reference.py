#!/usr/bin/env python3
"""Reference numbers for the scenario generator's variance treatment, computed with numpy
independently of the program.

Writes variance_input.OUT, three members of 1,500 days of rain-like values (dry days 0,
wet days from a gamma distribution, three decimals, 14-character zones), and
variance_reference.txt: for each case and member a line "case CHANGE CONDITIONAL MEMBER
LAMDA MEAN FACTOR" (the variance change in %, 1 for a conditional series, the member from 1,
the Box-Cox lamda, the transformed mean and the inflation factor; for an unconditional series
lamda 0, the mean and the square root of the factor), then "values" and every treated value.

The rules: member statistics of the values treated (wet values for a conditional series),
divisor n. Unconditional: (v - mean) * sqrt(f) + mean for every value. Conditional: the
Box-Cox lamda by three grid searches (-2..2 by .25, best +-.25 by .05, best +-.1 by .01;
the grid summed step by step) of Hinkley's score (mean - median) / (q3 - q1) over the wet
values other than 0, with 1-based ranks n // 2, n // 4 and n - n // 4 of the sorted list and
at least 11 values; the smallest |score| wins, the first on a tie. Then ten bisection steps
of the inflation factor on [0.5, 1] (f <= 1) or [1, 1.3], comparing the variance of the
stretched, back-transformed values with sd^2 from before the treatment, as single precision.

Run: python3 make_variance_reference.py   (in this folder)
"""
import numpy as np

THRESHOLD = 0.0
MEMBERS = 3
DAYS = 1500
CASES = [(20.0, True), (-30.0, True), (60.0, True), (45.0, False)]


def make_input():
    rng = np.random.default_rng(20240611)
    columns = []
    for member, (wet_share, shape, scale) in enumerate([(0.45, 0.7, 6.0), (0.3, 1.1, 3.5),
                                                       (0.6, 0.5, 9.0)]):
        wet = rng.random(DAYS) < wet_share
        amounts = np.round(rng.gamma(shape, scale, DAYS), 3)
        amounts[amounts <= 0.0] = 0.001
        columns.append(np.where(wet, amounts, 0.0))
    values = np.array(columns)
    with open("variance_input.OUT", "w", newline="") as out:
        for day in range(DAYS):
            out.write("".join(f"{values[m, day]:.3f}".ljust(14) for m in range(MEMBERS)) + "\r\n")
    # The values as the program reads them back.
    return np.array([[float(f"{v:.3f}") for v in row] for row in values])


def box_cox(x, lamda):
    return np.log(x) if lamda == 0.0 else (np.power(x, lamda) - 1.0) / lamda


def inverse(y, lamda):
    return np.exp(y) if lamda == 0.0 else np.power(lamda * y + 1.0, 1.0 / lamda)


def search(x, start, end, step):
    best, best_lamda = 99999.0, None
    n = x.size
    candidate = start
    while candidate <= end:
        if n >= 11:
            t = np.sort(box_cox(x, candidate))
            mean = t.sum() / n
            median = t[n // 2 - 1]
            iqr = t[n - n // 4 - 1] - t[n // 4 - 1]
            if iqr > 0:
                score = (mean - median) / iqr
                if abs(score) < best:
                    best, best_lamda = abs(score), candidate
        candidate += step
    return best_lamda


def conditional(values, factor_change):
    f = np.float32((np.float32(factor_change) + np.float32(100.0)) / np.float32(100.0))
    wet = values > THRESHOLD
    sd = np.sqrt(np.mean((values[wet] - values[wet].mean()) ** 2))
    x = values[wet & (values != 0.0)]
    lamda = search(x, -2.0, 2.0, 0.25)
    lamda = search(x, lamda - 0.25, lamda + 0.25, 0.05)
    lamda = search(x, lamda - 0.1, lamda + 0.1, 0.01)
    w = box_cox(values[wet], lamda)
    mean = w.mean()
    low, high = (0.5, 1.0) if f <= 1 else (1.0, 1.3)
    factor = (high - low) / 2 + low
    for _ in range(10):
        back = inverse((w - mean) * factor + mean, lamda)
        ratio = np.float32(np.mean((back - back.mean()) ** 2) / sd ** 2)
        if ratio >= f:
            high, factor = factor, (factor - low) / 2 + low
        else:
            low, factor = factor, (high - factor) / 2 + factor
    out = values.copy()
    out[wet] = inverse((w - mean) * factor + mean, lamda)
    return lamda, mean, factor, out


def unconditional(values, factor_change):
    f = np.float32((np.float32(factor_change) + np.float32(100.0)) / np.float32(100.0))
    mean = values.mean()
    return 0.0, mean, float(np.sqrt(np.float64(f))), (values - mean) * np.sqrt(np.float64(f)) + mean


def main():
    values = make_input()
    with open("variance_reference.txt", "w") as out:
        for change, is_conditional in CASES:
            for member in range(MEMBERS):
                treat = conditional if is_conditional else unconditional
                lamda, mean, factor, result = treat(values[member], change)
                out.write(f"case {change:g} {int(is_conditional)} {member + 1} "
                          f"{lamda!r} {mean!r} {factor!r}\n")
                out.write("values " + " ".join(repr(float(v)) for v in result) + "\n")


if __name__ == "__main__":
    main()
