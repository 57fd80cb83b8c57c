#!/usr/bin/env bash
# Installs the Debian packages that building and testing bowline needs, when they are missing.
# Safe to run again: it installs nothing that is already there.
set -euo pipefail
packages=(g++ cmake make ccache libfmt-dev libgtest-dev libgmock-dev libbenchmark-dev libyaml-cpp-dev libcli11-dev nlohmann-json3-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}" >&2
  export DEBIAN_FRONTEND=noninteractive
  if ! apt-get install -y "${missing[@]}" >/tmp/bowline-apt.log 2>&1; then
    apt-get update >>/tmp/bowline-apt.log 2>&1 || true
    apt-get install -y "${missing[@]}" >>/tmp/bowline-apt.log 2>&1 || {
      echo "setup: could not install ${missing[*]}; see /tmp/bowline-apt.log" >&2
      tail -n 20 /tmp/bowline-apt.log >&2
      exit 1
    }
  fi
fi
