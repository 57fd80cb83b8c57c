#!/usr/bin/env bash
# The program at scale: each figure of docs/performance.md's "At scale" section, run through the
# whole program (`bowline run --stats`), N routes each (default 100,000). Prints one line a figure:
# the seconds it took, the peak memory of the process and bytes per route, and where a figure is a
# ratio to another (restart against the first load, 1,000 VRFs and IPv6 against one VRF of IPv4),
# that ratio. Times are wall clock of one thread; run it on a quiet machine and compare ratios.
#
#   bench/scale.sh [N] [BOWLINE]        (from the project root; BOWLINE: build/bowline)
#   bench/scale.sh 1000000              # the sizes the performance notes quote
#
# The load is the one of ../shared/bench/vs-bird.sh: route i = (16.0.0.0 + i*256)/24 via 192.168.1.1
# on a connected 192.168.1.0/24 (IPv6: 2001:db8:I::/64 via 2001:db8:ffff::1).
set -euo pipefail
n=${1:-100000}
bin=${2:-build/bowline}
[ -x "$bin" ] || { echo "scale: no executable $bin (build first)" >&2; exit 1; }
bin=$(cd "$(dirname "$bin")" && pwd)/$(basename "$bin")
work=$(mktemp -d /tmp/bowline-scale.XXXXXX)
trap 'rm -rf "$work"' EXIT
cd "$work"

v4routes() {  # COUNT FIRST OUT: COUNT routes from index FIRST
  awk -v n="$1" -v f="$2" 'BEGIN {
    for (i = f; i < f + n; i++) {
      v = 268435456 + i * 256
      printf "%d.%d.%d.0/24 192.168.1.1\n", int(v / 16777216) % 256, int(v / 65536) % 256, int(v / 256) % 256
    }
  }' > "$3"
}
v6routes() {
  awk -v n="$1" 'BEGIN { for (i = 0; i < n; i++) printf "2001:db8:%x:%x::/64 2001:db8:ffff::1\n", int(i / 65536), i % 65536 }' > "$2"
}

# run NAME SCENARIO [FLAGS...]: runs the scenario, keeps its stats in NAME.stats
run() {
  local name=$1 scenario=$2
  shift 2
  "$bin" run "$scenario" --stats "$@" > /dev/null 2> "$name.stats" || { cat "$name.stats" >&2; exit 1; }
}
field() { grep '^stats: load' "$1.stats" | sed -E "s/.*$2 ([0-9.]+).*/\\1/"; }
# steps NAME I J: the seconds of steps I and J together (an event, then the settle after it)
steps() {
  grep -E "^stats: step ($2|$3) " "$1.stats" | sed -E 's/.*: ([0-9.]+) s$/\1/' | awk '{t += $1} END {printf "%.3f", t}'
}
toRib() { awk -v a="$(field "$1" load)" -v b="$(field "$1" converge)" 'BEGIN {printf "%.3f", a + b}'; }
perRoute() { awk -v m="$(field "$1" 'peak memory')" -v n="$n" 'BEGIN {printf "%.0f", m * 1048576 / n}'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN {printf "%.2f", (b > 0 ? a / b : 0)}'; }

v4routes "$n" 0 v4.txt
cat > load.yaml <<'YAML'
interfaces:
  - {name: Ethernet1, addresses: [192.168.1.2/24]}
route_files:
  - {path: v4.txt}
steps:
  - settle
YAML
# The same load, then its one next hop unresolved and resolved again, then an agent restart.
{ cat load.yaml; cat <<'YAML'; } > base.yaml
  - rib: {nexthop: 192.168.1.1, state: unresolved}
  - settle
  - rib: {nexthop: 192.168.1.1, state: clear}
  - settle
  - restart: {graceful_restart: false}
  - settle
YAML
run load load.yaml --teardown
printf '%-44s %8s s   %7s MiB = %5s B/route\n' "load $n IPv4 routes to the RIB" "$(toRib load)" \
  "$(field load 'peak memory')" "$(perRoute load)"
printf '%-44s %8s s\n' "teardown of the switch" "$(field load teardown)"
run base base.yaml
printf '%-44s %8s s\n' "the next hop unresolved (all routes move)" "$(steps base 2 3)"
printf '%-44s %8s s\n' "the next hop resolved again" "$(steps base 4 5)"
printf '%-44s %8s s   %s of the load\n' "agent restart (RIB reconciled)" "$(steps base 6 7)" \
  "$(ratio "$(steps base 6 7)" "$(toRib load)")"

cat > vrf.yaml <<'YAML'
vrfs:
  - {name: red, id: 1}
interfaces:
  - {name: Ethernet1, vrf: red, addresses: [192.168.1.2/24]}
route_files:
  - {path: v4.txt, vrf: red}
steps:
  - settle
  - remove_vrf: red
  - settle
YAML
run vrf vrf.yaml
printf '%-44s %8s s\n' "a VRF holding them deleted" "$(steps vrf 2 3)"

vrfs=1000
per=$((n / vrfs))
{
  echo "vrfs:"
  for v in $(seq 1 $vrfs); do echo "  - {name: v$v, id: $v}"; done
  echo "interfaces:"
  for v in $(seq 1 $vrfs); do echo "  - {name: Ethernet$v, vrf: v$v, addresses: [192.168.1.2/24]}"; done
  echo "route_files:"
  for v in $(seq 1 $vrfs); do echo "  - {path: r$v.txt, vrf: v$v}"; done
  echo "steps:"
  echo "  - settle"
} > vrfs.yaml
for v in $(seq 1 $vrfs); do v4routes "$per" 0 "r$v.txt"; done
run vrfs vrfs.yaml
printf '%-44s %8s s   %7s MiB   time %s, memory %s of one VRF\n' "$vrfs VRFs of $per routes" "$(toRib vrfs)" \
  "$(field vrfs 'peak memory')" "$(ratio "$(toRib vrfs)" "$(toRib load)")" \
  "$(ratio "$(field vrfs 'peak memory')" "$(field load 'peak memory')")"

v6routes "$n" v6.txt
cat > v6.yaml <<'YAML'
interfaces:
  - {name: Ethernet1, addresses: ["2001:db8:ffff::2/64"]}
route_files:
  - {path: v6.txt}
steps:
  - settle
YAML
run v6 v6.yaml
printf '%-44s %8s s   %7s MiB   time %s, memory %s of IPv4\n' "load $n IPv6 /64 routes" "$(toRib v6)" \
  "$(field v6 'peak memory')" "$(ratio "$(toRib v6)" "$(toRib load)")" \
  "$(ratio "$(field v6 'peak memory')" "$(field load 'peak memory')")"
