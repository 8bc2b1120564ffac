#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the Debian packages that the project is built and tested with, those that are missing.
# "scripts/setup.sh linux" leaves out what only the Windows build and the tests need; so does
# "scripts/setup.sh benchmark", which adds what the benchmarks need and compare with.
set -euo pipefail

packages=(g++ cmake ninja-build librapidxml-dev libutfcpp-dev uuid-dev libcli11-dev
    libgtest-dev libgmock-dev binutils binutils-mingw-w64-x86-64 clang-format)
test_packages=(g++-mingw-w64-x86-64-posix mingw-w64-tools wine64 wine googletest valgrind)
benchmark_packages=(libbenchmark-dev libsqlite3-dev libpugixml-dev libboost-dev libxml2-dev
    libspdlog-dev)
case ${1:-all} in
linux) ;;
benchmark) packages+=("${benchmark_packages[@]}") ;;
*) packages+=("${test_packages[@]}") ;;
esac

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
