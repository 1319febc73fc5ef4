#!/bin/sh
# Builds the library and runs every test, in three builds:
#  1. g++: unit, golden-file and C host tests, the fuzz seeds replayed,
#     valgrind memcheck of the hosts, the installed tree, and the Python
#     package's tests;
#  2. clang with AddressSanitizer and UndefinedBehaviorSanitizer: the same
#     tests again, then a few seconds of every fuzz target;
#  3. the thread sanitizer: fits on several threads at once.
set -e
cd "$(dirname "$0")/.."
tools/ensure-packages.sh cmake make g++ gcc binutils libgtest-dev libbenchmark-dev \
  clang-14 libclang-rt-14-dev valgrind pkgconf
tools/ensure-packages.sh --no-recommends python3-numpy python3-pandas python3-pytest \
  python3-tqdm python3-distributed python3-openpyxl python3-matplotlib tidy
start=$(date +%s)
lap() { echo "== $1 done after $(($(date +%s) - start)) s"; }

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUENT_TEST_SANITIZERS=OFF \
  -DQUENT_BUILD_FUZZ=ON
cmake --build build -j 2
ctest --test-dir build -j 2 --output-on-failure --timeout 300
# The Python package, on the library just built (Debian's Python and packages).
/usr/bin/python3 -m pytest -q -p no:cacheprovider tests/python
lap "g++ build and tests, Python tests"

CC=clang-14 CXX=clang++-14 cmake -S . -B build-clang -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQUENT_SANITIZE=ON -DQUENT_BUILD_FUZZ=ON -DQUENT_BUILD_BENCHMARKS=OFF
cmake --build build-clang -j 2
ctest --test-dir build-clang -j 2 --output-on-failure --timeout 300
lap "clang sanitizer build and tests"
# Two targets at a time, one on each core.
tools/run-fuzz.sh 3 fuzz_primary_fit fuzz_calc fuzz_trend fuzz_fragg fuzz_wrapper_real \
  fuzz_evaluate_row &
first_half=$!
tools/run-fuzz.sh 3 fuzz_user_primary_fit fuzz_normalization fuzz_fd fuzz_fraggfd \
  fuzz_wrapper_int32 fuzz_code_text
wait $first_half
lap "fuzz targets"

cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUENT_SANITIZE_THREADS=ON \
  -DQUENT_BUILD_BENCHMARKS=OFF
cmake --build build-tsan -j 2 --target test_concurrent_fits
build-tsan/tests/test_concurrent_fits
lap "thread sanitizer"
