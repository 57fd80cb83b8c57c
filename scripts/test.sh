#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite with CTest.
#   scripts/test.sh             the ordinary build (build/)
#   scripts/test.sh --sanitize  the suite under AddressSanitizer and UndefinedBehaviorSanitizer (build-asan/)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
if [ "${1:-}" = "--sanitize" ]; then
  export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  scripts/build.sh build-asan -DBOWLINE_SANITIZE=ON -DBOWLINE_BENCH=OFF
  ctest --test-dir build-asan --output-on-failure -j "$(nproc)"
else
  scripts/build.sh build
  ctest --test-dir build --output-on-failure -j "$(nproc)"
fi
