#!/usr/bin/env bash
# Packages for generated scenes of 10k and 100k geometry objects, and 50,000 objects all named
# "Box"; reports the fastest of REPEAT builds (default 3), package size and the builder's peak
# memory, the tight-loop floor measured in the same run, then the growth ratios.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release >/dev/null
cmake --build --preset release --target orvane package_bench >/dev/null
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
build/release/orvane scene generate --objects 10000 --materials 2000 --lights 100 --cameras 10 \
  -o "$work/scene-10k.scene.json" >/dev/null
build/release/orvane scene generate --objects 100000 --materials 20000 --lights 1000 --cameras 100 \
  -o "$work/scene-100k.scene.json" >/dev/null
build/release/bench/package_bench --repeat "${REPEAT:-3}" "$work/out" "$work/scene-10k.scene.json" \
  "$work/scene-100k.scene.json" --boxes 5000 --boxes 50000 | tee "$work/report"
awk '$1 ~ /scene-10k/ {t10=$3} $1 ~ /scene-100k/ {t100=$3} $1 == "boxes-5000" {b5=$3} $1 == "boxes-50000" {b50=$3}
  END {printf "growth 10k -> 100k: x%.2f (10x the objects)\ngrowth 5k -> 50k boxes: x%.2f (10x the objects)\n", t100/t10, b50/b5}' "$work/report"
