#!/usr/bin/env bash
# Builds the command-line tool and the plug-in, and runs the tool (default: the built-in
# defaults). Usage: scripts/run.sh [korvane options]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh >&2
cmake --preset default >&2
cmake --build --preset default -j"$(nproc)" --target korvane >&2
exec build/default/bin/korvane "$@"
