#!/bin/sh
# Regenerates write_cases.txt and read_cases.txt beside this script from gfortran's formatted
# I/O, which the column-format component follows.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gfortran -std=gnu -ffree-line-length-none -J "$work" -o "$work/make_cases" "$here/make_cases.f90"
(cd "$work" && ./make_cases)
cp "$work/write_cases.txt" "$work/read_cases.txt" "$here/"
echo "$(grep -c '^case ' "$here/write_cases.txt") write cases," \
     "$(grep -c '^case ' "$here/read_cases.txt") read cases"
