#!/usr/bin/env bash
# Builds the Debian package (build-package/ombrixwidget_<version>_<arch>.deb) and lists its
# contents and dependencies. With --verify it packages the test build (build/) instead, checks it
# with lintian and installs it into a clean Debian 12 root (scripts/verify-package.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${1:-}" = --verify ]; then
  bash scripts/deps.sh --tests
  bash scripts/build.sh
  (cd build && cpack -G DEB >/dev/null)
  deb=$(ls build/ombrixwidget_*.deb)
  # Any error or warning at lintian's default level fails the check.
  if lintian --fail-on error,warning "$deb" 2>&1 | grep -v 'running with root privileges'; then
    echo "lintian: the package is not clean" >&2
    exit 1
  fi
  echo "lintian: clean"
  exec bash scripts/verify-package.sh "$deb" build/tests/support/ombrix-screenshot
fi
bash scripts/deps.sh
cmake -S . -B build-package -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOMBRIX_TESTS=OFF -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack -G DEB >/dev/null)
deb=$(ls build-package/ombrixwidget_*.deb)
dpkg-deb --field "$deb" Package Version Depends
dpkg-deb --contents "$deb"
echo "Package: $deb"
