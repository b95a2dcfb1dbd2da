#!/usr/bin/env bash
# Installs what is missing, builds the program alone (tests are built by scripts/test.sh) and starts
# it. With no display it makes a virtual one, saves a screenshot of it a few seconds after start,
# prints where, and runs until interrupted.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=(OmbrixWidget)
[ -n "${DISPLAY:-}" ] || targets+=(ombrix-screenshot)
cmake --build build -j"$(nproc)" --target "${targets[@]}"
if [ -z "${DISPLAY:-}" ]; then
  source scripts/xsession.sh
  OMBRIX_TRAY=1 OMBRIX_COMPOSITE=1 ombrix_start_x
  echo "No display found: running on the virtual display $DISPLAY (Xvfb 1440x900, openbox, trayer)."
  ./build/OmbrixWidget &
  app=$!
  trap 'kill $app 2>/dev/null; ombrix_stop_x' EXIT INT TERM
  shot="$PWD/artifacts/screen.png"
  mkdir -p artifacts
  sleep 4
  ./build/tests/support/ombrix-screenshot "$shot" && echo "Screenshot of the virtual screen: $shot"
  echo "OmbrixWidget is running (pid $app). Press Ctrl+C to stop."
  wait $app
else
  exec ./build/OmbrixWidget
fi
