#!/usr/bin/env bash
# Builds everything and runs the tests.
#   Scripts/test.sh [PRESET [CTEST_OPTION...]]      PRESET: dev (the default), release, asan, tsan, ...
#   Scripts/test.sh dev -R BDStack                  only the tests with BDStack in their names
# With BRINDLE_CONFORMANCE_DIR in the environment, the conformance data in that folder is tested too.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
shift || true

case $preset in
  dev | coverage) Scripts/setup.sh ;;
  *) Scripts/setup.sh --all ;;
esac

# Objects compiled in another checkout serve here too.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

echo "Build: the $preset preset, in build/$preset"
results=$PWD/build/$preset/tests.xml
mkdir -p "build/$preset"
rm -f "$results"
cmake --preset "$preset" -DBRINDLE_CONFORMANCE_DIR="${BRINDLE_CONFORMANCE_DIR:-}" \
  > "build/$preset/configure.log" 2>&1 || {
  cat "build/$preset/configure.log"
  exit 1
}
cmake --build --preset "$preset"

echo "Test: the $preset preset"
ctest --preset "$preset" --output-junit "$results" --test-output-truncation head "$@" || true
read -r passed failed < <(python3 Scripts/count-tests.py "$results")
if [ "$failed" -gt 0 ]; then
  echo "Brindle: $failed of $((passed + failed)) tests failed."
  exit 1
fi
echo "Brindle: all $passed tests passed."
