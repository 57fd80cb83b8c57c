#!/usr/bin/env bash
# Installs what is missing, builds the program alone, and runs it on its default scenario
# (extra arguments go to `bowline run`, e.g. `scripts/run.sh other.yaml --json`).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
BOWLINE_TARGETS=bowline_main scripts/build.sh build
exec build/bowline run "$@"
