#!/usr/bin/env bash
# Builds the command-line tool and runs it: by default, today's everyday date ranges.
#   Scripts/run.sh [ARGUMENT...]
set -euo pipefail
cd "$(dirname "$0")/.."
Scripts/setup.sh

echo "Build: the release preset, in build/release"
mkdir -p build/release
cmake --preset release > build/release/configure.log 2>&1 || {
  cat build/release/configure.log
  exit 1
}
cmake --build --preset release --target brindle

[ $# -gt 0 ] || set -- range --all
echo
echo "\$ brindle $*"
build/release/bin/brindle "$@"
echo
echo "Brindle is built: build/release/bin/brindle --help tells what else it can do."
