"""Warnings appear exactly where a result is weak, on crafted rows."""
import numpy as np

import quent_dgtrend as qd
from quent_dgtrend.warnings import curve_warnings

RT = 592.4836799999999
X = np.linspace(0.0, 8.0, 41)


def curve(states, dG, Cm, shares=(), code=2, rt=RT, x=X):
    row = np.zeros(24)
    row[0:4] = [100.0, 0.0, 40.0, 0.0]
    for t, (g, c) in enumerate(zip(dG, Cm)):
        row[(4, 6, 9)[t]], row[(5, 7, 10)[t]] = g, c
    for s, a in enumerate(shares):
        row[(8, 11)[s]] = a
    row[12], row[13] = rt, code
    return qd.CurveFit("c", 1.0, states, row, np.ones(len(x), dtype=np.int32), x,
                       np.zeros(len(x)))


def test_a_sound_row_has_no_warning():
    assert curve_warnings(curve(2, [6000.0], [3.0])) == []
    assert curve_warnings(curve(3, [6000.0, 12000.0], [2.0, 5.0], [0.4], code=6)) == []


def test_each_weakness_is_named():
    said = curve_warnings(curve(2, [6000.0], [3.0], rt=-1.0, code=12))
    assert said == [qd.warnings.gate_warning()] and "0.95" in said[0] and "a quarter" in said[0]
    assert curve_warnings(curve(2, [6000.0], [3.0], rt=-1.0, code=0)) == []  # its reason says it
    [start] = curve_warnings(curve(3, [6000.0, 12000.0], [2.0, 5.0], [0.5], code=3))
    assert "0.5 are the values the fit starts from" in start
    [edge_m] = curve_warnings(curve(2, [310.0], [3.0]))  # m 103: within 5 % of 100
    assert edge_m.startswith("m1 = 103 cal/mol/unit is at the edge")
    outside = curve_warnings(curve(2, [6000.0], [3.0], x=np.linspace(3.5, 8.0, 41)))
    assert any(w.startswith("Cm1 = 3 lies outside the measured range 3.5 to 8") for w in outside)
    [sparse] = curve_warnings(curve(2, [40000.0], [4.5], x=np.linspace(0.0, 8.0, 9)))
    assert sparse.startswith("only 0 kept point(s) in transition 1")
    [share] = curve_warnings(curve(3, [6000.0, 12000.0], [2.0, 5.0], [0.9], code=6))
    assert share == "amp1 = 0.900 is at the edge of the plausible 0.08 to 0.92"
    [other] = curve_warnings(curve(2, [6000.0], [3.0]), preferred_states=3)
    assert other == "the model comparison prefers 3 states to the 2 asked for"
