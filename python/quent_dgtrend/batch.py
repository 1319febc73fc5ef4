"""Many sets of curves fitted side by side.  A set is what one call of the
library fits together (a file, or the curves pooled from several); sets
are independent, so they run on any concurrent.futures.Executor: a process
pool on one machine, or a Dask cluster's executor across many."""
from dataclasses import dataclass, field

import numpy as np

from .data import DataError, plan_calls
from .fit import fit_plate, normalize, refit_plate, transitions_of, trend
from .warnings import curve_warnings


@dataclass
class Options:
    """How a set is fitted: the model family (states), the temperature in
    degrees Celsius, what may be done to untidy curves, and exclusions."""
    states: int = 2
    temperature: float = 25.0
    resample: bool = False
    thin: bool = False
    exclude: list = field(default_factory=list)  # (curve, point indices or None)
    normalize: bool = False
    compare_models: bool = False
    bootstrap: int = 0          # replicates; 0 for none
    seed: int = 0
    level: float = 0.95


@dataclass
class SetResult:
    """What the fits of one set give: notices first, then a line per curve
    and per trend, and the results table (None for a refused set)."""
    label: str
    notices: list
    lines: list
    table: object = None
    error: str = None
    # Per call: {"fit", "flags", "trends", "comparison", "intervals"}, for reports.
    parts: list = field(default_factory=list)


def _choice(fit, exclude):
    """The automatic mask and all flags 1, with the scientist's exclusions."""
    names = [c.name for c in fit.curves]
    n = len(fit.curves[0].point_mask)
    mask, flags = fit.point_mask.copy(), np.ones(len(names), dtype=np.int32)
    said = []
    unknown = []
    for name, points in exclude:
        if name not in names:
            unknown.append(name)
            continue
        k = names.index(name)
        if points is None:
            flags[k] = 0
            said.append(f"curve {name} left out")
        else:
            inside = [p for p in points if 0 <= p < n]
            mask[k * n + np.array(inside, dtype=int)] = 0
            said.append(f"curve {name}: points {','.join(map(str, inside))} taken out")
            if len(inside) < len(points):
                said.append(f"curve {name} has points 0 to {n - 1} only; the others asked for "
                            "were ignored")
    return mask, flags, said, unknown


def fit_set(label, curves, options, executor=None):
    """Fits one set of curves; never raises for bad data (the error is in the result).
    The bootstrap replicates run on `executor` when one is given."""
    try:
        plates, notices = plan_calls(curves, options.resample, options.thin)
    except DataError as error:
        return SetResult(label, [], [], None, str(error))
    lines, tables, parts = [], [], []
    if options.normalize:
        for plate in plates:
            for curve in plate.curves:
                curve.signal = normalize(curve.signal, float(np.max(curve.signal)), 100.0)
        notices.append("every curve scaled so that its largest signal is 100")
    for plate in plates:
        fit = fit_plate(plate, states=options.states, temperature=options.temperature)
        flags = None
        if options.exclude:
            mask, flags, said, unknown = _choice(fit, options.exclude)
            if unknown:
                notices.append("no curve " + ", ".join(unknown) + " here to exclude; curves "
                               "are " + ", ".join(c.name for c in fit.curves))
            if said:
                notices.append("refit under your choice: " + "; ".join(said))
                fit = refit_plate(plate, mask, flags, options.states, options.temperature)
        table = fit.table()
        table.insert(0, "set", label)
        tables.append(table)
        part = {"fit": fit, "flags": flags, "trends": [], "comparison": None, "intervals": None}
        parts.append(part)
        preferred = {}
        if options.compare_models:
            from .compare import RULE, compare_models
            comparison = compare_models(plate, options.temperature)
            part["comparison"] = comparison
            chosen = comparison[comparison["preferred"]]
            preferred = dict(zip(chosen["curve"], chosen["states"]))
        for curve in fit.curves:
            if curve.accepted:
                values = ", ".join(f"dG{t + 1} {g:.1f} cal/mol, Cm{t + 1} {c:.4g}"
                                   for t, (g, c) in enumerate(zip(curve.dG, curve.Cm)))
                lines.append(f"curve {curve.name}: {values}, R2 {curve.r_squared:.5f}, "
                             f"{curve.kept_points} of {len(curve.point_mask)} points kept")
            else:
                lines.append(f"curve {curve.name}: no accepted fit (code {curve.code}): "
                             f"{fit.reason(fit.curves.index(curve))}")
            # A curve without a fit has its reason above instead.
            if curve.accepted:
                for warning in curve_warnings(curve, preferred.get(curve.name)):
                    lines.append(f"  warning: curve {curve.name}: {warning}")
        if options.compare_models:
            lines.append(f"model comparison ({RULE}):")
            for name, rows in comparison.groupby("curve", sort=False):
                name = "set as a whole" if name == "(set)" else f"curve {name}"
                scores = ", ".join(
                    f"{r.states} states AICc {r.AICc:.2f} BIC {r.BIC:.2f}" if r.accepted
                    else f"{r.states} states not accepted" for r in rows.itertuples())
                chosen = rows[rows["preferred"]]
                verdict = (f"prefers {int(chosen['states'].iloc[0])} states" if len(chosen)
                           else "no accepted model")
                lines.append(f"  {name}: {verdict} ({scores})")
        if options.bootstrap > 0:
            from .bootstrap import bootstrap
            intervals = bootstrap(plate, options.states, options.temperature, options.bootstrap,
                                  options.seed, options.level, executor, progress=True)
            part["intervals"] = intervals
            percent = f"{100 * options.level:g}%"
            lines.append(f"bootstrap, {options.bootstrap} residual resamplings (seed "
                         f"{options.seed}), {percent} percentile intervals:")
            for r in intervals.curves.itertuples():
                lines.append(f"  curve {r.curve}: {r.parameter} {r.estimate:.4g} in "
                             f"[{r.low:.4g}, {r.high:.4g}] ({r.fitted_replicates} replicates fitted)")
            for r in intervals.trend.itertuples():
                lines.append(f"  trend of dG{r.transition}: {r.parameter} {r.estimate:.2f} in "
                             f"[{r.low:.2f}, {r.high:.2f}]")
        if len({c.sample_conc for c in plate.curves}) > 1:
            for t in range(1, transitions_of(options.states) + 1):
                line = trend(fit, transition=t, curve_flags=flags)
                part["trends"].append(line)
                used = int((line.used == 1).sum())
                if used == 0:
                    lines.append(f"no trend of dG{t}: no curve has an accepted fit")
                    continue
                flat = (" (slope 0: the library keeps a flat line when the trend does not "
                        "beat the scatter)" if line.slope == 0.0 else "")
                lines.append(f"trend of dG{t} over ln(sample_conc): slope {line.slope:.2f}, "
                             f"intercept {line.intercept:.2f} cal/mol, R2 {line.r_squared:.4f}, "
                             f"{used} concentrations with fits{flat}")
    import pandas as pd
    return SetResult(label, notices, lines, pd.concat(tables, ignore_index=True), None, parts)


def fit_sets(sets, options, executor=None, progress=False):
    """SetResults of [(label, curves), ...] in the given order, on `executor`
    when one is given (any concurrent.futures.Executor), else here."""
    if executor is None:
        results = (fit_set(label, curves, options) for label, curves in sets)
    else:
        futures = [executor.submit(fit_set, label, curves, options) for label, curves in sets]
        results = (f.result() for f in futures)
    if progress and len(sets) > 1:
        from tqdm import tqdm
        results = tqdm(results, total=len(sets), unit="set", desc="fitting", disable=None)
    return list(results)
