#!/usr/bin/env bash
# Runs the tests with counters and tells which lines they run: for each source file, the share of its
# lines that ran and the numbers of those that did not.
#   Scripts/coverage.sh [FILE_PATTERN]      such as Source/ or NSArray
set -euo pipefail
cd "$(dirname "$0")/.."
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
Scripts/test.sh coverage
find "$PWD/build/coverage" -name '*.gcda' -print0 | python3 Scripts/coverage.py "$PWD" "${1:-}"
