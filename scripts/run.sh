#!/usr/bin/env bash
# Installs what is missing, builds, and runs the host program on its default scenario
# (extra arguments go to `bowline run`, e.g. `scripts/run.sh other.yaml --json`).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh build
exec build/bowline run "$@"
