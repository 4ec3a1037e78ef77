#!/usr/bin/env python3
"""Tests the bundle that build_twice.py has built. Reads its inputs from the environment:

WORK (build_twice.py's), DRIVER (tiny_driver), PROVIDER (the tiny platform), DOCS (the docs directory).
"""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

WORK = pathlib.Path(os.environ["WORK"])
BUNDLE = WORK / "one/build/src/libii_ascii_util.so"
TWIN = WORK / "another/place/build/src/libii_ascii_util.so"
PLATFORM = re.compile(r"NS_BUNDLEMGR1|NS_LOG_SERVICE1|NSTE_util|KelpGlobalUtils|^sprintf_s$")


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def symbols(library, kind):
    """Name and demangled name of every dynamic symbol: kind is --undefined-only or --defined-only."""
    names = [line.split()[-1].split("@")[0] for line in run("nm", "-D", kind, str(library)).splitlines()]
    readable = run("c++filt", input="\n".join(names)).splitlines()
    return dict(zip(names, readable))


def needed(library):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "--dynamic", "--wide", str(library)))


def resolved(library):
    """The path of every library that the dynamic linker would load for this one, by its name."""
    return dict(re.findall(r"^\s*(\S+) => (\S+)", run("ldd", str(library)), re.MULTILINE))


class OtherProvider(unittest.TestCase):
    def test_bundle_needs_no_library_of_the_host(self):
        self.assertIn(pathlib.Path(os.environ["PROVIDER"]).name, needed(BUNDLE))
        self.assertEqual([name for name in resolved(BUNDLE) if "bundle_host" in name], [])

    def test_every_imported_symbol_is_the_provider_s_or_a_system_library_s(self):
        provided = set()
        for path in resolved(BUNDLE).values():
            provided |= set(symbols(path, "--defined-only"))
        # Weak symbols belong to the tool chain and may be missing.
        strong = [line.split()[-1].split("@")[0]
                  for line in run("nm", "-D", "--undefined-only", str(BUNDLE)).splitlines() if " U " in line]
        self.assertGreater(len(strong), 20)
        self.assertEqual([name for name in strong if name not in provided], [])

    def test_bundle_runs_on_the_tiny_platform(self):
        with tempfile.TemporaryDirectory() as directory:
            place = pathlib.Path(directory) / "ii_asciiagent_bundle"
            place.mkdir()
            (place / "AlarmConfig.csv").write_text("LINK/TRUNK\tDOWN\ttrunk\t7\t42\n")
            output = run(os.environ["DRIVER"], str(BUNDLE), env={**os.environ, "TINY_CONFIG_DIR": directory})
        self.assertEqual(output.splitlines(), [
            "init 0",
            "GetAlmCfgValue 0 42",
            "ToUpper ABC-XY9",
            "GetKeyValue 2",
            "GetTimeStamp 19 characters",
            "IsTransQueltEnabled 1",
            "WriteDbgLog 0",
            "fini 0",
            "withdrawn 1",
        ])

    def test_bundle_without_a_configuration_directory_says_so_at_init(self):
        environment = {name: value for name, value in os.environ.items() if name != "TINY_CONFIG_DIR"}
        output = run(os.environ["DRIVER"], str(BUNDLE), env=environment)
        self.assertEqual(output.splitlines()[:2], ["init -1", "GetAlmCfgValue 0 0"])


class Documentation(unittest.TestCase):
    def test_platform_page_lists_exactly_the_imported_platform_symbols(self):
        imported = {readable for readable in symbols(BUNDLE, "--undefined-only").values() if PLATFORM.search(readable)}
        page = (pathlib.Path(os.environ["DOCS"]) / "platform.md").read_text()
        section = page.split("## What is imported")[1].split("\n## ")[0]
        listed = re.findall(r"^\| `([^`]+)` \|", section, re.MULTILINE)
        self.assertEqual(len(listed), len(set(listed)), "a symbol is listed twice")
        shortened = {re.sub(r"std::__cxx11::basic_string<.*?> >", "std::string", name).replace("[abi:cxx11]", "")
                     for name in imported}
        self.assertEqual(sorted(listed), sorted(shortened))


class Reproducible(unittest.TestCase):
    def test_builds_in_two_directories_give_the_same_file(self):
        self.assertEqual(BUNDLE.read_bytes(), TWIN.read_bytes())

    def test_bundle_does_not_name_the_directory_it_was_built_in(self):
        self.assertNotIn(str(WORK).encode(), BUNDLE.read_bytes())


if __name__ == "__main__":
    unittest.main()
