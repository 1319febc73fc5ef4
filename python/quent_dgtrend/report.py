"""One self-contained HTML page per run: figures inline as SVG, tables,
code texts and warnings; nothing fetched, no script needed to read it."""
import html
import io
import math
import re

import numpy as np

from .warnings import curve_warnings

STYLE = """
body { font-family: sans-serif; margin: 1.5em auto; padding: 0 1em; max-width: 72em;
       color: #222; }
svg { max-width: 100%; height: auto; }
h1 { font-size: 1.5em; } h2 { font-size: 1.25em; margin-top: 2em; } h3 { font-size: 1.05em; }
table { border-collapse: collapse; font-size: 0.85em; margin: 0.5em 0 1.5em; }
th, td { border: 1px solid #bbb; padding: 0.2em 0.5em; text-align: right; }
th { background: #eee; } td.text { text-align: left; min-width: 16em; }
div.wide { overflow-x: auto; }
tr.failed td { color: #a00; } .warning { color: #a60; } .note { color: #555; }
figure { margin: 0.5em 0 1.5em; } figcaption { font-size: 0.85em; color: #555; }
"""


def _svg(figure):
    """The figure as an inline <svg> element."""
    import matplotlib.pyplot as plt
    buffer = io.StringIO()
    figure.savefig(buffer, format="svg", bbox_inches="tight")
    plt.close(figure)
    text = buffer.getvalue()
    text = text[text.index("<svg"):]
    # HTML wants plain pixel sizes and no style sheets inside the page's body.
    text = re.sub(r'(width|height)="([0-9.]+)pt"',
                  lambda m: f'{m.group(1)}="{float(m.group(2)) * 4.0 / 3.0:.0f}"', text, count=2)
    text = re.sub(r"<metadata>.*?</metadata>", "", text, flags=re.S)
    return re.sub(r"<style[^>]*>.*?</style>", "", text, flags=re.S)


def _figure(rows, columns, size=(3.2, 2.6)):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    plt.rcParams["svg.hashsalt"] = "quent"  # the same page for the same results
    figure, axes = plt.subplots(rows, columns, figsize=(size[0] * columns, size[1] * rows),
                                squeeze=False)
    return figure, axes


def _curves_figure(fit):
    """Each curve: its points (kept and dropped), the fit, and its residuals."""
    n = len(fit.curves)
    columns = min(n, 4)
    rows = math.ceil(n / columns)
    figure, axes = _figure(2 * rows, columns, size=(3.2, 1.9))
    for k, curve in enumerate(fit.curves):
        top, bottom = axes[2 * (k // columns)][k % columns], axes[2 * (k // columns) + 1][k % columns]
        kept = curve.point_mask == 1
        x, y = curve.denaturant, curve.signal
        top.plot(x[kept], y[kept], "o", ms=3, color="#1f77b4", label="kept")
        top.plot(x[~kept], y[~kept], "x", ms=5, color="#d62728", label="dropped")
        title = f"{curve.name} (c = {curve.sample_conc:g})"
        if curve.accepted:
            grid = np.linspace(float(x.min()), float(x.max()), 200)
            top.plot(grid, curve.fitted_curve(grid)[0], "-", color="#222", lw=1)
            fitted = curve.fitted_curve(x)[0]
            bottom.axhline(0.0, color="#999", lw=0.8)
            bottom.plot(x[kept], (y - fitted)[kept], "o", ms=2.5, color="#1f77b4")
            bottom.plot(x[~kept], (y - fitted)[~kept], "x", ms=4, color="#d62728")
        else:
            title += f": no fit (code {curve.code})"
            bottom.axis("off")
            bottom.text(0.5, 0.5, "no fit", ha="center", va="center", transform=bottom.transAxes)
        top.set_title(title, fontsize=8)
        top.tick_params(labelsize=7)
        bottom.tick_params(labelsize=7)
        bottom.set_xlabel("denaturant", fontsize=7)
        bottom.set_ylabel("residual", fontsize=7)
    for k in range(n, rows * columns):
        axes[2 * (k // columns)][k % columns].axis("off")
        axes[2 * (k // columns) + 1][k % columns].axis("off")
    figure.tight_layout()
    return _svg(figure)


def _trend_figure(fit, trends):
    """dG of each curve and the means per concentration against ln(c), with the
    trend line; and the three fractions drawn from the first transition's line."""
    figure, axes = _figure(1, 2, size=(4.6, 3.2))
    left, right = axes[0]
    for line in trends:
        t = line.transition
        conc = [c.sample_conc for c in fit.curves if c.accepted]
        dG = [c.dG[t - 1] for c in fit.curves if c.accepted]
        left.plot(conc, dG, ".", ms=4, alpha=0.6, label=f"dG{t} of each curve")
        used = line.used == 1
        left.errorbar(line.conc[used], line.mean_dG[used], yerr=line.deviation[used], fmt="s",
                      ms=4, capsize=2, label=f"mean dG{t} ± sd")
        drawn = line.curves(points=60)
        left.plot(drawn["conc"], drawn["dG (cal/mol)"], "-", lw=1,
                  label=f"trend: {line.slope:.1f} ln(c) + {line.intercept:.0f}")
    left.set_xscale("log")
    left.set_xlabel("sample concentration (log scale)")
    left.set_ylabel("dG (cal/mol)")
    left.legend(fontsize=7)
    drawn = trends[0].curves(points=60)
    for name, style in (("fd", "-"), ("fragg", "--"), ("fraggfd", ":")):
        right.plot(drawn["conc"], drawn[name], style, lw=1.5, label=name)
    right.set_xscale("log")
    right.set_xlabel("sample concentration (log scale)")
    right.set_ylabel("fraction")
    right.legend(fontsize=7)
    figure.tight_layout()
    return _svg(figure)


def _table(frame, text_columns=(), failed=None, digits=5):
    head = "".join(f"<th>{html.escape(str(c))}</th>" for c in frame.columns)
    body = []
    for i, row in enumerate(frame.itertuples(index=False)):
        cells = []
        for column, value in zip(frame.columns, row):
            if isinstance(value, float):
                text = "" if math.isnan(value) else f"{value:.{digits}g}"
            else:
                text = str(value)
            kind = ' class="text"' if column in text_columns else ""
            cells.append(f"<td{kind}>{html.escape(text)}</td>")
        kind = ' class="failed"' if failed is not None and failed[i] else ""
        body.append(f"<tr{kind}>{''.join(cells)}</tr>")
    return f"<table><thead><tr>{head}</tr></thead><tbody>{''.join(body)}</tbody></table>"


def _anchor(text):
    return re.sub(r"[^A-Za-z0-9]+", "-", text).strip("-") or "set"


def render(results, title="Denaturation fits"):
    """The page for a list of SetResults, as a string."""
    out = [f"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           f"<title>{html.escape(title)}</title>\n<style>{STYLE}</style>\n</head>\n<body>\n"
           f"<h1>{html.escape(title)}</h1>\n<ul>"]
    for r in results:
        out.append(f"<li><a href=\"#{_anchor(r.label)}\">{html.escape(r.label)}</a></li>")
    out.append("</ul>")
    for r in results:
        out.append(f"<h2 id=\"{_anchor(r.label)}\">{html.escape(r.label)}</h2>")
        if r.error:
            out.append(f"<p class=\"warning\">Refused: {html.escape(r.error)}</p>")
            continue
        for notice in r.notices:
            out.append(f"<p class=\"note\">Note: {html.escape(notice)}</p>")
        for number, part in enumerate(r.parts, start=1):
            fit = part["fit"]
            if len(r.parts) > 1:
                out.append(f"<h3>Call {number}</h3>")
            out.append(f"<figure>{_curves_figure(fit)}<figcaption>Each curve with its fit "
                       f"({fit.states} states, {fit.temperature:g} °C): kept points as dots, "
                       "points the fit dropped as crosses, residuals below.</figcaption></figure>")
            if part["trends"] and any((line.used == 1).any() for line in part["trends"]):
                out.append(f"<figure>{_trend_figure(fit, part['trends'])}<figcaption>Free "
                           "energy against sample concentration with the trend line and the "
                           "standard deviation of each concentration; the fractions drawn from "
                           "the first transition's line.</figcaption></figure>")
            table = fit.table()
            preferred = {}
            if part["comparison"] is not None:
                chosen = part["comparison"][part["comparison"]["preferred"]]
                preferred = dict(zip(chosen["curve"], chosen["states"]))
            table["warnings"] = ["; ".join(curve_warnings(c, preferred.get(c.name)))
                                 for c in fit.curves]
            shown = ["curve", "sample_conc", "code"] + [
                c for c in table.columns if c.startswith(("dG", "Cm", "m", "amp"))
                and not table[c].isna().all()] + ["R2", "points kept"]
            out.append("<h3>Results</h3><p>Rows in red have no accepted fit; energies in "
                       "cal/mol, midpoints in the denaturant's unit.</p>")
            out.append('<div class="wide">' + _table(table[shown], (),
                                                     failed=list(~table["accepted"])) + "</div>")
            # A curve without a fit has its reason; that of a row refused at the
            # gates already names them.
            remarks = [(c.name, r, "" if r else w) for c, r, w in
                       zip(fit.curves, table["reason"], table["warnings"]) if r or w]
            if remarks:
                out.append("<p>Curves to look at:</p><ul>" + "".join(
                    f"<li>curve {html.escape(name)}: " +
                    (f"no fit: {html.escape(r)}" if r else "") + ("; " if r and w else "") +
                    (f'<span class="warning">{html.escape(w)}</span>' if w else "") + "</li>"
                    for name, r, w in remarks) + "</ul>")
            codes = sorted({(c.code, c.accepted, c.code_text) for c in fit.curves})
            out.append("<p>Codes: " + "; ".join(
                f"<b>{code}</b>{'' if ok else ' (no fit)'}: {html.escape(text)}"
                for code, ok, text in codes) + ".</p>")
            if part["comparison"] is not None:
                from .compare import RULE
                out.append(f"<h3>Model comparison</h3><p>Rule: {html.escape(RULE)}.</p>")
                out.append(_table(part["comparison"].drop(columns=["code_text"]), ()))
            if part["intervals"] is not None:
                iv = part["intervals"]
                out.append(f"<h3>Bootstrap intervals</h3><p>{iv.replicates} residual "
                           f"resamplings, {100 * iv.level:g}% percentile intervals.</p>")
                wide = {}
                for r in iv.curves.itertuples():
                    wide.setdefault(r.curve, {"curve": r.curve})[r.parameter] = (
                        f"{r.estimate:.4g} [{r.low:.4g}, {r.high:.4g}]")
                import pandas as pd
                out.append(_table(pd.DataFrame(list(wide.values())).fillna(""), ()))
                if len(iv.trend):
                    out.append(_table(iv.trend, ()))
    out.append("</body>\n</html>\n")
    return "\n".join(out)
