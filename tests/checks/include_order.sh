#!/usr/bin/env bash
# Fails when a production file includes a folder that stands above its own.
# usage: include_order.sh SOURCE_FOLDER | include_order.sh --self-test
set -euo pipefail

declare -A rank=(
  [foundation]=0 [settings]=1 [host]=1 [database]=2 [sql]=3 [patch]=4 [update]=5 [launcher]=6)

# Prints each include that is not allowed; fails if there is one, or if no file was read.
check_tree() {
  local tree=$1 folder file target wrong=0 files=0
  for folder in "${!rank[@]}"; do
    [ -d "$tree/$folder" ] || continue
    while IFS= read -r file; do
      files=$((files + 1))
      while IFS= read -r target; do
        [ "$target" = "$folder" ] && continue
        if [ -z "${rank[$target]:-}" ] || [ "${rank[$target]}" -ge "${rank[$folder]}" ]; then
          printf '%s includes %s/, which does not stand below %s/\n' "${file#"$tree"/}" \
            "$target" "$folder"
          wrong=1
        fi
      done < <(sed -n 's|^ *# *include *"\(.*\)".*|\1|p' "$file" | sed 's|/.*||')
    done < <(find "$tree/$folder" -name '*.h' -o -name '*.cpp')
  done
  [ "$files" -gt 0 ] || { printf 'No production file found below %s\n' "$tree"; return 1; }
  return "$wrong"
}

# The check itself: each tree below has one wrong include, and must be refused for it.
self_test() {
  local tree line
  tree=$(mktemp -d)
  trap 'rm -rf "$tree"' RETURN
  for line in 'foundation launcher/LauncherMain.h' 'settings host/HostRelease.h' \
    'host tests/doubles/Diary.h' 'patch update/DatabaseUpdateManager.h' 'host Unqualified.h'; do
    rm -rf "${tree:?}"/*
    mkdir -p "$tree/${line%% *}"
    printf '#include "%s"\n' "${line#* }" >"$tree/${line%% *}/A.cpp"
    if check_tree "$tree" >/dev/null; then
      printf 'Not refused: %s\n' "$line"
      return 1
    fi
  done
  rm -rf "${tree:?}"/*
  mkdir -p "$tree/launcher"
  printf '#include "foundation/QulString.h"\n#include "launcher/A.h"\n' >"$tree/launcher/A.cpp"
  check_tree "$tree"
}

if [ "$1" = --self-test ]; then self_test; else check_tree "$1"; fi
