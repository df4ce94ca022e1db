#!/usr/bin/env bash
# Installs what building Brindle on Debian 12 needs and is not there yet.
#   Scripts/setup.sh           for building and testing
#   Scripts/setup.sh --all     also for the sanitizers, formatting, linting and the benchmarks' peers
set -euo pipefail

packages=(
  g++ cmake ninja-build pkgconf ccache git python3 tzdata
  libicu-dev libabsl-dev libglib2.0-dev libffi-dev libexpat1-dev uuid-dev
  libgtest-dev libbenchmark-dev)
if [ "${1:-}" = --all ]; then
  packages+=(
    clang-14 clang libclang-rt-14-dev llvm-14 clang-format-14 clang-tidy-14
    libplist-dev gobjc gobjc++ gnustep-make libgnustep-base-dev qt6-base-dev)
fi

# Zone rules change several times a year, and answers with them: these are the oldest that will do.
zone_data=2026b

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
if ! dpkg --compare-versions "$(dpkg-query -W -f='${Version}' tzdata 2>/dev/null || echo 0)" ge "$zone_data"; then
  [[ " ${missing[*]} " == *" tzdata "* ]] || missing+=(tzdata)
fi
if [ ${#missing[@]} -eq 0 ]; then
  echo "Setup: everything is there."
  exit 0
fi

as_root=()
[ "$(id -u)" = 0 ] || as_root=(sudo)
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)

echo "Setup: installing ${missing[*]}"
"${apt[@]}" update
"${apt[@]}" install -y --no-install-recommends "${missing[@]}" | sed -un 's/^Unpacking \([^ ]*\).*/  \1/p'
echo "Setup: done."
