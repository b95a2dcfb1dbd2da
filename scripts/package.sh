#!/usr/bin/env bash
# Builds the Debian package (build-package/ombrixwidget_<version>_<arch>.deb) and lists its
# contents and dependencies.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build-package -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOMBRIX_TESTS=OFF -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build-package -j"$(nproc)"
(cd build-package && cpack -G DEB >/dev/null)
deb=$(ls build-package/ombrixwidget_*.deb)
dpkg-deb --field "$deb" Package Version Depends
dpkg-deb --contents "$deb"
echo "Package: $deb"
