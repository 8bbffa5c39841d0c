#!/usr/bin/python3
"""Reference numbers for the whole-run tests of summary statistics, computed independently.

Writes run.OUT: two members over 1961 to 1963 in a 365-day calendar, values with three
decimals in 14-character zones, member 2 missing (-999) through February 1962 and on a few
other days. Then, straight from the definitions with numpy, for each member and each of
the 17 rows (months, Winter to Autumn, the year) of the base period 1961-1962: Mean,
Maximum, population Variance, Sum as the mean total per block (a month, a season or a year
in a row; a block counts when it holds a value in any member) and Count. Also the ensemble
mean and population deviation over the members, the percentage change of the Mean from the
base period to 1963, and the t test of that change (Welch, with n + 1 in the denominators).
Run with Debian's python3: /usr/bin/python3 make_reference.py
"""
import numpy as np

MISSING = -999.0
LENGTHS = [31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31]
SEASON = {12: 13, 1: 13, 2: 13, 3: 14, 4: 14, 5: 14, 6: 15, 7: 15, 8: 15, 9: 16, 10: 16, 11: 16}


def days(first_year, last_year):
    return [(y, m) for y in range(first_year, last_year + 1) for m in range(1, 13)
            for _ in range(LENGTHS[m - 1])]


def series():
    rng = np.random.default_rng(17)
    calendar = days(1961, 1963)
    values = np.round(rng.gamma(2.0, 3.0, size=(len(calendar), 2)) - 1.0, 3)
    values[:, 1] += 0.5
    for i, (y, m) in enumerate(calendar):
        if y == 1962 and m == 2:
            values[i, 1] = MISSING
    values[[5, 100, 400, 800], 1] = MISSING
    return calendar, values


def row_blocks(calendar):
    """For each day its block key in each of its three rows."""
    keys = []
    season_block = 0
    for i, (y, m) in enumerate(calendar):
        if i > 0 and SEASON[m] != SEASON[calendar[i - 1][1]]:
            season_block += 1
        keys.append({m: (y, m), SEASON[m]: season_block, 17: y})
    return keys


def statistics(calendar, values):
    """Per member: row -> [mean, max, variance, total, count], and per row the block count."""
    keys = row_blocks(calendar)
    members = values.shape[1]
    results = [dict() for _ in range(members)]
    block_count = {}
    for row in range(1, 18):
        blocks_with_data = []
        for k in range(members):
            picked = [values[i, k] for i in range(len(calendar)) if row in keys[i]
                      and values[i, k] != MISSING]
            blocks = {keys[i][row] for i in range(len(calendar)) if row in keys[i]
                      and values[i, k] != MISSING}
            blocks_with_data.append(len(blocks))
            x = np.array(picked)
            results[k][row] = [x.mean(), x.max(), x.var(), x.sum(), float(len(x))]
        block_count[row] = max(blocks_with_data)
    for k in range(members):
        for row in range(1, 18):
            results[k][row][3] /= block_count[row]
    return results


def main():
    calendar, values = series()
    with open("run.OUT", "w", newline="") as out:
        for row in values:
            out.write("".join(f"{v:.3f}".ljust(14) for v in row) + "\r\n")
    base_days = 2 * 365
    base = statistics(calendar[:base_days], values[:base_days])
    later = statistics(calendar[base_days:], values[base_days:])
    lines = []
    for k in range(2):
        for row in range(1, 18):
            lines.append(f"member{k + 1} {row} " + " ".join(repr(float(v)) for v in base[k][row]))
    for row in range(1, 18):
        table = np.array([base[k][row] for k in range(2)])
        lines.append(f"mean {row} " + " ".join(repr(float(v)) for v in table.mean(axis=0)))
        lines.append(f"deviation {row} " + " ".join(repr(float(v)) for v in table.std(axis=0)))
    for row in range(1, 18):
        # Member 1 alone: its change of the Mean and the t test of that change.
        mb, _, vb, _, nb = base[0][row]
        mp, _, vp, _, np_ = later[0][row]
        share_b, share_p = vb / nb, vp / np_
        se = np.sqrt(share_p + share_b)
        dof = (share_p + share_b) ** 2 / (share_p ** 2 / (np_ + 1) + share_b ** 2 / (nb + 1))
        lines.append(f"change {row} {(mp - mb) / mb * 100.0!r} {abs(mp - mb) / se!r} {dof!r}")
    with open("reference.txt", "w") as out:
        out.write("\n".join(lines) + "\n")


main()
