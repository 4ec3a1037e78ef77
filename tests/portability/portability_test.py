#!/usr/bin/env python3
"""Holds sources and built files to what every target of the project needs: portability_test.py [TEST]. LIBRARIES in the
environment is a list of our libraries, separated by ":".
"""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
LIBRARIES = os.environ["LIBRARIES"].split(":")


class CLibrary(unittest.TestCase):
    """The headers of newer C libraries redirect these functions to ones that accept "0b"."""

    def test_no_source_calls_a_function_that_headers_redirect(self):
        call = re.compile(r"\b((?:strto|wcsto)(?:l|ll|ul|ull|q|uq|imax|umax)(?:_l)?|v?[fs]?w?scanf|sto(?:i|l|ll|ul|ull))\s*\(")
        for folder in ["src", "host", "tools", "examples", "include", "framework"]:
            for path in (PROJECT / folder).rglob("*"):
                if path.suffix in (".h", ".cpp"):
                    self.assertEqual(call.findall(path.read_text()), [], f"{path}: call c_strtol or std::from_chars")

    def test_no_library_imports_a_redirected_function(self):
        for library in LIBRARIES:
            imports = subprocess.run(["nm", "-D", "--undefined-only", library], text=True, stdout=subprocess.PIPE,
                                     check=True).stdout
            self.assertEqual(re.findall(r"__isoc\d+_\w+", imports), [], library)


class PackageNames(unittest.TestCase):
    def test_no_file_names_the_version_of_the_package_of_ace(self):
        """Its name carries the version, which differs between releases of Debian."""
        for folder in ["tests", "debian", "cmake", "scripts"]:
            for path in filter(pathlib.Path.is_file, (PROJECT / folder).rglob("*")):
                self.assertIsNone(re.search(rb"lib(?:ace|ACE)-\d", path.read_bytes()), path)


class SetupScript(unittest.TestCase):
    """scripts/setup.sh with a package manager of the test's own."""

    def install(self, group, installed, available=()):
        """The packages that setup.sh has apt-get install. `installed` has "status architecture" lines by package."""
        with tempfile.TemporaryDirectory() as directory:
            place = pathlib.Path(directory)

            def command(name, script):
                (place / name).write_text(f"#!/bin/sh\n{script}\n")
                (place / name).chmod(0o755)

            for package, lines in installed.items():
                (place / f"{package}.status").write_text(lines)
            command("dpkg", "echo amd64")
            command("dpkg-query", f'cat "{place}/$3.status"')
            command("apt-cache", f'case " {" ".join(available)} " in *" $2 "*) ;; *) exit 100 ;; esac')
            command("apt-get", f'[ "$1" = update ] || echo "$@" >"{place}/installed"')
            command("sudo", 'exec "$@"')
            subprocess.run([str(PROJECT / "scripts/setup.sh"), group], check=True, stdout=subprocess.DEVNULL,
                           env={"PATH": f"{place}:{os.environ['PATH']}"})
            done = place / "installed"
            return [word for word in done.read_text().split()[1:] if word[0] != "-"] if done.exists() else []

    def test_package_installed_for_two_architectures_is_installed(self):
        self.assertEqual(self.install("check", {"clang": "installed amd64\ninstalled arm64\n",
                                                "libclang-rt-dev": "installed amd64\n"}), [])

    def test_package_installed_for_another_architecture_is_missing(self):
        self.assertEqual(self.install("coverage", {"gcovr": "installed arm64\n"}), ["gcovr"])

    def test_package_for_all_architectures_is_installed(self):
        self.assertEqual(self.install("coverage", {"gcovr": "installed all\n"}), [])

    def test_removed_package_is_missing(self):
        self.assertEqual(self.install("coverage", {"gcovr": "config-files all\n"}), ["gcovr"])

    def test_first_alternative_that_this_debian_has_is_taken(self):
        self.assertIn("libboost-url-dev", self.install("bench", {}, ["libboost-url-dev", "libboost-url1.81-dev"]))
        chosen = self.install("bench", {}, ["libboost-url1.81-dev"])
        self.assertIn("libboost-url1.81-dev", chosen)
        self.assertNotIn("libboost-url-dev", chosen)

    def test_no_package_of_the_groups_for_tests_has_a_version_in_its_name(self):
        """Such a package is in one Debian only; another one's tests would stop before they begin."""
        for group in ["build", "test", "check", "package"]:
            versioned = [name for name in self.install(group, {}) if re.search(r"-\d+(\.\d+)*(-|$)", name)]
            self.assertEqual(versioned, [], group)


if __name__ == "__main__":
    unittest.main()
