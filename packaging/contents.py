"""Lists what is linked with and compiled into programs, as an SPDX 2.3 document, and collects the notices to hand on.

    contents.py --name PACKAGE --version VERSION --licence EXPRESSION --terms FILE --output FILE --notices FOLDER PROGRAM...

The libraries are those that the built programs name themselves (NEEDED). The machine's package database says which
package each is from, licences.txt beside this script under which terms that is. The document changes only with its
contents, but for its date: SOURCE_DATE_EPOCH if that is set. A library or package that licences.txt does not know, or a
notice that is not on this machine, is an error. TERMS holds this product's own terms, which SPDX has no name for.
"""

import argparse
import fnmatch
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

LICENCES = Path(__file__).resolve().parent / "licences.txt"
OWN_TERMS = "LicenseRef-Zuvo"
UNKNOWN = "NOASSERTION"


class Fault(Exception):
    """With a message for whoever builds."""


@dataclass
class Row:
    kind: str
    package: str
    programs: set[str]
    terms: str


def read_rows(text: str) -> list[Row]:
    rows = []
    for line in text.splitlines():
        words = line.partition("#")[0].split()
        if not words:
            continue
        programs = set(words.pop(2).split(",")) if words[0] == "compiled" else set()
        rows.append(Row(words[0], words[1], programs, " ".join(words[2:])))
    return rows


def said_by(*command: str) -> str:
    return subprocess.run(command, capture_output=True, text=True, check=True, env=os.environ | {"LC_ALL": "C"}).stdout


# The programs and the packages of this machine.

def needed_libraries(program: Path) -> list[str]:
    return re.findall(r"\(NEEDED\).*\[(.+)\]", said_by("readelf", "-d", str(program)))


def library_paths(program: Path) -> dict[str, str]:
    return dict(re.findall(r"^\s*(\S+) => (/\S+)", said_by("ldd", str(program)), re.MULTILINE))


def package_of(path: str) -> str:
    resolved = str(Path(path).resolve())
    # The folders of the root are links into /usr, and a package may know its file by either name.
    for spelling in (path, resolved, resolved.removeprefix("/usr")):
        found = subprocess.run(["dpkg-query", "-S", spelling], capture_output=True, text=True, check=False).stdout
        for line in found.splitlines():
            if not line.startswith("diversion"):
                return line.partition(":")[0]
    raise Fault(f"{path} belongs to no package")


def version_of(package: str) -> str:
    return said_by("dpkg-query", "-W", "-f=${Version}\n", package).splitlines()[0]


def notice_of(package: str) -> Path:
    notice = Path("/usr/share/doc", package, "copyright")
    if not notice.is_file():
        raise Fault(f"{notice} is missing: its notice has to be handed on with the programs")
    return notice


def linked_packages(program: Path) -> dict[str, list[str]]:
    """The libraries that the program needs, by the package that they are from."""
    paths = library_paths(program)
    found: dict[str, list[str]] = {}
    for library in needed_libraries(program):
        if library not in paths:
            raise Fault(f"{program.name} needs {library}, which is not on this machine")
        found.setdefault(package_of(paths[library]), []).append(library)
    return found


def terms_of(package: str, rows: list[Row]) -> str:
    for row in rows:
        if row.kind == "linked" and fnmatch.fnmatch(package, row.package):
            return row.terms
    raise Fault(f"{package} is linked, but packaging/licences.txt does not know its terms")


# The document.

def identifier(kind: str, name: str) -> str:
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def own_package(program: str, version: str, terms: str) -> dict:
    return {"SPDXID": identifier("Program", program), "name": program, "versionInfo": version,
            "supplier": "Organization: Tarnwick", "downloadLocation": UNKNOWN, "filesAnalyzed": False,
            "licenseConcluded": terms, "licenseDeclared": terms, "copyrightText": "Copyright 2026 Tarnwick",
            "primaryPackagePurpose": "APPLICATION"}


def foreign_package(package: str, terms: str, what: str) -> dict:
    version = version_of(package)
    locator = f"pkg:deb/debian/{package.replace('+', '%2B')}@{version.replace('+', '%2B').replace(':', '%3A')}"
    return {"SPDXID": identifier("Package", package), "name": package, "versionInfo": version,
            "downloadLocation": UNKNOWN, "filesAnalyzed": False, "licenseConcluded": terms,
            "licenseDeclared": UNKNOWN, "copyrightText": UNKNOWN, "comment": what,
            "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                              "referenceLocator": locator}]}


def relationship(one: str, kind: str, other: str) -> dict:
    return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}


def contents_of(programs: list[Path], rows: list[Row], version: str, own_terms: str) -> tuple[dict, set[str]]:
    """Packages and relationships, and the names of the packages whose notices are to be handed on."""
    packages: dict[str, dict] = {}
    relationships = []
    compiled = set()
    libraries: dict[str, set[str]] = {}
    for program in programs:
        own = own_package(program.name, version, own_terms)
        packages[own["SPDXID"]] = own
        relationships.append(relationship("SPDXRef-DOCUMENT", "DESCRIBES", own["SPDXID"]))
        for package, names in linked_packages(program).items():
            libraries.setdefault(package, set()).update(names)
            relationships.append(relationship(own["SPDXID"], "DYNAMIC_LINK", identifier("Package", package)))
        for row in rows:
            if row.kind == "compiled" and program.name in row.programs:
                compiled.add(row.package)
                packages[identifier("Package", row.package)] = foreign_package(
                    row.package, row.terms, "Compiled in; its notice is beside this file in notices/" + row.package)
                relationships.append(relationship(own["SPDXID"], "CONTAINS", identifier("Package", row.package)))
    for package, names in libraries.items():
        packages[identifier("Package", package)] = foreign_package(
            package, terms_of(package, rows), "Libraries: " + ", ".join(sorted(names)))
    return {"packages": sorted(packages.values(), key=lambda entry: entry["SPDXID"]),
            "relationships": relationships}, compiled


def document(name: str, version: str, terms: str | None, contents: dict) -> dict:
    """`terms` is the text of our own terms where the programs are under them."""
    written = dict(contents)
    if terms is not None:
        written["hasExtractedLicensingInfos"] = [{"licenseId": OWN_TERMS, "name": "The terms of Zuvo Manager",
                                                  "extractedText": terms}]
    digest = hashlib.sha256(json.dumps(written, sort_keys=True).encode()).hexdigest()
    moment = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))
    return {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
            "name": f"{name}-{version}", "documentNamespace": f"https://zuvo.invalid/spdx/{name}-{version}-{digest}",
            "creationInfo": {"created": time.strftime("%Y-%m-%dT%H:%M:%SZ", moment),
                             "creators": ["Organization: Tarnwick", "Tool: packaging/contents.py"]}} | written


def main() -> int:
    parser = argparse.ArgumentParser()
    for option in ("name", "version", "licence"):
        parser.add_argument("--" + option, required=True)
    for option in ("terms", "output", "notices"):
        parser.add_argument("--" + option, required=True, type=Path)
    parser.add_argument("programs", nargs="+", type=Path)
    chosen = parser.parse_args()
    try:
        contents, compiled = contents_of(chosen.programs, read_rows(LICENCES.read_text()), chosen.version, chosen.licence)
        notices = {package: notice_of(package) for package in sorted(compiled)}
    except Fault as fault:
        print(f"contents.py: {fault}", file=sys.stderr)
        return 1
    shutil.rmtree(chosen.notices, ignore_errors=True)
    chosen.notices.mkdir(parents=True)
    for package, notice in notices.items():
        shutil.copyfile(notice, chosen.notices / package)
    terms = chosen.terms.read_text() if chosen.licence == OWN_TERMS else None
    made = document(chosen.name, chosen.version, terms, contents)
    chosen.output.write_text(json.dumps(made, indent=2, ensure_ascii=False) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
