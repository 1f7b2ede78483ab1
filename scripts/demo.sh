#!/usr/bin/env bash
# Installs what is missing, builds, and preflights the bundled sample document: a small brochure
# (resources/sample) with its linked files and a checkup preset made for it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh release
quillon=build/release/src/cli/quillon
sample=resources/sample

# git keeps no file times: give the linked files back the time the document recorded for them,
# or they would read as modified since they were placed.
touch -d "2026-01-15 10:00:00 UTC" "$sample"/Links/*

status=0
"$quillon" preflight "$sample/sample-brochure.idml" --preset-file "$sample/Sample Print Checks.qnfp" || status=$?
# 1 means the preflight worked and found problems, which the sample is made to have.
if ((status > 1)); then
  exit "$status"
fi
echo
echo "The same as a text report, a tab-delimited one or JSON: add --format text, tab or json."
