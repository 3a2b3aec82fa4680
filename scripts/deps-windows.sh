#!/usr/bin/env bash
# Installs the Debian packages of the Windows build when any is missing: the mingw-w64 cross
# compiler (posix threads), Wine to run what it builds, and GoogleTest's source, which the cross
# build compiles itself; with them those of the Linux build (CLI11's headers serve both). Then
# fetches the source of Google Benchmark into build/deps/benchmark when it is not there yet.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh g++-mingw-w64-x86-64-posix wine wine64 googletest dpkg-dev

# Debian ships Google Benchmark built for the build machine only and, unlike GoogleTest, no
# package of its source: the cross build compiles the source package of the same version as the
# installed libbenchmark-dev, fetched from Debian's archive with apt-get source. apt works here
# with a source list, package lists and cache of its own under build/deps/apt, so the machine's
# apt configuration stays as it is.
deps="$PWD/build/deps"
if [ ! -f "$deps/benchmark/CMakeLists.txt" ]; then
  version=$(dpkg-query -W -f='${source:Version}' libbenchmark-dev)
  upstream=${version#*:} # no epoch, no Debian revision: the unpacked folder's name
  upstream=${upstream%-*}
  suite=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
  apt_dir="$deps/apt"
  rm -rf "$apt_dir" "$deps"/benchmark-* "$deps"/benchmark_*
  mkdir -p "$apt_dir/sources" "$apt_dir/lists/partial" "$apt_dir/cache/archives/partial"
  # The archive this machine's apt already installs from: the first URI of its package sources.
  archive=$(sed -n 's/^URIs:[[:space:]]*//p' /etc/apt/sources.list.d/*.sources 2>/dev/null |
    awk '{print $1; exit}' || true)
  [ -n "$archive" ] || archive=$(awk '$1 == "deb" {print $2; exit}' /etc/apt/sources.list 2>/dev/null || true)
  cat >"$apt_dir/sources/debian-source.sources" <<SOURCES
Types: deb-src
URIs: $archive
Suites: $suite
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
SOURCES
  apt_options=(-o "Dir::Etc::SourceList=/dev/null" -o "Dir::Etc::SourceParts=$apt_dir/sources"
    -o "Dir::State::Lists=$apt_dir/lists" -o "Dir::Cache=$apt_dir/cache")
  echo "fetching the source of Google Benchmark $version"
  apt-get "${apt_options[@]}" update -qq
  (cd "$deps" && apt-get "${apt_options[@]}" source -qq "benchmark=$version")
  rm -rf "$deps/benchmark"
  mv "$deps/benchmark-$upstream" "$deps/benchmark"
  rm -rf "$apt_dir" "$deps"/benchmark_*
fi
