#!/usr/bin/env bash
# Installs the Debian packages the build needs, when any is missing. Further package names given
# as arguments are installed the same way (scripts/deps-windows.sh passes the Windows build's).
set -euo pipefail
packages=(cmake g++ make libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev)
packages+=(pkgconf doxygen python3) # the install check, the API reference, the guide check
# The command-line tool's JSON; the tool's tests: the plot rendered to PNG, the CIE F-series
# spectra (CGATS) of argyll-ref, a Python 3 interpreter for the picture check.
packages+=(nlohmann-json3-dev librsvg2-bin argyll-ref python3)
# The Python module (for /usr/bin/python3) and its tutorial's figure.
packages+=(python3-dev pybind11-dev python3-numpy python3-pytest python3-matplotlib)
packages+=(clang-14 libclang-rt-14-dev) # the fuzz and ThreadSanitizer builds
packages+=("$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}"
fi
