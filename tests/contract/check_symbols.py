#!/usr/bin/env python3
"""Compares what a built libii_ascii_util.so exports and imports with the lists beside this script.

usage: check_symbols.py exports|imports|unique|needed LIBRARY [--ace LIBACE] [--platform NAME]

exports  the exported names are exactly those of exports.txt, so no type information is among them
imports  platform symbols are exactly those of platform_symbols.txt; every other import comes from ACE or from
         the C and C++ runtime, and none is one of forbidden_symbols.txt
unique   no symbol has unique binding, which would keep the library mapped for ever
needed   the libraries asked for are the platform, ACE and the runtime
"""

import argparse
import pathlib
import re
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
RUNTIME_VERSION = re.compile(r"@(GLIBC|GLIBCXX|CXXABI|GCC)_")
RUNTIME_LIBRARY = re.compile(r"^(libstdc\+\+|libm|libgcc_s|libc|ld-linux[-\w]*)\.so(\.\d+)*$")
# Weak references of the compiler's start-up files in every shared library; they may be absent at run time.
START_UP = {"__gmon_start__", "_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable"}


def listed(name):
    lines = (HERE / name).read_text(encoding="ascii").splitlines()
    return {line for line in lines if line and not line.startswith("#")}


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def symbols(library, *options):
    """(type, name with its version) of every dynamic symbol that nm lists."""
    for line in run("nm", "-D", *options, str(library)).splitlines():
        *_, kind, name = line.split()
        yield kind, name


def bare(name):
    return name.split("@")[0]


def demangled(names):
    return run("c++filt", "--", *sorted(names)).splitlines() if names else []


def complain(text, names):
    for name in demangled(names):
        print(f"{text}: {name}")
    return bool(names)


def check_exports(args):
    exported = {bare(name) for _, name in symbols(args.library, "--defined-only")}
    wanted = listed("exports.txt")
    return any([
        complain("exported, but not in exports.txt", exported - wanted),
        complain("in exports.txt, but not exported", wanted - exported),
    ])


def check_imports(args):
    imports = {name for kind, name in symbols(args.library, "--undefined-only")}
    from_ace = {bare(name) for _, name in symbols(args.ace, "--defined-only")}
    platform = listed("platform_symbols.txt")
    plain = {name for name in imports if not RUNTIME_VERSION.search(name)} - START_UP
    taken = plain - from_ace
    return any([
        complain("imported, but neither ACE's nor in platform_symbols.txt", taken - platform),
        complain("in platform_symbols.txt, but not imported", platform - taken),
        complain("imported, but forbidden", {bare(name) for name in imports} & listed("forbidden_symbols.txt")),
    ])


def check_unique(args):
    table = run("readelf", "--wide", "--syms", "--dyn-syms", str(args.library))
    return complain("unique binding", {line.split()[-1] for line in table.splitlines() if " UNIQUE " in line})


def check_needed(args):
    needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "--dynamic", str(args.library))))
    wanted = {args.platform, run("readelf", "--dynamic", str(args.ace)).split("soname: [")[1].split("]")[0]}
    return any([
        complain("asks for", {name for name in needed - wanted if not RUNTIME_LIBRARY.match(name)}),
        complain("does not ask for", wanted - needed),
    ])


def main():
    checks = {"exports": check_exports, "imports": check_imports, "unique": check_unique, "needed": check_needed}
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("check", choices=checks)
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("--ace", type=pathlib.Path, help="libACE.so, for imports and needed")
    parser.add_argument("--platform", help="soname of the platform's library, for needed")
    args = parser.parse_args()
    failed = checks[args.check](args)
    if failed:
        print(f"check_symbols.py: the {args.check} of {args.library.name} changed. Callers and the platform are built "
              "against them: undo the change, or, if it was meant, change the list beside this script with it.")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
