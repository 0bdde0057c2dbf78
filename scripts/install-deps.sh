#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need,
# when run as root and something is missing. Safe to run repeatedly.
set -euo pipefail
packages=(cmake ninja-build g++ clang clang-format libgtest-dev libbenchmark-dev liblapack-dev libblas-dev
          libgmp-dev libeigen3-dev libnanoflann-dev pkg-config libpng-dev libunittest++-dev
          libcgal-dev libclang-rt-14-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then exit 0; fi
if [ "$(id -u)" -ne 0 ]; then
  echo "missing packages: ${missing[*]} (run as root to install them)" >&2
  exit 0
fi
export DEBIAN_FRONTEND=noninteractive
apt-get install -y --no-install-recommends "${missing[@]}" >/dev/null 2>&1 ||
  { apt-get update >/dev/null 2>&1 && apt-get install -y --no-install-recommends "${missing[@]}" >/dev/null; }
