"""The command line: python3 -m quent_dgtrend fit DATA... [options]."""
import argparse
import os
import sys
import tempfile
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path

from .batch import Options, fit_set, fit_sets
from .data import DataError, read_curves

DESCRIPTION = """\
Fit chemical denaturation curves and reduce their free energies to a trend
over sample concentration.

DATA files are CSV (comma, semicolon or tab; decimal commas accepted) or
.xlsx workbooks (every sheet), in one of three forms: the long form with the
columns curve, sample_conc, denaturant, signal; one curve in two columns
(denaturant, signal) whose sample concentration --conc gives; or the wide
form, a denaturant column and a signal column per curve headed by its sample
concentration ("50 uM").  Each file is fitted on its own unless --pool puts
all curves into one fit.  Every change made to the data (sorting, sign
flips, offsets, dropped points, resampling, scaling) is printed as a note.

example: python3 -m quent_dgtrend fit lcrh/*.csv --conc 50,50,80,80 --pool --resample"""


def _exclusion(text):
    """CURVE or CURVE:POINTS, POINTS as 0-2,5 (0-based, in ascending denaturant)."""
    name, _, points = text.rpartition(":") if ":" in text else (text, "", "")
    if not points:
        return (name, None)
    chosen = []
    try:
        for part in points.split(","):
            first, _, last = part.partition("-")
            chosen += list(range(int(first), int(last or first) + 1))
    except ValueError:
        raise argparse.ArgumentTypeError(f"'{text}': points are like 0-2,5") from None
    return (name, chosen)


def _positive(text):
    value = int(text)
    if value < 1:
        raise argparse.ArgumentTypeError(f"'{text}': at least 1")
    return value


def _count(text):
    value = int(text)
    if value < 0:
        raise argparse.ArgumentTypeError(f"'{text}': 0 or more")
    return value


def _concentrations(text):
    try:
        return [float(c) for c in text.split(",")]
    except ValueError:
        raise argparse.ArgumentTypeError(f"'{text}': numbers separated by commas") from None


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
    fit.add_argument("--conc", type=_concentrations, default=[1.0], metavar="C[,C...]",
                     help="sample concentration of two-column curves: one value for all, or "
                          "one per file in order (default 1)")
    fit.add_argument("--pool", action="store_true",
                     help="fit the curves of all files together, as one set")
    fit.add_argument("--resample", action="store_true",
                     help="put curves of unequal length on one grid (linear interpolation "
                          "over the range they share) instead of refusing them")
    fit.add_argument("--thin", action="store_true",
                     help="thin curves longer than the 384 points a fit takes")
    fit.add_argument("--normalize", action="store_true",
                     help="scale every curve so that its largest signal is 100 (after the "
                          "sign and offset changes)")
    fit.add_argument("--exclude", action="append", type=_exclusion, default=[],
                     metavar="CURVE[:POINTS]",
                     help="refit without this curve, or without these points of it (0-based "
                          "in ascending denaturant, like 0-2,5); may be repeated")
    fit.add_argument("--compare-models", action="store_true",
                     help="also fit every curve with 2, 3 and 4 states and say which model "
                          "the data support (AICc, BIC, F-test; the rule is printed)")
    fit.add_argument("--bootstrap", type=_count, default=0, metavar="N",
                     help="N residual resamplings refitted under the original mask: percentile "
                          "intervals of dG, Cm, m and of the trend's slope and intercept")
    fit.add_argument("--seed", type=int, default=0, metavar="S",
                     help="seed of the resampling; the same seed gives the same intervals")
    fit.add_argument("--level", type=float, default=0.95, metavar="L",
                     help="level of the intervals (default 0.95)")
    fit.add_argument("--jobs", type=_positive, default=1, metavar="N",
                     help="fit N sets at once in separate processes (default 1)")
    fit.add_argument("--report", metavar="FILE",
                     help="write one self-contained HTML page of figures and tables "
                          "(Debian's python3-matplotlib)")
    fit.add_argument("--out", metavar="FILE",
                     help="write the results table (one row per curve) to this CSV file")
    return parser


def _write_atomically(write, path):
    """Writes next to `path` under a temporary name and renames: never half a file."""
    folder = os.path.dirname(os.path.abspath(path))
    try:
        handle, temporary = tempfile.mkstemp(dir=folder, prefix=".quent-")
    except OSError as error:
        raise OSError(error.errno, error.strerror, path) from None
    try:
        with os.fdopen(handle, "w", newline="", encoding="utf-8") as f:
            write(f)
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(temporary, 0o666 & ~umask)
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


def _sets(args):
    concs = args.conc
    if len(concs) not in (1, len(args.data)):
        raise DataError(f"--conc gives {len(concs)} values for {len(args.data)} files")
    per_file = []
    for k, path in enumerate(args.data):
        curves = read_curves(path, sample_conc=concs[k if len(concs) > 1 else 0])
        per_file.append((str(path), curves))
    if not args.pool:
        return per_file
    pooled = []
    for path, curves in per_file:
        for c in curves:
            if any(c.name == p.name for p in pooled):
                c.name = f"{Path(path).stem}:{c.name}"
            pooled.append(c)
    return [(f"pool of {len(per_file)} files", pooled)]


def main(argv=None, out=None):
    out = sys.stdout if out is None else out
    args = _parser().parse_args(argv)
    if not 0.0 <= args.temperature <= 100.0:
        print(f"error: --temperature {args.temperature:g}: the fits take 0 to 100 degrees "
              "Celsius", file=sys.stderr)
        return 2
    options = Options(args.states, args.temperature, args.resample, args.thin, args.exclude,
                      args.normalize, args.compare_models, args.bootstrap, args.seed,
                      args.level)
    try:
        sets = _sets(args)
    except DataError as error:
        print(f"error: {error}", file=sys.stderr)
        return 1
    if args.jobs > 1 and args.bootstrap > 0:
        # The replicates are the long work: they go to the processes, set after set.
        with ProcessPoolExecutor(max_workers=args.jobs) as pool:
            results = [fit_set(label, curves, options, pool) for label, curves in sets]
    elif args.jobs > 1:
        with ProcessPoolExecutor(max_workers=args.jobs) as pool:
            results = fit_sets(sets, options, pool, progress=True)
    else:
        results = fit_sets(sets, options, progress=True)
    failed = False
    for r in results:
        for notice in r.notices:
            print(f"note: {r.label}: {notice}", file=out)
        for line in r.lines:
            print(f"{r.label}: {line}", file=out)
        if r.error:
            print(f"error: {r.label}: {r.error}", file=sys.stderr)
            failed = True
    if failed:
        return 1
    try:
        if args.out:
            import pandas as pd
            frame = pd.concat([r.table for r in results], ignore_index=True)
            _write_atomically(lambda f: frame.to_csv(f, index=False), args.out)
            print(f"results written to {args.out}", file=out)
        if args.report:
            from .report import render
            title = ("Denaturation fits: " + results[0].label if len(results) == 1
                     else f"Denaturation fits of {len(results)} sets")
            page = render(results, title=title)
            _write_atomically(lambda f: f.write(page), args.report)
            print(f"report written to {args.report}", file=out)
    except OSError as error:
        print(f"error: {error.filename or ''}: cannot be written ({error.strerror})",
              file=sys.stderr)
        return 1
    return 0
