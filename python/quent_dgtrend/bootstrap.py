"""Bootstrap intervals by residual resampling: each replicate adds the
residuals of the kept points, drawn with replacement per curve, to the
fitted curve, and refits through the user-constrained fit under the
original point mask and the original choice of curves.  Replicate b draws
from its own stream of the seed's sequence, so a seed gives the same
intervals serially, on processes or on a cluster."""
from dataclasses import dataclass

import numpy as np

from .data import Curve, Plate
from .fit import fit_plate, refit_plate, transitions_of, trend


def _replicate(plate, fit, flags, states, temperature, stream):
    """(per-curve dG, Cm, m of each transition; per-transition slope, intercept)."""
    rng = np.random.Generator(np.random.PCG64(stream))
    curves = []
    for c, cf in zip(plate.curves, fit.curves):
        y = c.signal.copy()
        if cf.accepted:
            fitted, _ = cf.fitted_curve()
            kept = cf.point_mask == 1
            residuals = (c.signal - fitted)[kept]
            y[kept] = fitted[kept] + rng.choice(residuals, size=residuals.size, replace=True)
        curves.append(Curve(c.name, c.sample_conc, c.denaturant, y))
    again = refit_plate(Plate(curves), fit.point_mask, flags, states, temperature)
    T = transitions_of(states)
    values = np.full((len(curves), 3, T), np.nan)
    for k, cf in enumerate(again.curves):
        if cf.accepted:
            values[k] = [cf.dG, cf.Cm, cf.m]
    lines = np.full((T, 2), np.nan)
    if len({c.sample_conc for c in plate.curves}) > 1:
        for t in range(T):
            line = trend(again, t + 1, flags)
            lines[t] = [line.slope, line.intercept]
    return values, lines


def _run(job):
    return _replicate(*job)


@dataclass
class Intervals:
    """Percentile intervals at `level`, and how many replicates gave a fit."""
    level: float
    replicates: int
    curves: object   # DataFrame: curve, parameter, estimate, low, high, fitted_replicates
    trend: object    # DataFrame: transition, parameter, estimate, low, high


def bootstrap(plate, states=2, temperature=25.0, replicates=200, seed=0, level=0.95,
              executor=None, progress=False):
    """Intervals of dG, Cm and m of every fitted curve, and of the trend's slope
    and intercept, from `replicates` residual resamplings."""
    import pandas as pd
    fit = fit_plate(plate, states, temperature)
    flags = np.array([1 if c.accepted else 0 for c in fit.curves], dtype=np.int32)
    # The estimate is the refit under this mask and choice, which the replicates repeat.
    base = refit_plate(plate, fit.point_mask, flags, states, temperature)
    streams = np.random.SeedSequence(seed).spawn(replicates)
    jobs = [(plate, base, flags, states, temperature, s) for s in streams]
    results = executor.map(_run, jobs) if executor is not None else map(_run, jobs)
    if progress:
        from tqdm import tqdm
        results = tqdm(results, total=replicates, unit="replicate", desc="bootstrap",
                       disable=None)
    results = list(results)
    values = np.stack([r[0] for r in results])   # replicate, curve, quantity, transition
    lines = np.stack([r[1] for r in results])    # replicate, transition, slope/intercept
    tail = (1.0 - level) / 2.0 * 100.0
    records = []
    for k, cf in enumerate(base.curves):
        if not cf.accepted:
            continue
        for q, name in enumerate(("dG", "Cm", "m")):
            for t in range(cf.transitions):
                sample = values[:, k, q, t]
                sample = sample[np.isfinite(sample)]
                low, high = (np.percentile(sample, [tail, 100.0 - tail]) if sample.size
                             else (np.nan, np.nan))
                records.append({"curve": cf.name, "parameter": f"{name}{t + 1}",
                                "estimate": [cf.dG, cf.Cm, cf.m][q][t], "low": low,
                                "high": high, "fitted_replicates": int(sample.size)})
    trend_records = []
    if len({c.sample_conc for c in plate.curves}) > 1:
        for t in range(transitions_of(states)):
            line = trend(base, t + 1, flags)
            for j, name in enumerate(("slope", "intercept")):
                sample = lines[:, t, j][np.isfinite(lines[:, t, j])]
                low, high = np.percentile(sample, [tail, 100.0 - tail])
                trend_records.append({"transition": t + 1, "parameter": name,
                                      "estimate": [line.slope, line.intercept][j],
                                      "low": low, "high": high})
    return Intervals(level, replicates, pd.DataFrame.from_records(records),
                     pd.DataFrame.from_records(trend_records))
