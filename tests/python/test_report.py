"""The report: one page that holds every figure and table, valid HTML by
Debian's tidy, and needing nothing from the network."""
import re
import shutil
import subprocess
from pathlib import Path

import pytest

from quent_dgtrend.cli import main

DATA = Path(__file__).resolve().parents[2] / "examples" / "data"
pytest.importorskip("matplotlib")


def test_report_holds_every_figure_and_table(tmp_path):
    report = tmp_path / "report.html"
    assert main(["fit", str(DATA / "plate2.csv"), str(DATA / "lcrh/50uM_2.csv"), "--states",
                 "3", "--compare-models", "--bootstrap", "5", "--report", str(report)],
                out=open("/dev/null", "w")) == 0
    page = report.read_text()
    # Per set: the curves figure; the trend figure only where there is a trend.
    assert page.count("<svg") == 3
    assert page.count("<h3>Results</h3>") == 2
    assert page.count("<h3>Model comparison</h3>") == 2
    assert page.count("<h3>Bootstrap intervals</h3>") == 2
    assert "Rule: preferred: the simplest accepted model" in page
    assert "Note: curve 50uM_2: every signal is negative" in page
    assert re.search(r"<li>curve \d+: <span class=\"warning\">the model comparison", page)
    # Nothing to fetch and nothing to run.
    assert not re.search(r"(src|href)=\"(https?:)?//", page)
    assert "<script" not in page and "<link" not in page
    if shutil.which("tidy"):
        checked = subprocess.run(["tidy", "-q", "-e", str(report)], capture_output=True,
                                 text=True)
        assert checked.returncode in (0, 1) and "Error:" not in checked.stderr, checked.stderr
