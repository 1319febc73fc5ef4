"""Fits chemical denaturation curves with one-, two- or three-transition
unfolding models and reduces the free energies to a trend over sample
concentration, through the QuentDGtrendFittingEngine library.

    import quent_dgtrend as qd
    curves = qd.read_curves("plate.csv")
    plates, notices = qd.plan_calls(curves)
    fit = qd.fit_plate(plates[0], states=2, temperature=25.0)
    print(fit.table())
    print(qd.trend(fit).slope)
"""
from ._native import LibraryNotFound
from .batch import Options, SetResult, fit_set, fit_sets
from .bootstrap import Intervals, bootstrap
from .compare import compare_models
from .data import Curve, DataError, Plate, plan_calls, read_curves, resample, thin, tidy
from .fit import (CurveFit, PlateFit, Trend, code_text, evaluate_row, fit_plate, normalize,
                  refit_plate, trend, version)

__all__ = ["Intervals", "bootstrap", "Curve", "CurveFit", "DataError", "LibraryNotFound", "Options", "Plate", "PlateFit",
           "SetResult", "Trend", "code_text", "compare_models", "evaluate_row", "fit_plate", "fit_set", "fit_sets",
           "normalize", "plan_calls", "read_curves", "refit_plate", "resample", "thin", "tidy", "trend",
           "version"]
