#!/usr/bin/env python3
"""Writes a synthetic plate of denaturation curves from a parameter file:

    make_plate.py                          plate_parameters.json  -> plate.csv
    make_plate.py plate2_parameters.json   (two transitions)      -> plate2.csv
    make_plate.py plate3_parameters.json   (three transitions)    -> plate3.csv

The output file is named in the parameters ("output").  Every curve follows
the model of one, two or three transitions with linear baselines: each free energy
rises with ln(sample concentration), dG(c) = dG_at_1 + dG_per_ln_conc * ln(c),
each transition has one m value for all curves, and its midpoint is
Cm = dG / m.  With two transitions the first makes the share amp1 of the
signal change; with three the first two make amp1 and amp2.  Gaussian noise and a few spikes (curve, point, size) make the
data untidy.  Signals stay positive, as the fitting library counts
non-positive group means as missing.
Output columns: curve, sample_conc, denaturant, signal.
"""
import csv
import json
import math
import os
import random
import sys

here = os.path.dirname(os.path.abspath(__file__))
name = sys.argv[1] if len(sys.argv) > 1 else "plate_parameters.json"
with open(os.path.join(here, name)) as f:
    p = json.load(f)


def per_transition(key):
    """A parameter as a list with one entry per transition."""
    v = p[key]
    return v if isinstance(v, list) else [v]


rng = random.Random(p["seed"])
rt = (p["temperature_c"] + 273.15) * 1.9872
n = p["points_per_curve"]
spikes = {(c, i): size for c, i, size in p["spikes"]}
m_values = per_transition("m_value")
dg_at_1 = per_transition("dG_at_1")
dg_per_ln = per_transition("dG_per_ln_conc")
if len(m_values) == 3:
    shares = [p["amp1"], p["amp2"], 1.0 - p["amp1"] - p["amp2"]]
elif len(m_values) == 2:
    shares = [p["amp1"], 1.0 - p["amp1"]]
else:
    shares = [1.0]
a, b = p["native_baseline"]
c, d = p["unfolded_baseline"]
rows = []
curve = 0
for conc in p["sample_concentrations"]:
    dgs = [g + s * math.log(conc) for g, s in zip(dg_at_1, dg_per_ln)]
    cms = [g / m for g, m in zip(dgs, m_values)]
    for _ in range(p["replicates"]):
        for i in range(n):
            x = p["denaturant_max"] * i / (n - 1)
            y = 0.0
            for dg, cm, w in zip(dgs, cms, shares):
                k = math.exp(-(dg * (1 - x / cm)) / rt)
                y += w * (a + b * x + (c + d * x) * k) / (1 + k)
            y += rng.gauss(0.0, p["noise_sd"]) + spikes.get((curve, i), 0.0)
            rows.append((curve, conc, round(x, 6), round(y, 4)))
        curve += 1

with open(os.path.join(here, p.get("output", "plate.csv")), "w", newline="") as f:
    w = csv.writer(f)
    w.writerow(["curve", "sample_conc", "denaturant", "signal"])
    w.writerows(rows)
