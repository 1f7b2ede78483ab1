#!/usr/bin/env bash
# The preflight figures, each taken through the command as a user runs it, on generated documents
# (GenerateIdml --preflight-set: a 1,000-spread catalogue with its linked files and 100 small
# leaflets), and printed as one table:
#   - `quillon preflight --format json` of the catalogue: wall time and peak memory (max RSS);
#   - `quillon info --format json` of the catalogue against `unzip -q` of the same file;
#   - the 100 leaflets with --jobs 2 against --jobs 1.
# Each time is the median of RUNS runs (default 3); memory is the largest of them.
#   bench/preflight-figures.sh [build folder, default build/bench]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/bench}
runs=${RUNS:-3}
quillon="$build/src/cli/quillon"
generate="$build/bench/GenerateIdml"
for tool in "$quillon" "$generate"; do
  [[ -x "$tool" ]] || { echo "build first: scripts/setup.sh bench ($tool is missing)" >&2; exit 2; }
done
command -v unzip >/dev/null || { echo "unzip is missing: apt-get install unzip" >&2; exit 2; }
[[ -x /usr/bin/time ]] || { echo "/usr/bin/time is missing: apt-get install time" >&2; exit 2; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The user's presets and settings stay out of it.
export QUILLON_SUPPORT_DIR="$folder/support"
"$generate" --preflight-set "$folder/documents" >/dev/null
large="$folder/documents/large/Catalogue.idml"
small=()
for ((i = 0; i < 100; i++)); do small+=("$folder/documents/small/Leaflet $i.idml"); done
# Read everything once, so that every run reads from memory.
find "$folder/documents" -type f -exec cat {} + >/dev/null

# Runs a command RUNS times, its output thrown away, and prints the median of the wall-clock
# seconds; the peak memory of each run (kB) is added to $folder/peaks. Exit status 0 and 1
# (alerts raised) are results; anything else stops the script.
median_seconds() {
  local times=() start end status
  for ((run = 0; run < runs; run++)); do
    start=$(date +%s%N)
    status=0
    /usr/bin/time -f %M -o "$folder/rss" "$@" >/dev/null || status=$?
    end=$(date +%s%N)
    if ((status > 1)); then
      echo "failed ($status): $*" >&2
      exit 2
    fi
    tail -n 1 "$folder/rss" >>"$folder/peaks"
    times+=("$((end - start))")
  done
  printf '%s\n' "${times[@]}" | sort -n | awk -v n="$runs" 'NR == int((n + 1) / 2) { printf "%.3f", $1 / 1e9 }'
}

preflight=$(median_seconds "$quillon" preflight --format json "$large")
preflight_mb=$(sort -n "$folder/peaks" | awk 'END { printf "%d", $1 / 1024 }')
info=$(median_seconds "$quillon" info --format json "$large")
unzipped=$(median_seconds sh -c 'd=$(mktemp -d "$1/unzip.XXXX") && unzip -q "$2" -d "$d"' sh "$folder" "$large")
one_job=$(median_seconds "$quillon" preflight --format json --jobs 1 "${small[@]}")
two_jobs=$(median_seconds "$quillon" preflight --format json --jobs 2 "${small[@]}")

awk -v preflight="$preflight" -v mb="$preflight_mb" -v info="$info" -v unzipped="$unzipped" \
    -v one="$one_job" -v two="$two_jobs" -v cores="$(nproc)" -v runs="$runs" 'BEGIN {
  printf "%-42s %10s   %s\n", "figure (median of " runs " runs, " cores " cores)", "value", "target"
  printf "%-42s %8.3f s   %s\n", "preflight, 1,000 spreads, JSON", preflight, "< 0.8 s"
  printf "%-42s %7d MB   %s\n", "peak memory of that preflight", mb, "< 300 MB"
  printf "%-42s %8.3f s\n", "quillon info, JSON", info
  printf "%-42s %8.3f s\n", "unzip -q of the same file", unzipped
  printf "%-42s %10.2f   %s\n", "info / unzip", info / unzipped, "<= 1"
  printf "%-42s %8.3f s\n", "100 small documents, --jobs 1", one
  printf "%-42s %8.3f s\n", "100 small documents, --jobs 2", two
  printf "%-42s %10.2f   %s\n", "jobs 2 / jobs 1", two / one, "<= 0.6"
}'
