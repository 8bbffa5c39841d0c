#!/usr/bin/python3
"""Writes the weather generator's test inputs (parameter files, predictor files, an
observed predictand) and the OUT and SIM files that runs over them must produce.

The expected files are computed here from the generator's rules, independently of the
C++ code: the regression from the coefficients as they stand in the parameter files, the
uniform stream (PCG32 with 24-bit single-precision output, reset to the fixed state), the
order of the draws, the transformations, the inverse normal mapping and the file layouts.

Run from this folder with Debian's python3:  /usr/bin/python3 make_references.py
"""

import datetime
import math
from decimal import ROUND_HALF_EVEN, Decimal

import numpy as np

MISSING = -999.0
MASK64 = (1 << 64) - 1
MASK32 = (1 << 32) - 1


class Pcg32:
    """The program's uniform generator: PCG32 (XSH RR), output (bits >> 8) / 2^24."""

    MULTIPLIER = 6364136223846793005
    INCREMENT = 1442695040888963407

    def __init__(self, seed=1):
        self.state = 0
        self._bits()
        self.state = (self.state + seed) & MASK64
        self._bits()

    def _bits(self):
        old = self.state
        self.state = (old * self.MULTIPLIER + self.INCREMENT) & MASK64
        xorshifted = (((old >> 18) ^ old) >> 27) & MASK32
        rotation = old >> 59
        return ((xorshifted >> rotation) | (xorshifted << ((32 - rotation) & 31))) & MASK32

    def next(self):
        return np.float32((self._bits() >> 8) / 16777216.0)


# ---------------------------------------------------------------- text forms


def fixed3(value):
    """'####0.000' and '#####0.000': three decimals, half to even on the shortest digits."""
    text = str(Decimal(repr(float(value))).quantize(Decimal("0.001"), rounding=ROUND_HALF_EVEN))
    return "0.000" if text == "-0.000" else text


def zoned(fields, pad_last=True):
    line = ""
    for i, field in enumerate(fields):
        line += field
        if pad_last or i < len(fields) - 1:
            if len(line) % 14:
                line += " " * (14 - len(line) % 14)
    return line


def plain_integer(n):
    return (" " if n >= 0 else "") + str(n) + " "


def write(name, text):
    with open(name, "w", newline="") as f:
        f.write(text)


def write_series(name, values):
    write(name, "".join(("%.6f" % v if v != MISSING else "-999") + "\r\n" for v in values))


# ---------------------------------------------------------------- parameter files


class Model:
    def __init__(self, k, conditional, code, ar, occ, amt=None, boxcox=None, old_form=False,
                 groups=12, record_start=datetime.date(1960, 1, 1), record_length=10000,
                 fit_start="01/01/1960", fit_length=3650, predictand="obs.dat",
                 predictand_path="C:\\DATA\\obs.dat", names=None):
        self.k, self.conditional, self.code, self.ar = k, conditional, code, ar
        # Every number passes the file's three-decimal format; keep what a reader gets back.
        self.occ = [[float(fixed3(v)) for v in row] for row in occ]
        self.amt = [[float(fixed3(v)) for v in row] for row in amt] if amt else None
        self.boxcox = [[float(fixed3(v)) for v in pair] for pair in boxcox] if boxcox else None
        self.old_form, self.groups = old_form, groups
        self.record_start, self.record_length = record_start, record_length
        self.fit_start, self.fit_length = fit_start, fit_length
        self.predictand, self.predictand_path = predictand, predictand_path
        self.names = names or ["p%d.dat" % (i + 1) for i in range(k)]

    def text(self):
        lines = [plain_integer(self.k), plain_integer(self.groups), plain_integer(366),
                 self.record_start.strftime("%d/%m/%Y"), plain_integer(self.record_length),
                 self.fit_start, plain_integer(self.fit_length),
                 "#TRUE#" if self.conditional else "#FALSE#", str(self.code), plain_integer(1)]
        if not self.old_form:
            lines.append("True" if self.ar else "False")
        lines.append(self.predictand)
        lines += self.names
        for m in range(12):
            fields = [fixed3(v) for v in self.occ[m]]
            if self.code == 5:
                lines.append(zoned(fields + [fixed3(v) for v in self.boxcox[m]], pad_last=False))
            else:
                lines.append(zoned(fields))
        if self.conditional:
            for m in range(12):
                lines.append(zoned([fixed3(v) for v in self.amt[m]]))
        lines.append(self.predictand_path)
        return "".join(line + "\r\n" for line in lines)


# ---------------------------------------------------------------- the generator


MONTH_LENGTHS = {1: [31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31], 2: [30] * 12}


def is_leap(year):
    return year % 400 == 0 or (year % 100 != 0 and year % 4 == 0)


def calendar(year_indicator):
    return {366: (1, 1), 365: (1, 0), 360: (2, 0)}[year_indicator]


def step(pos, year_indicator):
    """The day number has been raised; finish the step."""
    row, leap_days = calendar(year_indicator)
    extra = leap_days if pos[1] == 2 and is_leap(pos[2]) and row == 1 else 0
    if pos[0] > MONTH_LENGTHS[row][pos[1] - 1] + extra:
        pos[0] = 1
        pos[1] += 1
    if pos[1] == 13:
        pos[1] = 1
        pos[2] += 1


def density(x):
    return math.exp(-(x ** 2) / 2) / math.sqrt(6.2831854)


class Reference:
    def __init__(self, values, thresh):
        self.a = [None] + sorted(values)
        n = len(values)
        self.first = next((i for i in range(1, n + 1)
                           if np.float32(self.a[i]) > np.float32(thresh)), 0)
        self.count = n - self.first + 1
        tail = 1 / (self.count + 1)
        z, area, p0 = 0.0, 0.5, density(0.0)
        for _ in range(50000):
            z -= 0.0001
            p1 = density(z)
            area -= (p1 + p0) * (0.0001 * 0.5)
            if area <= tail:
                break
            p0 = p1
        self.zmin, self.zspan = z, 1 - 2 * tail

    def amount(self, z):
        if z <= self.zmin:
            return self.a[self.first]
        h = (z - self.zmin) / 100
        x, p0, area = self.zmin, density(self.zmin), 0.0
        for _ in range(100):
            x += h
            p1 = density(x)
            area += (p1 + p0) * (h * 0.5)
            p0 = p1
        area = min(area, self.zspan)
        rank = math.floor(self.count * area / self.zspan) + self.first
        last = self.first + self.count - 1
        return self.a[min(rank, last)]


class Settings:
    def __init__(self, prec_n=12, allow_neg=True, selection=1, cond_thresh=0.5, bias=1.0,
                 thresh=0.0, year_indicator=366):
        self.prec_n, self.allow_neg, self.selection = prec_n, allow_neg, selection
        self.cond_thresh = np.float32(cond_thresh)
        self.bias = float(np.float32(bias))
        self.thresh = np.float32(thresh)
        self.year_indicator = year_indicator


def simulate(model, s, predictors, start, days, members, reference=None):
    rng = Pcg32(1)

    def noise(se):
        if s.prec_n <= 0:
            return 0.0
        total = np.float32(0.0)
        for _ in range(s.prec_n):
            total = np.float32(total + rng.next())
        return (float(total) - s.prec_n / 2) * se

    def transform(y, m):
        b = s.bias
        if model.code == 1:
            return b * y
        if model.code == 2:
            return b * y ** 4
        if model.code == 3:
            return b * math.exp(y)
        if model.code == 4:
            return reference.amount(b * y)
        lam, shift = model.boxcox[m - 1]
        t = y + shift
        if lam == 0:
            t = math.exp(t)
        else:
            t = t * lam + 1
            t = MISSING if t <= 0 else math.exp(math.log(t) / lam)
        return MISSING if t == MISSING else (t - shift) * b

    k = model.k
    c = k + 3 + (1 if model.ar else 0)
    row_index = (start - model.record_start).days
    pos = [start.day - 1, start.month, start.year]
    lag = [model.occ[pos[1] - 1][0]] * members
    lines = []
    for _ in range(days):
        pos[0] += 1
        step(pos, s.year_indicator)
        month = pos[1]
        x = [float(p[row_index]) for p in predictors]
        row_index += 1
        if any(v == MISSING for v in x):
            lines.append([MISSING] * members)
            continue
        occ = model.occ[month - 1]
        values = []
        for m in range(members):
            v = occ[0]
            for i in range(k):
                v += occ[i + 1] * x[i]
            if model.ar:
                v += occ[k + 1] * lag[m]
            e = noise(occ[c - 2])
            if not model.conditional:
                v += e
            if v < 0 and not s.allow_neg:
                v = 0.0
            lag[m] = v
            values.append(v)
        if model.conditional:
            wet = []
            for m in range(members):
                p = np.float32(values[m])
                if s.selection == 1:
                    wet.append(not p < rng.next())
                else:
                    wet.append(p >= s.cond_thresh)
                values[m] = lag[m] = 1.0 if wet[m] else 0.0
            amt = model.amt[month - 1]
            for m in range(members):
                if not wet[m]:
                    continue
                a = amt[0]
                for i in range(k):
                    a += amt[i + 2] * x[i]
                y = amt[1] * a + noise(amt[k + 2])
                v = transform(y, month)
                if v != MISSING and not np.float32(v) > s.thresh:
                    v = float(s.thresh) + 0.001
                values[m] = v
        lines.append(values)
    return "".join(zoned([fixed3(v) for v in line]) + "\r\n" for line in lines)


def sim_text(model, s, start, days, members, bias_text):
    lines = [plain_integer(model.k), plain_integer(model.groups), plain_integer(s.year_indicator),
             start.strftime("%d/%m/%Y"), plain_integer(days),
             "#TRUE#" if model.conditional else "#FALSE#", plain_integer(members),
             plain_integer(s.prec_n), plain_integer(model.code), bias_text, model.predictand]
    return "".join(line + "\r\n" for line in lines + model.names)


# ---------------------------------------------------------------- the cases


def monthly(make):
    return [make(m) for m in range(1, 13)]


def main():
    data = np.random.RandomState(20240611)
    start1960 = datetime.date(1960, 1, 1)

    # Two predictors from 01/01/1960, 200 days; the second is missing on 08/03/1960.
    p1 = list(np.round(data.normal(0.0, 1.0, 200), 6))
    p2 = list(np.round(data.normal(0.5, 0.8, 200), 6))
    p2[(datetime.date(1960, 3, 8) - start1960).days] = MISSING
    write_series("reg_p1.dat", p1)
    write_series("reg_p2.dat", p2)
    names = ["reg_p1.dat", "reg_p2.dat"]
    run_start, run_days = datetime.date(1960, 2, 27), 40

    # Unconditional and autoregressive, a different row each month, noise-free.
    regression = Model(2, False, 1, True, names=names, predictand="obs.dat",
                       occ=monthly(lambda m: [0.1 * m - 0.4, 0.8 - 0.05 * m, -0.3 + 0.02 * m,
                                              0.45, 1.25, 0.61]))
    write("reg.PAR", regression.text())
    noiseless = Settings(prec_n=0)
    write("reg.OUT", simulate(regression, noiseless, [p1, p2], run_start, run_days, 3))
    write("reg.SIM", sim_text(regression, noiseless, run_start, run_days, 3, " 1 "))
    write("reg_noneg.OUT", simulate(regression, Settings(prec_n=0, allow_neg=False),
                                    [p1, p2], run_start, run_days, 3))

    # Conditional with the fixed threshold and no noise, the same rows under each amount
    # transformation; bias 0.9 and threshold 0.3 so that floors and missing codes occur.
    occurrence = monthly(lambda m: [0.45 + 0.02 * m, 0.25, -0.1, 0.2, 0.0, 0.4])
    amounts = monthly(lambda m: [-1.2 + 0.05 * m, 1.1, 1.6, -1.2, 0.0, 0.3])
    boxcox = monthly(lambda m: [0.0 if m % 3 == 0 else 1.2 + 0.1 * m, 0.15 * (m % 4)])
    fixed = Settings(prec_n=0, selection=2, cond_thresh=0.5, bias=0.9, thresh=0.3)
    for code in (1, 2, 3, 5):
        model = Model(2, True, code, True, occ=occurrence, amt=amounts, names=names,
                      boxcox=boxcox if code == 5 else None)
        write("fixed_c%d.PAR" % code, model.text())
        write("fixed_c%d.OUT" % code, simulate(model, fixed, [p1, p2], run_start, run_days, 2))

    # Stochastic Box-Cox from a parameter file of the older form (no autoregression line),
    # three predictors, a 360-day year, a missing day.
    start1961 = datetime.date(1961, 1, 1)
    q = [list(np.round(data.normal(0.0, 1.0, 150), 6)) for _ in range(3)]
    q[1][70] = MISSING
    snames = ["st_p1.dat", "st_p2.dat", "st_p3.dat"]
    for name, values in zip(snames, q):
        write_series(name, values)
    stochastic = Model(3, True, 5, False, old_form=True, names=snames, predictand="rain.dat",
                       record_start=start1961, fit_start="01/01/1961",
                       occ=monthly(lambda m: [0.45 + 0.01 * m, 0.2, -0.15, 0.1, 0.0, 0.35]),
                       amt=monthly(lambda m: [0.8, 1.0, 0.3, 0.2, -0.25, 0.5, 0.2]),
                       boxcox=monthly(lambda m: [0.25 if m % 2 else 0.0, 0.1 * m]))
    write("stochastic.PAR", stochastic.text())
    chance = Settings(prec_n=12, allow_neg=False, thresh=0.1, year_indicator=360)
    st_start, st_days = datetime.date(1961, 1, 15), 60
    write("stochastic.OUT", simulate(stochastic, chance, q, st_start, st_days, 5))
    write("stochastic.SIM", sim_text(stochastic, chance, st_start, st_days, 5, " 1 "))

    # Inverse normal amounts mapped onto the observed record from 01/03/1961 (500 days),
    # with dry days and missing values in it; the predictand's path is filled in by the test.
    observed = []
    for _ in range(700):
        u = data.uniform()
        observed.append(MISSING if u < 0.03 else 0.0 if u < 0.45 else
                        round(float(data.gamma(0.8, 6.0)), 1))
    write_series("inv_obs.dat", observed)
    inverse = Model(2, True, 4, True, names=names, predictand="inv_obs.dat",
                    record_start=start1961, fit_start="01/03/1961", fit_length=500,
                    predictand_path="@DATA@/inv_obs.dat",
                    occ=monthly(lambda m: [0.4, 0.15, -0.1, 0.2, 0.0, 0.3]),
                    amt=monthly(lambda m: [0.1, 1.0, 0.5, -0.3, 1.0, 0.2]))
    write("inverse.PAR", inverse.text())
    skip = (datetime.date(1961, 3, 1) - start1961).days
    reference = Reference(observed[skip:skip + 500], 0.0)
    inv_settings = Settings(prec_n=12)
    # The predictors of 1960 are reused as if the record started in 1961.
    write("inverse.OUT", simulate(inverse, inv_settings, [p1, p2],
                                  datetime.date(1961, 2, 20), 45, 4, reference))
    print("firstWet %d wetCount %d zMin %.4f largest %.1f" %
          (reference.first, reference.count, reference.zmin, reference.a[-1]))


if __name__ == "__main__":
    main()
