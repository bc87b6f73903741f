#!/usr/bin/env bash
# Builds the parser's fuzz target with clang (libFuzzer, ASan, UBSan) and runs
# it for a fixed time. The tracked seeds are copied into <build folder>/corpus,
# where the run adds what it finds; the tracked seed folder is only read.
# Usage: fuzz_parser.sh [build folder, default build/fuzz] [seconds, default 30] [cmake options...]
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
out="${1:-$top/build/fuzz}"
seconds="${2:-30}"
shift $(($# > 2 ? 2 : $#))
CXX=clang++ cmake -S "$top" -B "$out" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g" -DLC_FUZZ=ON \
  -DLC_BENCH=OFF "$@" >/dev/null
cmake --build "$out" -j2 --target fuzz_parser
mkdir -p "$out/corpus"
cp -r "$top/tests/fuzz/parser_corpus/." "$out/corpus/"
"$out/tests/fuzz_parser" -max_total_time="$seconds" -print_final_stats=1 "$out/corpus"
