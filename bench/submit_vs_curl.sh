#!/usr/bin/env bash
# Posts one large package to the local service emulator with `orvane submit` and with the curl
# command-line tool, alternately, and reports throughput and peak memory side by side.
#   bench/submit_vs_curl.sh [SIZE_MB] [ROUNDS]
set -euo pipefail
cd "$(dirname "$0")/.."
size_mb="${1:-200}"
rounds="${2:-3}"
cmake --preset release >/dev/null
cmake --build --preset release --target orvane orvane-service >/dev/null

work="$(mktemp -d)"
source tools/emulator.sh
trap 'kill "${emulator_pids[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT
package="$work/1.json"
# A package-like body: many small object records.
# (yes ends by SIGPIPE when head has enough, which pipefail would count as a failure.)
{ yes '{"object_name": "Box", "object_class": "Editable Poly", "material": null},' || true; } |
  head -c "$((size_mb * 1000 * 1000))" >"$package"
bytes=$(stat -c %s "$package")

start_emulator build/release/orvane-service "$work/service.out" --port 0 --data "$work/data" \
  --account bench:1000000
url="$emulator_address"

measure() {  # prints "seconds peak_kib"
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >/dev/null 2>"$work/err" || { cat "$work/err"; exit 1; }
  cat "$work/time"
  rm -rf "$work/data/jobs"
}
ours=() theirs=()
for round in $(seq "$rounds"); do
  ours+=("$(measure build/release/orvane submit --service "$url" --token bench --job bench "$package")")
  theirs+=("$(measure curl -sS -f -o /dev/null -X POST -H "Authorization: Bearer bench" \
    -H "X-Job-Name: bench" -H "Content-Type: application/json; charset=utf-8" -H "Expect:" \
    --data-binary @"$package" "$url/node/api/v1/jobs")")
done

median() { printf '%s\n' "$@" | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
our_s=$(median $(printf '%s\n' "${ours[@]}" | cut -d' ' -f1))
their_s=$(median $(printf '%s\n' "${theirs[@]}" | cut -d' ' -f1))
our_kib=$(printf '%s\n' "${ours[@]}" | cut -d' ' -f2 | sort -n | tail -1)
their_kib=$(printf '%s\n' "${theirs[@]}" | cut -d' ' -f2 | sort -n | tail -1)
awk -v b="$bytes" -v os="$our_s" -v ts="$their_s" -v ok="$our_kib" -v tk="$their_kib" -v r="$rounds" 'BEGIN {
  printf "package: %.1f MB, %d rounds each, median times\n", b / 1e6, r
  printf "orvane submit: %6.2f s  %7.1f MB/s  peak %7.1f MB (%.2f x package)\n", os, b / 1e6 / os, ok / 1024, ok * 1024 / b
  printf "curl:          %6.2f s  %7.1f MB/s  peak %7.1f MB (%.2f x package)\n", ts, b / 1e6 / ts, tk / 1024, tk * 1024 / b
  printf "throughput ratio (orvane / curl): %.2f\n", ts / os
}'
