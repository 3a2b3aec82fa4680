#!/usr/bin/env bash
# Builds and runs the whole test suite. Usage: scripts/test.sh [preset]   (default: default)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
scripts/deps.sh
cmake --preset "$preset"
cmake --build --preset "$preset" -j"$(nproc)"
ctest --preset "$preset" -j"$(nproc)"
