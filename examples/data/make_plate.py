#!/usr/bin/env python3
"""Writes plate.csv, a synthetic plate of denaturation curves, from
plate_parameters.json beside it.

Every curve follows the one-transition model with linear baselines: the free
energy rises with ln(sample concentration), dG(c) = dG_at_1 + dG_per_ln_conc *
ln(c), all curves share one m value, and the midpoint is Cm = dG / m.  Gaussian
noise and a few spikes (curve, point, size) make the data untidy.  Signals stay
positive, as the fitting library counts non-positive group means as missing.
Output columns: curve, sample_conc, denaturant, signal.
"""
import csv
import json
import math
import os
import random

here = os.path.dirname(os.path.abspath(__file__))
with open(os.path.join(here, "plate_parameters.json")) as f:
    p = json.load(f)

rng = random.Random(p["seed"])
rt = (p["temperature_c"] + 273.15) * 1.9872
n = p["points_per_curve"]
spikes = {(c, i): size for c, i, size in p["spikes"]}
rows = []
curve = 0
for conc in p["sample_concentrations"]:
    dg = p["dG_at_1"] + p["dG_per_ln_conc"] * math.log(conc)
    cm = dg / p["m_value"]
    for _ in range(p["replicates"]):
        for i in range(n):
            x = p["denaturant_max"] * i / (n - 1)
            k = math.exp(-(dg * (1 - x / cm)) / rt)
            a, b = p["native_baseline"]
            c, d = p["unfolded_baseline"]
            y = (a + b * x + (c + d * x) * k) / (1 + k)
            y += rng.gauss(0.0, p["noise_sd"]) + spikes.get((curve, i), 0.0)
            rows.append((curve, conc, round(x, 6), round(y, 4)))
        curve += 1

with open(os.path.join(here, "plate.csv"), "w", newline="") as f:
    w = csv.writer(f)
    w.writerow(["curve", "sample_conc", "denaturant", "signal"])
    w.writerows(rows)
