#!/usr/bin/python3
"""Prints the SPDX list of contents of a release. usage: spdx.py VERSION FOLDER"""
import datetime
import hashlib
import json
import os
import pathlib
import sys

# What is compiled into the files for Linux and Windows, and into the tool of the package.
COMPILED_IN = [("CLI11", "BSD-3-Clause"), ("nlohmann-json", "MIT"), ("osifont", "NOASSERTION")]

version, folder = sys.argv[1:]
created = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]),
                                          datetime.timezone.utc)


def identifier(name):
    return "SPDXRef-" + "".join(c if c.isalnum() else "-" for c in name)


def package(name, license_id, **more):
    return {"name": name, "SPDXID": identifier(name), "downloadLocation": "NOASSERTION",
            "licenseConcluded": license_id, "licenseDeclared": license_id,
            "copyrightText": "NOASSERTION", "filesAnalyzed": False, **more}


files = []
for path in sorted(pathlib.Path(folder).iterdir()):
    if path.suffix == ".json":
        continue
    data = path.read_bytes()
    files.append({
        "fileName": "./" + path.name, "SPDXID": identifier("file-" + path.name),
        "checksums": [{"algorithm": name, "checksumValue": hashlib.new(name, data).hexdigest()}
                      for name in ("SHA1", "SHA256")],
        "licenseConcluded": "NOASSERTION", "licenseInfoInFiles": ["NOASSERTION"],
        "copyrightText": "NOASSERTION"})

main = package("vek0", "NOASSERTION", versionInfo=version)
document = {
    "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
    "name": f"vek0-{version}",
    "documentNamespace": f"https://vek0core.example/spdx/vek0-{version}-"
                         + hashlib.sha256(json.dumps(files).encode()).hexdigest(),
    "creationInfo": {"created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
                     "creators": ["Organization: vek0core maintainers"]},
    "packages": [main] + [package(name, license_id) for name, license_id in COMPILED_IN],
    "files": files,
    "relationships":
        [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
          "relatedSpdxElement": main["SPDXID"]}]
        + [{"spdxElementId": main["SPDXID"], "relationshipType": "CONTAINS",
            "relatedSpdxElement": file["SPDXID"]} for file in files]
        + [{"spdxElementId": main["SPDXID"], "relationshipType": "DEPENDS_ON",
            "relatedSpdxElement": identifier(name)} for name, _ in COMPILED_IN]}
json.dump(document, sys.stdout, indent=1)
print()
