"""Curves as scientists' files hold them, and what must be done to them
before the library sees them.  Every change to the data is announced in a
notice that the caller prints; nothing is changed silently."""
import csv
import io
import re
from dataclasses import dataclass
from pathlib import Path

import numpy as np

MAX_FIT_POINTS = 384   # points of a curve a fit takes
MAX_CURVES = 96        # curves of one call


class DataError(ValueError):
    """A file or a set of curves the library cannot take; the message is one
    line naming the file, the line and the problem where there is one."""


@dataclass
class Curve:
    """One measured curve: signal against denaturant, at a sample concentration."""
    name: str
    sample_conc: float
    denaturant: np.ndarray
    signal: np.ndarray


@dataclass
class Plate:
    """Curves of equal length fitted in one call."""
    curves: list

    @property
    def points_per_curve(self):
        """Points of each curve (they are equal)."""
        return len(self.curves[0].denaturant) if self.curves else 0


# ---- Reading ---------------------------------------------------------------

LONG_COLUMNS = ("curve", "sample_conc", "denaturant", "signal")


def _number(text, where):
    text = text.strip()
    if text == "" or text.lower() in ("nan", "na", "n/a", "-"):
        return float("nan")
    if re.fullmatch(r"[-+]?\d*,\d+(?:[eE][-+]?\d+)?", text):  # a decimal comma
        text = text.replace(",", ".")
    try:
        return float(text)
    except ValueError:
        raise DataError(f"{where}: '{text}' is not a number") from None


def _dialect(text):
    """The delimiter and decimal mark of a table: comma, semicolon or tab;
    a comma decimal mark goes with a semicolon or a tab."""
    first = [line for line in text.splitlines()[:5] if line.strip()]
    counts = {d: min(line.count(d) for line in first) for d in (",", ";", "\t")} if first else {}
    for delimiter in ("\t", ";"):
        if counts.get(delimiter, 0) > 0:
            return delimiter, "," if re.search(r"\d,\d", text) else "."
    return ",", "."


def _xlsx_tables(path):
    """(sheet name, header, rows of text cells, row numbers) of each sheet of a
    workbook, with the values as the sheet shows them (formulas computed)."""
    try:
        from openpyxl import load_workbook
    except ImportError:
        raise DataError(f"{path}: reading .xlsx needs Debian's python3-openpyxl") from None
    try:
        book = load_workbook(path, read_only=True, data_only=True)
    except Exception as error:  # openpyxl raises many kinds for a bad file
        raise DataError(f"{path}: not a readable .xlsx workbook ({error})") from None
    tables = []
    for sheet in book.worksheets:
        header, rows, lines = None, [], []
        for number, values in enumerate(sheet.iter_rows(values_only=True), start=1):
            cells = ["" if v is None else str(v) for v in values]
            while cells and cells[-1] == "" and (header is None or len(cells) > len(header)):
                cells.pop()
            if not any(c.strip() for c in cells):
                continue
            if header is None:
                header = [c.strip() for c in cells]
                continue
            cells += [""] * (len(header) - len(cells))
            if len(cells) != len(header):
                raise DataError(f"{path}:{sheet.title}:{number}: {len(cells)} fields where the "
                                f"header has {len(header)}")
            rows.append(cells)
            lines.append(number)
        if header is not None and rows:
            tables.append((sheet.title, header, rows, lines))
    book.close()
    if not tables:
        raise DataError(f"{path}: no data")
    return tables


def read_table(path):
    """(header, rows of text cells, line numbers) of a delimited text file."""
    path = Path(path)
    try:
        text = path.read_text(encoding="utf-8-sig")
    except (OSError, UnicodeDecodeError) as error:
        raise DataError(f"{path}: cannot be read ({error})") from None
    delimiter, decimal = _dialect(text)
    rows, lines, header = [], [], None
    for number, cells in enumerate(csv.reader(io.StringIO(text), delimiter=delimiter), start=1):
        if not any(cell.strip() for cell in cells):
            continue
        if header is None:
            header = [cell.strip() for cell in cells]
            continue
        if len(cells) != len(header):
            raise DataError(f"{path}:{number}: {len(cells)} fields where the header has "
                            f"{len(header)}")
        if decimal == ",":
            cells = [cell.replace(",", ".") for cell in cells]
        rows.append(cells)
        lines.append(number)
    if header is None or not rows:
        raise DataError(f"{path}: no data")
    return header, rows, lines


def read_curves(path, sample_conc=1.0):
    """The curves of a CSV file or of every sheet of an .xlsx workbook: the
    long form (curve, sample_conc, denaturant, signal); a single curve in two
    columns (denaturant, signal), whose sample concentration is
    `sample_conc`; or the wide form, a denaturant column and a signal column
    per curve, each headed by its sample concentration."""
    path = Path(path)
    if path.suffix.lower() == ".xlsx":
        tables = _xlsx_tables(path)
        curves = []
        for sheet, header, rows, lines in tables:
            for curve in _curves_of(Path(f"{path}:{sheet}"), header, rows, lines, sample_conc):
                if len(tables) > 1:
                    curve.name = f"{sheet}:{curve.name}"
                curves.append(curve)
        return curves
    header, rows, lines = read_table(path)
    return _curves_of(path, header, rows, lines, sample_conc)


def _curves_of(path, header, rows, lines, sample_conc):
    names = [h.lower() for h in header]
    if all(c in names for c in LONG_COLUMNS):
        at = {c: names.index(c) for c in LONG_COLUMNS}
        order, points = [], {}
        for cells, line in zip(rows, lines):
            where = f"{path}:{line}"
            name = cells[at["curve"]].strip()
            conc = _number(cells[at["sample_conc"]], where)
            key = name
            if key not in points:
                order.append(key)
                points[key] = (conc, [], [])
            elif not (points[key][0] == conc or (np.isnan(conc) and np.isnan(points[key][0]))):
                raise DataError(f"{where}: curve {name} changes its sample_conc")
            points[key][1].append(_number(cells[at["denaturant"]], where))
            points[key][2].append(_number(cells[at["signal"]], where))
        return [Curve(k, points[k][0], np.array(points[k][1]), np.array(points[k][2]))
                for k in order]
    if len(header) < 2:
        raise DataError(f"{path}:1: expected the columns {', '.join(LONG_COLUMNS)}, two columns "
                        f"(denaturant, signal) or more (denaturant, then a signal per curve); "
                        f"found {', '.join(header)}")
    x = np.array([_number(cells[0], f"{path}:{line}") for cells, line in zip(rows, lines)])
    if len(header) == 2:
        y = [_number(cells[1], f"{path}:{line}") for cells, line in zip(rows, lines)]
        return [Curve(path.stem, float(sample_conc), x, np.array(y))]
    # The wide form: a curve per column, its sample concentration the first
    # number of its heading ("50 uM", "conc=2.5"), else `sample_conc`.
    curves = []
    for k, name in enumerate(header[1:], start=1):
        number = re.search(r"[-+]?\d+(?:[.,]\d+)?(?:[eE][-+]?\d+)?", name)
        conc = float(number.group().replace(",", ".")) if number else float(sample_conc)
        y = [_number(cells[k], f"{path}:{line}") for cells, line in zip(rows, lines)]
        curves.append(Curve(name, conc, x.copy(), np.array(y)))
    return curves


# ---- Hygiene ----------------------------------------------------------------

def tidy(curve):
    """(curve, notices): missing values dropped, points sorted by denaturant,
    a negative signal flipped and one crossing zero lifted above it, since
    the library counts non-positive averages as missing points."""
    notices = []
    x, y = curve.denaturant.astype(float), curve.signal.astype(float)
    keep = np.isfinite(x) & np.isfinite(y)
    if not keep.all():
        notices.append(f"curve {curve.name}: {int((~keep).sum())} point(s) with a missing or "
                       "non-finite value dropped")
        x, y = x[keep], y[keep]
    if len(x) > 1 and np.any(np.diff(x) < 0):
        order = np.argsort(x, kind="stable")
        x, y = x[order], y[order]
        notices.append(f"curve {curve.name}: points sorted by ascending denaturant")
    if len(y) and np.all(y < 0):
        y = -y
        notices.append(f"curve {curve.name}: every signal is negative (CD?); the sign is "
                       "flipped for fitting")
    elif len(y) and np.any(y <= 0):
        offset = 1.0 - float(np.min(y))
        y = y + offset
        notices.append(f"curve {curve.name}: the signal crosses zero; {offset:.6g} is added to "
                       "every value so that all are above 0 (baselines shift by it, energies "
                       "and midpoints do not)")
    return Curve(curve.name, curve.sample_conc, x, y), notices


def thin(curve, points=MAX_FIT_POINTS):
    """The curve at `points` evenly spaced of its points, first and last kept."""
    keep = np.unique(np.round(np.linspace(0, len(curve.denaturant) - 1, points)).astype(int))
    return Curve(curve.name, curve.sample_conc, curve.denaturant[keep], curve.signal[keep])


def resample(curves):
    """(curves, notice): every curve interpolated linearly onto one grid over
    the denaturant range they share, with as many points as the longest
    (at most the points a fit takes)."""
    low = max(float(c.denaturant[0]) for c in curves)
    high = min(float(c.denaturant[-1]) for c in curves)
    if not high > low:
        raise DataError("the curves share no denaturant range to resample on: " + ", ".join(
            f"{c.name} {c.denaturant[0]:g} to {c.denaturant[-1]:g}" for c in curves))
    n = min(max(len(c.denaturant) for c in curves), MAX_FIT_POINTS)
    grid = np.linspace(low, high, n)
    notice = (f"curves of unequal length put on one grid of {n} points from {low:g} to "
              f"{high:g} by linear interpolation: " +
              ", ".join(f"{c.name} ({len(c.denaturant)} points)" for c in curves))
    return [Curve(c.name, c.sample_conc, grid, np.interp(grid, c.denaturant, c.signal))
            for c in curves], notice


def plan_calls(curves, resample_unequal=False, thin_long=False):
    """(plates, notices): the calls that fit these curves.  Curves of unequal
    length are refused with a DataError that names them, or put on a common
    grid with `resample_unequal`; curves longer than a fit takes are refused,
    or thinned with `thin_long`.  Replicate curves at a single concentration
    are fitted one call per curve, since the trend over concentration needs
    two."""
    notices = []
    tidied = []
    for curve in curves:
        t, said = tidy(curve)
        tidied.append(t)
        notices += said
    long = [c for c in tidied if len(c.denaturant) > MAX_FIT_POINTS]
    if long and thin_long:
        for c in long:
            notices.append(f"curve {c.name}: {len(c.denaturant)} points thinned to "
                           f"{MAX_FIT_POINTS}, evenly spaced, the ends kept")
        tidied = [thin(c) if len(c.denaturant) > MAX_FIT_POINTS else c for c in tidied]
    elif long:
        raise DataError("curves longer than the %d points a fit takes: %s (thin them with "
                        "--thin)" % (MAX_FIT_POINTS, ", ".join(
                            f"{c.name} ({len(c.denaturant)})" for c in long)))
    lengths = {len(c.denaturant) for c in tidied}
    if len(lengths) > 1 and resample_unequal:
        tidied, notice = resample(tidied)
        notices.append(notice)
    elif len(lengths) > 1:
        raise DataError("curves of one call must have equal length: " + ", ".join(
            f"{c.name} has {len(c.denaturant)}" for c in tidied) +
            " (put them on one grid with --resample)")
    if len(tidied) > MAX_CURVES:
        raise DataError(f"{len(tidied)} curves: a call takes at most {MAX_CURVES}; split them "
                        "into files of whole concentrations")
    concs = {c.sample_conc for c in tidied}
    if len(tidied) > 1 and len(concs) == 1:
        notices.append(f"all {len(tidied)} curves share one sample concentration: each is "
                       "fitted on its own, since the trend over concentration needs two")
        return [Plate([c]) for c in tidied], notices
    return [Plate(tidied)], notices
