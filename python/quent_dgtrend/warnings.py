"""Where a result is weak, in words.  These read the rows the library
returned and say what a scientist should look at; they never change a row
nor accept one the library refused."""
import math

# What the library judges a transition by (its plausibility bounds).
M_RANGE = (100.0, 15000.0)
SHARE_RANGE = {2: (0.08, 0.92), 3: (0.06, 0.94)}
# The shares the fit strategies start from.
START_SHARES = {2: {0.5}, 3: {0.35, 0.3}}
EDGE = 0.05          # within 5 percent of a bound counts as at the edge
FEWEST_IN_TRANSITION = 3
LN9 = math.log(9.0)  # the unfolded fraction runs from 0.1 to 0.9 over Cm +- RT ln 9 / m


def gate_warning():
    return ("rejected at the quality gates: R squared at least 0.95, no free energy below 0, "
            "and an uncertainty of dG1 at most a quarter of it are required")


def curve_warnings(curve, preferred_states=None):
    """The warnings of one CurveFit (a list of texts)."""
    said = []
    if not curve.accepted:
        if curve.code == 12:
            said.append(gate_warning())
        return said
    t = curve.transitions
    shares = curve.amplitudes
    if t > 1 and all(s in START_SHARES[t] for s in shares):
        said.append("amplitude share(s) " + ", ".join(f"{s:g}" for s in shares) +
                    " are the values the fit starts from: they were never fitted")
    x = curve.denaturant[curve.point_mask == 1]
    low, high = float(x.min()), float(x.max())
    for k, (dG, Cm, m) in enumerate(zip(curve.dG, curve.Cm, curve.m), start=1):
        if m <= M_RANGE[0] * (1 + EDGE) or m >= M_RANGE[1] * (1 - EDGE):
            said.append(f"m{k} = {m:.0f} cal/mol/unit is at the edge of the plausible "
                        f"{M_RANGE[0]:g} to {M_RANGE[1]:g}")
        if Cm < low or Cm > high:
            said.append(f"Cm{k} = {Cm:.4g} lies outside the measured range {low:g} to {high:g}")
        width = curve.row[12] * LN9 / m if m > 0 else float("inf")
        inside = int(((x >= Cm - width) & (x <= Cm + width)).sum())
        if inside < FEWEST_IN_TRANSITION:
            said.append(f"only {inside} kept point(s) in transition {k} (fraction unfolded "
                        f"0.1 to 0.9, {Cm - width:.3g} to {Cm + width:.3g})")
    if t > 1:
        lo, hi = SHARE_RANGE[t]
        for k, s in enumerate(shares, start=1):
            if s <= lo + EDGE * (hi - lo) or s >= hi - EDGE * (hi - lo):
                said.append(f"amp{k} = {s:.3f} is at the edge of the plausible {lo:g} to {hi:g}")
    if preferred_states is not None and preferred_states != curve.states:
        said.append(f"the model comparison prefers {preferred_states} states to the "
                    f"{curve.states} asked for")
    return said
