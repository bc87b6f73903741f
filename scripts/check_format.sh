#!/usr/bin/env bash
# Fails when a tracked C++ file differs from the tree's .clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format-14 --dry-run -Werror
