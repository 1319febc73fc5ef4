"""What the package changes in measured data before the library sees it,
each change announced, and what it refuses, with the reason."""
from pathlib import Path

import numpy as np
import pytest

import quent_dgtrend as qd

DATA = Path(__file__).resolve().parents[2] / "examples" / "data"


def fitted(path, states=2, conc=1.0):
    """(notices, fits) of every call a file makes."""
    plates, notices = qd.plan_calls(qd.read_curves(DATA / path, sample_conc=conc))
    return notices, [c for p in plates for c in qd.fit_plate(p, states=states).curves]


def test_gankyrin_cd_signal_is_flipped():
    notices, fits = fitted("gankyrin/GankyrinEquilmDenaturationCurve.csv")
    assert len(notices) == 1 and "every signal is negative" in notices[0]
    assert fits[0].accepted and fits[0].signal.min() > 0


def test_tank_descending_denaturant_is_sorted():
    notices, fits = fitted("tank/tANK_equilmFluorscence.csv", states=3)
    assert notices == ["curve tANK_equilmFluorscence: points sorted by ascending denaturant"]
    assert fits[0].accepted and np.all(np.diff(fits[0].denaturant) >= 0)


@pytest.mark.parametrize("name,lifted", [("CI2_WT_Equilm", True), ("CI2_VA38_Equilm", True),
                                         ("CI2_VA66_Equilm", False)])
def test_ci2_fractions_crossing_zero_are_lifted(name, lifted):
    notices, fits = fitted(f"ci2/{name}.csv")
    assert any("sorted" in n for n in notices)
    assert any("crosses zero" in n for n in notices) == lifted
    assert fits[0].accepted and fits[0].signal.min() > 0


def test_fkbp12_missing_values_are_dropped_and_fractions_lifted():
    notices, fits = fitted("fkbp12/Equilm_FKBP12.csv")
    assert "21 point(s) with a missing or non-finite value dropped" in notices[0]
    assert "crosses zero" in notices[1]
    assert fits[0].accepted and len(fits[0].denaturant) == 41


def test_lcrh_each_file_fits_alone_and_every_rejection_says_why():
    for path in sorted((DATA / "lcrh").glob("*.csv")):
        notices, fits = fitted(path, conc=50.0)
        assert "sign is flipped" in notices[0]
        assert fits[0].accepted or "quality gates" in fits[0].code_text


def test_unequal_lengths_and_long_curves_are_refused_by_name():
    short = qd.Curve("a", 1.0, np.linspace(0, 8, 20), np.linspace(1, 2, 20))
    other = qd.Curve("b", 2.0, np.linspace(0, 8, 25), np.linspace(1, 2, 25))
    with pytest.raises(qd.DataError, match="a has 20, b has 25"):
        qd.plan_calls([short, other])
    long = qd.Curve("c", 1.0, np.linspace(0, 8, 385), np.linspace(1, 2, 385))
    with pytest.raises(qd.DataError, match=r"384 points a fit takes: c \(385\)"):
        qd.plan_calls([long])


def test_replicates_at_one_concentration_are_fitted_one_by_one():
    plate = qd.plan_calls(qd.read_curves(DATA / "plate.csv"))[0][0]
    replicates = [c for c in plate.curves if c.sample_conc == 0.5]
    plates, notices = qd.plan_calls(replicates)
    assert len(plates) == 4 and all(len(p.curves) == 1 for p in plates)
    assert notices == ["all 4 curves share one sample concentration: each is fitted on its "
                       "own, since the trend over concentration needs two"]
    assert all(qd.fit_plate(p).curves[0].accepted for p in plates)


def test_reader_dialects_and_errors(tmp_path):
    semicolon = tmp_path / "curve.csv"
    semicolon.write_text("urea;signal\n0,5;10,25\n1,0;11,5\n")
    curve = qd.read_curves(semicolon, sample_conc=2.0)[0]
    assert curve.sample_conc == 2.0 and list(curve.denaturant) == [0.5, 1.0]
    assert list(curve.signal) == [10.25, 11.5]
    tab = tmp_path / "long.tsv"
    tab.write_text("curve\tsample_conc\tdenaturant\tsignal\nA\t1\t0\t5\nA\t1\t1\t6\nB\t2\t0\t5\n")
    assert [c.name for c in qd.read_curves(tab)] == ["A", "B"]
    wide = tmp_path / "wide.csv"
    wide.write_text("urea;50 uM;80,5 uM;blank\n0,0;1,0;2,0;3\n1,0;1,5;2,5;;\n".replace(";;", ";"))
    curves = qd.read_curves(wide, sample_conc=7.0)
    assert [(c.name, c.sample_conc) for c in curves] == [("50 uM", 50.0), ("80,5 uM", 80.5),
                                                         ("blank", 7.0)]
    assert list(curves[1].signal) == [2.0, 2.5] and np.isnan(curves[2].signal[1])
    for text, message in [("x,y\n1,2\n3,oops\n", r"bad.csv:3: 'oops' is not a number"),
                          ("x,y\n1,2\n3,4,5\n", r"bad.csv:3: 3 fields where the header has 2"),
                          ("a\n1\n", r"bad.csv:1: expected the columns"),
                          ("x,y\n", r"bad.csv: no data"),
                          ("curve,sample_conc,denaturant,signal\nA,1,0,5\nA,2,1,6\n",
                           r"bad.csv:3: curve A changes its sample_conc")]:
        bad = tmp_path / "bad.csv"
        bad.write_text(text)
        with pytest.raises(qd.DataError, match=message):
            qd.read_curves(bad)


def test_long_curves_are_thinned_when_asked():
    x = np.linspace(0, 8, 1000)
    curve = qd.Curve("long", 1.0, x, 1.0 + 1.0 / (1.0 + np.exp(-(x - 4.0) * 3.0)))
    plates, notices = qd.plan_calls([curve], thin_long=True)
    kept = plates[0].curves[0].denaturant
    assert len(kept) == 384 and kept[0] == 0.0 and kept[-1] == 8.0
    assert notices == ["curve long: 1000 points thinned to 384, evenly spaced, the ends kept"]


def test_sets_on_an_executor_equal_the_serial_fit():
    from concurrent.futures import ThreadPoolExecutor
    sets = [(name, qd.read_curves(DATA / name)) for name in ("plate.csv", "plate3.csv")]
    options = qd.Options(states=4)
    serial = qd.fit_sets(sets, options)
    with ThreadPoolExecutor(max_workers=2) as pool:  # the library is reentrant
        threaded = qd.fit_sets(sets, options, executor=pool)
    for a, b in zip(serial, threaded):
        assert a.lines == b.lines and a.table.equals(b.table)


def test_workbooks_every_sheet_in_any_form(tmp_path):
    openpyxl = pytest.importorskip("openpyxl")
    book = openpyxl.Workbook()
    wide = book.active
    wide.title = "wide"
    for row in (["urea", "2 uM", "4 uM"], [0.0, 1.0, 2.0], [1.0, 1.5, None]):
        wide.append(row)
    single = book.create_sheet("single")
    for row in (["urea", "signal"], [0.0, 5], [1.0, "6,5"]):
        single.append(row)
    path = tmp_path / "plate.xlsx"
    book.save(path)
    curves = qd.read_curves(path, sample_conc=3.0)
    assert [(c.name, c.sample_conc) for c in curves] == [
        ("wide:2 uM", 2.0), ("wide:4 uM", 4.0), ("single:plate", 3.0)]
    assert np.isnan(curves[1].signal[1]) and list(curves[2].signal) == [5.0, 6.5]
    (tmp_path / "broken.xlsx").write_bytes(b"not a workbook")
    with pytest.raises(qd.DataError, match=r"broken.xlsx: not a readable .xlsx workbook"):
        qd.read_curves(tmp_path / "broken.xlsx")


def test_normalize_scales_through_the_library():
    assert list(qd.normalize([2.0, 4.0, -1.0], 4.0, 100.0)) == [50.0, 100.0, -25.0]
    assert list(qd.normalize([2.0, 4.0], 0.0, 100.0)) == [2.0, 4.0]  # no reference: unchanged
    options = qd.Options(states=3, normalize=True)
    result = qd.fit_set("tank", qd.read_curves(DATA / "tank/tANK_equilmFluorscence.csv"), options)
    assert result.notices[-1] == "every curve scaled so that its largest signal is 100"
    assert "R2 0.99988" in result.lines[0]


def test_reason_of_a_curve_too_short_and_of_a_call_that_fitted_nothing():
    x = np.linspace(0, 8, 6)
    short = qd.Plate([qd.Curve("short", 1.0, x, 2.0 - x / 8.0)])
    fit = qd.fit_plate(short)
    assert fit.reason(0) == "the curve has 6 points, fewer than the 8 a fit of 1 transition(s) needs"
    x = np.linspace(0, 8, 30)
    flat = qd.Plate([qd.Curve(n, c, x, np.full(30, 5.0)) for n, c in (("a", 1.0), ("b", 2.0))])
    fit = qd.fit_plate(flat)
    assert fit.reason(1).startswith("no curve of the call was fitted")
    assert list(fit.table()["reason"]) == [fit.reason(0), fit.reason(1)]
