#!/usr/bin/python3
"""The library against the fit a scientist would write: scipy's curve_fit
(MINPACK's Levenberg-Marquardt, its defaults, no bounds, no Jacobian, a
vectorised numpy model, a simple three-point start), one call per curve, in
the same process on the same plates.  Prints both times, their ratio, and
both fits' errors against the generating parameters.

    /usr/bin/python3 bench/side_by_side.py [--repeat N]

Needs the library built in build/ and Debian's python3-numpy, python3-pandas
and python3-scipy."""
import argparse
import sys
import time
import warnings
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "python"))
import quent_dgtrend as qd  # noqa: E402

RT = 592.4836799999999
PLATES = [  # (transitions, curves, points)
    (1, 96, 96),
    (2, 48, 96),
    (3, 24, 120),
]


def model(x, T, *p):
    """The same model as the library's, vectorised: dG_t, Cm_t, shares, baselines."""
    dG, Cm = p[0:2 * T:2], p[1:2 * T:2]
    shares = list(p[2 * T:3 * T - 1])
    a, b, c, d = p[3 * T - 1:3 * T + 3]
    weights = shares + [1.0 - sum(shares)]
    y = 0.0
    for t in range(T):
        K = np.exp(-(dG[t] * (1.0 - x / Cm[t])) / RT)
        y = y + weights[t] * (a + b * x + (c + d * x) * K) / (1.0 + K)
    return y


def make_plate(T, curves, points, seed):
    """Curves at six concentrations (m rising with ln c), noise and a few spikes;
    (plate, truth: one (dG1, Cm1) per curve)."""
    rng = np.random.default_rng(seed)
    x = np.linspace(0.0, 8.0, points)
    made, truth = [], []
    for k in range(curves):
        conc = 0.5 * 2 ** (k % 6)
        m = 1900.0 + 60.0 * np.log(conc)
        Cm = [1.5 + 6.0 * (t + 0.5) / T * 0.8 + 0.1 * np.log(conc) for t in range(T)]
        p = []
        for t in range(T):
            p += [m * Cm[t] * (1.0 + 0.4 * t), Cm[t]]
        p += [0.5, 0.3][:T - 1] if T < 3 else [0.35, 0.3]
        p += [100.0, 0.4, 40.0, 0.6]
        y = model(x, T, *p) + rng.normal(0.0, 0.3, points)
        if rng.uniform() < 0.2:
            y[rng.integers(points)] += 8.0
        made.append(qd.Curve(str(k), conc, x, y))
        truth.append((p[0], p[1]))
    return qd.Plate(made), truth


def start(x, y, T):
    """Baselines from the first and last three points, midpoints spread over the
    range, m of 2000, equal shares."""
    Cm = [x[0] + (x[-1] - x[0]) * (t + 1) / (T + 1) for t in range(T)]
    p = []
    for c in Cm:
        p += [2000.0 * c, c]
    p += [1.0 / T] * (T - 1)
    p += [float(np.mean(y[:3])), 0.0, float(np.mean(y[-3:])), 0.0]
    return p


def with_curve_fit(plate, T):
    from scipy.optimize import curve_fit
    found = []
    for c in plate.curves:
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("ignore")
                p, _ = curve_fit(lambda x, *q: model(x, T, *q), c.denaturant, c.signal,
                                 p0=start(c.denaturant, c.signal, T))
            found.append((p[0], p[1]))
        except (RuntimeError, ValueError):
            found.append((np.nan, np.nan))
    return found


def error(found, truth):
    """Median relative error of dG1 and of Cm1 over the curves that gave a value."""
    f, t = np.array(found, dtype=float), np.array(truth, dtype=float)
    ok = np.isfinite(f).all(axis=1)
    rel = np.abs(f[ok] - t[ok]) / np.abs(t[ok])
    return ok.sum(), np.median(rel[:, 0]), np.median(rel[:, 1])


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--repeat", type=int, default=3, help="timed runs of each (best kept)")
    args = parser.parse_args()
    try:
        import scipy.optimize  # noqa: F401
    except ImportError:
        print("side_by_side: needs Debian's python3-scipy (apt-get install python3-scipy)",
              file=sys.stderr)
        return 2
    print(f"library {qd.version()}; best of {args.repeat} runs each\n")
    print(f"{'plate':>22} {'library':>10} {'curve_fit':>10} {'ratio':>7}   "
          f"{'fits':>9} {'dG1 err':>8} {'Cm1 err':>8}")
    for T, curves, points in PLATES:
        plate, truth = make_plate(T, curves, points, seed=T)
        best = [float("inf"), float("inf")]
        for _ in range(args.repeat):
            t0 = time.perf_counter()
            fit = qd.fit_plate(plate, states=T + 1)
            t1 = time.perf_counter()
            reference = with_curve_fit(plate, T)
            t2 = time.perf_counter()
            best = [min(best[0], t1 - t0), min(best[1], t2 - t1)]
        ours = [(c.dG[0], c.Cm[0]) if c.accepted else (np.nan, np.nan) for c in fit.curves]
        name = f"{T} transition(s), {curves}x{points}"
        for who, found, seconds in (("library", ours, best[0]), ("curve_fit", reference, best[1])):
            n, e_dG, e_Cm = error(found, truth)
            if who == "library":
                print(f"{name:>22} {best[0] * 1e3:8.1f}ms {best[1] * 1e3:8.1f}ms "
                      f"{best[0] / best[1]:7.3f}   ", end="")
                print(f"{n:4d}/{curves:<4d} {e_dG:8.4f} {e_Cm:8.4f}  (library)")
            else:
                print(f"{'':>22} {'':>10} {'':>10} {'':>7}   {n:4d}/{curves:<4d} {e_dG:8.4f} "
                      f"{e_Cm:8.4f}  (curve_fit)")
    print("\nratio: the library's time over curve_fit's; errors: median relative error of dG1 "
          "and Cm1 against the generating values, over the curves each fitted (the library's "
          "dG comes from its trend over concentration).")


if __name__ == "__main__":
    sys.exit(main())
