#!/usr/bin/env bash
# Builds the "fuzz" preset and runs each fuzz target for a while; any finding (crash, leak,
# sanitizer report, failed check) fails the script.
# Usage: scripts/fuzz.sh [seconds per target]   (default 60)
# Longer runs: scripts/fuzz.sh 3600, or run a target by hand on its corpus, e.g.
#   build/fuzz/bin/korvane_fuzz_plugfile -jobs=2 build/fuzz/corpus/plugfile
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
scripts/deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j"$(nproc)"
bin=build/fuzz/bin
corpus=build/fuzz/corpus
mkdir -p "$corpus/plugfile" "$corpus/archive" "$corpus/spectrum"
"$bin/korvane_fuzz_seeds" "$corpus/plugfile" "$corpus/archive"
# Spectrum files: the tool's test files (delimited text and CGATS).
cp tests/cli/data/* "$corpus/spectrum/"
cp /usr/share/color/argyll/ref/F1.sp /usr/share/color/argyll/ref/F8.sp "$corpus/spectrum/" 2>/dev/null || true
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
for target in plugfile archive spectrum; do
  echo "fuzz: $target for ${seconds} s"
  "$bin/korvane_fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=2048 -max_len=65536 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/finding-$target-" "$corpus/$target" \
    2>&1 | tail -n 12
done
echo "fuzz: no finding"
