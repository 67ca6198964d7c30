#!/usr/bin/env bash
# Packages for generated scenes of 10k and 100k geometry objects, and 50,000 objects all named
# "Box"; reports the fastest of REPEAT builds (default 5: a slow minute on a shared machine only
# ever adds time), package size and the builder's peak memory, the two tight-loop floors measured
# in the same run (writing the package's values as JSON; copying its bytes), then the growth
# ratios, then the whole `orvane package` command (load, build, write) on the 100k scene against
# the same floors, then (with valgrind) the instructions of that command and of its build on both
# generated scenes.
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
build/release/bench/package_bench --repeat "${REPEAT:-5}" "$work/out" "$work/scene-10k.scene.json" \
  "$work/scene-100k.scene.json" --boxes 5000 --boxes 50000 | tee "$work/report"
awk '$1 ~ /scene-10k/ {t10=$4; f10=$5} $1 ~ /scene-100k/ {t100=$4; f100=$5}
  $1 == "boxes-5000" {b5=$4} $1 == "boxes-50000" {b50=$4}
  END {printf "growth 10k -> 100k: x%.2f (10x the objects; the writer floor grew x%.2f)\ngrowth 5k -> 50k boxes: x%.2f (10x the objects)\n", t100/t10, f100/f10, b50/b5}' "$work/report"

best=""
for _ in $(seq "${REPEAT:-5}"); do
  rm -rf "$work/command"  # a new package each run, as for the builds above
  /usr/bin/time -f "%e %M" -o "$work/time" build/release/orvane package "$work/scene-100k.scene.json" \
    -o "$work/command/1.json" >/dev/null
  read -r seconds kib <"$work/time"
  if [ -z "$best" ] || awk -v a="$seconds" -v b="$best" 'BEGIN {exit !(a < b)}'; then
    best="$seconds" peak="$kib"
  fi
done
awk -v s="$best" -v kib="$peak" '$1 ~ /scene-100k/ {printf "orvane package, 100k end to end: %.2f s (fastest of %d), %.2fx the writer floor, %.2fx the copy floor; peak %.0f MB\n", s, '"${REPEAT:-5}"', s / $5, s / $7, kib * 1024 / 1e6}' "$work/report"

# Instructions (callgrind) of the same command on both scenes, the whole command and the build
# alone: wall time on a shared machine is noisy, instruction counts are not. Valgrind does not
# follow the huge-page restart, so the ordinary heap is kept.
if ! command -v valgrind >/dev/null; then
  echo "instructions: valgrind is not installed (apt-get install valgrind); skipped"
  exit 0
fi
for size in 10k 100k; do
  GLIBC_TUNABLES=glibc.malloc.hugetlb=0 valgrind --tool=callgrind \
    --callgrind-out-file="$work/callgrind-$size" build/release/orvane package \
    "$work/scene-$size.scene.json" -o "$work/command/1.json" >/dev/null 2>&1
  callgrind_annotate --inclusive=yes "$work/callgrind-$size" 2>/dev/null |
    awk -v size="$size" '/PROGRAM TOTALS/ {gsub(",", "", $1); total=$1}
      /orvane::BuildPackage\(/ && !build {gsub(",", "", $1); build=$1}
      END {print size, total, build}' >>"$work/instructions"
done
awk '{total[$1]=$2; build[$1]=$3}
  END {printf "instructions, orvane package: 10k %.0fM, 100k %.0fM, growth x%.2f; the build alone: 10k %.0fM, 100k %.0fM, growth x%.2f\n",
       total["10k"]/1e6, total["100k"]/1e6, total["100k"]/total["10k"], build["10k"]/1e6, build["100k"]/1e6, build["100k"]/build["10k"]}' \
  "$work/instructions"
