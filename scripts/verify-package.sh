#!/usr/bin/env bash
# Installs the package into a clean Debian 12 (minbase) root, once with recommends and once without,
# starts the installed program there against the X display in $DISPLAY with all four widgets on, and
# fails on any QML, plugin or platform load warning, on a window that drew nothing, or on a file the
# purge leaves under /usr. Usage: verify-package.sh DEB SCREENSHOT_TOOL
# Needs root and Debian's archive; elsewhere it says so and skips, but under CI it fails.
set -euo pipefail
deb=$(realpath "$1")
shot=$(realpath "$2")
cd "$(dirname "$0")/.."
artifacts=${OMBRIX_ARTIFACTS:-$PWD/artifacts}
mkdir -p "$artifacts"

cannot() {
  if [ "${CI:-}" = true ]; then
    echo "PACKAGE CHECK FAILED: $*" >&2
    exit 1
  fi
  echo "!!! PACKAGE CHECK SKIPPED: $* (it runs as root with Debian's archive, as CI does) !!!" >&2
  exit 0
}
[ "$(id -u)" -eq 0 ] || cannot "not root"
command -v debootstrap >/dev/null || cannot "debootstrap is missing"
[ -n "${DISPLAY:-}" ] || cannot "no X display"

mirror=http://deb.debian.org/debian
cache=${XDG_CACHE_HOME:-$HOME/.cache}/ombrixwidget
base=$cache/bookworm-minbase
archives=$cache/apt-archives
mkdir -p "$cache" "$archives/partial"
start=$(date +%s)

# The clean root is made once; each install gets a fresh copy of it.
if [ ! -f "$base/.complete" ]; then
  rm -rf --one-file-system "$base"
  debootstrap --variant=minbase bookworm "$base" "$mirror" >"$cache/debootstrap.log" 2>&1 ||
    { tail -20 "$cache/debootstrap.log"; cannot "debootstrap could not make a root"; }
  cat >"$base/etc/apt/sources.list" <<EOF
deb $mirror bookworm main
deb $mirror bookworm-updates main
deb http://deb.debian.org/debian-security bookworm-security main
EOF
  touch "$base/.complete"
fi

work=$(mktemp -d /tmp/ombrix-package-check.XXXXXX)
root=""
app=""
# The copy's only mount is its own /proc: the root brings its own device nodes, the X server is
# reached through its abstract socket, and packages are copied in and out of the cache. Whatever
# still runs in the copy is stopped first, and a copy that still has a mount is never deleted.
release_root() {
  [ -n "$root" ] || return 0
  for p in /proc/[0-9]*; do
    [ "$(readlink "$p/root" 2>/dev/null)" = "$root" ] && kill -9 "${p#/proc/}" 2>/dev/null
  done
  # Its /proc, and whatever the sandbox a chroot runs in mounted below it (seen: /dev/pts, /dev/shm,
  # the X socket), deepest first.
  findmnt -rn -o TARGET | grep "^$root/" | sort -r | while read -r m; do umount "$m" || umount -l "$m"; done
  if findmnt -rn -o TARGET | grep -q "^$root"; then
    echo "PACKAGE CHECK: $root still has mounts, left in place" >&2
    return 1
  fi
  rm -rf --one-file-system "$root"
  root=""
}
cleanup() {
  [ -n "$app" ] && kill "$app" 2>/dev/null || true
  release_root || exit 1
  rm -rf --one-file-system "$work"
}
trap cleanup EXIT

# Fails on what the program logs when a QML module, a plugin or the platform does not load.
load_failures='is not installed|module "[^"]*" (version [^ ]* )?is not|unavailable|Cannot load|Could not load|could not (find|load) the Qt platform|failed to load|did not load|No such file|Failed to create'

check_mode() {
  local mode=$1 flag=$2
  root=$work/$mode
  cp -a "$base" "$root"
  mount -t proc proc "$root/proc"
  # No service of a package starts inside the copy.
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
  chmod +x "$root/usr/sbin/policy-rc.d"
  cp "$archives"/*.deb "$root/var/cache/apt/archives/" 2>/dev/null || true
  cp /etc/resolv.conf "$root/etc/resolv.conf" 2>/dev/null || true
  cp "$deb" "$root/tmp/"
  local log=$artifacts/package-$mode
  local before; before=$(chroot "$root" dpkg-query -W -f='${Package}\n' | sort)

  chroot "$root" apt-get update -qq >"$log-apt.log" 2>&1 || { cat "$log-apt.log"; return 1; }
  if ! DEBIAN_FRONTEND=noninteractive chroot "$root" apt-get install -y $flag "/tmp/$(basename "$deb")" \
      >>"$log-apt.log" 2>&1; then
    tail -30 "$log-apt.log"
    return 1
  fi
  cp -n "$root"/var/cache/apt/archives/*.deb "$archives/" 2>/dev/null || true
  local pulled; pulled=$(comm -13 <(echo "$before") <(chroot "$root" dpkg-query -W -f='${Package}\n' | sort))
  echo "[$mode] apt installed $(wc -l <<<"$pulled") packages (list in $log-apt.log)"
  echo "$pulled" | sed 's/^/  pulled: /' >>"$log-apt.log"

  # A first start for a user who has switched all four widgets on.
  local home=$root/home/user
  mkdir -p "$home/.config/OmbrixWidget" "$root/tmp/runtime"
  chmod 700 "$root/tmp/runtime"
  for kind in clock weather battery music; do
    echo "{\"k\":\"widget.$kind.enabled\",\"bool\":true}"
  done >"$home/.config/OmbrixWidget/group.com.ombrixwidget.json"

  chroot "$root" env -i HOME=/home/user DISPLAY="$DISPLAY" XDG_RUNTIME_DIR=/tmp/runtime LANG=C.UTF-8 \
    PATH=/usr/bin:/bin /usr/bin/OmbrixWidget >"$log-app.log" 2>&1 &
  app=$!
  # Up to 30 s for the panel and the four widgets to be mapped, then a moment to draw.
  local windows=""
  for _ in $(seq 150); do
    windows=$(xwininfo -root -tree | grep -E '"OmbrixWidget (Control Panel|clock|weather|battery|music)"' || true)
    [ "$(grep -c . <<<"$windows")" -ge 5 ] && break
    sleep 0.2
  done
  sleep 3
  local areas=()
  while read -r line; do
    # xwininfo: ... "title": ("class" "Class")  WxH+X+Y  +ABSX+ABSY
    local geo; geo=$(grep -oE '[0-9]+x[0-9]+\+-?[0-9]+\+-?[0-9]+ +\+-?[0-9]+\+-?[0-9]+' <<<"$line")
    local w h x y
    w=${geo%%x*}; h=${geo#*x}; h=${h%%+*}
    x=$(awk '{print $2}' <<<"$geo" | cut -d+ -f2); y=$(awk '{print $2}' <<<"$geo" | cut -d+ -f3)
    areas+=("$x,$y,$w,$h")
  done <<<"$windows"
  local ok=0
  "$shot" "$artifacts/package-$mode.png" "${areas[@]}" || ok=1
  kill "$app" 2>/dev/null || true
  wait "$app" 2>/dev/null || true
  app=""

  echo "[$mode] windows mapped: $(grep -c . <<<"$windows") of 5; screenshot $artifacts/package-$mode.png"
  if [ "${#areas[@]}" -lt 5 ]; then
    echo "[$mode] FAIL: the panel and four widgets were not all mapped"; ok=1
  fi
  if grep -Eiq "$load_failures" "$log-app.log"; then
    echo "[$mode] FAIL: load warnings in the program's log:"; grep -Ei "$load_failures" "$log-app.log"; ok=1
  fi
  echo "[$mode] program log ($log-app.log):"; sed 's/^/  | /' "$log-app.log"

  # Purge, then nothing the package put under /usr may be left.
  local files; files=$(chroot "$root" dpkg -L ombrixwidget | grep '^/usr/')
  DEBIAN_FRONTEND=noninteractive chroot "$root" apt-get purge -y ombrixwidget >>"$log-apt.log" 2>&1
  local left=0
  while read -r f; do
    [ -f "$root$f" ] || [ -L "$root$f" ] && { echo "[$mode] FAIL: left after purge: $f"; left=1; }
  done <<<"$files"
  [ $left -eq 0 ] && echo "[$mode] purge left nothing of its $(grep -c . <<<"$files") paths under /usr"

  release_root || return 1
  return $((ok | left))
}

status=0
check_mode recommends "" || status=1
check_mode no-recommends --no-install-recommends || status=1
echo "package check: $([ $status -eq 0 ] && echo passed || echo FAILED) in $(($(date +%s) - start)) s"
exit $status
