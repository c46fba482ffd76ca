#!/usr/bin/env bash
# Fails when the native build reaches a wide function of glibc, whose characters have 32 bits: the
# linked program may need none, and what the archives need must be on the list of wrapped names.
# usage: wide_runtime.sh WRAPPED_NAMES PROGRAM ARCHIVE...
#        wide_runtime.sh --self-test WRAPPED_NAMES COMPILER
# WRAPPED_NAMES is one argument, with commas between the names.
set -euo pipefail

family='^_*(isoc[0-9]+_)?(wc|wmem|isw|tow|mbs?n?r?towc|btowc|fwide|open_wmemstream)'
family+='|(get|put)w(c|s|char)(_unlocked)?$|w(printf|scanf)(_chk)?$'
classes='(basic_string|char_traits|stream|streambuf|basic_ios|ctype)Iw'

undefined_names() {
  nm "$@" --undefined-only 2>/dev/null | awk 'NF { sub(/@.*/, "", $NF); print $NF }' | sort -u
}

# The wide functions of the C library that the program runs with.
wide_names() {
  local libc name
  libc=$(ldd "$1" | awk '$1 == "libc.so.6" { print $3 }')
  nm -D --defined-only "$libc" | awk '{ sub(/@.*/, "", $NF); print $NF }' | grep -E "$family" |
    sort -u >"$work/wide"
  for name in wcslen wcsstr wmemcpy iswdigit towlower vswprintf swscanf mbstowcs fgetwc fputws; do
    grep -qx "$name" "$work/wide" || { echo "$libc is not read rightly: no $name"; return 1; }
  done
}

check_program() {
  undefined_names -D "$1" >"$work/needed"
  [ -s "$work/needed" ] || { echo "$1 needs nothing of any library: it isn't read rightly"; return 1; }
  if comm -12 "$work/needed" "$work/wide" | grep .; then
    echo "are functions of the C library with 32-bit characters, and $1 calls them"
    return 1
  fi
}

check_archive() {
  undefined_names "$1" >"$work/needed"
  [ -s "$work/needed" ] || { echo "$1 needs nothing: it isn't read rightly"; return 1; }
  if comm -12 "$work/needed" "$work/wide" | comm -23 - "$work/wrapped" | grep .; then
    echo "are called in $1 and not wrapped"
    return 1
  fi
  if grep -E "$classes" "$work/needed"; then
    echo "are of the C++ library, with 32-bit characters, and $1 needs them"
    return 1
  fi
}

# Builds a program and an archive whose one function is the text given.
build_sample() {
  printf '#include <sstream>\n#include <wchar.h>\n%s\nint main() { return f(L"a"); }\n' "$1" \
    >"$work/sample.cpp"
  "$compiler" -std=c++20 -fshort-wchar -O0 -c "$work/sample.cpp" -o "$work/sample.o"
  rm -f "$work/sample.a"
  ar rc "$work/sample.a" "$work/sample.o"
  "$compiler" "$work/sample.o" -o "$work/sample"
}

expect_refused() {
  if "$@" >/dev/null; then
    echo "Not refused: $*"
    return 1
  fi
}

self_test() {
  compiler=$1
  build_sample 'int f(const wchar_t*) { return getenv("A") != nullptr; }'
  wide_names "$work/sample"
  check_program "$work/sample"
  check_archive "$work/sample.a"
  build_sample 'int f(const wchar_t* t) { return static_cast<int>(wcstod(t, nullptr)); }'
  expect_refused check_program "$work/sample"
  expect_refused check_archive "$work/sample.a"
  build_sample 'int f(const wchar_t* t) { return static_cast<int>(wcslen(t)); }'
  expect_refused check_program "$work/sample"
  check_archive "$work/sample.a"
  build_sample 'int f(const wchar_t* t) { return (std::wostringstream() << t).good(); }'
  expect_refused check_archive "$work/sample.a"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if [ "$1" = --self-test ]; then
  tr ',' '\n' <<<"$2" | sort -u >"$work/wrapped"
  self_test "$3"
else
  tr ',' '\n' <<<"$1" | sort -u >"$work/wrapped"
  wide_names "$2"
  check_program "$2"
  for archive in "${@:3}"; do
    check_archive "$archive"
  done
fi
