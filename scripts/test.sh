#!/usr/bin/env bash
# Installs what is missing, builds with the sanitizers and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh test
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build/test --output-on-failure -j "$(nproc)" --timeout 300
