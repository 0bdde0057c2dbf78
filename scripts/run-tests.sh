#!/usr/bin/env bash
# Builds the library in an optimised configuration and runs the whole test
# suite. Usage: scripts/run-tests.sh [preset]   (default: release)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/install-deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset"
