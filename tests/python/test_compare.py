"""Model comparison: the rule as stated, its arithmetic, and what it says of
the measured curves (the rule was fixed before these were run)."""
import io
from pathlib import Path

import numpy as np
import pytest

import quent_dgtrend as qd
from quent_dgtrend.cli import main
from quent_dgtrend.compare import (ModelScore, estimated_parameters, f_test, incomplete_beta,
                                   preferred)

DATA = Path(__file__).resolve().parents[2] / "examples" / "data"


@pytest.mark.parametrize("path,states", [("tank/tANK_equilmFluorscence.csv", 3),
                                         ("ci2/CI2_WT_Equilm.csv", 2),
                                         ("fkbp12/Equilm_FKBP12.csv", 2)])
def test_measured_curves_prefer_their_model(path, states):
    plates, _ = qd.plan_calls(qd.read_curves(DATA / path))
    table = qd.compare_models(plates[0])
    curves = table[table["curve"] != "(set)"]
    assert list(curves["states"][curves["preferred"]]) == [states]
    assert curves["points compared"].nunique() == 1  # one set of points for every model
    whole = table[table["curve"] == "(set)"]  # one curve: the set is the curve
    assert list(whole["states"][whole["preferred"]]) == [states]


def test_the_set_sums_its_curves_over_the_models_every_curve_accepted():
    plate = qd.plan_calls(qd.read_curves(DATA / "plate2.csv"))[0][0]
    table = qd.compare_models(plate)
    curves, whole = table[table["curve"] != "(set)"], table[table["curve"] == "(set)"]
    for s in (2, 3, 4):
        rows, total = curves[curves["states"] == s], whole[whole["states"] == s].iloc[0]
        assert total["accepted"] == rows["accepted"].all()
        assert total["points compared"] == rows["points compared"].sum()
        if total["accepted"]:
            assert total["RSS"] == pytest.approx(rows["RSS"].sum())
            assert total["parameters k"] == rows["parameters k"].sum()
    assert whole["preferred"].sum() == 1


def test_arithmetic_of_the_criteria():
    assert incomplete_beta(2.0, 3.0, 0.4) == pytest.approx(0.5248, abs=1e-12)
    assert incomplete_beta(0.5, 0.5, 0.5) == pytest.approx(0.5, abs=1e-12)
    # F = ((10 - 4) / 2) / (4 / 20) = 15 on (2, 20) degrees of freedom, whose
    # upper tail is (1 + 2F / 20)^-10.
    F, p = f_test(10.0, 4, 4.0, 6, 26)
    assert F == pytest.approx(15.0) and p == pytest.approx((1.0 + 2.0 * 15.0 / 20.0) ** -10.0)
    assert f_test(4.0, 6, 4.0, 6, 26)[1] == 1.0  # not nested: no test


def test_the_rule_needs_both_a_lower_aicc_and_a_significant_f():
    def score(states, rss, k, aicc):
        return ModelScore(states, True, "", 30, k, rss, aicc, 0.0)
    # Lower AICc but an F-test that does not pass: the simpler model stays.
    assert preferred([score(2, 1.0, 4, -10.0), score(3, 0.95, 6, -10.5)], 30)[0] == 2
    # Both: the more complex model is preferred.
    assert preferred([score(2, 1.0, 4, -10.0), score(3, 0.2, 6, -40.0)], 30)[0] == 3
    # A model that was not accepted is never preferred.
    rejected = ModelScore(3, False, "", 30, 0, float("nan"), float("nan"), float("nan"))
    assert preferred([score(2, 1.0, 4, -10.0), rejected], 30)[0] == 2


def test_parameters_counted_from_the_code():
    plate = qd.plan_calls(qd.read_curves(DATA / "plate2.csv"))[0][0]
    fit = qd.fit_plate(plate, states=3)
    # Held shares (code 3): 2 energies, 2 midpoints, 2 intercepts; free (6): and a share.
    for c in fit.curves:
        if c.accepted:
            assert estimated_parameters(c) == {3: 6, 6: 7}[c.code]
    one = qd.fit_plate(qd.plan_calls(qd.read_curves(DATA / "plate.csv"))[0][0]).curves[0]
    assert estimated_parameters(one) == 4


def test_command_line_prints_the_rule_and_the_verdicts():
    out = io.StringIO()
    assert main(["fit", str(DATA / "tank/tANK_equilmFluorscence.csv"), "--states", "3",
                 "--compare-models"], out=out) == 0
    printed = out.getvalue()
    assert "model comparison (preferred: the simplest accepted model" in printed
    assert "curve tANK_equilmFluorscence: prefers 3 states (2 states AICc 144.10" in printed
