#!/usr/bin/env bash
# Installs the Debian packages of the Windows build when any is missing: the mingw-w64 cross
# compiler (posix threads), Wine to run what it builds, and GoogleTest's source, which the cross
# build compiles itself. CLI11 comes from scripts/deps.sh (its headers serve both builds).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
packages=(g++-mingw-w64-x86-64-posix wine wine64 googletest)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
