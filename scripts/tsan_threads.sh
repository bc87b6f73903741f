#!/usr/bin/env bash
# Builds the tests of several threads (unit_threads: flow locks, bitmap locks,
# tail processing, the coherency list) with ThreadSanitizer and runs them.
# Only that target is built, at -O1, with the model's contract checks on.
# Usage: tsan_threads.sh [build folder, default build/tsan] [cmake options...]
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
out="${1:-$top/build/tsan}"
shift $(($# > 0 ? 1 : 0))
cmake -S "$top" -B "$out" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g" -DLC_TSAN=ON -DLC_BENCH=OFF \
  "$@" >/dev/null
cmake --build "$out" -j2 --target unit_threads
TSAN_OPTIONS="halt_on_error=1 ${TSAN_OPTIONS:-}" "$out/tests/unit_threads"
