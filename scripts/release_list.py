#!/usr/bin/env python3
"""What a release contains, as an SPDX 2.3 document on standard output.

usage: release_list.py --packages MAP
       release_list.py --name NAME --version VERSION --commit HASH --time SECONDS --map MAP FOLDER

MAP is the linker's map of the program. The first form prints the Debian packages whose static
libraries are part of the program, one on a line. Nothing in the document depends on the time of day
or on the place of the folder.
"""
import argparse
import hashlib
import json
import os
import re
import subprocess
import sys
from datetime import datetime, timezone

# Terms of the libraries that a compiler links into each program, by Debian package. Their texts are
# part of the release. The runtime's files have various ones, which only the text tells apart.
LICENCES = {
    "g++-mingw-w64-x86-64-posix": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "gcc-mingw-w64-x86-64-posix": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "mingw-w64-x86-64-dev": "NOASSERTION",
}

# The other packages on which the bytes of the release depend.
TOOLS = ["binutils-mingw-w64-x86-64", "cmake", "zip"]


def fail(text):
    sys.exit(f"release_list.py: {text}")


def linked_archives(map_file):
    """Paths of the static libraries outside the build folder that gave code to the program."""
    with open(map_file, encoding="utf-8") as lines:
        text = lines.read()
    # This first part names each member that was taken, at the beginning of a line.
    taken = text.partition("Archive member included")[2].partition("Discarded input sections")[0]
    paths = {os.path.realpath(path) for path in re.findall(r"^(/\S+\.a)\(", taken, re.MULTILINE)}
    return sorted(path for path in paths if path.startswith("/usr/"))


def package_of(path):
    answer = subprocess.run(["dpkg-query", "--search", path], capture_output=True, text=True)
    if answer.returncode != 0:
        fail(f"no package has {path}")
    return answer.stdout.partition(":")[0]


def packages(map_file):
    """Package name -> its static libraries in the program."""
    found = {}
    for path in linked_archives(map_file):
        found.setdefault(package_of(path), []).append(os.path.basename(path))
    if not found:
        fail(f"{map_file} names no library of the compiler")
    for name in found:
        if name not in LICENCES:
            fail(f"the terms of {name} aren't known; {', '.join(found[name])} is linked from it")
    return dict(sorted(found.items()))


def debian_version(package):
    query = ["dpkg-query", "--show", "--showformat=${Version}", package]
    return subprocess.run(query, capture_output=True, text=True, check=True).stdout


def digest(path, algorithm):
    with open(path, "rb") as file:
        return hashlib.file_digest(file, algorithm).hexdigest()


def file_entries(folder):
    """One entry for each file below the folder, sorted by name."""
    names = []
    for parent, _, files in os.walk(folder):
        names += [os.path.relpath(os.path.join(parent, file), folder) for file in files]
    entries = []
    for number, name in enumerate(sorted(names), start=1):
        path = os.path.join(folder, name)
        entries.append({
            "SPDXID": f"SPDXRef-File-{number}",
            "fileName": f"./{name}",
            "fileTypes": ["BINARY" if name.endswith((".exe", ".debug")) else "DOCUMENTATION"],
            "checksums": [
                {"algorithm": "SHA1", "checksumValue": digest(path, "sha1")},
                {"algorithm": "SHA256", "checksumValue": digest(path, "sha256")},
            ],
            "licenseConcluded": "NOASSERTION",
            "licenseInfoInFiles": ["NOASSERTION"],
            "copyrightText": "NOASSERTION",
        })
    return entries


def verification_code(entries):
    sums = sorted(entry["checksums"][0]["checksumValue"] for entry in entries)
    return hashlib.sha1("".join(sums).encode()).hexdigest()


def library_packages(map_file):
    return [{
        "SPDXID": "SPDXRef-Library-" + name.replace("+", "plus"),
        "name": name,
        "versionInfo": debian_version(name),
        "supplier": "Organization: Debian",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "comment": "Linked into the executable: " + ", ".join(libraries),
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": LICENCES[name],
        "copyrightText": f"see licences/{name}.txt",
    } for name, libraries in packages(map_file).items()]


def tool_packages():
    return [{
        "SPDXID": "SPDXRef-Tool-" + name,
        "name": name,
        "versionInfo": debian_version(name),
        "supplier": "Organization: Debian",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": "NOASSERTION",
        "copyrightText": "NOASSERTION",
    } for name in TOOLS]


def relation(source, kind, target):
    return {"spdxElementId": source, "relationshipType": kind, "relatedSpdxElement": target}


def document(options):
    entries = file_entries(options.folder)
    libraries = library_packages(options.map)
    tools = tool_packages()
    code = verification_code(entries)
    program = next((entry for entry in entries if entry["fileName"].endswith(".exe")), None)
    if program is None:
        fail(f"{options.folder} holds no executable")
    release = {
        "SPDXID": "SPDXRef-Release",
        "name": "KestrelforgeLauncher",
        "versionInfo": options.version,
        "packageFileName": options.name + ".zip",
        "sourceInfo": f"git commit {options.commit}",
        "supplier": "Organization: Kestrelforge",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": True,
        "packageVerificationCode": {
            "packageVerificationCodeValue": code,
            "packageVerificationCodeExcludedFiles": ["./KestrelforgeLauncher.spdx.json",
                                                     "./SHA256SUMS"],
        },
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": "NOASSERTION",
        "licenseInfoFromFiles": ["NOASSERTION"],
        "copyrightText": "NOASSERTION",
    }
    created = datetime.fromtimestamp(options.time, timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": options.name,
        "documentNamespace": f"urn:kestrelforge:{options.name}:{options.commit}:{code}",
        "creationInfo": {"created": created,
                         "creators": [f"Tool: release_list.py-{options.version}"]},
        "packages": [release] + libraries + tools,
        "files": entries,
        "relationships":
            [relation("SPDXRef-DOCUMENT", "DESCRIBES", "SPDXRef-Release")]
            + [relation("SPDXRef-Release", "CONTAINS", entry["SPDXID"]) for entry in entries]
            + [relation(program["SPDXID"], "STATIC_LINK", library["SPDXID"])
               for library in libraries]
            + [relation(tool["SPDXID"], "BUILD_TOOL_OF", "SPDXRef-Release") for tool in tools],
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--packages", metavar="MAP")
    parser.add_argument("--name")
    parser.add_argument("--version")
    parser.add_argument("--commit")
    parser.add_argument("--time", type=int)
    parser.add_argument("--map")
    parser.add_argument("folder", nargs="?")
    options = parser.parse_args()
    if options.packages:
        print("\n".join(packages(options.packages)))
        return
    if None in (options.name, options.version, options.commit, options.time, options.map,
                options.folder):
        parser.error("the name, version, commit, time, map and folder are all needed")
    json.dump(document(options), sys.stdout, indent=2, ensure_ascii=False)
    print()


main()
