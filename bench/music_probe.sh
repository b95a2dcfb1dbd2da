#!/usr/bin/env bash
# The music widget's resource figure: a test MPRIS player registered as Spotify and playing, on a
# private session bus, and the whole-app probe with the music widget on at the given size.
# usage: bench/music_probe.sh [SECONDS] [SIZE] [STATUS]    e.g. bench/music_probe.sh 60 medium Playing
set -euo pipefail
cd "$(dirname "$0")/.."
secs=${1:-60}; size=${2:-medium}; status=${3:-Playing}
build=${OMBRIX_BUILD_DIR:-build}
bus_file=$(mktemp)
dbus-daemon --session --nofork --print-address=1 > "$bus_file" 2>/dev/null &
bus_pid=$!
player_pid=
cleanup() { kill $player_pid $bus_pid 2>/dev/null || true; rm -f "$bus_file"; }
trap cleanup EXIT
for _ in $(seq 50); do [ -s "$bus_file" ] && break; sleep 0.1; done
export DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$bus_file")
"$build/tests/support/ombrix-test-mpris-player" --name spotify --status "$status" \
  --title "Bohemian Rhapsody" --artist "Queen" &
player_pid=$!
sleep 1
echo "player: $status, size: $size"
OMBRIX_BUILD_DIR=$build OMBRIX_PROBE_SETTINGS="widget.music.size=$size" bench/app_probe.sh "$secs" music
