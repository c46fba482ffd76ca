#!/usr/bin/env bash
# Fails when an example of the page for people who write patches is not the text of the file that it
# names, when a block there names no file, or when a folder of such examples is not shown.
# usage: page_examples.sh SOURCE_FOLDER | page_examples.sh --self-test
set -euo pipefail

complain() { printf 'docs/patch-tables.md: %s\n' "$*"; }

# holds FILE TEXT: the file has these lines, one behind the other.
holds() {
  local content
  [ -f "$1" ] || return 1
  content=$(cat "$1")
  case $'\n'$content$'\n' in *$'\n'"$2"*) ;; *) return 1 ;; esac
}

check_page() {
  local tree=$1 line file='' block='' inside=no wrong=0 folder
  local -A shown=()
  local name='^`(page-[^`]*)`:$'
  while IFS= read -r line; do
    if [ "$inside" = yes ] && [ "$line" != '```' ]; then
      block+=$line$'\n'
    elif [ "$inside" = yes ]; then
      if [ -z "$file" ]; then
        complain "a block without the name of its file: ${block%%$'\n'*}"
        wrong=1
      elif [ -z "$block" ] || ! holds "$tree/tests/scenario/$file" "$block"; then
        complain "this is not in $file: ${block%%$'\n'*}"
        wrong=1
      else
        shown[${file%%/*}]=yes
      fi
      inside=no file=''
    elif [[ $line == '```'* ]]; then
      inside=yes block=''
    elif [[ $line =~ $name ]]; then
      file=${BASH_REMATCH[1]}
    elif [ -n "$line" ]; then
      file=''
    fi
  done <"$tree/docs/patch-tables.md"
  if [ "$inside" = yes ]; then
    complain 'a block without an end'
    wrong=1
  fi
  for folder in "$tree"/tests/scenario/page-*; do
    if [ -z "${shown[${folder##*/}]:-}" ]; then
      complain "nothing is shown of ${folder##*/}"
      wrong=1
    fi
  done
  return "$wrong"
}

# The check itself: a page that is right, and then one fault after the other.
self_test() {
  local tree page
  tree=$(mktemp -d)
  trap 'rm -rf "$tree"' RETURN
  mkdir -p "$tree/docs" "$tree/tests/scenario/page-one"
  printf 'first\nsecond\nthird\n' >"$tree/tests/scenario/page-one/a.txt"
  local right=$'`page-one/a.txt`:\n\n```sql\nsecond\nthird\n```\n'
  printf '%s' "$right" >"$tree/docs/patch-tables.md"
  check_page "$tree"
  for page in "${right/third/Third}" "${right/second/econd}" "${right/third/thi}" "${right/a.txt/b.txt}" \
    "${right/second/first}" "${right/:/}" "${right/$'\n```\n'/$'\n'}" "${right#*:}" \
    "${right/$'second\nthird\n'/}" 'no block' "$right"$'\n```\nsecond\n```\n'; do
    printf '%s' "$page" >"$tree/docs/patch-tables.md"
    if check_page "$tree" >/dev/null; then
      printf 'Not refused:\n%s\n' "$page"
      return 1
    fi
  done
  printf '%s' "$right" >"$tree/docs/patch-tables.md"
  mkdir "$tree/tests/scenario/page-two"
  if check_page "$tree" >/dev/null; then
    printf 'Not refused: a folder that is not shown\n'
    return 1
  fi
}

if [ "$1" = --self-test ]; then self_test; else check_page "$1"; fi
