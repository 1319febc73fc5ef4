"""Which model the data support: the same curves fitted with one, two and
three transitions, compared by information criteria and an F-test.

The rule, fixed before it was run on any measured data:
  - Each curve is compared over the points that every accepted fit of it
    kept (the masks of the models differ), with the residuals of the
    library's own model (the evaluation export) at those points.
  - k counts what the final fit of the curve estimated: energies and
    midpoints, the two baseline intercepts, and the amplitude shares only
    when the row's code says they were fitted freely.  The baseline slopes
    and RT are held in that fit (slopes at the plate's reference fit), so
    they are not counted.
  - AICc = n ln(RSS/n) + 2k + 2k(k+1)/(n-k-1); BIC = n ln(RSS/n) + k ln n.
  - The preferred model starts at the simplest accepted one; a model with
    more transitions replaces it when its AICc is lower and the F-test of
    the two (nested: the extra transitions' parameters) gives p < 0.05.
  - For the whole set the same rule runs on the sums of RSS, k and n over
    its curves, among the models accepted on every curve.
"""
import math
from dataclasses import dataclass

import numpy as np

from .fit import fit_plate

STATES = (2, 3, 4)
RULE = ("preferred: the simplest accepted model, replaced by one with more transitions "
        "when that one has a lower AICc and the F-test gives p < 0.05; k counts energies, "
        "midpoints, baseline intercepts and freely fitted amplitude shares (baseline slopes "
        "and RT are held in the final fit and not counted)")
FREE_SHARE_CODES = {3: 6, 4: 5}   # the code of a refit with the shares fitted freely


def estimated_parameters(curve):
    """k of a fitted curve's final fit."""
    k = 2 * curve.transitions + 2
    if FREE_SHARE_CODES.get(curve.states) == curve.code:
        k += curve.transitions - 1
    return k


def _beta_continued_fraction(a, b, x):
    """Continued fraction of the regularized incomplete beta (modified Lentz)."""
    tiny, c, d = 1e-300, 1.0, 1.0 - (a + b) * x / (a + 1.0)
    d = 1.0 / (d if abs(d) > tiny else tiny)
    h = d
    for m in range(1, 300):
        for numerator in (m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)),
                          -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))):
            d = 1.0 + numerator * d
            d = 1.0 / (d if abs(d) > tiny else tiny)
            c = 1.0 + numerator / c
            c = c if abs(c) > tiny else tiny
            h *= d * c
        if abs(d * c - 1.0) < 1e-15:
            break
    return h


def incomplete_beta(a, b, x):
    """The regularized incomplete beta function I_x(a, b)."""
    if x <= 0.0:
        return 0.0
    if x >= 1.0:
        return 1.0
    front = math.exp(math.lgamma(a + b) - math.lgamma(a) - math.lgamma(b) +
                     a * math.log(x) + b * math.log1p(-x))
    if x < (a + 1.0) / (a + b + 2.0):
        return front * _beta_continued_fraction(a, b, x) / a
    return 1.0 - front * _beta_continued_fraction(b, a, 1.0 - x) / b


def f_test(rss_simple, k_simple, rss_complex, k_complex, n):
    """(F, p) of the nested comparison; p is 1 where it cannot be formed."""
    extra, left = k_complex - k_simple, n - k_complex
    if extra <= 0 or left <= 0 or not rss_complex > 0.0:
        return float("nan"), 1.0
    F = ((rss_simple - rss_complex) / extra) / (rss_complex / left)
    if not F > 0.0:
        return F, 1.0
    return F, incomplete_beta(left / 2.0, extra / 2.0, left / (left + extra * F))


@dataclass
class ModelScore:
    states: int
    accepted: bool
    code_text: str
    n: int
    k: int
    rss: float
    aicc: float
    bic: float


def _scores(rss, k, n):
    if not (rss > 0.0 and n > k + 1):
        return float("nan"), float("nan")
    base = n * math.log(rss / n)
    return base + 2 * k + 2 * k * (k + 1) / (n - k - 1), base + k * math.log(n)


def preferred(scores, n_points):
    """(states, F, p) of the preferred model among accepted scores, by the rule."""
    chosen = [s for s in scores if s.accepted]
    if not chosen:
        return None, float("nan"), float("nan")
    best, F, p = chosen[0], float("nan"), float("nan")
    for other in chosen[1:]:
        f, pv = f_test(best.rss, best.k, other.rss, other.k, n_points)
        if other.aicc < best.aicc and pv < 0.05:
            best, F, p = other, f, pv
    return best.states, F, p


def compare_models(plate, temperature=25.0):
    """Per curve of `plate` (one call's curves): the fits with 2, 3 and 4
    states scored on the points all accepted fits kept, and the preferred
    model by RULE; a pandas DataFrame, one row per curve and model."""
    import pandas as pd
    fits = {s: fit_plate(plate, states=s, temperature=temperature) for s in STATES}
    records = []
    for index, curve in enumerate(plate.curves):
        accepted = [fits[s].curves[index] for s in STATES if fits[s].curves[index].accepted]
        common = np.ones(len(curve.denaturant), dtype=bool)
        for c in accepted:
            common &= c.point_mask == 1
        n = int(common.sum())
        scores = []
        for s in STATES:
            c = fits[s].curves[index]
            if c.accepted:
                fitted, _ = c.fitted_curve(curve.denaturant[common])
                rss = float(np.sum((curve.signal[common] - fitted) ** 2))
                k = estimated_parameters(c)
            else:
                rss, k = float("nan"), 0
            aicc, bic = _scores(rss, k, n)
            scores.append(ModelScore(s, c.accepted, c.code_text, n, k, rss, aicc, bic))
        best, F, p = preferred(scores, n)
        for sc in scores:
            records.append({"curve": curve.name, "states": sc.states, "accepted": sc.accepted,
                            "points compared": sc.n, "parameters k": sc.k, "RSS": sc.rss,
                            "AICc": sc.aicc, "BIC": sc.bic, "preferred": sc.states == best,
                            "F vs simpler": F if sc.states == best else float("nan"),
                            "p": p if sc.states == best else float("nan"),
                            "code_text": sc.code_text})
    table = pd.DataFrame.from_records(records)
    return pd.concat([table, _set_rows(table)], ignore_index=True)


SET = "(set)"


def _set_rows(table):
    """The rows of the whole set: sums over its curves, for the models that
    every curve accepted."""
    import pandas as pd
    curves = table[table["curve"] != SET]
    scores = []
    for s in STATES:
        rows = curves[curves["states"] == s]
        accepted = bool(len(rows)) and bool(rows["accepted"].all())
        n, k = int(rows["points compared"].sum()), int(rows["parameters k"].sum())
        rss = float(rows["RSS"].sum()) if accepted else float("nan")
        aicc, bic = _scores(rss, k, n) if accepted else (float("nan"), float("nan"))
        scores.append(ModelScore(s, accepted, "", n, k if accepted else 0, rss, aicc, bic))
    best, F, p = preferred(scores, scores[0].n)
    return pd.DataFrame.from_records([
        {"curve": SET, "states": sc.states, "accepted": sc.accepted, "points compared": sc.n,
         "parameters k": sc.k, "RSS": sc.rss, "AICc": sc.aicc, "BIC": sc.bic,
         "preferred": sc.states == best, "F vs simpler": F if sc.states == best else float("nan"),
         "p": p if sc.states == best else float("nan"),
         "code_text": "accepted on every curve" if sc.accepted else "not accepted on every curve"}
        for sc in scores])
