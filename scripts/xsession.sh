# Sourced: starts a private X display (Xvfb, 1440x900) with openbox, and stops it on exit.
# Sets DISPLAY. Optional: OMBRIX_TRAY=1 starts trayer, OMBRIX_COMPOSITE=1 starts xcompmgr.
ombrix_start_x() {
  local fdfile; fdfile=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1440x900x24 -nolisten tcp -noreset 3>"$fdfile" >/dev/null 2>&1 &
  OMBRIX_XVFB_PID=$!
  for _ in $(seq 100); do [ -s "$fdfile" ] && break; sleep 0.1; done
  export DISPLAY=":$(head -n1 "$fdfile")"
  rm -f "$fdfile"
  openbox >/dev/null 2>&1 &
  OMBRIX_WM_PID=$!
  for _ in $(seq 50); do xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q window && break; sleep 0.1; done
  if [ "${OMBRIX_TRAY:-0}" = 1 ]; then trayer --edge top --align right --widthtype request >/dev/null 2>&1 & OMBRIX_TRAY_PID=$!; fi
  if [ "${OMBRIX_COMPOSITE:-0}" = 1 ]; then xcompmgr >/dev/null 2>&1 & OMBRIX_COMP_PID=$!; fi
  trap ombrix_stop_x EXIT
}

ombrix_stop_x() {
  kill ${OMBRIX_COMP_PID:-} ${OMBRIX_TRAY_PID:-} ${OMBRIX_WM_PID:-} ${OMBRIX_XVFB_PID:-} 2>/dev/null || true
}
