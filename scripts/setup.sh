#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that the project is built and tested with, those that are missing.
# "scripts/setup.sh linux" leaves out what only the Windows build needs.
set -euo pipefail

packages=(g++ cmake ninja-build librapidxml-dev libutfcpp-dev uuid-dev libcli11-dev
    libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev binutils
    binutils-mingw-w64-x86-64 clang-format)
if [ "${1:-all}" != linux ]; then
    packages+=(g++-mingw-w64-x86-64-posix mingw-w64-tools wine64 wine googletest)
fi

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$state" = "install ok installed" ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
