#!/usr/bin/env bash
# Configures and builds one build tree: scripts/build.sh BUILD_DIR [cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}; shift || true
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null || { echo "build: cmake configure failed in $dir" >&2; exit 1; }
cmake --build "$dir" -j "$(nproc)" || { echo "build: compile failed in $dir" >&2; exit 1; }
