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
source tools/emulator.sh
trap 'kill "${emulator_pids[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT
build/release/orvane scene generate --objects "$objects" --textures "$work/textures" \
  -o "$work/scene.json" >/dev/null
start_emulator build/release/orvane-service "$work/service.out" --port 0 --account bench:1000:0 \
  --data "$work/service"
mkdir -p "$work/exchange"
start=$(date +%s.%N)
XDG_CONFIG_HOME="$work/config" ORVANE_TOKEN=bench build/release/orvane send "$work/scene.json" \
  --exchange "$work/exchange" --service "$emulator_address" \
  --timings | sed -n '/^timings/,$p'
end=$(date +%s.%N)
awk -v s="$start" -v e="$end" -v n="$objects" 'BEGIN {printf "whole command (scene load included): %.2f s for %d objects\n", e - s, n}'
echo "textures copied: $(find "$work/exchange" -path '*/textures/*' -type f | wc -l)"
