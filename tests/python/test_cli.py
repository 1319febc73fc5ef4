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
    assert {"file", "dG1 (cal/mol)", "Cm2 (denaturant unit)", "amp1", "code_text"} <= set(
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


def test_module_runs_and_helps():
    run = subprocess.run([sys.executable, "-m", "quent_dgtrend", "fit", "--help"],
                         cwd=ROOT / "python", capture_output=True, text=True)
    assert run.returncode == 0 and "--temperature C" in run.stdout


def test_a_missing_library_names_every_path_tried(monkeypatch):
    monkeypatch.setattr(_native, "_candidates", lambda: ["/nowhere/a.so", "/nowhere/b.so"])
    with pytest.raises(_native.LibraryNotFound, match=r"(?s)/nowhere/a\.so.*/nowhere/b\.so"):
        _native._load()
