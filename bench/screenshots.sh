#!/usr/bin/env bash
# Screenshots of the four widgets for a before/after look check: one with a compositor, one without,
# each on a fresh virtual display, panel closed, nothing playing. Writes OUT/composited.png,
# OUT/plain.png and OUT/areas.txt (each widget window as X,Y,W,H, for bench/screenshot_diff).
# usage: bench/screenshots.sh OUT [APP]
set -euo pipefail
cd "$(dirname "$0")/.."
out=$1; app=${2:-build/OmbrixWidget}
mkdir -p "$out"
source scripts/xsession.sh
shot() {
  local composite=$1 file=$2 home
  OMBRIX_COMPOSITE=$composite ombrix_start_x
  home=$(mktemp -d); mkdir -p "$home/.config/OmbrixWidget"
  {
    for w in clock weather battery music; do echo "{\"k\":\"widget.$w.enabled\",\"bool\":true}"; done
    for s in ipapi geocoding forecast; do echo "{\"k\":\"service.$s.base\",\"string\":\"http://127.0.0.1:9\"}"; done
  } > "$home/.config/OmbrixWidget/group.com.ombrixwidget.json"
  HOME=$home XDG_CONFIG_HOME=$home/.config "$app" 2>/dev/null &
  local pid=$! w WINDOW X Y WIDTH HEIGHT SCREEN
  w=$(xdotool search --sync --name "OmbrixWidget Control Panel" | head -n1)
  sleep 1
  eval "$(xdotool getwindowgeometry --shell "$w")"
  xdotool mousemove $((X + 16)) $((Y + 14)) click 1 mousemove 0 0
  sleep 3
  : > "$out/areas.txt"
  for w in $(xdotool search --onlyvisible --pid "$pid"); do
    eval "$(xdotool getwindowgeometry --shell "$w")"
    echo "$X,$Y,$WIDTH,$HEIGHT" >> "$out/areas.txt"
  done
  build/tests/support/ombrix-screenshot "$file"
  kill "$pid"; wait "$pid" 2>/dev/null || true
  ombrix_stop_x; rm -rf "$home"
}
shot 1 "$out/composited.png"
shot 0 "$out/plain.png"
sort -o "$out/areas.txt" "$out/areas.txt"
