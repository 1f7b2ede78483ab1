#!/usr/bin/env bash
# Installs the Debian packages Quillon needs (only those missing), then configures and builds.
#   scripts/setup.sh release   optimised build in build/release (the default)
#   scripts/setup.sh test      sanitizer build with the tests in build/test
#   scripts/setup.sh testopt   optimised build with the tests in build/testopt: a fault that shows
#                              only when freed memory is reused hides from the sanitizers
#   scripts/setup.sh bench     optimised build with the benchmarks in build/bench
#   scripts/setup.sh packages  only the packages
set -euo pipefail
cd "$(dirname "$0")/.."
kind=${1:-release}

missing=()
while read -r pkg; do
  [[ -z "$pkg" || "$pkg" == \#* ]] && continue
  dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
done < scripts/packages.txt
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  [[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

jobs=$(nproc)
launcher=()
# A compiler cache, when the machine has one, makes rebuilds of other work trees cheap.
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$(cd .. && pwd)}" CCACHE_NOHASHDIR=1
fi
case "$kind" in
  packages) ;;
  release)
    cmake -S . -B build/release -G Ninja "${launcher[@]}" -DCMAKE_BUILD_TYPE=Release -DQUILLON_TESTS=OFF
    cmake --build build/release -j "$jobs"
    ;;
  test)
    cmake -S . -B build/test -G Ninja "${launcher[@]}" -DCMAKE_BUILD_TYPE=Debug -DQUILLON_SANITIZE=ON -DQUILLON_TESTS=ON
    cmake --build build/test -j "$jobs"
    ;;
  testopt)
    cmake -S . -B build/testopt -G Ninja "${launcher[@]}" -DCMAKE_BUILD_TYPE=Release -DQUILLON_TESTS=ON
    cmake --build build/testopt -j "$jobs"
    ;;
  bench)
    cmake -S . -B build/bench -G Ninja "${launcher[@]}" -DCMAKE_BUILD_TYPE=Release -DQUILLON_TESTS=OFF -DQUILLON_BENCH=ON
    cmake --build build/bench -j "$jobs"
    ;;
  *)
    echo "usage: scripts/setup.sh [release|test|testopt|bench|packages]" >&2
    exit 2
    ;;
esac
