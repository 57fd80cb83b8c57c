#!/usr/bin/env bash
# Writes N static routes, one a line, in the route-file format: route i = (16.0.0.0 + i*256)/24 via
# 192.168.1.1 (the load the peer-daemon benchmark gives its daemon), and a scenario that loads them
# into the default VRF with an interface on 192.168.1.0/24.
#   scripts/gen-routes.sh 1000000 /tmp/million     ->  /tmp/million.txt, /tmp/million.yaml
#   build/bowline run /tmp/million.yaml --stats > /dev/null
set -euo pipefail
n=${1:?usage: gen-routes.sh N OUTPUT-STEM}
stem=${2:?usage: gen-routes.sh N OUTPUT-STEM}
awk -v n="$n" 'BEGIN {
  for (i = 0; i < n; i++) {
    v = 268435456 + i * 256
    printf "%d.%d.%d.0/24 192.168.1.1\n", int(v / 16777216) % 256, int(v / 65536) % 256, int(v / 256) % 256
  }
}' > "$stem.txt"
cat > "$stem.yaml" <<YAML
# $n static routes from $(basename "$stem").txt through one next hop.
interfaces:
  - {name: Ethernet1, addresses: [192.168.1.2/24]}
route_files:
  - {path: $(basename "$stem").txt}
steps:
  - show: {label: loaded, vrf: default}
YAML
