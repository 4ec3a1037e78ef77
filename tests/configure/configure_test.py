#!/usr/bin/env python3
"""Configures the project where something is missing: the step must fail with one line that says what, and which Debian
package brings it. PROJECT and CXX come from the environment.
"""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

PROJECT = os.environ["PROJECT"]


class Missing(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = pathlib.Path(directory.name)

    def configure(self, *options, environment=None):
        """The words of the first error of a configure step that must fail."""
        done = subprocess.run(
            ["cmake", "-G", "Ninja", "-S", PROJECT, "-B", str(self.place / "build"), "-DCMAKE_CXX_COMPILER_FORCED=ON",
             "-DCMAKE_INSTALL_LIBDIR=lib", f"-DCMAKE_CXX_COMPILER={os.environ['CXX']}", *options],
            text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env={**os.environ, **(environment or {})},
            check=False)
        self.assertNotEqual(done.returncode, 0)
        message = done.stderr.split("(message):\n", 1)[1].split("Call Stack")[0].split("\n\n\n")[0]
        return " ".join(message.split())

    def without(self, package):
        return self.configure(f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON")

    def with_pkg_config_files(self, files):
        """Configures with the given pkg-config files and no others. None stands for the system's own file."""
        directory = self.place / "pkgconfig"
        directory.mkdir()
        for name, version in files.items():
            if version is None:
                where = subprocess.run(["pkg-config", "--variable=pcfiledir", name], text=True, stdout=subprocess.PIPE,
                                       check=True).stdout.strip()
                shutil.copy(f"{where}/{name}.pc", directory)
            else:
                (directory / f"{name}.pc").write_text(f"Name: {name}\nDescription: old\nVersion: {version}\nLibs: -l{name}\n")
        return self.configure(environment={"PKG_CONFIG_LIBDIR": str(directory), "PKG_CONFIG_PATH": ""})

    def test_pkg_config(self):
        self.assertEqual(self.without("PkgConfig"), "pkg-config is missing: install the Debian package pkg-config")

    def test_ace(self):
        self.assertEqual(self.with_pkg_config_files({}),
                         "ACE 7.0 or newer is missing: install the Debian package libace-dev")

    def test_ace_that_is_too_old(self):
        self.assertEqual(self.with_pkg_config_files({"ACE": "6.5.12"}),
                         "ACE 7.0 or newer is missing: install the Debian package libace-dev")

    def test_libedit(self):
        self.assertEqual(self.with_pkg_config_files({"ACE": None}),
                         "libedit is missing: install the Debian package libedit-dev")

    def test_cli11(self):
        self.assertEqual(self.without("CLI11"), "CLI11 is missing: install the Debian package libcli11-dev")

    def test_nlohmann_json(self):
        self.assertEqual(self.without("nlohmann_json"),
                         "nlohmann-json is missing: install the Debian package nlohmann-json3-dev")

    def test_google_test(self):
        self.assertEqual(self.without("GTest"),
                         "GoogleTest is missing: install the Debian packages libgtest-dev and libgmock-dev")

    def test_provider_that_is_not_there(self):
        self.assertEqual(self.configure("-DASCII_UTIL_FRAMEWORK=/nowhere/libframework.so"),
                         "ASCII_UTIL_FRAMEWORK names /nowhere/libframework.so, which is not there")


if __name__ == "__main__":
    unittest.main()
