# Sourced by the scripts that need the service emulator on loopback.
#
# start_emulator BINARY OUT_FILE [ARGS...] starts BINARY (an orvane-service) in the background
# with its output in OUT_FILE, adds its process id to `emulator_pids` and waits until it names
# its address, which it leaves in `emulator_address`. An emulator that does not start within
# ten seconds has its output printed, and the script stops.
emulator_pids=()
emulator_address=""
start_emulator() {
  local binary=$1 out=$2
  shift 2
  "$binary" "$@" >"$out" 2>&1 &
  emulator_pids+=($!)
  for _ in $(seq 100); do
    if grep -q 'listening on' "$out" 2>/dev/null; then
      emulator_address="$(sed -n 's/.*listening on //p' "$out")"
      return 0
    fi
    sleep 0.1
  done
  echo "$(basename "$0"): the service emulator did not start:" >&2
  cat "$out" >&2
  exit 1
}
