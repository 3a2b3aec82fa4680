#!/usr/bin/env bash
# Checks that the Python module imports and converts from the build tree and from an install
# prefix. Usage: scripts/check-python.sh [preset]   (default: default; run after its build)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
build="$PWD/build/$preset"
python=/usr/bin/python3
if [ ! -d "$build/python/korvane" ]; then
  echo "check-python: $build/python/korvane is missing (was the module built?)" >&2
  exit 1
fi
probe='import korvane, numpy
xyz = korvane.convert([1.0, 1.0, 1.0], "URGB", "XYZ")
assert abs(xyz[1] - 1.0) < 1e-12, xyz
print("korvane", korvane.__version__, "from", korvane.__file__, "plug-in", korvane.plugin_path())'

# The build tree: the package folder on PYTHONPATH, the plug-in from <build>/bin.
(cd /tmp && env -u KORVANE_PLUGIN PYTHONPATH="$build/python" "$python" -c "$probe")

# An install prefix: the package in the folder the build chose (KORVANE_PYTHON_INSTALL_DIR, the
# interpreter's site folder by default), the plug-in where it was put.
site="$(sed -n 's/^KORVANE_PYTHON_INSTALL_DIR:[A-Z]*=//p' "$build/CMakeCache.txt")"
prefix="$(mktemp -d)"
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
(cd /tmp && env -u KORVANE_PLUGIN PYTHONPATH="$prefix/$site" "$python" -c "$probe" |
  grep -F "from $prefix/$site/korvane/" | grep -F "plug-in $prefix/")
echo "check-python: build tree and install prefix both import korvane"
