#!/usr/bin/env bash
# Frame gaps of the running app while an MPRIS player hangs (stopped: it never answers a call):
# the clock and the music widget on, a second test player playing (so the visualizer animates
# without pause), and the scene graph's own frame log. Prints the longest gap between two frames
# of the app after its start-up (the visualizer's bars are always moving, so there is always a
# frame due).
# usage: bench/music_hang_probe.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
secs=${1:-30}
build=${OMBRIX_BUILD_DIR:-build}
source scripts/xsession.sh
ombrix_start_x
bus_file=$(mktemp); home=$(mktemp -d); log=$(mktemp)
dbus-daemon --session --nofork --print-address=1 > "$bus_file" 2>/dev/null &
bus_pid=$!
hung_pid=; player_pid=
cleanup() { kill -CONT $hung_pid 2>/dev/null || true; kill $hung_pid $player_pid $bus_pid 2>/dev/null || true; rm -rf "$bus_file" "$home" "$log"; ombrix_stop_x; }
trap cleanup EXIT
for _ in $(seq 50); do [ -s "$bus_file" ] && break; sleep 0.1; done
export DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$bus_file")
"$build/tests/support/ombrix-test-mpris-player" --name aaa --title "Never" & hung_pid=$!
sleep 1; kill -STOP $hung_pid
"$build/tests/support/ombrix-test-mpris-player" --name vlc --title "Tune" --artist "Band" & player_pid=$!
mkdir -p "$home/.config/OmbrixWidget"
printf '{"k":"widget.clock.enabled","bool":true}\n{"k":"widget.music.enabled","bool":true}\n' \
  > "$home/.config/OmbrixWidget/group.com.ombrixwidget.json"
HOME=$home XDG_CONFIG_HOME=$home/.config QT_LOGGING_RULES="qt.scenegraph.time.renderloop=true" \
  QT_MESSAGE_PATTERN="%{time process} %{message}" timeout "$secs" "$build/OmbrixWidget" > "$log" 2>&1 || true
awk -v secs="$secs" '/frameDelta=/ && $1 > 3 {
    split($NF, kv, "="); d = kv[2] + 0; if (d > maxGap) maxGap = d; frames++
  }
  END { printf "over %s s with a hung player: %d frames, longest gap between frames %d ms\n", secs, frames, maxGap }' "$log"
