#!/usr/bin/env python3
"""Writes a software bill of materials (CycloneDX 1.5, JSON) for built files, from the libraries that they are linked to.

  sbom.py --name NAME --version VERSION --output FILE [--compiled-in PACKAGE]... [--directory DIR]... BINARY...

Each BINARY becomes a component of NAME. The libraries that it needs are read from its dynamic section, and the libraries
that those need from theirs. Libraries are searched for in each DIR in order: the directories of the target, which may differ
from the build machine's. Their names, versions and architectures are those of the Debian packages that own them.
--compiled-in names packages of headers, which a built file does not show. The same input gives the same output.
"""
import argparse
import json
import pathlib
import re
import subprocess
import sys
import urllib.parse
import uuid


class Failure(Exception):
    """Why the bill cannot be made, in one line."""


def run(*command):
    done = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise Failure(f"{' '.join(command)}: {done.stderr.strip() or 'failed'}")
    return done.stdout


def needed(path):
    """The libraries that the file's dynamic section names, in its order."""
    return re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "--dynamic", "--wide", str(path)))


def owner(path):
    """The package that owns the file, with its architecture. The database may know the file by its path before or after
    a merged /usr."""
    for candidate in [path, f"/usr{path}", path.removeprefix("/usr"), str(pathlib.Path(path).resolve())]:
        done = subprocess.run(["dpkg-query", "--search", candidate], text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=False)
        if done.returncode == 0:
            return done.stdout.splitlines()[0].rsplit(": ", 1)[0].split(",")[0]
    raise Failure(f"{path} belongs to no package")


def package_component(package):
    lines = run("dpkg-query", "--show", "--showformat=${Package}\t${Version}\t${Architecture}\n", package).splitlines()
    name, version, architecture = lines[0].split("\t")
    purl = f"pkg:deb/debian/{urllib.parse.quote(name)}@{urllib.parse.quote(version)}?arch={architecture}"
    return {"type": "library", "bom-ref": purl, "name": name, "version": version, "purl": purl, "properties": []}


class Bill:
    def __init__(self, own, directories):
        self.own = own              # names of our files
        self.directories = directories
        self.components = {}        # package components by reference
        self.reference_of = {}      # package reference by library name
        self.depends = {}           # references by reference

    def package_of(self, library):
        """The reference of the package that a library is from. Adds the packages of the libraries that it needs."""
        if library in self.reference_of:
            return self.reference_of[library]
        path = self.find(library)
        reference = self.add_package(owner(path))
        self.reference_of[library] = reference
        self.components[reference]["properties"].append({"name": "linked:soname", "value": library})
        for name in needed(path):
            dependency = self.package_of(name)
            if dependency != reference:
                self.depends[reference].add(dependency)
        return reference

    def find(self, library):
        for directory in self.directories:
            path = pathlib.Path(directory) / library
            if path.is_file():
                return str(path)
        raise Failure(f"{library} is needed, but in none of {' '.join(self.directories)}")

    def add_package(self, package):
        component = package_component(package)
        reference = component["bom-ref"]
        if reference not in self.components:
            self.components[reference] = component
            self.depends[reference] = set()
        return reference

    def add_own(self, path, compiled_in):
        """One of our files. The packages in compiled_in are added to programs: only these contain header libraries."""
        reference = f"file:{path.name}"
        self.depends[reference] = {
            f"file:{name}" if name in self.own else self.package_of(name) for name in needed(path)}
        if not path.name.endswith(".so"):
            self.depends[reference] |= set(compiled_in)
        return {"type": "library" if path.name.endswith(".so") else "application", "bom-ref": reference, "name": path.name}


def bill_of_materials(options):
    binaries = [pathlib.Path(path) for path in options.binaries]
    bill = Bill({path.name for path in binaries}, options.directory)
    compiled_in = []
    for package in options.compiled_in:
        reference = bill.add_package(package)
        bill.components[reference]["properties"].append({"name": "linked:headers", "value": "compiled in"})
        compiled_in.append(reference)
    parts = [dict(bill.add_own(path, compiled_in), version=options.version) for path in binaries]

    root = f"{options.name}@{options.version}"
    bill.depends[root] = {part["bom-ref"] for part in parts}
    for component in bill.components.values():
        component["properties"].sort(key=lambda entry: (entry["name"], entry["value"]))
    document = {
        "$schema": "http://cyclonedx.org/schema/bom-1.5.schema.json",
        "bomFormat": "CycloneDX",
        "specVersion": "1.5",
        "version": 1,
        "metadata": {
            "component": {"type": "library", "bom-ref": root, "name": options.name, "version": options.version,
                          "components": parts},
        },
        "components": [bill.components[reference] for reference in sorted(bill.components)],
        "dependencies": [{"ref": reference, "dependsOn": sorted(bill.depends[reference])}
                         for reference in sorted(bill.depends)],
    }
    # A serial number that follows from the contents, so that equal bills are equal files.
    serial = uuid.uuid5(uuid.NAMESPACE_URL, json.dumps(document, sort_keys=True))
    document["serialNumber"] = f"urn:uuid:{serial}"
    return document


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--name", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--output", required=True)
    parser.add_argument("--compiled-in", action="append", default=[], metavar="PACKAGE")
    parser.add_argument("--directory", action="append", default=[], metavar="DIR")
    parser.add_argument("binaries", nargs="+", metavar="BINARY")
    options = parser.parse_args()
    try:
        document = bill_of_materials(options)
    except Failure as failure:
        print(f"sbom.py: {failure}", file=sys.stderr)
        return 1
    pathlib.Path(options.output).write_text(json.dumps(document, indent=2) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
