#!/usr/bin/env bash
# Builds the libFuzzer harnesses of tests/fuzz with clang (address and undefined-behaviour checks,
# the libraries instrumented too) into build-fuzz/ and runs each for a while: a nightly job, not
# part of the test run. Usage: bash scripts/fuzz.sh [seconds per harness, default 60]
# A crash stops that harness and leaves its input in artifacts/fuzz/; the script then exits 1.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
bash scripts/deps.sh
# Only this script needs clang and its fuzzer runtime.
missing=()
for p in clang libclang-rt-14-dev; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""; [ "$(id -u)" -eq 0 ] || SUDO=sudo
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

harnesses=(fuzz_outside_data)
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DOMBRIX_TESTS=OFF -DOMBRIX_FUZZ=ON \
  -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined" >/dev/null
cmake --build build-fuzz -j"$(nproc)" --target "${harnesses[@]}"

mkdir -p artifacts/fuzz
status=0
for h in "${harnesses[@]}"; do
  corpus="build-fuzz/corpus/$h"
  mkdir -p "$corpus"
  echo "== $h (${seconds} s)"
  # Qt keeps caches for the life of the process; leaks are looked for per input only.
  if ! ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen "build-fuzz/tests/fuzz/$h" "$corpus" "tests/fuzz/seeds/$h" \
      -max_total_time="$seconds" -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
      -artifact_prefix="artifacts/fuzz/$h-" -print_final_stats=1 2>"build-fuzz/$h.log"; then
    status=1
  fi
  grep -E '^(stat::number_of_executed_units|stat::peak_rss_mb)|ERROR|SUMMARY' "build-fuzz/$h.log" || true
done
exit $status
