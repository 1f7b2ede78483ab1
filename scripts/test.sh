#!/usr/bin/env bash
# Installs what is missing and checks the formatting, then builds and runs every test twice: with
# the sanitizers, and optimised (where freed memory is reused at once, so a dangling key shows).
set -euo pipefail
cd "$(dirname "$0")/.."
export QT_QPA_PLATFORM=offscreen
# Formatting first: it takes seconds, the builds take minutes.
scripts/setup.sh packages
scripts/check-format.sh
for kind in test testopt; do
  scripts/setup.sh "$kind"
  ctest --test-dir "build/$kind" --output-on-failure -j "$(nproc)" --timeout 300
done
