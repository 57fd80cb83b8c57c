#!/usr/bin/env bash
# Configures and builds one build tree: scripts/build.sh BUILD_DIR [cmake options...]
# BOWLINE_TARGETS="bowline_main GoldenTest" builds only those targets (default: everything).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}; shift || true
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null || { echo "build: cmake configure failed in $dir" >&2; exit 1; }
targets=()
for t in ${BOWLINE_TARGETS:-}; do targets+=(--target "$t"); done
cmake --build "$dir" -j "$(nproc)" "${targets[@]}" || { echo "build: compile failed in $dir" >&2; exit 1; }
