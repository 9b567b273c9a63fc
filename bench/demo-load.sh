#!/usr/bin/env bash
# Times `tzorep db demo` at the given scales (default 1 and 10) in a scratch home
# and prints the load time, the rows written and the size on disk of each.
#   bench/demo-load.sh [TZOREP] [SCALE...]
set -euo pipefail
tz="${1:-$(dirname "$0")/../build/release/apps/tzorep/tzorep}"
shift || true
scales=("$@")
[ "${#scales[@]}" -gt 0 ] || scales=(1 10)
home="$(mktemp -d /tmp/tzorep-bench-XXXXXX)"
trap '"$tz" --home "$home" db stop >/dev/null 2>&1 || true; rm -rf "$home"' EXIT
"$tz" --home "$home" db start >/dev/null
for s in "${scales[@]}"; do
  start=$(date +%s.%N)
  out=$("$tz" --home "$home" db demo --scale "$s" 2>/dev/null)
  end=$(date +%s.%N)
  summary=$(printf '%s\n' "$out" | grep 'filas en')
  printf 'scale %-4s %7.1f s wall | %s\n' "$s" "$(echo "$end - $start" | bc)" "${summary#  }"
done
