#!/bin/sh
# Builds the library and the example host, and fits the bundled plate:
# per-curve results, the trend over sample concentration and its fractions.
set -e
cd "$(dirname "$0")/.."
tools/ensure-packages.sh cmake make g++ gcc binutils libgtest-dev libbenchmark-dev
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j 2 --target fit_plate
build/examples/fit_plate examples/data/plate.csv
