#!/usr/bin/env bash
# Side by side with Conky, the lightest desktop-widget peer: both run on one virtual display (Xvfb,
# openbox, xcompmgr), in the same rounds, interleaved, and the medians are printed as one table.
# usage: bench/compare.sh [ROUNDS] [SECONDS]        e.g. bench/compare.sh 5 60
# Cases: conky (clock, date, battery text); clock only; four widgets idle; four widgets with a track
# playing (a test MPRIS player); four widgets with the panel open; cycle: the panel shown by a second
# start and closed 100 times, and what the resident size grew by. OMBRIX_COMPARE_CASES picks some,
# e.g. OMBRIX_COMPARE_CASES="idle playing". The panel opens at every start; in the other cases it is
# closed with its own close control first, as a user leaves it (in the panel case, before the
# second start that shows it again). Private memory is what the process
# wrote itself (private dirty pages); library pages it alone maps are counted in RSS only.
set -euo pipefail
cd "$(dirname "$0")/.."
rounds=${1:-3}; secs=${2:-60}
build=${OMBRIX_BUILD_DIR:-build}
{ command -v conky && pkg-config --exists xcb-damage; } >/dev/null || { SUDO=""; [ "$(id -u)" -eq 0 ] || SUDO=sudo;
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends conky-std libxcb-damage0-dev >/dev/null; }
bash scripts/deps.sh >/dev/null
bash scripts/build.sh >/dev/null
fc=$build/bench/frame_counter

source scripts/xsession.sh
OMBRIX_COMPOSITE=1 ombrix_start_x
sleep 1
xserver=$OMBRIX_XVFB_PID; compositor=$OMBRIX_COMP_PID
work=$(mktemp -d)
bus_pid=; player_pid=
cleanup() { kill $player_pid $bus_pid 2>/dev/null || true; ombrix_stop_x; rm -rf "$work"; }
trap cleanup EXIT
dbus-daemon --session --nofork --print-address=1 > "$work/bus" 2>/dev/null &
bus_pid=$!
for _ in $(seq 50); do [ -s "$work/bus" ] && break; sleep 0.1; done
export DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$work/bus")

cat > "$work/conky.conf" <<'CONF'
conky.config = {
  out_to_x = true, own_window = true, own_window_type = 'desktop', alignment = 'top_right',
  double_buffer = true, update_interval = 1, use_xft = true, font = 'DejaVu Sans:size=12',
  minimum_width = 170, minimum_height = 170, background = false,
};
conky.text = [[
${time %H:%M:%S}
${time %A %d %B}
${battery_short BAT0} ${battery_percent BAT0}%
]];
CONF

# The panel's close control stands 16, 14 from its top-left corner.
close_panel() {
  local w WINDOW X Y WIDTH HEIGHT SCREEN
  w=$(xdotool search --sync --name "OmbrixWidget Control Panel" | head -n1)
  eval "$(xdotool getwindowgeometry --shell "$w")"
  xdotool mousemove $((X + 16)) $((Y + 14)) click 1 mousemove 0 0
  for _ in $(seq 50); do xdotool search --onlyvisible --name "OmbrixWidget Control Panel" >/dev/null || break; sleep 0.05; done
}

ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }
cpu_ticks() { local sum=0; for p in "$@"; do sum=$((sum + $(ticks "$p"))); done; echo $sum; }
hz=$(getconf CLK_TCK)

# One run: starts the case, waits until its windows are up, measures over $secs, stops it.
# Prints: case cpu_app cpu_x rss_mib private_mib start_ms second_ms fps_list
run_case() {
  local name=$1 home="$work/home-$1"
  rm -rf "$home"; mkdir -p "$home/.config/OmbrixWidget"
  local start_ms second_ms=- pid windows=4 growth=-
  kill $player_pid 2>/dev/null || true; player_pid=
  if [ "$name" = conky ]; then
    start_ms=$("$fc" mapped 1 class:onky -- conky -q -c "$work/conky.conf" | tail -n1)
    pid=$(pgrep -n -x conky)
  else
    local widgets=(clock weather battery music)
    [ "$name" = clock ] && widgets=(clock) && windows=1
    {
      for w in "${widgets[@]}"; do echo "{\"k\":\"widget.$w.enabled\",\"bool\":true}"; done
      # Weather answers at once with a refused connection: no traffic leaves the machine.
      for s in ipapi geocoding forecast; do echo "{\"k\":\"service.$s.base\",\"string\":\"http://127.0.0.1:9\"}"; done
    } > "$home/.config/OmbrixWidget/group.com.ombrixwidget.json"
    if [ "$name" = playing ]; then
      "$build/tests/support/ombrix-test-mpris-player" --name spotify --status Playing \
        --title "Bohemian Rhapsody" --artist "Queen" & player_pid=$!
      sleep 0.5
    fi
    export HOME=$home XDG_CONFIG_HOME=$home/.config
    start_ms=$("$fc" mapped "$windows" child -- "$build/OmbrixWidget" | tail -n1)
    pid=$(pgrep -n -f "^$build/OmbrixWidget")
    close_panel
    # A second start shows the running copy's panel again.
    [ "$name" = panel ] && second_ms=$("$fc" mapped 5 "pid:$pid" -- "$build/OmbrixWidget" | tail -n1)
    # 100 times shown by a second start and closed: what the resident size grows by.
    if [ "$name" = cycle ]; then
      local before after
      sleep 3
      before=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")
      for _ in $(seq 100); do "$build/OmbrixWidget"; close_panel; done
      sleep 3
      after=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")
      growth=$(awk -v a="$after" -v b="$before" 'BEGIN { printf "%.1f", (a - b) / 1024 }')
    fi
  fi
  sleep 3   # start-up is not part of the steady state
  local a0 x0 a1 x1 fps
  a0=$(ticks "$pid"); x0=$(cpu_ticks "$xserver" "$compositor")
  fps=$("$fc" frames "pid:$pid" 10 | awk '{print $NF}' | sort -n | paste -sd/)
  [ "$name" = conky ] && fps=$("$fc" frames class:onky 10 | awk '{print $NF}' | paste -sd/)
  sleep $((secs > 10 ? secs - 10 : 0))
  a1=$(ticks "$pid"); x1=$(cpu_ticks "$xserver" "$compositor")
  local rss priv
  rss=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")
  priv=$(awk '/Private_Dirty/ {s += $2} END {print s}' "/proc/$pid/smaps_rollup")
  kill "$pid"; while kill -0 "$pid" 2>/dev/null; do sleep 0.05; done
  awk -v n="$name" -v a=$((a1 - a0)) -v x=$((x1 - x0)) -v hz="$hz" -v s="$secs" -v r="$rss" -v p="$priv" \
      -v st="$start_ms" -v sc="$second_ms" -v f="${fps:--}" -v g="$growth" \
    'BEGIN { printf "%s %.3f %.3f %.1f %.1f %s %s %s %s\n", n, a/hz*60/s, x/hz*60/s, r/1024, p/1024, st, sc, f, g }'
}

read -r -a cases <<< "${OMBRIX_COMPARE_CASES:-conky clock idle playing panel cycle}"
for r in $(seq "$rounds"); do
  for c in "${cases[@]}"; do run_case "$c"; done
done > "$work/runs"

median() { sort -g | awk '{v[NR] = $1} END {print NR == 0 ? "-" : (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2}'; }
printf "%-8s %12s %12s %9s %9s %9s %9s %9s  %s\n" case "cpu s/min" "X+comp s/min" "RSS MiB" "priv MiB" \
  "start ms" "2nd ms" "grow MiB" "frames/s per window (first round)"
for c in "${cases[@]}"; do
  col() { awk -v c="$c" -v k="$1" '$1 == c && $k != "-" {print $k}' "$work/runs" | median; }
  fps=$(awk -v c="$c" '$1 == c {print $8; exit}' "$work/runs")
  printf "%-8s %12s %12s %9s %9s %9s %9s %9s  %s\n" "$c" "$(col 2)" "$(col 3)" "$(col 4)" "$(col 5)" \
    "$(col 6)" "$(col 7)" "$(col 9)" "$fps"
done
echo "($rounds rounds of $secs s each, medians; one virtual display with openbox and xcompmgr)"
