#!/usr/bin/env bash
# Runs clang-tidy over the sources, the most recently changed first, until the time is up.
#   Scripts/lint.sh [SECONDS]      120 when not said; needs a configured build/asan
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-120}
commands=build/asan/compile_commands.json
[ -f "$commands" ] || { echo "lint: configure the asan preset first" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Sources by the time of their last commit, newest first, each once; those not committed before all.
{
  git ls-files --others --modified --exclude-standard -- '*.cpp'
  git log --format= --name-only --no-renames -- '*.cpp'
} | awk '!seen[$0]++' | while read -r file; do
  if [ -f "$file" ] && grep -qF "/$file\"" "$commands"; then echo "$file"; fi
done > "$work/files"

export WORK=$work
export END=$(($(date +%s) + seconds))
# shellcheck disable=SC2016  # expanded by the inner shell
xargs -r -n 1 -P "$(nproc)" bash -c '
  [ "$(date +%s)" -lt "$END" ] || exit 0
  echo "$1" >> "$WORK/done"
  clang-tidy-14 -p build/asan --quiet "$1" 2> /dev/null || exit 1
' lint < "$work/files" && status=0 || status=1
touch "$work/done"
echo "Lint: $(wc -l < "$work/done") of $(wc -l < "$work/files") sources looked at."
exit "$status"
