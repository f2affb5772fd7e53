#!/usr/bin/env python3
"""Holds lists of contents against what SPDX 2.3 asks for: every field that has to be there, the
form of each, identifiers that are unique and referred to, sums and the verification code.

    spdx.py FILE.spdx.json...
"""
import hashlib
import json
import re
import sys

RELATIONSHIPS = {"DESCRIBES", "CONTAINS", "STATIC_LINK", "DYNAMIC_LINK", "RUNTIME_DEPENDENCY_OF"}
IDENTIFIER = re.compile(r"SPDXRef-[A-Za-z0-9.-]+$")
LICENCES = {"MIT", "BSD-3-Clause", "GPL-3.0-or-later WITH GCC-exception-3.1", "LGPL-2.1-or-later",
            "libtiff", "IJG AND BSD-3-Clause", "libpng-2.0", "ZPL-2.1 AND MIT", "NOASSERTION"}
SUMS = {"SHA1": 40, "SHA256": 64}
faults = []


def judge(path):
    with open(path, encoding="utf-8") as file:
        document = json.load(file)

    def need(truth, what):
        if not truth:
            faults.append(f"{path}: {what}")

    need(document.get("spdxVersion") == "SPDX-2.3", "the version")
    need(document.get("dataLicense") == "CC0-1.0", "the licence of the data")
    need(document.get("SPDXID") == "SPDXRef-DOCUMENT", "the document's identifier")
    need(document.get("name"), "no name")
    need(re.match(r"[a-z][a-z0-9+.-]*:[^#\s]+$", document.get("documentNamespace", "")), "the namespace")
    creation = document.get("creationInfo", {})
    need(re.match(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$", creation.get("created", "")), "the time")
    need(creation.get("creators") and all(re.match(r"(Tool|Person|Organization): ", one)
                                          for one in creation["creators"]), "the creators")
    known = {"SPDXRef-DOCUMENT"}
    for element in document["packages"] + document["files"]:
        need(IDENTIFIER.match(element["SPDXID"]), f"{element['SPDXID']} is no identifier")
        need(element["SPDXID"] not in known, f"{element['SPDXID']} twice")
        known.add(element["SPDXID"])
        need(element["licenseConcluded"] in LICENCES, f"the licence of {element['SPDXID']}")
        need(element.get("copyrightText"), f"the copyright of {element['SPDXID']}")
    for package in document["packages"]:
        need(package.get("name") and package.get("downloadLocation"), f"{package['SPDXID']}: a field")
        need(package["SPDXID"] == document["packages"][0]["SPDXID"] or package.get("versionInfo"),
             f"{package['name']} without version")
    sums = []
    for file in document["files"]:
        need(file["fileName"].startswith("./"), f"{file['fileName']}: not relative")
        need({one["algorithm"] for one in file["checksums"]} == set(SUMS), f"{file['fileName']}: the sums")
        for one in file["checksums"]:
            need(re.match(r"[0-9a-f]{%d}$" % SUMS[one["algorithm"]], one["checksumValue"]), "a sum")
            if one["algorithm"] == "SHA1":
                sums.append(one["checksumValue"])
    need(sums, "no file at all")
    own = document["packages"][0]
    need(own["packageVerificationCode"]["packageVerificationCodeValue"] ==
         hashlib.sha1("".join(sorted(sums)).encode()).hexdigest(), "the verification code")
    contained = set()
    for relation in document["relationships"]:
        need(relation["relationshipType"] in RELATIONSHIPS, relation["relationshipType"])
        need({relation["spdxElementId"], relation["relatedSpdxElement"]} <= known, "a relation to nothing")
        if relation["relationshipType"] == "CONTAINS":
            contained.add(relation["relatedSpdxElement"])
    need(contained == {file["SPDXID"] for file in document["files"]}, "a file that nothing contains")
    need(any(one["relationshipType"] == "DESCRIBES" for one in document["relationships"]), "describes nothing")


for name in sys.argv[1:]:
    judge(name)
print("\n".join(faults))
sys.exit(1 if faults or len(sys.argv) < 2 else 0)
