#!/usr/bin/env bash
# Builds the program a second time, from a copy of the sources in another place, and compares the
# two files byte for byte.
# usage: reproducible.sh SOURCE_FOLDER BUILT_PROGRAM
set -euo pipefail

source_folder=$1
program=$2
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT

tar -C "$source_folder" --exclude=./build --exclude=./.git -cf - . | tar -C "$copy" -xf -
cd "$copy"
cmake --preset windows >configure.log 2>&1 || { cat configure.log; exit 1; }
cmake --build --preset windows --target KestrelforgeLauncher >build.log 2>&1 ||
  { cat build.log; exit 1; }

second=build/windows/bin/KestrelforgeLauncher.exe
cmp "$program" "$second" || { echo 'Two builds of the same sources differ.'; exit 1; }
printf 'Two builds are equal: %s bytes, SHA-256 %s\n' \
  "$(stat -c %s "$second")" "$(sha256sum <"$second" | cut -d' ' -f1)"
