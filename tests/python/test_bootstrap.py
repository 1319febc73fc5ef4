"""Bootstrap intervals: reproducible for a seed wherever they run, and
honest: 90 percent intervals cover the generating values of 200 synthetic
curves about 90 percent of the time."""
import io
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path

import numpy as np

import quent_dgtrend as qd
from quent_dgtrend.cli import main

DATA = Path(__file__).resolve().parents[2] / "examples" / "data"
RT = 592.4836799999999
CONCS = [1.0, 1.0, 2.0, 2.0, 4.0, 4.0, 8.0, 8.0]


def synthetic(seed, points=48, noise=0.5):
    """A plate of two replicates at four concentrations whose m value rises
    with ln(c), as the trend assumes; (plate, [(dG, Cm) per curve])."""
    rng = np.random.default_rng(seed)
    x = np.linspace(0.0, 8.0, points)
    curves, truth = [], []
    for k, conc in enumerate(CONCS):
        Cm = 3.0 + 0.2 * np.log(conc)
        dG = (1900.0 + 60.0 * np.log(conc)) * Cm
        K = np.exp(-(dG * (1.0 - x / Cm)) / RT)
        y = (100.0 + 0.5 * x + (40.0 + x) * K) / (1.0 + K) + rng.normal(0.0, noise, points)
        curves.append(qd.Curve(str(k), conc, x, y))
        truth.append((dG, Cm))
    return qd.Plate(curves), truth


def test_ninety_percent_intervals_cover_about_ninety_percent():
    covered = {"dG1": 0, "Cm1": 0}
    total = 0
    for seed in range(25):
        plate, truth = synthetic(seed)
        table = qd.bootstrap(plate, replicates=100, seed=seed, level=0.9).curves
        for k, values in enumerate(truth):
            for name, value in zip(("dG1", "Cm1"), values):
                row = table[(table.curve == str(k)) & (table.parameter == name)]
                covered[name] += bool(len(row) and row.low.iloc[0] <= value <= row.high.iloc[0])
        total += len(truth)
    assert total == 200
    for name, count in covered.items():
        assert 0.84 <= count / total <= 0.96, (name, count)


def test_the_same_seed_gives_the_same_intervals_anywhere():
    plate, _ = synthetic(7)
    serial = qd.bootstrap(plate, replicates=12, seed=5)
    with ProcessPoolExecutor(max_workers=2) as pool:
        spread = qd.bootstrap(plate, replicates=12, seed=5, executor=pool)
    assert serial.curves.equals(spread.curves) and serial.trend.equals(spread.trend)
    other = qd.bootstrap(plate, replicates=12, seed=6)
    assert not serial.curves.equals(other.curves)
    assert list(serial.trend.parameter) == ["slope", "intercept"]
    assert (serial.trend.low <= serial.trend.high).all()


def test_command_line_intervals():
    out = io.StringIO()
    assert main(["fit", str(DATA / "plate.csv"), "--bootstrap", "10", "--seed", "2",
                 "--level", "0.9", "--jobs", "2"], out=out) == 0
    printed = out.getvalue()
    assert "bootstrap, 10 residual resamplings (seed 2), 90% percentile intervals:" in printed
    assert "  trend of dG1: slope 656.34 in [" in printed
