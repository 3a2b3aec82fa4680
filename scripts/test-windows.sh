#!/usr/bin/env bash
# Cross-builds the 64-bit Windows DLLs, the tool, the tests and the benchmarks and runs the whole
# suite under Wine; then checks that the tool gives the same results under Wine as on Linux.
# Usage: scripts/test-windows.sh
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps-windows.sh
start=$(date +%s)
cmake --preset windows
cmake --build --preset windows -j"$(nproc)"
built=$(date +%s)
ctest --preset windows -j"$(nproc)"
tested=$(date +%s)

# The same results on both platforms: the Linux tool (built here when missing) and the Windows one
# under Wine run the same commands over the tests' data files, each in a folder of its own holding
# a copy of the data, so every path the tool prints or writes reads the same on both. Compared: the
# exit status, standard output and standard error, and every file a command wrote, byte for byte
# (plug files of both formats, SVG figures). Only what differs by nature is taken out: Wine's
# console output ends its lines with CR LF, and the line naming the plug-in file (a .so path, a
# .dll path) differs.
cmake --preset default >/dev/null
cmake --build --preset default -j"$(nproc)" --target korvane korvane_colour
# The first Wine found (no pipe into head: with pipefail its early exit would fail the script).
wine_cmd=$(for c in /usr/lib/wine/wine64 wine64 wine; do command -v "$c" && break; done)
linux_tool="$PWD/build/default/bin/korvane"
windows_tool="$PWD/build/windows/bin/korvane.exe"
wine_prefix="$PWD/build/windows/wineprefix"
compare="$PWD/build/windows/cli-compare"
argyll=/usr/share/color/argyll/ref # CIE F-series spectra as CGATS (Debian's argyll-ref)
commands=(
  ""
  "--csv"
  "--observer 10 --grid 380 780 20 --rgb 0.2 0.4 0.6 1 0 0 --spectra"
  "analyze data/lamps.csv"
  "analyze data/lamps.csv --json"
  "analyze --observer 10 data/lamps.csv data/F1.sp data/F8.sp"
  "analyze --precision 4 data/illuminant_a_5nm.csv --csv"
  "analyze --reflectance data/patches.txt"
  "analyze --reflectance --illuminant A data/patches.txt --json"
  "analyze --reflectance --illuminant data/F1.sp data/patches.txt --csv"
  "convert --from rgb 0.2 0.4 0.6 --to xyz"
  "convert --from xyy 0.3127 0.329 1 --to rgb --json"
  "convert --from rgb 0.2 0.4 0.6 --to spectral --grid 380 780 5 --csv"
  "convert --kind surface --from rgb 0.5 0.5 0.5 --to spectral --json"
  "convert --from spectral data/illuminant_a_5nm.csv --to xyy"
  "resample data/lamps.csv --grid 380 780 20"
  "resample --reflectance data/patches.txt --grid 400 700 5"
  "holder save --model rgb --values 0.2 0.4 0.6 --matrix 2 2 -o rgb-matrix.plug"
  "holder save --model rgb --values 0.2 0.4 0.6 --matrix 2 2 --format text -o rgb-matrix-text.plug"
  "holder save --model spectral --kind surface --values data/patches.txt -o surface.plug"
  "holder save --model spectral --kind surface --values data/patches.txt --format text -o surface-text.plug"
  "holder save --model xyz --array 3 --values 0.95 1 1.09 --format text -o xyz-array-text.plug"
  "holder show rgb-matrix.plug"
  "holder show rgb-matrix-text.plug"
  "holder show surface.plug"
  "holder show surface-text.plug"
  "holder show xyz-array-text.plug"
  "plot data/lamps.csv -o lamps.svg"
  "plot --ucs data/F1.sp data/F8.sp -o f-series-ucs.svg"
  "analyze data/no-such-file.csv"
  "convert --from rgb 0.2 0.4 --to xyz"
)
rm -rf "$compare"
for side in linux wine; do
  mkdir -p "$compare/$side/data" "$compare/$side-results"
  cp tests/cli/data/* "$argyll/F1.sp" "$argyll/F8.sp" "$compare/$side/data/"
done
# The results of command n on one side, run in that side's folder: exit status, output and error
# output, in three files of the side's results folder.
run() { # side n args...
  local side=$1 n=$2
  shift 2
  local results="$compare/$side-results/$n" status=0
  if [ "$side" = linux ]; then
    "$linux_tool" "$@" >"$results.out" 2>"$results.err" || status=$?
  else
    WINEPREFIX="$wine_prefix" WINEDEBUG=-all DISPLAY='' \
      "$wine_cmd" "$windows_tool" "$@" >"$results.out" 2>"$results.err" || status=$?
  fi
  echo "$status" >"$results.status"
  for f in "$results.out" "$results.err"; do
    tr -d '\r' <"$f" | sed '/^plug-in: /d' >"$f.stripped" && mv "$f.stripped" "$f"
  done
}
for side in linux wine; do
  (
    cd "$compare/$side"
    for i in "${!commands[@]}"; do
      # shellcheck disable=SC2086 # the options are meant to split
      run "$side" "$i" ${commands[$i]}
    done
  )
done
# The same text with every number within 1e-9 of the other's (relative, absolute below 1):
# analyze's JSON and CSV write numbers in full, and their last digits come from the platform's
# math library (CCT, Duv, CIELAB and the colour rendering indices go through expm1, hypot, pow
# and cbrt, whose last bits differ between glibc and the Windows runtime). The table (six digits)
# and everything else must match exactly.
same_to_last_digits() {
  python3 - "$1" "$2" <<'PYTHON'
import re, sys
number = re.compile(r"-?\d+(?:\.\d+)?(?:[eE][-+]?\d+)?")
a, b = (open(p).read() for p in sys.argv[1:3])
if number.split(a) != number.split(b):
    sys.exit(1)
for x, y in zip(number.findall(a), number.findall(b)):
    x, y = float(x), float(y)
    if abs(x - y) > 1e-9 * max(1.0, abs(x)):
        sys.exit(1)
PYTHON
}
failed=0
near=0
for i in "${!commands[@]}"; do
  for part in status out err; do
    linux="$compare/linux-results/$i.$part" wine="$compare/wine-results/$i.$part"
    cmp -s "$linux" "$wine" && continue
    if [ "$part" = out ] && [[ "${commands[$i]}" =~ ^analyze\ .*--(json|csv) ]] &&
      same_to_last_digits "$linux" "$wine"; then
      near=$((near + 1))
      continue
    fi
    diff -u "$linux" "$wine" || true
    echo "test-windows: korvane ${commands[$i]}: the $part under Wine differs from Linux" >&2
    failed=1
  done
done
# Every file the commands wrote, byte for byte.
written=0
for f in "$compare"/linux/*; do
  [ -f "$f" ] || continue
  name=$(basename "$f")
  if ! cmp "$f" "$compare/wine/$name"; then
    echo "test-windows: $name as written under Wine differs from Linux" >&2
    failed=1
  fi
  written=$((written + 1))
done
if [ "$(find "$compare/wine" -maxdepth 1 -type f | wc -l)" -ne "$written" ]; then
  echo "test-windows: the commands wrote other files under Wine than on Linux" >&2
  failed=1
fi
[ "$written" -gt 0 ] || { echo "test-windows: the commands wrote no file" >&2; failed=1; }
if [ "$failed" -ne 0 ]; then
  exit 1
fi
echo "test-windows: ${#commands[@]} commands of the tool: the same results on Linux and under Wine" \
  "($near in full precision to the last digits), and the same bytes in the $written files they wrote"
echo "test-windows: build $((built - start)) s, tests $((tested - built)) s"
