"""The command line: python3 -m quent_dgtrend fit DATA... [options]."""
import argparse
import os
import sys
import tempfile

from .data import DataError, plan_calls, read_curves
from .fit import fit_plate, transitions_of, trend

DESCRIPTION = """\
Fit chemical denaturation curves and reduce their free energies to a trend
over sample concentration.

DATA files are CSV (comma, semicolon or tab; decimal commas accepted):
either the long form with the columns curve, sample_conc, denaturant,
signal, or one curve in two columns (denaturant, signal) whose sample
concentration is --conc.  Every change made to the data (sorting, sign
flips, offsets, dropped points) is printed as a note."""


def _parser():
    parser = argparse.ArgumentParser(prog="python3 -m quent_dgtrend", description=DESCRIPTION,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command", required=True)
    fit = commands.add_parser("fit", help="fit curves and print the results",
                              description=DESCRIPTION,
                              formatter_class=argparse.RawDescriptionHelpFormatter)
    fit.add_argument("data", nargs="+", metavar="DATA", help="CSV files of curves")
    fit.add_argument("--states", type=int, choices=(2, 3, 4), default=2,
                     help="2: one transition (native, unfolded); 3: two transitions through "
                          "one intermediate; 4: three transitions (default 2)")
    fit.add_argument("--temperature", type=float, default=25.0, metavar="C",
                     help="temperature in degrees Celsius, 0 to 100 (default 25)")
    fit.add_argument("--conc", type=float, default=1.0, metavar="C",
                     help="sample concentration of a two-column curve (default 1)")
    fit.add_argument("--out", metavar="FILE",
                     help="write the results table (one row per curve) to this CSV file")
    return parser


def _write_atomically(frame, path):
    """Writes next to `path` under a temporary name and renames: never half a file."""
    folder = os.path.dirname(os.path.abspath(path))
    handle, temporary = tempfile.mkstemp(dir=folder, prefix=".quent-", suffix=".csv")
    try:
        with os.fdopen(handle, "w", newline="") as f:
            frame.to_csv(f, index=False)
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


def _fit_file(path, args, out):
    import pandas as pd
    curves = read_curves(path, sample_conc=args.conc)
    plates, notices = plan_calls(curves)
    for notice in notices:
        print(f"note: {path}: {notice}", file=out)
    tables = []
    for plate in plates:
        fit = fit_plate(plate, states=args.states, temperature=args.temperature)
        table = fit.table()
        table.insert(0, "file", str(path))
        tables.append(table)
        for curve in fit.curves:
            if curve.accepted:
                values = ", ".join(f"dG{t + 1} {g:.1f} cal/mol, Cm{t + 1} {c:.4g}"
                                   for t, (g, c) in enumerate(zip(curve.dG, curve.Cm)))
                print(f"{path}: curve {curve.name}: {values}, R2 {curve.r_squared:.5f}, "
                      f"{curve.kept_points} of {len(curve.point_mask)} points kept", file=out)
            else:
                print(f"{path}: curve {curve.name}: no accepted fit (code {curve.code}: "
                      f"{curve.code_text})", file=out)
        if len({c.sample_conc for c in plate.curves}) > 1:
            for t in range(1, transitions_of(args.states) + 1):
                line = trend(fit, transition=t)
                print(f"{path}: trend of dG{t} over ln(sample_conc): slope {line.slope:.2f}, "
                      f"intercept {line.intercept:.2f} cal/mol, R2 {line.r_squared:.4f}",
                      file=out)
    return pd.concat(tables, ignore_index=True)


def main(argv=None, out=None):
    out = sys.stdout if out is None else out
    args = _parser().parse_args(argv)
    import pandas as pd
    try:
        tables = [_fit_file(path, args, out) for path in args.data]
    except DataError as error:
        print(f"error: {error}", file=sys.stderr)
        return 1
    if args.out:
        _write_atomically(pd.concat(tables, ignore_index=True), args.out)
        print(f"results written to {args.out}", file=out)
    return 0
