#!/bin/sh
# Builds the library and fits the bundled plate with the command-line tool:
# per-curve results, the trend over sample concentration, and a results
# table in build/results.csv.
set -e
cd "$(dirname "$0")/.."
tools/ensure-packages.sh cmake make g++ gcc binutils libgtest-dev libbenchmark-dev
tools/ensure-packages.sh --no-recommends python3-numpy python3-pandas python3-tqdm
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j 2 --target QuentDGtrendFittingEngine
cd python
/usr/bin/python3 -m quent_dgtrend fit ../examples/data/plate.csv --out ../build/results.csv
