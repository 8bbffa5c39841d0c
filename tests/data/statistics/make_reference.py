#!/usr/bin/python3
"""Test data of the summary statistics and the results files expected from it.

Run with Debian's python3 (numpy) from this folder:  /usr/bin/python3 make_reference.py

The data files are drawn from a fixed random state. The expected results files are
computed here from the rules of the statistics, independently of the C++ engine: days are
grouped into blocks (a month occurrence, a season occurrence, a calendar year) instead of
sentinel-terminated lists, and dates come from the datetime module. Sums run in date
order and the formulas keep the engine's order of operations, so that the binary results,
and with them the rounding of the printed figures, agree. numpy's own percentile is used
as a cross-check of the percentile rule.
"""
import datetime as dt
from decimal import Decimal, ROUND_HALF_EVEN

import numpy as np

MISSING = -999.0
NAMES = ["Mean", "Maximum", "Minimum", "Median", "Variance", "IQR", "POT", "PBT",
         "Percentile", "Sum", "ACF", "Skewness", "Max_NTot", "Count", "Wet-days%",
         "Dry-spell", "Wet-spell", "Max_dspel", "Max_wspel", "SD_WetSpell", "SD_DrySpell",
         "POP", "POP_Tot", "Max_Range", "Min_Range", "Wet_Persis", "Dry_Persis",
         "Persis_Corr", "Med_Wet", "Med_Dry"]
COL = {name: i + 1 for i, name in enumerate(NAMES)}
ROWS = ["January", "February", "March", "April", "May", "June", "July", "August",
        "September", "October", "November", "December", "Winter", "Spring", "Summer",
        "Autumn", "Annual"]
CRLF = "\r\n"


# ---------------------------------------------------------------------------------------
# Calendar

def parse(text):
    d, m, y = (int(p) for p in text.split("/"))
    return dt.date(y, m, d)


def month_length(month, year, year_length):
    if year_length == 360:
        return 30
    if month == 2:
        leap = year % 4 == 0 and (year % 100 != 0 or year % 400 == 0)
        return 29 if (leap and year_length == 366) else 28
    return [31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31][month - 1]


def real_date(pos):
    """A position as a real date: days past a month's end run over into the next."""
    d, m, y = pos
    return dt.date(y, m, 1) + dt.timedelta(days=d - 1)


def step(pos, year_length):
    d, m, y = pos
    d += 1
    if d > month_length(m, y, year_length):
        d, m = 1, m + 1
    if m == 13:
        m, y = 1, y + 1
    return (d, m, y)


def rows_to_skip(year_length, record_start, start):
    pos, count = (record_start.day, record_start.month, record_start.year), 0
    while (start - real_date(pos)).days > 0:
        pos = step(pos, year_length)
        count += 1
    return count


def period_positions(year_length, start, end):
    pos, days = (start.day, start.month, start.year), []
    while (end - real_date(pos)).days >= 0:
        days.append(pos)
        pos = step(pos, year_length)
    return days


def season(month):
    return {12: 1, 1: 1, 2: 1, 3: 2, 4: 2, 5: 2, 6: 3, 7: 3, 8: 3}.get(month, 4)


# ---------------------------------------------------------------------------------------
# Files

def out_field(value):
    text = "%.3f" % value
    return text + " " * (14 - len(text) % 14 if len(text) % 14 else 0)


def write_out(path, columns):
    with open(path, "w", newline="") as f:
        for row in zip(*columns):
            f.write("".join(out_field(v) for v in row) + CRLF)


def write_sim(path, year_length, start, days, members):
    items = [" 2 ", " 1 ", " %d " % year_length, start, " %d " % days, "#TRUE#",
             " %d " % members, " 12 ", " 1 ", " 1 ", "rain.dat", "mslp.dat", "p500.dat"]
    with open(path, "w", newline="") as f:
        f.write(CRLF.join(items) + CRLF)


def read_period(path, members, year_length, record_start, start, end):
    positions = period_positions(year_length, start, end)
    skip = rows_to_skip(year_length, record_start, start)
    with open(path) as f:
        if members == 1:
            numbers = [float(t) for t in f.read().replace(",", " ").split()]
            values = [numbers[skip:skip + len(positions)]]
        else:
            lines = f.read().splitlines()[skip:skip + len(positions)]
            values = [[float(line[14 * k:14 * k + 14].strip()) for line in lines]
                      for k in range(members)]
    assert all(len(v) == len(positions) for v in values)
    return [(m, y) for (_, m, y) in positions], values


# ---------------------------------------------------------------------------------------
# Statistics of one member

def f32(x):
    return np.float32(x)


def percentile(sorted_values, p):
    n = len(sorted_values)
    position = p * (n - 1) / 100.0 + 1.0
    k = int(position)
    f = position - k
    if k >= n or f == 0.0:
        result = sorted_values[min(k, n) - 1]
    else:
        result = sorted_values[k - 1] + (sorted_values[k] - sorted_values[k - 1]) * f
    assert abs(result - np.percentile(sorted_values, p)) < 1e-9
    return result


def blocks_of(days, values):
    """Row -> list of blocks, each the values of one month, season or year occurrence."""
    rows = {r: [] for r in range(1, 18)}
    for i, (month, year) in enumerate(days):
        keys = ((month, month), (12 + season(month), season(month)), (17, year))
        previous = None if i == 0 else days[i - 1]
        previous_keys = None if previous is None else (
            previous[0], season(previous[0]), previous[1])
        for j, (row, key) in enumerate(keys):
            if previous_keys is None or previous_keys[j] != key:
                rows[row].append([])
            rows[row][-1].append(values[i])
    return rows


def spells(blocks, thresh):
    wet, dry = [], []
    for block in blocks:
        kind, run = None, 0
        for x in block:
            if x == MISSING:
                now = None
            else:
                now = "Y" if f32(x) > thresh else "N"
            if now is not None and now == kind:
                run += 1
                continue
            if kind == "Y":
                wet.append(run)
            elif kind == "N":
                dry.append(run)
            kind, run = now, 1
        if kind == "Y":
            wet.append(run)
        elif kind == "N":
            dry.append(run)
    return wet, dry


def spell_summary(lengths):
    if not lengths:
        return 0.0, 0.0, 0.0, 0.0
    k = float(len(lengths))
    days = 0.0
    persistent = 0.0
    for length in lengths:
        days += length
        persistent += length if length > 1 else 0
    mean = days / k
    squares = 0.0
    for length in lengths:
        squares += (length - mean) * (length - mean)
    return mean, float(max(lengths)), (squares / k) ** 0.5, persistent / days


def median_spell(lengths):
    if not lengths:
        return MISSING
    s = sorted(lengths)
    k = len(s)
    if k == 1:
        return float(s[0])
    if k % 2 == 0:
        return (s[k // 2 - 1] + s[k // 2]) / 2.0
    return float(s[k // 2])


def member_table(rows, cfg):
    sel = cfg["selected"]
    wet = any(sel[c] for c in list(range(15, 24)) + list(range(26, 31)))
    thresh = f32(cfg["thresh"])
    table = {r: [0.0] * 31 for r in range(1, 18)}

    def counted(x):
        return x != MISSING and (not wet or f32(x) > thresh)

    sorted_year = None
    for r in range(17, 0, -1):  # the year first: POP needs its sorted values
        t = table[r]
        blocks = rows[r]
        values = [x for b in blocks for x in b]
        if not any(x != MISSING for x in values):
            table[r] = [MISSING] * 31
            continue
        row_length = len(values) + len(blocks) + 1
        take = [x for x in values if counted(x)]
        total = 0.0
        for x in take:
            total += x
        n = len(take)
        dry = sum(1 for x in values if x != MISSING and wet and not f32(x) > thresh)
        t[COL["Mean"]] = total / n if n else MISSING
        t[COL["Maximum"]] = max(take) if take else MISSING
        t[COL["Minimum"]] = min(take) if take else MISSING
        t[COL["POT"]] = float(sum(1 for x in take if f32(x) >= f32(cfg["pot"])))
        t[COL["PBT"]] = float(sum(1 for x in take if f32(x) <= f32(cfg["pbt"])))
        t[COL["Count"]] = float(n)
        t[COL["Sum"]] = total
        t[COL["Wet-days%"]] = n / (n + dry) if n + dry else 0.0
        ranges = [max(c) - min(c) for c in ([x for x in b if counted(x)] for b in blocks) if c]
        t[COL["Max_Range"]] = max(ranges) if ranges else MISSING
        t[COL["Min_Range"]] = min(ranges) if ranges and min(ranges) < 99999 else MISSING
        # Moments, population forms.
        squares = cubes = 0.0
        for x in take:
            d = x - t[COL["Mean"]]
            squares += d * d
            cubes += d * d * d
        variance = squares / n if n else 0.0
        t[COL["Variance"]] = variance
        sd = variance ** 0.5
        t[COL["Skewness"]] = (cubes / n) / (sd * sd * sd) if n and variance > 0 else 0.0
        # Largest N-day total within a block; missing days add nothing.
        span = cfg["nday"]
        best = 0.0
        if row_length >= span:
            for b in blocks:
                for i in range(0, len(b) - span + 1):
                    window = 0.0
                    for x in b[i:i + span]:
                        window += 0.0 if x == MISSING else x
                    best = max(best, window)
        t[COL["Max_NTot"]] = best
        # Lag-1 autocorrelation of neighbouring real values within a block.
        pairs = [(b[i], b[i + 1]) for b in blocks for i in range(len(b) - 1)
                 if b[i] != MISSING and b[i + 1] != MISSING]
        if len(pairs) >= 3:
            sa = sb = 0.0
            for a, b2 in pairs:
                sa += a
                sb += b2
            ma, mb = sa / len(pairs), sb / len(pairs)
            cross = qa = qb = 0.0
            for a, b2 in pairs:
                cross += (a - ma) * (b2 - mb)
                qa += (a - ma) * (a - ma)
                qb += (b2 - mb) * (b2 - mb)
            root = (qa * qb) ** 0.5
            t[COL["ACF"]] = 1.0 if root == 0 else cross / root
        else:
            t[COL["ACF"]] = MISSING
        # Spells.
        spell_cols = ["Dry-spell", "Wet-spell", "Max_dspel", "Max_wspel", "SD_WetSpell",
                      "SD_DrySpell", "Wet_Persis", "Dry_Persis", "Persis_Corr", "Med_Wet",
                      "Med_Dry"]
        if wet and row_length > 2:
            w, d = spells(blocks, thresh)
            wm, wx, ws, wp = spell_summary(w)
            dm, dx, ds, dp = spell_summary(d)
            t[COL["Wet-spell"]], t[COL["Max_wspel"]] = wm, wx
            t[COL["SD_WetSpell"]], t[COL["Wet_Persis"]] = ws, wp
            t[COL["Dry-spell"]], t[COL["Max_dspel"]] = dm, dx
            t[COL["SD_DrySpell"]], t[COL["Dry_Persis"]] = ds, dp
            t[COL["Persis_Corr"]] = wp - (1 - dp) if wp != 0 and dp != 0 else MISSING
            t[COL["Med_Wet"]] = median_spell(w)
            t[COL["Med_Dry"]] = median_spell(d)
        else:
            for name in spell_cols:
                t[COL[name]] = MISSING
        # Median and percentiles of the counted values.
        s = sorted(take)
        if r == 17:
            sorted_year = s
        if n == 0:
            t[COL["Percentile"]] = t[COL["Median"]] = t[COL["IQR"]] = MISSING
        elif n == 1:
            t[COL["Percentile"]] = t[COL["Median"]] = s[0]
            t[COL["IQR"]] = 0.0
        else:
            t[COL["Percentile"]] = percentile(s, float(f32(cfg["percentile"])))
            t[COL["Median"]] = percentile(s, 50.0)
            t[COL["IQR"]] = percentile(s, 75.0) - percentile(s, 25.0)
        if n > 1 and wet:
            level = percentile(sorted_year, float(f32(cfg["pop"])))
            above = [x for x in s if x > level]
            whole = 0.0
            for x in s:
                whole += x
            part = 0.0
            for x in above:
                part += x
            t[COL["POP"]] = float(len(above))
            t[COL["POP_Tot"]] = part / whole if whole > 0 else MISSING
        else:
            t[COL["POP"]] = t[COL["POP_Tot"]] = MISSING
    return table


def blocks_with_data(blocks):
    return sum(1 for b in blocks if any(x != MISSING for x in b))


def period_results(path, members, year_length, record_start, start, end, cfg, member, mean):
    days, values = read_period(path, members, year_length, record_start, start, end)
    all_rows = [blocks_of(days, v) for v in values]
    block_count = {r: max(blocks_with_data(rows[r]) for rows in all_rows) for r in range(1, 18)}
    chosen = range(members) if (mean and members > 1) else [member - 1 if members > 1 else 0]
    tables = []
    for m in chosen:
        t = member_table(all_rows[m], cfg)
        for r in range(1, 18):
            if t[r][COL["Sum"]] != MISSING:
                t[r][COL["Sum"]] = (t[r][COL["Sum"]] / block_count[r] if block_count[r]
                                    else MISSING)
        tables.append(t)
    if len(tables) == 1:
        return tables[0], None
    means = {r: [0.0] * 31 for r in range(1, 18)}
    sds = {r: [0.0] * 31 for r in range(1, 18)}
    for r in range(1, 18):
        for c in range(1, 31):
            got = [t[r][c] for t in tables if t[r][c] != MISSING]
            if not got:
                means[r][c] = sds[r][c] = MISSING
                continue
            total = 0.0
            for x in got:
                total += x
            mu = total / len(got)
            squares = 0.0
            for x in got:
                squares += (x - mu) * (x - mu)
            means[r][c], sds[r][c] = mu, (squares / len(got)) ** 0.5
    return means, sds


# ---------------------------------------------------------------------------------------
# Deltas and t tests

def delta(base, period, cfg):
    out = {r: [MISSING] * 31 for r in range(1, 18)}
    for r in range(1, 18):
        for c in range(1, 31):
            if not cfg["selected"][c]:
                continue
            b, v = base[r][c], period[r][c]
            if b == MISSING or v == MISSING:
                continue
            if cfg["delta"] == "absolute":
                out[r][c] = v - b
            elif b >= 0.005 or b <= -0.005:
                out[r][c] = (v - b) / b * 100
    return out


def t_test(base, period):
    out = {}
    for r in range(1, 18):
        mp, vp, np_ = (period[r][COL[k]] for k in ("Mean", "Variance", "Count"))
        mb, vb, nb = (base[r][COL[k]] for k in ("Mean", "Variance", "Count"))
        if MISSING in (mp, vp, np_, mb, vb, nb) or np_ <= 0 or nb <= 0:
            out[r] = (MISSING, MISSING)
            continue
        sp, sb = vp / np_, vb / nb
        se = (sp + sb) ** 0.5
        if se < 0.005:
            out[r] = (MISSING, MISSING)
            continue
        dof = (sp + sb) * (sp + sb) / (sp * sp / (np_ + 1) + sb * sb / (nb + 1))
        out[r] = (abs(mp - mb) / se, dof)
    return out


# ---------------------------------------------------------------------------------------
# Results file

def fmt3(x):
    q = Decimal(repr(float(x))).quantize(Decimal("0.001"), rounding=ROUND_HALF_EVEN)
    text = "%s" % q
    return text[1:] if q == 0 and text.startswith("-") else text


def fmt_whole(x):
    q = Decimal(repr(float(x))).quantize(Decimal("1"), rounding=ROUND_HALF_EVEN)
    return "" if q == 0 else "%d" % q


def table_text(cfg, table):
    cols = [c for c in range(1, 31) if cfg["selected"][c]]
    lines = ["Month" + "".join("," + NAMES[c - 1] for c in cols)]
    for r in range(1, 18):
        lines.append(ROWS[r - 1] + "," + "".join(fmt3(table[r][c]) + "," for c in cols))
    return lines


def results_text(cfg):
    year_length = cfg.get("year_length", 366)
    record_start = parse(cfg.get("record_start", "01/01/1961"))
    args = (cfg["path"], cfg["members"], year_length, record_start)
    mean, member = cfg.get("mean", False), cfg.get("member", 1)
    start, end = parse(cfg["start"]), parse(cfg["end"])
    base, sds = period_results(*args, start, end, cfg, member, mean)
    lines = ["SUMMARY STATISTICS FOR: " + cfg["path"],
             "Analysis Start Date: " + cfg["start"],
             "Analysis End Date: " + cfg["end"],
             "Ensemble Member(s): " + ("ALL" if mean else str(member))]
    lines += table_text(cfg, base)
    if sds is not None:
        lines += ["", "Standard Deviations of Results"] + table_text(cfg, sds)
    if "periods" in cfg:
        kind = cfg["delta"]
        lines += ["", "DELTA STATISTICS for %s (%s difference)" % (cfg["path"], kind)]
        tests = []
        for label, (a, b) in zip(("Period A", "Period B", "Period C"), cfg["periods"]):
            period, _ = period_results(*args, parse(a), parse(b), cfg, member, mean)
            lines += ["", "%s: %s to %s" % (label, a, b)]
            lines += table_text(cfg, delta(base, period, cfg))
            tests.append(t_test(base, period))
        for title, index, fmt in (("T Test Results", 0, fmt3),
                                  ("Degrees of Freedom for T Test", 1, fmt_whole)):
            lines += ["", title, "Period,Period A,Period B,Period C"]
            for r in range(1, 18):
                lines.append(ROWS[r - 1] + "," + "".join(fmt(t[r][index]) + "," for t in tests))
    return CRLF.join(lines) + CRLF


def selection(names):
    sel = [False] * 31
    for name in names:
        sel[COL[name]] = True
    return sel


# ---------------------------------------------------------------------------------------
# Data

def rainfall(rng, days, wet_chance, scale, missing_chance):
    wet = rng.random(days) < wet_chance
    amount = np.round(rng.gamma(0.8, scale, days), 3)
    values = np.where(wet, np.maximum(amount, 0.001), 0.0)
    values = np.where(rng.random(days) < missing_chance, MISSING, values)
    return [float(v) for v in values]


def make_data():
    rng = np.random.default_rng(20240605)
    # Observed: 1961 to 1964, one number a day, with a few missing days and a missing run
    # across the end of May 1962.
    days = (dt.date(1964, 12, 31) - dt.date(1961, 1, 1)).days + 1
    observed = rainfall(rng, days, 0.45, 6.0, 0.01)
    gap = (dt.date(1962, 5, 29) - dt.date(1961, 1, 1)).days
    for i in range(gap, gap + 6):
        observed[i] = MISSING
    with open("observed.dat", "w", newline="") as f:
        for v in observed:
            f.write(("-999" if v == MISSING else "%.3f" % v) + CRLF)

    # Three members, 1961 to 1963; member 1 lacks all of February 1962, and some days are
    # missing for every member.
    days = (dt.date(1963, 12, 31) - dt.date(1961, 1, 1)).days + 1
    members = [rainfall(rng, days, 0.5, 5.0 + k, 0.0) for k in range(3)]
    feb = (dt.date(1962, 2, 1) - dt.date(1961, 1, 1)).days
    for i in range(feb, feb + 28):
        members[0][i] = MISSING
    for i in rng.choice(days, 12, replace=False):
        for k in range(3):
            members[k][i] = MISSING
    write_out("ensemble3.OUT", members)
    write_sim("ensemble3.SIM", 366, "01/01/1961", days, 3)

    # 360-day and 365-day years, two years each.
    write_out("cal360.OUT", [rainfall(rng, 720, 0.5, 4.0, 0.0) for _ in range(2)])
    write_sim("cal360.SIM", 360, "01/01/1961", 720, 2)
    write_out("cal365.OUT", [rainfall(rng, 730, 0.5, 4.0, 0.0)])
    write_sim("cal365.SIM", 365, "01/01/1961", 730, 1)

    # Eight years of three members that grow wetter, for the delta run.
    days = (dt.date(1968, 12, 31) - dt.date(1961, 1, 1)).days + 1
    trend = np.linspace(1.0, 1.6, days)
    members = [[v * w if v != MISSING else v for v, w in
                zip(rainfall(rng, days, 0.5, 4.0, 0.002), trend)] for _ in range(3)]
    members = [[round(v, 3) for v in m] for m in members]
    write_out("deltas.OUT", members)
    write_sim("deltas.SIM", 366, "01/01/1961", days, 3)


BASIC = ["Mean", "Maximum", "Minimum", "Median", "Variance", "Sum", "Max_NTot", "ACF"]
WET = ["Wet-days%", "Dry-spell", "Wet-spell", "Max_wspel", "SD_WetSpell", "POP", "POP_Tot",
       "Med_Wet"]
MORE = ["IQR", "POT", "PBT", "Percentile", "Skewness", "Count", "Max_Range", "Min_Range"]
DRY = ["Mean", "Max_dspel", "SD_DrySpell", "Wet_Persis", "Dry_Persis", "Persis_Corr",
       "Med_Dry", "Count"]
ENSEMBLE = ["Mean", "Maximum", "Minimum", "Sum", "Variance", "Count", "Percentile", "Max_NTot"]
DELTA = ["Mean", "Maximum", "Variance", "Count", "Sum", "Median", "Max_NTot", "ACF"]
DEFAULTS = dict(thresh=0.0, pot=0.0, pbt=0.0, percentile=95.0, nday=5, pop=90.0)

# Each run: its expected file, and the options of `varo stats` that make it (the C++ test
# repeats them).
RUNS = {
    "expected_observed_basic.txt": dict(path="observed.dat", members=1, start="01/01/1961",
                                        end="31/12/1964", names=BASIC, nday=3),
    "expected_observed_wet.txt": dict(path="observed.dat", members=1, start="15/03/1961",
                                      end="20/10/1964", names=WET, pop=80.0),
    "expected_observed_more.txt": dict(path="observed.dat", members=1, start="15/03/1961",
                                       end="20/10/1964", names=MORE, pot=10.0, pbt=0.5,
                                       percentile=90.0),
    "expected_observed_dry.txt": dict(path="observed.dat", members=1, start="01/01/1961",
                                      end="31/12/1964", names=DRY, thresh=0.5),
    "expected_ensemble_member1.txt": dict(path="ensemble3.OUT", members=3, member=1,
                                          start="01/01/1961", end="31/12/1963", names=ENSEMBLE),
    "expected_ensemble_mean.txt": dict(path="ensemble3.OUT", members=3, mean=True,
                                       start="01/01/1961", end="31/12/1963", names=ENSEMBLE),
    "expected_cal360.txt": dict(path="cal360.OUT", members=2, member=1, year_length=360,
                                start="01/03/1961", end="01/03/1962",
                                names=["Mean", "Sum", "Count", "Maximum"]),
    "expected_cal365.txt": dict(path="cal365.OUT", members=1, year_length=365,
                                start="01/02/1961", end="28/02/1962",
                                names=["Mean", "Sum", "Count", "Max_NTot"]),
    "expected_delta.txt": dict(path="deltas.OUT", members=3, mean=True, start="01/01/1961",
                               end="31/12/1962", names=DELTA, delta="percentage",
                               periods=[("01/01/1963", "31/12/1964"),
                                        ("01/01/1965", "31/12/1966"),
                                        ("01/01/1967", "31/12/1968")]),
}


def main():
    make_data()
    for name, run in RUNS.items():
        cfg = dict(DEFAULTS)
        cfg.update(run)
        cfg["selected"] = selection(cfg["names"])
        with open(name, "w", newline="") as f:
            f.write(results_text(cfg))


if __name__ == "__main__":
    main()
