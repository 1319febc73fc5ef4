"""The package gives the C example host's numbers bit for bit: rows, masks,
the reduction and the drawings, on every bundled data set."""
import math
from pathlib import Path

import numpy as np
import pytest

import quent_dgtrend as qd

ROOT = Path(__file__).resolve().parents[2]
DATA = ROOT / "examples" / "data"
GOLDEN = ROOT / "tests" / "golden"


def sections(name):
    """{section title: rows of numbers} of a golden file."""
    found, title = {}, None
    for line in (GOLDEN / name).read_text().splitlines():
        if line.startswith("# "):
            title = line[2:].split(":")[0]
            found.setdefault(title, [])
        elif line.strip() and title is not None:
            found[title].append(line.split())
    return found


def same(got, want):
    got = np.asarray(got, dtype=float).ravel()
    want = np.asarray(want, dtype=float).ravel()
    assert got.shape == want.shape
    for g, w in zip(got, want):
        assert (math.isnan(g) and math.isnan(w)) or g == w, (g, w)


CASES = [("plate", "plate.csv", 2), ("plate2", "plate2.csv", 3), ("plate3", "plate3.csv", 4),
         ("gankyrin", "gankyrin/GankyrinEquilmDenaturationCurve.csv", 2),
         ("tank", "tank/tANK_equilmFluorscence.csv", 3)]


@pytest.mark.parametrize("case,path,states", CASES)
def test_fit_reduction_and_drawings_equal_the_c_host(case, path, states):
    golden = sections(case + ".golden")
    plates, _ = qd.plan_calls(qd.read_curves(DATA / path))
    fit = qd.fit_plate(plates[0], states=states, temperature=25.0)
    same(fit.rows, [[float(v) for v in row] for row in golden["fitRows"]])
    assert "".join(map(str, fit.point_mask)) == "".join(r[0] for r in golden["pointMask"])
    line = qd.trend(fit, transition=1)
    same([line.slope, line.intercept, line.r_squared, len(line.conc)],
         [float(v) for v in golden["summary"][0]])
    calc = np.array(golden["calc"], dtype=float)
    same(line.conc, calc[:, 0])
    same(line.mean_dG, calc[:, 1])
    same(line.deviation, calc[:, 2])
    same(line.used, calc[:, 3])
    drawn = line.curves(points=9)
    same(drawn.to_numpy(), np.array(golden["grid trend fd fragg fraggfd"], dtype=float))


def test_refit_under_the_scientists_choice_equals_the_c_host():
    golden = sections("plate_user.golden")
    plate = qd.plan_calls(qd.read_curves(DATA / "plate.csv"))[0][0]
    automatic = qd.fit_plate(plate)
    n = plate.points_per_curve
    names = [c.name for c in plate.curves]
    mask, flags = automatic.point_mask.copy(), np.ones(len(names), dtype=np.int32)
    flags[names.index("3")] = 0
    mask[names.index("5") * n:names.index("5") * n + 3] = 0
    refit = qd.refit_plate(plate, mask, flags)
    same(refit.rows, [[float(v) for v in row] for row in golden["user_primaryFit fitRows"]])
    line = qd.trend(refit, curve_flags=flags)
    same([line.slope, line.intercept, line.r_squared, len(line.conc)],
         [float(v) for v in golden["user summary"][0]])


def test_named_results_and_the_drawn_fit():
    plate = qd.plan_calls(qd.read_curves(DATA / "plate2.csv"))[0][0]
    fit = qd.fit_plate(plate, states=3)
    curve = fit.curves[0]
    row = fit.rows[:24]
    assert curve.accepted and curve.code == row[13] and curve.code_text.startswith("fitted")
    assert curve.dG == [row[4], row[6]] and curve.Cm == [row[5], row[7]]
    assert curve.amplitudes == [row[8]] and curve.dG_uncertainty == [row[15], row[16]]
    signal, fraction = curve.fitted_curve([0.0, curve.Cm[0], 100.0])
    assert fraction[0] < 0.01 and fraction[2] > 0.99
    table = fit.table()
    assert list(table["dG1 (cal/mol)"])[0] == row[4]
    assert {"Cm2 (denaturant unit)", "m1 (cal/mol/unit)", "R2", "code_text"} <= set(table.columns)
    assert qd.version() == "0.1.0"
