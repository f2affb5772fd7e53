#!/usr/bin/env python3
"""Writes what is inside a package as SPDX 2.3, in JSON.

    sbom.py VERSION debian|windows|source NAME FOLDER

Every file below FOLDER with its sums, and what of others is built into the programs or needed by
them, in the versions that this machine has.
"""
import datetime
import hashlib
import json
import os
import re
import subprocess
import sys
import uuid
from pathlib import Path

MIT, GCC = "MIT", "GPL-3.0-or-later WITH GCC-exception-3.1"
# name, Debian package that it comes from, licence, relationship of our program to it
TOOL = [("CLI11", "libcli11-dev", "BSD-3-Clause", "STATIC_LINK"),
        ("nlohmann-json", "nlohmann-json3-dev", MIT, "STATIC_LINK")]
LINUX = [("libstdc++", "libstdc++-12-dev", GCC, "STATIC_LINK"), ("libgcc", "libgcc-12-dev", GCC, "STATIC_LINK")]
SHARED = {"liblcms2-2": MIT, "libtiff6": "libtiff", "libstdc++6": GCC, "libgcc-s1": GCC,
          "libc6": "LGPL-2.1-or-later", "libjpeg62-turbo": "IJG AND BSD-3-Clause", "libpng16-16": "libpng-2.0"}
WINDOWS = [("libstdc++ for mingw-w64", "g++-mingw-w64-x86-64-posix", GCC, "STATIC_LINK"),
           ("mingw-w64 runtime and winpthreads", "mingw-w64-x86-64-dev", "ZPL-2.1 AND MIT", "STATIC_LINK")]
PYTHON = [("NumPy", "python3-numpy", "BSD-3-Clause", "RUNTIME_DEPENDENCY_OF")]
PARTS = {"libkolink1": LINUX, "libkolink-dev": [], "kolink": TOOL, "python3-kolink": PYTHON}


def version_of(package):
    said = subprocess.run(["dpkg-query", "-W", "-f", "${Version}\\n", package], capture_output=True, text=True)
    return said.stdout.split("\n")[0] or None  # one line an architecture


def needed_by(folder):
    """The shared libraries that the programs are linked to, by the packages that have them."""
    wanted, packages = set(), set()
    for path in Path(folder).rglob("*"):
        if path.is_file() and not path.is_symlink() and path.read_bytes()[:4] == b"\x7fELF":
            said = subprocess.run(["readelf", "-d", path], capture_output=True, text=True, check=True).stdout
            wanted |= set(re.findall(r"NEEDED.*\[(.*)\]", said))
    for name in wanted:
        said = subprocess.run(["dpkg-query", "-S", f"*/{name}"], capture_output=True, text=True).stdout
        owners = re.findall(r"^([a-z0-9.+-]+):amd64:", said, re.MULTILINE) or re.findall(r"^([a-z0-9.+-]+):", said, re.MULTILINE)
        if not owners:
            raise SystemExit(f"sbom.py: no package has {name}")
        packages.add(owners[0])
    return [(package, package, SHARED.get(package, "NOASSERTION"), "DYNAMIC_LINK") for package in sorted(packages)]


def identifier(text):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", text)


def entry(name, version, licence, package=None):
    made = {"SPDXID": identifier("Package-" + name), "name": name, "downloadLocation": "NOASSERTION",
            "filesAnalyzed": False, "licenseConcluded": licence, "licenseDeclared": licence,
            "copyrightText": "NOASSERTION"}
    if version:
        made["versionInfo"] = version
    if package:
        made["sourceInfo"] = f"the Debian package {package}"
    return made


def main():
    version, kind, name, folder = sys.argv[1:]
    files, sums = [], []
    for number, path in enumerate(sorted(path for path in Path(folder).rglob("*")
                                         if path.is_file() and not path.is_symlink())):
        data = path.read_bytes()
        sha1 = hashlib.sha1(data).hexdigest()
        sums.append(sha1)
        files.append({"SPDXID": f"SPDXRef-File-{number}", "fileName": "./" + str(path.relative_to(folder)),
                      "checksums": [{"algorithm": "SHA1", "checksumValue": sha1},
                                    {"algorithm": "SHA256", "checksumValue": hashlib.sha256(data).hexdigest()}],
                      "licenseConcluded": "MIT", "licenseInfoInFiles": ["NOASSERTION"],
                      "copyrightText": "NOASSERTION"})
    own = entry(name, version, MIT)
    own["filesAnalyzed"] = True
    own["licenseInfoFromFiles"] = ["NOASSERTION"]
    own["copyrightText"] = "Copyright (c) 2026 The KoLink authors"
    own["supplier"] = "Organization: The KoLink authors"
    code = hashlib.sha1("".join(sorted(sums)).encode()).hexdigest()
    own["packageVerificationCode"] = {"packageVerificationCodeValue": code}
    relationships = [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                      "relatedSpdxElement": own["SPDXID"]}]
    relationships += [{"spdxElementId": own["SPDXID"], "relationshipType": "CONTAINS",
                       "relatedSpdxElement": file["SPDXID"]} for file in files]
    others = []
    parts = PARTS[name] + needed_by(folder) if kind == "debian" else TOOL + WINDOWS if kind == "windows" else []
    for part, package, licence, relation in parts:
        other = entry(part, version_of(package), licence, package)
        others.append(other)
        pair = (own["SPDXID"], other["SPDXID"])
        if relation.endswith("_OF"):
            pair = pair[::-1]
        relationships.append({"spdxElementId": pair[0], "relationshipType": relation, "relatedSpdxElement": pair[1]})
    stamp = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
    space = uuid.uuid5(uuid.NAMESPACE_URL, f"{name}-{version}-{kind}-{code}")
    document = {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
                "name": f"{name}-{version}", "documentNamespace": f"urn:uuid:{space}",
                "creationInfo": {"created": stamp.strftime("%Y-%m-%dT%H:%M:%SZ"),
                                 "creators": [f"Tool: kolink-package-{version}"]},
                "packages": [own] + others, "files": files, "relationships": relationships}
    json.dump(document, sys.stdout, indent=1)
    print()


main()
