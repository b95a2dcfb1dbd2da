#!/usr/bin/env bash
# Every QML module the program loads, directly or through another module, comes from a Debian package
# that the package's Depends names: a module missing there leaves an empty window on a clean system.
# Usage: qml_depends_test.sh SOURCE_DIR DEPENDS_FILE
set -euo pipefail
src=$1
depends=$(tr ',' '\n' <"$2" | sed 's/(.*//; s/^ *//; s/ *$//')
qml=$(qtpaths6 --query QT_INSTALL_QML 2>/dev/null || echo /usr/lib/x86_64-linux-gnu/qt6/qml)

# Modules named by `import` in our own QML; Ombrix.* are compiled into the program.
mapfile -t todo < <(grep -rhoE '^import +[A-Za-z][A-Za-z0-9.]*' --include='*.qml' "$src/main" |
                    awk '{print $2}' | grep -v '^Ombrix' | sort -u)
[ ${#todo[@]} -gt 0 ] || { echo "no QML import found under $src/main"; exit 1; }
ours=" ${todo[*]} "
declare -A seen
missing=0
while [ ${#todo[@]} -gt 0 ]; do
  m=${todo[0]}; todo=("${todo[@]:1}")
  [ -n "${seen[$m]:-}" ] && continue
  seen[$m]=1
  dir="$qml/${m//.//}"
  if [ ! -f "$dir/qmldir" ]; then
    # Qt's own modules import a few types built into a library (QtQml.Models); ours must resolve.
    case "$ours" in *" $m "*) echo "FAIL: $m has no qmldir under $qml"; missing=1 ;; esac
    continue
  fi
  pkg=$(dpkg -S "$dir/qmldir" | cut -d: -f1)
  if grep -qxF "$pkg" <<<"$depends"; then
    echo "ok: $m from $pkg"
  else
    echo "FAIL: $m comes from $pkg, which the package does not depend on"
    missing=1
  fi
  # What that module itself loads: its qmldir's imports and the imports of its QML files.
  while read -r next; do todo+=("$next"); done < <(
    { grep -hE '^(import|depends) ' "$dir/qmldir" | awk '{print $2}'
      grep -hoE '^import +[A-Za-z][A-Za-z0-9.]*' "$dir"/*.qml 2>/dev/null | awk '{print $2}'; } | sort -u)
done
for p in qt6-qpa-plugins; do
  grep -qxF "$p" <<<"$depends" || { echo "FAIL: $p (the X11 platform plugin) missing from Depends"; missing=1; }
done
exit $missing
