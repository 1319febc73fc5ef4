"""The command line from files to a results table, and the library's loader."""
import io
import subprocess
import sys
from pathlib import Path

import pandas as pd
import pytest

from quent_dgtrend import _native
from quent_dgtrend.cli import main

ROOT = Path(__file__).resolve().parents[2]
DATA = ROOT / "examples" / "data"


def test_fit_writes_the_results_table(tmp_path):
    out = io.StringIO()
    table = tmp_path / "results.csv"
    assert main(["fit", str(DATA / "plate2.csv"), str(DATA / "tank/tANK_equilmFluorscence.csv"),
                 "--states", "3", "--out", str(table)], out=out) == 0
    printed = out.getvalue()
    assert "trend of dG2 over ln(sample_conc)" in printed
    assert "note: " in printed and "points sorted by ascending denaturant" in printed
    results = pd.read_csv(table)
    assert len(results) == 10 and results["accepted"].all()  # nine curves and tANK
    assert {"set", "dG1 (cal/mol)", "Cm2 (denaturant unit)", "amp1", "code_text"} <= set(
        results.columns)
    assert list(tmp_path.iterdir()) == [table]  # no temporary file left


def test_a_bad_file_is_one_line_and_writes_nothing(tmp_path, capsys):
    bad = tmp_path / "bad.csv"
    bad.write_text("x,y\n1,2\n3,oops\n")
    table = tmp_path / "results.csv"
    assert main(["fit", str(DATA / "plate.csv"), str(bad), "--out", str(table)],
                out=io.StringIO()) == 1
    assert capsys.readouterr().err == f"error: {bad}:3: 'oops' is not a number\n"
    assert not table.exists()
    # A set the library cannot take: refused by name, nothing written.
    assert main(["fit", str(DATA / "lcrh/50uM_1.csv"), str(DATA / "lcrh/80uM_1.csv"),
                 "--conc", "50,80", "--pool", "--out", str(table)], out=io.StringIO()) == 1
    assert "50uM_1 has 42, 80uM_1 has 33 (put them on one grid with --resample)" in (
        capsys.readouterr().err)
    assert not table.exists()


def test_module_runs_and_helps():
    run = subprocess.run([sys.executable, "-m", "quent_dgtrend", "fit", "--help"],
                         cwd=ROOT / "python", capture_output=True, text=True)
    assert run.returncode == 0 and "--temperature C" in run.stdout


def test_a_missing_library_names_every_path_tried(monkeypatch):
    monkeypatch.setattr(_native, "_candidates", lambda: ["/nowhere/a.so", "/nowhere/b.so"])
    with pytest.raises(_native.LibraryNotFound, match=r"(?s)/nowhere/a\.so.*/nowhere/b\.so"):
        _native._load()


def test_lcrh_pooled_at_two_concentrations_with_resampling(tmp_path):
    out = io.StringIO()
    files = [str(DATA / "lcrh" / f) for f in ("50uM_1.csv", "50uM_2.csv", "80uM_1.csv",
                                              "80uM_2.csv")]
    assert main(["fit", *files, "--conc", "50,50,80,80", "--pool", "--resample"], out=out) == 0
    printed = out.getvalue().splitlines()
    assert sum("sign is flipped" in line for line in printed) == 4
    assert any("one grid of 42 points from 0 to 6.958" in line for line in printed)
    curves = [line for line in printed if ": curve " in line and not line.startswith("note")
              and "warning:" not in line]
    assert len(curves) == 4
    assert all("R2" in line or "no accepted fit (code" in line for line in curves)
    # The other rows tell a failed refit from a failed call.
    assert sum("refit from the plate's reference found no plausible transition" in line
               for line in curves) == 2
    assert sum("rejected at the quality gates" in line for line in curves) == 2


def test_exclusions_refit_and_jobs_change_nothing(tmp_path):
    serial, parallel = tmp_path / "serial.csv", tmp_path / "parallel.csv"
    arguments = ["fit", str(DATA / "plate.csv"), str(DATA / "plate2.csv"),
                 "--exclude", "3", "--exclude", "5:0-2"]
    out = io.StringIO()
    assert main(arguments + ["--out", str(serial)], out=out) == 0
    assert "refit under your choice: curve 3 left out; curve 5: points 0,1,2 taken out" in (
        out.getvalue())
    assert "plate.csv: curve 3: no accepted fit (code 0): left out by the host" in out.getvalue()
    assert main(arguments + ["--jobs", "2", "--out", str(parallel)], out=io.StringIO()) == 0
    assert serial.read_text() == parallel.read_text()
    rows = pd.read_csv(serial)
    assert list(rows["points kept"][rows["curve"].astype(str) == "5"]) == [45, 93]


def test_a_temperature_outside_0_to_100_is_refused(capsys):
    out = io.StringIO()
    assert main(["fit", str(DATA / "plate.csv"), "--temperature", "120"], out=out) == 2
    assert "the fits take 0 to 100 degrees Celsius" in capsys.readouterr().err


def test_options_and_outputs_that_cannot_be_used_say_so(tmp_path, capsys):
    plate = str(DATA / "plate.csv")
    for bad in (["--conc", "abc"], ["--jobs", "0"], ["--bootstrap", "-5"]):
        with pytest.raises(SystemExit):
            main(["fit", plate, *bad], out=io.StringIO())
        assert "error: argument" in capsys.readouterr().err
    missing = tmp_path / "no" / "results.csv"
    assert main(["fit", plate, "--out", str(missing)], out=io.StringIO()) == 1
    assert capsys.readouterr().err == f"error: {missing}: cannot be written (No such file or directory)\n"
    out = io.StringIO()
    assert main(["fit", plate, "--exclude", "nosuch", "--exclude", "2:46-50"], out=out) == 0
    printed = out.getvalue()
    assert "no curve nosuch here to exclude; curves are 0, 1, 2," in printed
    assert "curve 2: points 46,47 taken out; curve 2 has points 0 to 47 only" in printed
