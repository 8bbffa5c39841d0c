#!/usr/bin/python3
"""Lower normal quantiles that the generator's zMin walk must approach within its step
of 0.0001: the tails 1 / (wetCount + 1) for a few sample sizes.
Run with Debian's python3:  /usr/bin/python3 normal_quantiles.py"""
from scipy.stats import norm

for wet_count in (10, 100, 1000, 15000):
    tail = 1 / (wet_count + 1)
    print("{%d, %.9f}," % (wet_count, norm.ppf(tail)))
