#!/bin/sh
# Builds the library and runs every test (unit, golden-file and C host tests).
set -e
cd "$(dirname "$0")/.."
tools/ensure-packages.sh cmake make g++ gcc binutils libgtest-dev libbenchmark-dev
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j 2
ctest --test-dir build -j 2 --output-on-failure --timeout 300
