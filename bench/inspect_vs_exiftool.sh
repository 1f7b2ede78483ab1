#!/usr/bin/env bash
# Times `quillon inspect` against exiftool reading the same facts from the same 2,000 linked
# files (copies of every sample kind), in one run, and prints both times and the ratio.
#   bench/inspect_vs_exiftool.sh [build folder, default build/bench]
# Needs exiftool (Debian package libimage-exiftool-perl) for the comparison only.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/bench}
quillon="$build/src/cli/quillon"
samples=../shared/samples
[[ -x "$quillon" ]] || { echo "build first: scripts/setup.sh bench" >&2; exit 2; }
command -v exiftool >/dev/null || { echo "exiftool is missing: apt-get install libimage-exiftool-perl" >&2; exit 2; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mapfile -t kinds < <(find "$samples"/{psd,eps,ai,tiff,jpeg,other} -maxdepth 1 -type f | sort)
for ((i = 0; i < 2000; i++)); do
  sample=${kinds[i % ${#kinds[@]}]}
  cp "$sample" "$folder/$(printf %04d "$i")_$(basename "$sample")"
done
# Warm the page cache, so that both tools read from memory.
cat "$folder"/* >/dev/null

# Wall-clock seconds of a command, its output thrown away.
seconds() {
  local start end
  start=$(date +%s%N)
  "$@" >/dev/null
  end=$(date +%s%N)
  awk -v ns=$((end - start)) 'BEGIN { printf "%.3f", ns / 1e9 }'
}

tags=(-FileType -ImageWidth -ImageHeight -ColorMode -ColorComponents -PhotometricInterpretation
      -ProfileDescription -Compression -Creator -CreatorTool -DocumentProcessColors -DocumentCustomColors
      -DocumentFonts -PlateNames -Fonts -PageCount)
ours=$(seconds "$quillon" inspect --format json "$folder"/*)
theirs=$(seconds exiftool -fast -json "${tags[@]}" "$folder")
awk -v ours="$ours" -v theirs="$theirs" 'BEGIN {
  printf "files: 2000\nquillon inspect: %.3f s\nexiftool -fast:  %.3f s\nratio: %.1fx\n", ours, theirs, theirs / ours }'
QUILLON_INSPECT_FILES="$folder" "$build/bench/InspectBench" --benchmark_filter=InspectLinkedFiles
