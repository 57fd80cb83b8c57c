#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main program on its default load.
# Until the host program lands this runs the foundations benchmarks.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build
for b in build/HashMap2018Bench build/PublisherBench build/TraceBench build/BacklogBench; do
  [ -x "$b" ] && "$b" --benchmark_min_time=0.2 "$@"
done
