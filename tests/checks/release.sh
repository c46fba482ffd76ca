#!/usr/bin/env bash
# Makes a release of the sources as they are now, in two folders, and looks at what came out: equal
# bytes, the program that the tests ran, true lists, symbols that name lines, and no path of the
# machine that built it.
# usage: release.sh SOURCE_FOLDER BUILT_PROGRAM
set -euo pipefail

# A hook of git's hands its own repository on, in which nothing may be done here.
while read -r variable; do unset "$variable"; done < <(git rev-parse --local-env-vars)
source_folder=$(realpath "$1")
program=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  printf '%s\n' "$1"
  exit 1
}

# A repository of one commit, which has the same name wherever it is made.
make_tree() {
  local folder=$1
  mkdir -p "$folder"
  (cd "$source_folder" && git ls-files -z --cached --others --exclude-standard |
    while IFS= read -r -d '' file; do [ ! -e "$file" ] || printf '%s\0' "$file"; done |
    tar --null -T - -cf -) | tar -C "$folder" -xf -
  git -C "$folder" init -q
  git -C "$folder" add -A
  GIT_AUTHOR_DATE='2026-01-02T03:04:05Z' GIT_COMMITTER_DATE='2026-01-02T03:04:05Z' \
    git -C "$folder" -c user.name=release -c user.email=release@localhost \
    -c commit.gpgsign=false commit -qm 'As it is'
}

release_in() {
  "$1/scripts/release" >"$work/release.log" 2>&1 || { cat "$work/release.log"; exit 1; }
}

# Two places whose names have different lengths, and two zones of time.
first=$work/one
second=$work/another/place/altogether
make_tree "$first"
make_tree "$second"
TZ=Asia/Tokyo release_in "$first"
TZ=America/New_York release_in "$second"

zips=("$first"/build/release/*.zip)
zip=${zips[0]}
name=$(basename "$zip" .zip)
cmp "$zip" "$second/build/release/$name.zip" || fail 'Two releases of one commit differ.'
(cd "$first/build/release" && sha256sum --quiet --check "$name.zip.sha256") ||
  fail 'The checksum beside the zip is not that of the zip.'

mkdir "$work/unpacked"
(cd "$work/unpacked" && python3 -m zipfile --extract "$zip" .)
cd "$work/unpacked/$name"
cmp "$program" KestrelforgeLauncher.exe || fail 'The program in the zip is not the one of the tests.'

for file in KestrelforgeLauncher.exe KestrelforgeLauncher.debug README.md docs/operating.md \
  docs/patch-tables.md docs/proof.md KestrelforgeLauncher.spdx.json SHA256SUMS licences/*.txt; do
  [ -s "$file" ] || fail "The zip has no $file."
done
sha256sum --quiet --check SHA256SUMS || fail 'SHA256SUMS is not true.'
[ "$(wc -l <SHA256SUMS)" -eq $(($(find . -type f | wc -l) - 1)) ] ||
  fail 'SHA256SUMS leaves something out.'

# The list names each other file with its checksums, and each library that is linked in.
python3 - "$name" <<'LIST' || fail 'The list of contents is not true.'
import hashlib, json, os, sys
with open("KestrelforgeLauncher.spdx.json", encoding="utf-8") as file:
    listed = json.load(file)
assert listed["spdxVersion"] == "SPDX-2.3" and listed["name"] == sys.argv[1]
assert listed["creationInfo"]["created"] == "2026-01-02T03:04:05Z"
present = {os.path.join(parent, name) for parent, _, names in os.walk(".") for name in names}
entries = {entry["fileName"]: entry for entry in listed["files"]}
assert set(entries) == present - {"./KestrelforgeLauncher.spdx.json", "./SHA256SUMS"}, set(entries) ^ present
sums = []
for name, entry in entries.items():
    with open(name, "rb") as file:
        content = file.read()
    by_kind = {sum["algorithm"]: sum["checksumValue"] for sum in entry["checksums"]}
    assert by_kind["SHA1"] == hashlib.sha1(content).hexdigest(), name
    assert by_kind["SHA256"] == hashlib.sha256(content).hexdigest(), name
    sums.append(by_kind["SHA1"])
release, *others = listed["packages"]
tools = [package for package in others if package["SPDXID"].startswith("SPDXRef-Tool-")]
libraries = [package for package in others if package not in tools]
assert tools and all(tool["versionInfo"] for tool in tools), tools
code = hashlib.sha1("".join(sorted(sums)).encode()).hexdigest()
assert release["packageVerificationCode"]["packageVerificationCodeValue"] == code
linked = " ".join(library["comment"] for library in libraries)
for archive in ("libstdc++.a", "libgcc.a", "libmingw32.a", "libmsvcrt.a"):
    assert archive in linked, archive
for library in libraries:
    assert library["versionInfo"] and os.path.exists(f"licences/{library['name']}.txt"), library
identifiers = [item["SPDXID"] for item in listed["files"] + listed["packages"]]
assert len(identifiers) == len(set(identifiers))
for relation in listed["relationships"]:
    assert relation["relatedSpdxElement"] in identifiers, relation
LIST

# The program finds its symbols by the checksum of their file, and they know each line.
x86_64-w64-mingw32-objdump -s -j .gnu_debuglink KestrelforgeLauncher.exe | grep -q 'Kestr' ||
  fail 'The program does not name its symbols.'
[ -z "$(x86_64-w64-mingw32-nm KestrelforgeLauncher.exe 2>/dev/null)" ] ||
  fail 'The program still has symbols of its own.'
address=$(x86_64-w64-mingw32-nm -C KestrelforgeLauncher.debug | sed -n 's/ T LauncherMain(.*//p')
[ -n "$address" ] || fail 'The symbols do not have LauncherMain.'
line=$(x86_64-w64-mingw32-addr2line -e KestrelforgeLauncher.debug "0x$address")
case $line in
  *launcher/LauncherMain.cpp:[1-9]*) ;;
  *) fail "The symbols take LauncherMain for $line." ;;
esac
for file in KestrelforgeLauncher.exe KestrelforgeLauncher.debug; do
  ! LC_ALL=C grep -aFl -e "$work" -e "$source_folder" "$file" ||
    fail "$file names a folder of the machine that built it."
done

# What no commit holds is no release.
must_refuse() {
  ! "$1/scripts/release" >"$work/release.log" 2>&1 || fail "$2 was released."
  grep -qF "$3" "$work/release.log" || fail "It is not said that $3 is the reason."
}
printf '\n' >>"$first/README.md"
must_refuse "$first" 'A changed tree' README.md
printf '\n' >"$second/docs/more.md"
must_refuse "$second" 'A tree with a file that no commit holds' docs/more.md
rm -rf "$second/.git"
must_refuse "$second" 'A tree of no repository' 'not a git repository'

printf 'Two releases are equal: %s bytes, SHA-256 %s\n' "$(stat -c %s "$zip")" \
  "$(sha256sum <"$zip" | cut -d' ' -f1)"
