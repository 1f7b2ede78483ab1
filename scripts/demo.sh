#!/usr/bin/env bash
# Installs what is missing, builds, preflights the bundled sample document (a small brochure in
# resources/sample, with its linked files and a checkup preset made for it), packages it and
# verifies the package.
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

# Then package it: the document, its links and fonts, the text and PDF reports, in a folder of its
# own.
packages=$(mktemp -d "${TMPDIR:-/tmp}/quillon-packages-XXXXXX")
echo
status=0
"$quillon" package "$sample/sample-brochure.idml" --to "$packages" --text-report --pdf-report \
  --preset-file "$sample/Sample Print Checks.qnfp" || status=$?
if ((status > 1)); then
  exit "$status"
fi
echo
# The manifest lists every file of the package with its SHA-256: prove nothing was lost or changed.
"$quillon" verify "$packages/sample-brochure"
echo
echo "The package is in $packages."
echo "The desktop application: build/release/src/ui/quillon-gui $sample/sample-brochure.idml"
