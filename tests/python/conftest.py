"""The package from python/, the library from the project's build unless
QUENT_DGTREND_LIBRARY names another."""
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))
