#!/usr/bin/python3
"""Makes the Box-Cox test files and their expected outputs, independently of VARO.

Run with Debian's /usr/bin/python3 from this folder. For each case it writes the input
file NAME.dat, the expected output NAME_expected.dat and the optimum lamda and shift in
boxcox_reference.json. The search is written out plainly: every lamda of a grid builds
its list, sorts the whole list and takes the zero-based rows n // 4, n // 2 and n - n // 4.
"""
import json
import math

import numpy as np

MISSING = -999.0


def search(column, start, end, step):
    best_score = 99999.0
    best = start
    changed = False
    lamda = start
    while lamda <= end:
        entries = []
        total = 0.0
        for x in column:
            if lamda == 0:
                if x <= 0:
                    continue
                value = math.log(x)
            elif x == 0 and lamda < 0:
                value = -1 / lamda
            else:
                value = (x ** lamda - 1) / lamda
            entries.append(value)
            total += value
        if len(entries) >= 50:
            entries.sort()
            n = len(entries)
            mean = total / n
            spread = entries[n - n // 4] - entries[n // 4]
            if spread > 0:
                score = (mean - entries[n // 2]) / spread
                if abs(score) < best_score and score != MISSING:
                    best_score = abs(score)
                    best = lamda
                    changed = True
        lamda += step
    return best if changed else MISSING


def transform(values):
    present = [v for v in values if v != MISSING]
    minimum = min(present + [99999.0])
    shift = abs(minimum) if minimum < 0 else 0.0
    column = [v + shift for v in present]
    best = search(column, -2, 2, 0.25)
    best = search(column, best - 0.25, best + 0.25, 0.1)
    lamda = search(column, best - 0.1, best + 0.1, 0.01)
    lines = []
    for v in values:
        if v == MISSING:
            lines.append("-999 ")
            continue
        x = v + shift
        if lamda == 0:
            written = math.log(x) - shift
        elif x != 0:
            written = (x ** lamda - 1) / lamda - shift
        else:
            written = -1 / lamda - shift
        lines.append("%.6f" % written)
    return lamda, shift, lines


rng = np.random.default_rng(7)
rain = np.round(rng.gamma(0.8, 5.0, 400), 1)
rain[rng.random(400) < 0.2] = 0.0
rain[[3, 77, 301]] = MISSING
negative = np.round(rng.gamma(2.0, 2.0, 120) - 2.5, 2)
negative[10] = -3.0
negative[11] = MISSING
cases = {"boxcox_rain": rain, "boxcox_negative": negative}

reference = {}
for name, values in cases.items():
    values = [float(v) for v in values]
    with open(name + ".dat", "w", newline="") as out:
        for v in values:
            out.write(("%.2f" % v if v != MISSING else "-999") + "\r\n")
    values = [float("%.2f" % v) if v != MISSING else v for v in values]
    lamda, shift, lines = transform(values)
    with open(name + "_expected.dat", "w", newline="") as out:
        for line in lines:
            out.write(line + "\r\n")
    reference[name] = {"lamda": lamda, "shift": shift}

with open("boxcox_reference.json", "w") as out:
    json.dump(reference, out, indent=1)
