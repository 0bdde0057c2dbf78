#!/usr/bin/env bash
# Builds and runs the registration host program; with no arguments it
# registers its embedded default views. Arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target kormath_register
exec build/release/examples/registration/kormath_register "$@"
