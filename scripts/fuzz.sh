#!/usr/bin/env bash
# Runs the scenario fuzzer longer than the test suite does and prints what it finds:
#   scripts/fuzz.sh N [SEED] [BUILD_DIR]
# N generated scenarios (valid and broken) from SEED (default: the test's fixed seed) through the
# bowline program of BUILD_DIR (default build/; configured and built here when needed, only the
# program and the fuzz test). Failing scenarios are kept in BUILD_DIR/fuzz-failures/, one folder
# each, with a why.txt. One case again: BOWLINE_FUZZ_FIRST=I scripts/fuzz.sh 1 SEED.
# The exit status is the test's: 0 when nothing crashed, hung or differed.
set -euo pipefail
cd "$(dirname "$0")/.."
count=${1:?usage: scripts/fuzz.sh N [SEED] [BUILD_DIR]}
seed=${2:-20261123}
dir=${3:-build}
if [ ! -f "$dir/CMakeCache.txt" ]; then
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBOWLINE_BENCH=OFF >/dev/null
fi
cmake --build "$dir" -j 2 --target bowline_main ScenarioFuzzTest >/dev/null ||
  { echo "fuzz: build failed in $dir" >&2; exit 1; }
set +e
BOWLINE_FUZZ_COUNT=$count BOWLINE_FUZZ_SEED=$seed "$dir/ScenarioFuzzTest" \
  --gtest_filter='ScenarioFuzzTest.GeneratedScenariosNeverCrashHangOrDiffer' --gtest_brief=1 |
  grep -E '^(fuzz:|  )'
status=${PIPESTATUS[0]}
exit "$status"
