#!/usr/bin/env bash
# Installs a build into an empty prefix and uses it as another project would: by find_package and by
# pkg-config. Then moves the tree and uses it again.
#   install-test.sh CMAKE BUILD_FOLDER COMPILER
set -euo pipefail
cmake=$1 build=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "install-test: $*" >&2; exit 1; }

# Runs the consumers with the libraries of this prefix.
use() {
  local program phrase
  for program in "$work"/consumer/consumer-*; do
    echo "-- $(basename "$program") with $(basename "$1")"
    LD_LIBRARY_PATH=$(dirname "$(find "$1" -name libBrindle.so)") "$program" "$1"
  done
  program=$("$1/bin/brindle" bundle org.brindle.Brindle)
  [[ $program == *"path        $1/"*"/Brindle.framework"* ]] ||
    fail "bin/brindle does not find the library's bundle: $program"
  program=$(ldd "$1/bin/brindle")
  [[ $program == *"libBrindle.so.0 => $1/"* ]] || fail "bin/brindle does not find its library"
  phrase=$(LC_ALL=C "$1/bin/brindle" describe "-3 weeks" --locale de)
  [[ $phrase == *"vor 3 Wochen"* ]] || fail "bin/brindle does not find its words: $phrase"
}

build_with_pkg_config() {
  local flags
  flags=$(PKG_CONFIG_PATH=$(dirname "$(find "$1" -name brindle.pc)") pkg-config --cflags --libs brindle)
  [[ $flags == *"$1/"* ]] || fail "pkg-config does not follow the tree: $flags"
  # shellcheck disable=SC2086  # one word for each flag
  "$compiler" -std=c++20 -Wall -Wextra -Werror "$here/consumer.cpp" $flags -o "$2"
}

echo "-- Installing"
"$cmake" --install "$build" --prefix "$work/first" > "$work/install.log" || {
  cat "$work/install.log" >&2
  fail "cannot install"
}

echo "-- Building the consumer by find_package and by pkg-config"
"$cmake" -G Ninja -S "$here" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/first" \
  -DCMAKE_CXX_COMPILER="$compiler" > "$work/configure.log" || {
  cat "$work/configure.log" >&2
  fail "find_package(Brindle) fails"
}
"$cmake" --build "$work/consumer"
build_with_pkg_config "$work/first" "$work/consumer/consumer-pkg-config"
use "$work/first"

echo "-- Moving the tree"
mv "$work/first" "$work/second"
use "$work/second"
"$cmake" -G Ninja -S "$here" -B "$work/again" -DCMAKE_PREFIX_PATH="$work/second" \
  -DCMAKE_CXX_COMPILER="$compiler" > /dev/null || fail "find_package(Brindle) fails after moving"
build_with_pkg_config "$work/second" "$work/consumer-again"
