#!/usr/bin/env bash
# Whole-app resource probe: runs OmbrixWidget on a private virtual display with the given widgets
# switched on, and reports the CPU seconds it used over a window of time and its resident memory.
# usage: bench/app_probe.sh [SECONDS] [WIDGET...]      e.g. bench/app_probe.sh 60 clock
# Extra settings may be given as KEY=VALUE in OMBRIX_PROBE_SETTINGS (string values); the app is
# taken from OMBRIX_BUILD_DIR (default build/). OMBRIX_PROBE_WALLPAPER names an image to set as the
# desktop background first (with feh), so the glass has a wallpaper to frost.
set -euo pipefail
cd "$(dirname "$0")/.."
secs=${1:-60}; shift || true
widgets=("${@:-clock}")
source scripts/xsession.sh
ombrix_start_x
if [ -n "${OMBRIX_PROBE_WALLPAPER:-}" ]; then feh --no-fehbg --bg-fill "$OMBRIX_PROBE_WALLPAPER"; fi
home=$(mktemp -d)
conf="$home/.config/OmbrixWidget"
mkdir -p "$conf"
{
  for w in "${widgets[@]}"; do echo "{\"k\":\"widget.$w.enabled\",\"bool\":true}"; done
  for kv in ${OMBRIX_PROBE_SETTINGS:-}; do echo "{\"k\":\"${kv%%=*}\",\"string\":\"${kv#*=}\"}"; done
} > "$conf/group.com.ombrixwidget.json"
HOME=$home XDG_CONFIG_HOME=$home/.config "${OMBRIX_BUILD_DIR:-build}/OmbrixWidget" &
app=$!
sleep 5   # start-up is not part of the steady state
ticks() { awk '{print $14 + $15}' /proc/$app/stat; }
hz=$(getconf CLK_TCK)
t0=$(ticks)
sleep "$secs"
t1=$(ticks)
rss=$(awk '/VmRSS/ {print $2}' /proc/$app/status)
kill $app; wait $app 2>/dev/null || true
rm -rf "$home"
echo "widgets: ${widgets[*]}"
awk -v a="$t0" -v b="$t1" -v hz="$hz" -v s="$secs" 'BEGIN { printf "cpu seconds over %ss: %.3f\n", s, (b - a) / hz }'
echo "resident memory: $((rss / 1024)) MB"
