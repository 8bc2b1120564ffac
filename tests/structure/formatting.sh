#!/bin/sh
# SPDX-License-Identifier: MIT
# Every source is formatted as .clang-format says.
#
#   formatting.sh CLANG_FORMAT ROOT
set -eu
format=$1
cd "$2"

folders=
for folder in include sources tools tests examples benchmarks; do
    [ -d "$folder" ] && folders="$folders $folder"
done
# shellcheck disable=SC2086
find $folders -name '*.h' -o -name '*.c' -o -name '*.cpp' | sort |
    xargs "$format" --dry-run -Werror --style=file
