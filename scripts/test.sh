#!/usr/bin/env bash
# Installs what is missing, builds and runs every test under a private virtual display, then checks
# the Debian package on a clean Debian 12 root.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh --tests
bash scripts/build.sh
source scripts/xsession.sh
ombrix_start_x
export OMBRIX_ARTIFACTS="$PWD/artifacts"
mkdir -p "$OMBRIX_ARTIFACTS"
(cd build && ctest --output-on-failure -j2 --timeout 300)
bash scripts/package.sh --verify
