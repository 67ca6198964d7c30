#!/usr/bin/env bash
# Texture collection against cp: FILES image files of SIZE_KB each (default 2,000 files of 512 KB,
# about 1 GB) referenced by one material each; `orvane textures` and `cp` copy the same files
# into empty folders, alternately, ROUNDS times (default 3). Reports each median and the speed
# ratio (cp time / orvane time; above 1 means orvane is faster).
set -euo pipefail
cd "$(dirname "$0")/.."
files="${FILES:-2000}"
size_kb="${SIZE_KB:-512}"
rounds="${ROUNDS:-3}"
cmake --preset release >/dev/null
cmake --build --preset release --target orvane >/dev/null
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/maps"
head -c $((size_kb * 1024)) /dev/urandom >"$work/seed.bin"
{
  printf '{"format": "orvane-scene/1",\n "objects": [{"id": "box", "class": "Box", "superClass": "geometry"}],\n "nodes": ['
  for i in $(seq 1 "$files"); do
    cp "$work/seed.bin" "$work/maps/tex_$i.png"
    printf '%s{"id": "n%d", "object": "box", "material": "m%d"}' "$([ "$i" -gt 1 ] && echo ,)" "$i" "$i"
  done
  printf '],\n "materials": ['
  for i in $(seq 1 "$files"); do
    printf '%s{"id": "m%d", "class": "CoronaPhysicalMtl", "name": "M%d", "slots": [{"name": "base", "map": "t%d"}]}' \
      "$([ "$i" -gt 1 ] && echo ,)" "$i" "$i" "$i"
  done
  printf '],\n "maps": ['
  for i in $(seq 1 "$files"); do
    printf '%s{"id": "t%d", "class": "CoronaBitmap", "params": [[{"name": "filename", "type": "filename", "value": "%s"}]]}' \
      "$([ "$i" -gt 1 ] && echo ,)" "$i" "$work/maps/tex_$i.png"
  done
  printf ']}\n'
} >"$work/scene.json"

seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null
  end=$(date +%s.%N)
  awk -v s="$start" -v e="$end" 'BEGIN {printf "%.3f\n", e - s}'
}
median() { sort -g | awk '{v[NR]=$1} END {print v[int((NR+1)/2)]}'; }
: >"$work/orvane.times"
: >"$work/cp.times"
for round in $(seq 1 "$rounds"); do
  rm -rf "$work/job" "$work/cp"
  mkdir -p "$work/cp/textures"
  seconds build/release/orvane textures "$work/scene.json" --job "$work/job" >>"$work/orvane.times"
  seconds cp "$work"/maps/*.png "$work/cp/textures/" >>"$work/cp.times"
  copied=$(ls "$work/job/textures" | wc -l)
  [ "$copied" -eq "$files" ] || { echo "orvane copied $copied of $files files" >&2; exit 1; }
done
orvane=$(median <"$work/orvane.times")
cp_time=$(median <"$work/cp.times")
total_mb=$((files * size_kb / 1024))
echo "files: $files, $total_mb MB in all"
echo "orvane textures: ${orvane}s (median of $rounds)"
echo "cp:              ${cp_time}s (median of $rounds)"
awk -v c="$cp_time" -v o="$orvane" 'BEGIN {printf "speed ratio (cp time / orvane time): %.2f\n", c / o}'
