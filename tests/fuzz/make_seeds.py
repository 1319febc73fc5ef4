#!/usr/bin/python3
"""Writes the seed corpora of the fuzz targets from the bundled data.

Each plate of examples/data becomes a raw plate (its numbers exactly, as
the targets decode them) for the two fits, under each family; the fitted
rows of the stored example outputs become inputs of the reduction; the
drawings and the wrappers get the concentrations and trends of the plates.
Run from anywhere: python3 tests/fuzz/make_seeds.py
"""
import csv
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
DATA = os.path.join(ROOT, "examples", "data")
CORPUS = os.path.join(HERE, "corpus")

RAW = 0xFF  # a pick() byte that reads the next 8 bytes as the value
PLENTY = bytes([0xFF, 0, 0])  # the fits run with all the memory they need


def double(v):
    return struct.pack("<d", v)


def u16(unit):
    """The two bytes that Reader::unit() reads as `unit` (below 1)."""
    return struct.pack("<H", min(int(unit * 65536), 65535))


def picked(v):
    return bytes([RAW]) + double(v)


def plates():
    """(name, points, curves) with curves = [(conc, x, y)], from every data set."""
    for name in ("plate", "plate2", "plate3"):
        curves = {}
        with open(os.path.join(DATA, name + ".csv")) as f:
            for row in csv.DictReader(f):
                c = curves.setdefault(int(row["curve"]), (float(row["sample_conc"]), [], []))
                c[1].append(float(row["denaturant"]))
                c[2].append(float(row["signal"]))
        chosen = [curves[k] for k in sorted(curves)][:6]
        yield name, len(chosen[0][1]), chosen
    for name, path in (("gankyrin", "gankyrin/GankyrinEquilmDenaturationCurve.csv"),
                       ("tank", "tank/tANK_equilmFluorscence.csv")):
        with open(os.path.join(DATA, path)) as f:
            rows = [r for r in csv.reader(f)][1:]
        x = [float(r[0]) for r in rows]
        y = [float(r[1]) for r in rows]
        yield name, len(x), [(1.0, x, y)]


def raw_plate(state_count, points, curves):
    head = {2: 0x21, 3: 0x22, 4: 0x20}[state_count]
    out = bytes([head]) + struct.pack("<H", points - 1) + bytes([len(curves) - 1])
    for conc, x, y in curves:
        out += b"".join(double(v) for v in x) + b"".join(double(v) for v in y) + double(conc)
    return out


def rows_of(golden):
    with open(os.path.join(ROOT, "tests", "golden", golden)) as f:
        lines = f.read().split("\n")
    start = lines.index("# fitRows") + 1
    rows = []
    for line in lines[start:]:
        if line.startswith("#") or not line.strip():
            break
        rows.append([float(v) for v in line.split()])
    return rows


def write(target, name, data):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def main():
    concs = []
    for name, points, curves in plates():
        concs.append([c for c, _, _ in curves])
        for states in (2, 3, 4):
            plate = raw_plate(states, points, curves)
            write("fuzz_primary_fit", "%s_%d" % (name, states), plate + PLENTY)
            # No runs dropped, every curve flagged 1, masks of full length.
            flags = bytes([1] * len(curves))
            write("fuzz_user_primary_fit", "%s_%d" % (name, states),
                  plate + bytes([0]) + flags + bytes([0]) + PLENTY)
            write("fuzz_user_primary_fit", "%s_%d_dropped" % (name, states),
                  plate + bytes([2, 0, 0, 3, 40, 0, 5]) + flags + bytes([1]) + PLENTY)
        # The single measured curves short of memory after a few
        # allocations, measured at one denaturant value, and as nothing.
        if len(curves) > 1:
            continue
        plate = raw_plate(2, points, curves)
        flags = bytes([1] * len(curves))
        user = plate + bytes([0]) + flags + bytes([0])
        for limit in (0, 3, 8, 21, 55, 144, 377):
            starved = bytes([0]) + struct.pack("<H", limit)
            write("fuzz_primary_fit", "%s_starved_%d" % (name, limit), plate + starved)
            write("fuzz_user_primary_fit", "%s_starved_%d" % (name, limit), user + starved)
        for target, head in (("fuzz_primary_fit", plate), ("fuzz_user_primary_fit", user)):
            write(target, name + "_one_denaturant", head + PLENTY + bytes([12, 0, 0]))
            write(target, name + "_nothing", head + PLENTY + bytes([13, 0, 0]))
    # A made curve of 8 points with one large spike: the screen leaves 7,
    # fewer than a one-transition fit needs.
    made = bytes([0, 5, 0, 0]) + u16(1.0) + u16(0.7) + u16(0.5) + u16(0.0)
    made += u16(0.5) + u16(0.4) + u16(0.5) + u16(0.0) * 8 + bytes([1])
    write("fuzz_primary_fit", "eight_points_one_spike",
          made + PLENTY + bytes([0]) + struct.pack("<H", 3) + u16(1.0))
    for golden in ("plate.golden", "plate2.golden", "plate3.golden", "tank.golden"):
        rows = rows_of(golden)[:99]
        transition = {"plate.golden": 1, "plate2.golden": 2, "plate3.golden": 3, "tank.golden": 2}[golden]
        data = bytes([len(rows), 1, transition - 1])
        for i, row in enumerate(rows):
            data += picked(concs[0][i % len(concs[0])]) + bytes([1])
            data += b"".join(picked(v) for v in row[:24])
        write("fuzz_calc", golden.replace(".golden", ""), data + bytes([0]))
    for drawing in ("trend", "fd", "fragg", "fraggfd"):
        for i, conc in enumerate(concs):
            data = bytes([len(conc)]) + b"".join(picked(c) for c in conc) + bytes([1])
            data += picked(-450.0 * (i + 1)) + picked(5200.0) + bytes([20]) + picked(25.0)
            write("fuzz_" + drawing, "plate%d" % i, data + bytes([1, 1, 1]))
    for i, (_, _, curves) in enumerate(plates()):
        ys = curves[0][2][:64]
        data = bytes([len(ys)]) + b"".join(picked(v) for v in ys) + bytes([0])
        write("fuzz_normalization", "curve%d" % i, data + picked(ys[0]) + picked(100.0))
    # Rows of the golden files, fitted and failed, drawn on a grid and named.
    for golden, states in (("plate.golden", 0), ("plate2.golden", 1), ("plate3.golden", 2),
                           ("tank.golden", 1), ("plate_user.golden", 0)):
        for i, row in enumerate(rows_of(golden)[:4]):
            head = bytes([states]) + b"".join(picked(v) for v in row[:24]) + bytes([1])
            grid = [8.0 * k / 39 for k in range(40)]
            write("fuzz_evaluate_row", "%s_%d" % (golden.replace(".golden", ""), i),
                  head + bytes([0, len(grid)]) + b"".join(picked(x) for x in grid) + bytes([0]))
            write("fuzz_code_text", "%s_%d" % (golden.replace(".golden", ""), i), head)
    # Nothing at all: no row (the first case the code text target met).
    write("fuzz_code_text", "nothing", b"")
    write("fuzz_evaluate_row", "nothing", b"")
    for target in ("fuzz_wrapper_real", "fuzz_wrapper_int32"):
        for rows, cols, wanted in ((1, 8, 5), (1, 4, 12), (-3, -3, 7), (0, 0, 3)):
            data = struct.pack("<ii", rows, cols) + bytes([wanted])
            write(target, "shape_%d_%d_%d" % (rows, cols, wanted), data)


if __name__ == "__main__":
    main()
