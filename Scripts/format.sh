#!/usr/bin/env bash
# Formats every source as .clang-format says.
#   Scripts/format.sh            changes the files
#   Scripts/format.sh --check    only tells which lines differ
set -euo pipefail
cd "$(dirname "$0")/.."
change=(-i)
[ "${1:-}" != --check ] || change=(--dry-run -Werror)
find Platform Source Tests Tools Examples Benchmarks Fuzz '(' -name '*.h' -o -name '*.cpp' ')' -print0 |
  xargs -0 -r -n 16 -P "$(nproc)" clang-format-14 "${change[@]}"
