#!/usr/bin/env bash
# Checks every tracked C++ file under src, tests and bench against .clang-format. Prints the files
# that differ and exits 1 if there are any; `clang-format -i FILE` puts one right.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files -- 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h')
# Each difference is reported as "FILE:LINE:COLUMN: error: ..."; one name per file is enough.
report=$(clang-format --dry-run --Werror --style=file "${files[@]}" 2>&1 >/dev/null) && status=0 || status=$?
if ((status != 0)); then
  differing=$(grep -oE '^[^:]+:[0-9]+:[0-9]+: error' <<<"$report" | cut -d: -f1 | sort -u || true)
  if [[ -z "$differing" ]]; then
    echo "$report" >&2 # clang-format itself failed: show why
    exit 2
  fi
  echo "Not formatted as .clang-format asks ($(wc -l <<<"$differing") of ${#files[@]} files):"
  sed 's/^/  /' <<<"$differing"
  exit 1
fi
echo "All ${#files[@]} C++ files are formatted."
