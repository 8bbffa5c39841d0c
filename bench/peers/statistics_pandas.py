#!/usr/bin/python3
"""Peer of `varo stats`: monthly, seasonal and annual means, medians and 95th percentiles
of the wet days of every member of an OUT file, and their ensemble mean, with pandas.

Usage: statistics_pandas.py RUN.OUT START(yyyy-mm-dd) > table.csv
"""
import sys

import numpy as np
import pandas as pd


def main():
    path, start = sys.argv[1], sys.argv[2]
    data = pd.read_csv(path, sep=r"\s+", header=None, engine="c", dtype=np.float64)
    data.index = pd.date_range(start, periods=len(data), freq="D")
    data = data.where((data != -999.0) & (data > 0.0))  # wet days only
    month = data.index.month
    season = np.select([np.isin(month, [12, 1, 2]), np.isin(month, [3, 4, 5]),
                        np.isin(month, [6, 7, 8])], [13, 14, 15], 16)
    rows = []
    for key in (month, season, np.full(len(data), 17)):
        grouped = data.groupby(key)
        table = pd.concat({"Mean": grouped.mean().mean(axis=1),
                           "Median": grouped.median().mean(axis=1),
                           "Percentile": grouped.quantile(0.95).mean(axis=1)}, axis=1)
        rows.append(table)
    pd.concat(rows).to_csv(sys.stdout, float_format="%.3f")


if __name__ == "__main__":
    main()
