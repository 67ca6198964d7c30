#!/usr/bin/env bash
# A whole send at scale: a generated scene of OBJECTS geometry objects (default 10,000) whose
# maps use 500 real texture files, sent with `orvane send --timings` to the emulator on loopback.
# Reports the total and each step's share of it.
set -euo pipefail
cd "$(dirname "$0")/.."
objects="${OBJECTS:-10000}"
cmake --preset release >/dev/null
cmake --build --preset release --target orvane orvane-service >/dev/null
work="$(mktemp -d)"
service=""
trap '[ -n "$service" ] && kill "$service" 2>/dev/null; rm -rf "$work"' EXIT
build/release/orvane scene generate --objects "$objects" --textures "$work/textures" \
  -o "$work/scene.json" >/dev/null
build/release/orvane-service --port 0 --account bench:1000:0 --data "$work/service" >"$work/service.out" 2>&1 &
service=$!
for _ in $(seq 1 50); do grep -q "listening on" "$work/service.out" 2>/dev/null && break; sleep 0.1; done
mkdir -p "$work/exchange"
start=$(date +%s.%N)
XDG_CONFIG_HOME="$work/config" ORVANE_TOKEN=bench build/release/orvane send "$work/scene.json" \
  --exchange "$work/exchange" --service "$(head -n 1 "$work/service.out" | awk '{print $NF}')" \
  --timings | sed -n '/^timings/,$p'
end=$(date +%s.%N)
awk -v s="$start" -v e="$end" -v n="$objects" 'BEGIN {printf "whole command (scene load included): %.2f s for %d objects\n", e - s, n}'
echo "textures copied: $(find "$work/exchange" -path '*/textures/*' -type f | wc -l)"
