#!/usr/bin/env bash
# Builds the default preset and installs it into a scratch prefix, builds the example host in
# examples/ against that prefix only (find_package(Korvane)) and runs it, runs the installed tool,
# checks the pkg-config file, and runs the tool again from a moved prefix (relative run paths).
# Usage: scripts/check-install.sh [scratch folder]   (default: a new temporary folder)
set -euo pipefail
cd "$(dirname "$0")/.."
root="$(pwd)"
work="${1:-$(mktemp -d)}"
prefix="$work/prefix"
rm -rf "$prefix" "$work/example" "$work/moved" "$work/pc"
mkdir -p "$work"

scripts/deps.sh
cmake --preset default
# The whole preset: the install takes every target the build configured (the Python module too
# when pybind11 is found), so a partial build would leave files for it to miss.
cmake --build --preset default -j"$(nproc)"
cmake --install build/default --prefix "$prefix"

fail() { echo "check-install: $*" >&2; exit 1; }
libdir="$(find "$prefix" -name 'libkorvane_host.so.0' -printf '%h\n' | head -n1)"
[ -n "$libdir" ] || fail "no libkorvane_host.so.0 (soname) in $prefix"
for f in "$libdir/libkorvane_colour.so" "$libdir/libkorvane_host.so" \
         "$libdir/cmake/Korvane/KorvaneConfig.cmake" \
         "$libdir/cmake/Korvane/KorvaneConfigVersion.cmake" \
         "$libdir/cmake/Korvane/KorvaneTargets.cmake" "$libdir/pkgconfig/korvane.pc" \
         "$prefix/bin/korvane" "$prefix/include/korvane/hostkit/plugsys/PluginLoader.h" \
         "$prefix/include/korvane/plugin/frame/ModuleEntry.h" \
         "$prefix/share/doc/korvane/LICENSE"; do
  [ -e "$f" ] || fail "missing $f"
done

# The example host, against the installed package only, run from its own folder.
cmake -S examples -B "$work/example" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release
cmake --build "$work/example" -j"$(nproc)"
(cd "$work/example" && ./korvane_example_host) > "$work/example.out"
cat "$work/example.out"
grep -q "^back to RGB: (0.800000, 0.400000, 0.100000)$" "$work/example.out" ||
  fail "the example's RGB round trip"
grep -q "read back equal" "$work/example.out" || fail "the example's plug file"
grep -q "plug-in $libdir/libkorvane_colour.so" "$work/example.out" ||
  fail "the example did not load the installed plug-in"

# The installed tool finds the installed plug-in.
"$prefix/bin/korvane" --csv | grep -q "^white,1.000000,1.000000,1.000000,1.000000" ||
  fail "the installed tool"

# pkg-config: a host built from its flags alone.
mkdir -p "$work/pc"
cat > "$work/pc/main.cpp" <<'CPP'
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>
#include <cstdio>
int main() {
    Korvane::PluginLoader loader;
    const int rc = loader.Load(Korvane::DefaultPluginPath().c_str());
    std::printf("%d %d\n", rc, loader.VersionId());
    return rc;
}
CPP
export PKG_CONFIG_PATH="$libdir/pkgconfig"
# shellcheck disable=SC2046
c++ "$work/pc/main.cpp" -o "$work/pc/host" $(pkg-config --cflags --libs korvane) \
  -Wl,-rpath,"$(pkg-config --variable=libdir korvane)"
[ "$("$work/pc/host")" = "0 263237" ] || fail "the pkg-config host"
[ -e "$(pkg-config --variable=plugin korvane)" ] || fail "pkg-config's plugin variable"

# A moved prefix: the tool still finds its libraries and the plug-in.
mv "$prefix" "$work/moved"
"$work/moved/bin/korvane" --csv > /dev/null || fail "the tool from a moved prefix"
KORVANE_PLUGIN=/nonexistent/plugin.so "$work/moved/bin/korvane" --csv > /dev/null 2>&1 &&
  fail "KORVANE_PLUGIN did not override the default"
echo "check-install: ok ($work)"
cd "$root"
