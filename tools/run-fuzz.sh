#!/bin/sh
# Runs every fuzz target (or those named) for SECONDS each, one after the
# other, from its seed corpus; new inputs go to build-clang/fuzz-corpus.
# Needs the checked clang build of tools/run-tests.sh (build-clang).
#   tools/run-fuzz.sh SECONDS [TARGET...]
# A finding stops the run with the target's report and a crash-* file.
set -e
cd "$(dirname "$0")/.."
seconds=${1:?usage: tools/run-fuzz.sh SECONDS [TARGET...]}
shift
targets=${*:-"fuzz_primary_fit fuzz_user_primary_fit fuzz_calc fuzz_normalization fuzz_trend
  fuzz_fd fuzz_fragg fuzz_fraggfd fuzz_wrapper_real fuzz_wrapper_int32 fuzz_evaluate_row
  fuzz_code_text"}
for target in $targets; do
  work=build-clang/fuzz-corpus/$target
  mkdir -p "$work" build-clang/fuzz-findings
  if ! build-clang/tests/fuzz/$target -max_total_time="$seconds" -timeout=60 -rss_limit_mb=4096 \
      -artifact_prefix=build-clang/fuzz-findings/$target- -print_final_stats=1 \
      "$work" tests/fuzz/corpus/$target > build-clang/fuzz-findings/$target.log 2>&1; then
    printf '%-24s FINDING\n' "$target"
    tail -40 build-clang/fuzz-findings/$target.log
    exit 1
  fi
  # One whole line per target, so that runs side by side do not mix their output.
  printf '%-24s %s\n' "$target" "$(grep -E '^stat::number_of_executed_units|cov:' \
    build-clang/fuzz-findings/$target.log | tail -2 | tr '\n' ' ' |
    sed 's/stat::number_of_executed_units: */runs /')"
done
