#!/usr/bin/env bash
# Installs, from Debian, whatever the build and the app need and this machine lacks; with --tests
# also what only the tests use (the window managers of the desktop matrix, the entry validators).
set -euo pipefail
pkgs=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools qt6-declarative-dev qt6-declarative-dev-tools qt6-svg-dev
  qt6-qpa-plugins libqt6svg6 libqt6dbus6 libgl-dev libxkbcommon-dev libxcb1-dev libxcb-xfixes0-dev
  qml6-module-qtquick
  qml6-module-qtquick-shapes qml6-module-qtquick-window qml6-module-qtquick-layouts
  qml6-module-qtqml-workerscript qml6-module-qtqml
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb openbox trayer xcompmgr xdotool x11-utils x11-xserver-utils dbus dbus-x11
  fonts-noto-color-emoji fonts-dejavu-core
  zsh
  ca-certificates
)
if [ "${1:-}" = --tests ]; then
  pkgs+=(fluxbox xfwm4 i3-wm kwin-x11 mutter xwayland wmctrl desktop-file-utils appstream picom feh clang-format debootstrap lintian)
  # UPower stood in for by dbusmock, real MPRIS players, tagged audio made by ffmpeg.
  pkgs+=(python3-dbusmock mpv mpv-mpris ffmpeg)
fi
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""; [ "$(id -u)" -eq 0 ] || SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
