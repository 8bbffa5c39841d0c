#!/usr/bin/python3
"""Data files of the calibration driver tests, and reference coefficients for them.

Writes six years of daily data (1961 to 1966, 2191 rows): a rainfall-like predictand
rain.dat and two predictors, mslp.dat and shum.dat, with a few missing values (-999)
placed to drop days and to break months into sections. Then computes, with numpy's lstsq
on the same values rounded to single precision, the least-squares coefficients that the
tests check the driver against, for a fit from 01/01/1962 to 31/12/1966 with the
threshold 0:
  annual      the annual model of rain on both predictors;
  occurrence  the monthly occurrence model (1 when rain > 0) on both predictors;
  lagged      the monthly unconditional model with the lag term, which pairs each day
              with the day before it inside a run of consecutive kept days of the month,
              a run of one day leaving a row of zeros at the end.
Run with Debian's python3: /usr/bin/python3 make_data.py
"""
import datetime
import numpy as np

MISSING = -999.0
START = datetime.date(1961, 1, 1)
DAYS = (datetime.date(1966, 12, 31) - START).days + 1
FIT_START = datetime.date(1962, 1, 1)

def make():
    rng = np.random.default_rng(1961)
    t = np.arange(DAYS)
    season = np.cos(2 * np.pi * (t - 15) / 365.25)
    mslp = np.round(rng.normal(size=DAYS) + 0.4 * season, 3)
    shum = np.round(0.6 * rng.normal(size=DAYS) - 0.5 * season, 3)
    latent = -0.9 * mslp + 0.7 * shum + rng.normal(size=DAYS) * 0.8 + 0.3
    amount = np.exp(0.5 * latent + rng.normal(size=DAYS) * 0.6) * 2.0
    rain = np.where(latent > -0.4, np.round(amount, 1), 0.0)
    rain = np.where((latent > -0.4) & (rain == 0.0), 0.1, rain)
    # Missing days: single ones, a pair around a kept day (a run of one day in March
    # 1963), and one in a predictor file.
    for date in ["1962-02-10", "1963-03-02", "1963-03-04", "1964-07-31", "1965-12-25",
                 "1966-06-01", "1961-05-05"]:
        rain[(datetime.date.fromisoformat(date) - START).days] = MISSING
    mslp[(datetime.date(1964, 10, 1) - START).days] = MISSING
    return rain, mslp, shum

def write(name, values):
    with open(name, "w", newline="") as out:
        for v in values:
            out.write(f"{v:.3f}\r\n" if v != MISSING else "-999\r\n")

def lstsq(x, y):
    design = np.hstack([np.ones((len(y), 1)), x])
    beta, *_ = np.linalg.lstsq(design, y, rcond=None)
    return beta

def main():
    rain, mslp, shum = make()
    for name, values in (("rain.dat", rain), ("mslp.dat", mslp), ("shum.dat", shum)):
        write(name, values)
    # As the files are read back: text to double, then single precision.
    data = np.column_stack([rain, mslp, shum])
    first = (FIT_START - START).days
    dates = [START + datetime.timedelta(days=int(i)) for i in range(DAYS)]
    kept = [i for i in range(first, DAYS) if not (data[i] == MISSING).any()]
    values = data.astype(np.float32).astype(np.float64)
    lines = []
    beta = lstsq(values[kept, 1:], values[kept, 0])
    lines.append("annual " + " ".join(repr(float(b)) for b in beta))
    for month in range(1, 13):
        rows = [i for i in kept if dates[i].month == month]
        occurrence = (values[rows, 0].astype(np.float32) > np.float32(0)).astype(np.float64)
        beta = lstsq(values[rows, 1:], occurrence)
        lines.append(f"occurrence {month} " + " ".join(repr(float(b)) for b in beta))
    for month in range(1, 13):
        # Runs of kept days of the month: broken by a dropped day or a change of month.
        sections, previous = [], None
        for i in range(first, DAYS):
            if dates[i].month != month:
                continue
            if i in kept and previous == i - 1 and sections:
                sections[-1].append(i)
            elif i in kept:
                sections.append([i])
            previous = i if i in kept else None
        x, y = [], []
        for run in sections:
            for a, b in zip(run, run[1:]):
                x.append([values[b, 1], values[b, 2], values[a, 0]])
                y.append(values[b, 0])
        zero_rows = sum(1 for run in sections if len(run) == 1)
        x += [[0.0, 0.0, 0.0]] * zero_rows
        y += [0.0] * zero_rows
        design = np.hstack([np.ones((len(y), 1)), np.array(x)])
        design[len(y) - zero_rows:, 0] = 0.0  # unfilled rows have no constant either
        beta, *_ = np.linalg.lstsq(design, np.array(y), rcond=None)
        lines.append(f"lagged {month} {zero_rows} " + " ".join(repr(float(b)) for b in beta))
    with open("reference.txt", "w") as out:
        out.write("\n".join(lines) + "\n")

main()
