#!/usr/bin/env bash
# Cross-builds the 64-bit Windows DLLs, the tool, the tests and the benchmarks (when a Google
# Benchmark for Windows is found) and runs the whole suite under Wine; then checks that the
# tool's default report under Wine is the one it gives on Linux. Usage: scripts/test-windows.sh
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps-windows.sh
start=$(date +%s)
cmake --preset windows
cmake --build --preset windows -j"$(nproc)"
built=$(date +%s)
ctest --preset windows -j"$(nproc)"
tested=$(date +%s)

# The same report on both platforms: the Linux tool (built here when missing) against the
# Windows one under Wine, on the default run and as CSV. Wine's console output ends its lines with
# CR LF, and the line naming the plug-in file (a .so path, a .dll path) differs by nature.
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)" --target korvane
# The first Wine found (no pipe into head: with pipefail its early exit would fail the script).
wine_cmd=$(for c in /usr/lib/wine/wine64 wine64 wine; do command -v "$c" && break; done)
for args in "" "--csv"; do
  linux_out="build/windows/korvane-linux${args}.txt"
  wine_out="build/windows/korvane-wine${args}.txt"
  # shellcheck disable=SC2086 # the options are meant to split
  build/default/bin/korvane $args | sed '/^plug-in: /d' >"$linux_out"
  # shellcheck disable=SC2086
  WINEPREFIX="$PWD/build/windows/wineprefix" WINEDEBUG=-all DISPLAY= \
    "$wine_cmd" build/windows/bin/korvane.exe $args | tr -d '\r' | sed '/^plug-in: /d' >"$wine_out"
  if ! diff -u "$linux_out" "$wine_out"; then
    echo "test-windows: the tool's report (korvane${args:+ $args}) under Wine differs from Linux" >&2
    exit 1
  fi
  echo "test-windows: korvane${args:+ $args}: same report on Linux and under Wine ($(wc -l <"$linux_out") lines)"
done
echo "test-windows: build $((built - start)) s, tests $((tested - built)) s"
