#!/usr/bin/env bash
# Installs the Debian packages of the Windows build when any is missing: the mingw-w64 cross
# compiler (posix threads), Wine to run what it builds, and GoogleTest's source, which the cross
# build compiles itself; with them those of the Linux build (CLI11's headers serve both).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh g++-mingw-w64-x86-64-posix wine wine64 googletest
