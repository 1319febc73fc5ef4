"""Fits, refits, the trend over concentration and its fractions, with named
results.  Every number comes from the library; this module only arranges
the calls and names what comes back."""
import ctypes
from dataclasses import dataclass, field

import numpy as np

from ._native import Outputs, int_vector, library, real_p, real_vector

ROW_COLUMNS = 24
TRANSITIONS = {2: 1, 3: 2, 4: 3}
# Columns of a fit row: energy, midpoint of each transition; amplitude shares.
ENERGY_COLUMNS = (4, 6, 9)
MIDPOINT_COLUMNS = (5, 7, 10)
SHARE_COLUMNS = (8, 11)
# Points a curve needs for a fit of 1, 2 or 3 transitions.
MIN_POINTS = {1: 8, 2: 16, 3: 24}


def transitions_of(states):
    """Transitions of a state count, as the library reads it (not 3 or 4: one)."""
    return TRANSITIONS.get(states, 1)


def code_text(row, states):
    """What the code in column 13 of a row means, in words."""
    row = np.ascontiguousarray(row, dtype=np.float64)
    return library().QUENT_dGtrend_codeText(row.ctypes.data_as(real_p), states).decode()


def evaluate_row(row, states, denaturant):
    """The fitted signal and unfolded fraction of a row at any denaturant values,
    by the library's own model; NaN for a row without a fit."""
    row = np.ascontiguousarray(row, dtype=np.float64)
    x = np.ascontiguousarray(denaturant, dtype=np.float64).ravel()
    signal, fraction = np.empty_like(x), np.empty_like(x)
    library().QUENT_dGtrend_evaluateRow(row.ctypes.data_as(real_p), states,
                                        x.ctypes.data_as(real_p), x.size,
                                        signal.ctypes.data_as(real_p),
                                        fraction.ctypes.data_as(real_p))
    return signal, fraction


@dataclass
class CurveFit:
    """The fit of one curve: its row (24 numbers), named.

    Energies in cal/mol, midpoints in the denaturant's unit, m values in
    cal/mol per that unit; `accepted` is column 12 (RT) above 0."""
    name: str
    sample_conc: float
    states: int
    row: np.ndarray
    point_mask: np.ndarray
    denaturant: np.ndarray = field(repr=False)
    signal: np.ndarray = field(repr=False)

    @property
    def accepted(self):
        """Whether the library accepted a fit (column 12, RT, above 0)."""
        return bool(self.row[12] > 0.0)

    @property
    def code(self):
        """The code of the step that wrote the row (column 13)."""
        return int(self.row[13])

    @property
    def code_text(self):
        """What the code means, in words."""
        return code_text(self.row, self.states)

    @property
    def transitions(self):
        """Transitions of the model fitted (states - 1)."""
        return transitions_of(self.states)

    @property
    def native_baseline(self):
        """(intercept, slope) of the native baseline."""
        return float(self.row[0]), float(self.row[1])

    @property
    def unfolded_baseline(self):
        """(intercept, slope) of the unfolded baseline."""
        return float(self.row[2]), float(self.row[3])

    @property
    def dG(self):
        """Free energy of each transition without denaturant (cal/mol)."""
        return [float(self.row[c]) for c in ENERGY_COLUMNS[:self.transitions]]

    @property
    def Cm(self):
        """Midpoint of each transition."""
        return [float(self.row[c]) for c in MIDPOINT_COLUMNS[:self.transitions]]

    @property
    def m(self):
        """m value dG / Cm of each transition (the trend's, at this concentration)."""
        return [g / c if c != 0.0 else float("nan") for g, c in zip(self.dG, self.Cm)]

    @property
    def amplitudes(self):
        """Share of the signal change of each transition but the last."""
        return [float(self.row[c]) for c in SHARE_COLUMNS[:self.transitions - 1]]

    @property
    def r_squared(self):
        """R squared on the kept points (column 14)."""
        return float(self.row[14])

    @property
    def dG_uncertainty(self):
        """95 percent bound of each energy (cal/mol)."""
        return [float(self.row[15 + t]) for t in range(self.transitions)]

    @property
    def kept_points(self):
        """How many points the fit kept."""
        return int(np.sum(self.point_mask == 1))

    def fitted_curve(self, denaturant=None):
        """(signal, unfolded fraction) of the fit at `denaturant` (default: the
        curve's own points), by the library's model."""
        x = self.denaturant if denaturant is None else denaturant
        return evaluate_row(self.row, self.states, x)


def _row_table(fits):
    import pandas as pd
    records = []
    for f in fits:
        record = {"curve": f.name, "sample_conc": f.sample_conc, "states": f.states,
                  "accepted": f.accepted, "code": f.code, "code_text": f.code_text}
        for t in range(3):
            have = t < f.transitions and f.accepted
            record[f"dG{t + 1} (cal/mol)"] = f.dG[t] if have else np.nan
            record[f"Cm{t + 1} (denaturant unit)"] = f.Cm[t] if have else np.nan
            record[f"m{t + 1} (cal/mol/unit)"] = f.m[t] if have else np.nan
            record[f"dG{t + 1} uncertainty (cal/mol)"] = f.dG_uncertainty[t] if have else np.nan
        for s in range(2):
            record[f"amp{s + 1}"] = (f.amplitudes[s] if f.accepted and s < f.transitions - 1
                                     else np.nan)
        record["native intercept"], record["native slope (1/unit)"] = (
            f.native_baseline if f.accepted else (np.nan, np.nan))
        record["unfolded intercept"], record["unfolded slope (1/unit)"] = (
            f.unfolded_baseline if f.accepted else (np.nan, np.nan))
        record["R2"] = f.r_squared if f.accepted else np.nan
        record["RT (cal/mol)"] = f.row[12] if f.accepted else np.nan
        record["points kept"] = f.kept_points
        record["points"] = len(f.point_mask)
        records.append(record)
    return pd.DataFrame.from_records(records)


@dataclass
class PlateFit:
    """The fits of the curves of one call, in the order given."""
    states: int
    temperature: float
    curves: list
    rows: np.ndarray = field(repr=False)
    point_mask: np.ndarray = field(repr=False)
    curve_flags: np.ndarray = field(default=None, repr=False)  # a refit's choice of curves

    def table(self):
        """Every curve's results as a pandas DataFrame, units in the column names."""
        table = _row_table(self.curves)
        table["reason"] = [self.reason(k) or "" for k in range(len(self.curves))]
        from .warnings import curve_warnings
        table["warnings"] = ["; ".join(curve_warnings(c)) for c in self.curves]
        return table

    def reason(self, k):
        """Why curve k has no fit, as precisely as the rows of this call tell
        (None for a fitted curve).  A code 0 names several causes; the other
        rows and the curve's length narrow them down."""
        curve = self.curves[k]
        if curve.accepted:
            return None
        if self.curve_flags is not None and self.curve_flags[k] != 1:
            return "left out by the host"
        if curve.code != 0:
            return curve.code_text
        fewest = MIN_POINTS[curve.transitions]
        if curve.kept_points < fewest:
            return (f"the curve has {curve.kept_points} points, fewer than the {fewest} a fit "
                    f"of {curve.transitions} transition(s) needs")
        if all(not c.accepted and c.code == 0 for c in self.curves):
            if len(self.curves) == 1:
                return "no fit of this curve succeeded: no plausible transition explains it"
            return ("no curve of the call was fitted: no fit of the plate's reference "
                    "succeeded (or the call was refused)")
        if curve.transitions == 1:
            return ("the refit from the plate's reference found no plausible transition that "
                    "explains this curve")
        return curve.code_text


def _plate_arrays(plate):
    den = np.concatenate([c.denaturant for c in plate.curves])
    sig = np.concatenate([c.signal for c in plate.curves])
    conc = np.array([c.sample_conc for c in plate.curves], dtype=np.float64)
    return den, sig, conc


def _plate_fit(plate, states, temperature, rows, mask):
    n = plate.points_per_curve
    curves = []
    for k, c in enumerate(plate.curves):
        curves.append(CurveFit(c.name, c.sample_conc, states,
                               rows[ROW_COLUMNS * k:ROW_COLUMNS * (k + 1)].copy(),
                               mask[n * k:n * (k + 1)].copy(), c.denaturant, c.signal))
    return PlateFit(states, temperature, curves, rows, mask)


def fit_plate(plate, states=2, temperature=25.0):
    """Fits every curve of `plate` (a Plate of equal-length curves) with the
    model family of `states` (2: one transition, 3: two, 4: three); the
    library chooses the points it keeps."""
    den, sig, conc = _plate_arrays(plate)
    den, den_p, den_size = real_vector(den)
    sig, sig_p, sig_size = real_vector(sig)
    conc, conc_p, conc_size = real_vector(conc)
    with Outputs(real=1, integer=1) as out:
        library().QUENT_dGtrend_primaryFit(plate.points_per_curve, den_p, den_size, sig_p,
                                           sig_size, conc_p, conc_size, states, temperature,
                                           out.real[0], out.integer[0])
        rows, mask = Outputs.read(out.real[0]), Outputs.read(out.integer[0])
    return _plate_fit(plate, states, temperature, rows, mask)


def refit_plate(plate, point_mask, curve_flags, states=2, temperature=25.0):
    """Fits again under the host's own choice: `point_mask` (1 per point kept,
    all curves one after the other) and `curve_flags` (1 per curve fitted)."""
    den, sig, conc = _plate_arrays(plate)
    den, den_p, den_size = real_vector(den)
    sig, sig_p, sig_size = real_vector(sig)
    conc, conc_p, conc_size = real_vector(conc)
    mask, mask_p, mask_size = int_vector(point_mask)
    flags, flags_p, flags_size = int_vector(curve_flags)
    with Outputs(real=1) as out:
        library().QUENT_dGtrend_user_primaryFit(plate.points_per_curve, den_p, den_size, sig_p,
                                                sig_size, conc_p, conc_size, mask_p, mask_size,
                                                flags_p, flags_size, states, temperature,
                                                out.real[0])
        rows = Outputs.read(out.real[0])
    fit = _plate_fit(plate, states, temperature, rows, mask.copy())
    fit.curve_flags = flags.copy()
    return fit


@dataclass
class Trend:
    """The energies of one transition reduced over sample concentration: a
    line of dG against ln(concentration), and the per-concentration means."""
    transition: int
    slope: float
    intercept: float
    r_squared: float
    conc: np.ndarray
    mean_dG: np.ndarray
    deviation: np.ndarray
    used: np.ndarray
    temperature: float

    def table(self):
        """The per-concentration values as a DataFrame."""
        import pandas as pd
        return pd.DataFrame({"sample_conc": self.conc, "mean dG (cal/mol)": self.mean_dG,
                             "sd dG (cal/mol)": self.deviation, "used": self.used})

    def curves(self, points=50):
        """The trend and its three fractions on `points` concentrations between
        the extremes: a DataFrame of conc, dG, fd, fragg, fraggfd."""
        import pandas as pd
        lib = library()
        conc, conc_p, conc_size = real_vector(self.conc)
        coefficients = (ctypes.c_double * 2)(self.slope, self.intercept)
        columns = {}
        with Outputs(real=2) as out:
            lib.QUENT_dGtrend_trend(conc_p, conc_size, coefficients, points, out.real[0],
                                    out.real[1])
            columns["conc"] = Outputs.read(out.real[0])
            columns["dG (cal/mol)"] = Outputs.read(out.real[1])
            for name in ("fd", "fragg", "fraggfd"):
                getattr(lib, "QUENT_dGtrend_" + name)(conc_p, conc_size, coefficients, points,
                                                      self.temperature, out.real[0], out.real[1])
                columns[name] = Outputs.read(out.real[1])
        return pd.DataFrame(columns)


def trend(plate_fit, transition=1, curve_flags=None):
    """The trend over concentration of one transition's energies."""
    conc = np.array([c.sample_conc for c in plate_fit.curves], dtype=np.float64)
    flags = np.ones(len(conc), dtype=np.int32) if curve_flags is None else curve_flags
    conc, conc_p, conc_size = real_vector(conc)
    rows, rows_p, rows_size = real_vector(plate_fit.rows)
    flags, flags_p, flags_size = int_vector(flags)
    summary = (ctypes.c_double * 4)()
    with Outputs(real=3, integer=1) as out:
        library().QUENT_dGtrend_calc(conc_p, conc_size, rows_p, rows_size, flags_p, flags_size,
                                     transition, out.real[0], out.real[1], out.real[2],
                                     out.integer[0], summary)
        values = [Outputs.read(r) for r in out.real] + [Outputs.read(out.integer[0])]
    return Trend(transition, summary[0], summary[1], summary[2], *values,
                 temperature=plate_fit.temperature)


def normalize(values, reference, target):
    """values * (target / reference) by the library's scaling (the values
    unchanged when reference is not above 0)."""
    values, values_p, size = real_vector(values)
    scaled = np.empty_like(values)
    scaled_size = (ctypes.c_int32 * 2)()
    library().QUENT_dGtrend_normalization(values_p, size, reference, target,
                                          scaled.ctypes.data_as(real_p), scaled_size)
    return scaled[:scaled_size[1]]


def version():
    """The library's version."""
    return library().QUENT_dGtrend_version().decode()
