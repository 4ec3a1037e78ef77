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


class Step(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.place = pathlib.Path(directory.name)

    def configure_step(self, *options, environment=None):
        return subprocess.run(
            ["cmake", "-G", "Ninja", "-S", PROJECT, "-B", str(self.place / "build"), "-DCMAKE_CXX_COMPILER_FORCED=ON",
             "-DCMAKE_SIZEOF_VOID_P=8",
             "-DCMAKE_INSTALL_LIBDIR=lib", f"-DCMAKE_CXX_COMPILER={os.environ['CXX']}", *options],
            text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env={**os.environ, **(environment or {})},
            check=False)

    def configure(self, *options, environment=None):
        """The words of the first error of a configure step that must fail."""
        done = self.configure_step(*options, environment=environment)
        self.assertNotEqual(done.returncode, 0)
        message = done.stderr.split("(message):\n", 1)[1].split("Call Stack")[0].split("\n\n\n")[0]
        return " ".join(message.split())


class Missing(Step):
    def without(self, package):
        return self.configure(f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON")

    def with_pkg_config_files(self, files):
        """Configures with the given pkg-config files and no others. None means the system's own file."""
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
        self.assertEqual(self.without("PkgConfig"), "pkg-config is missing: install the Debian package pkgconf")

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

    def test_target_of_32_bits(self):
        self.assertEqual(self.configure("-DCMAKE_SIZEOF_VOID_P=4"),
                         "ii_ascii_util needs a 64-bit target: numbers, times and file sizes would be cut on this one")

    def test_google_test(self):
        self.assertEqual(self.without("GTest"),
                         "GoogleTest is missing: install the Debian packages libgtest-dev and libgmock-dev")

    def test_provider_that_is_not_there(self):
        self.assertEqual(self.configure("-DASCII_UTIL_FRAMEWORK=/nowhere/libframework.so"),
                         "ASCII_UTIL_FRAMEWORK names /nowhere/libframework.so, which is not there")


class Target(Step):
    def test_test_locales_are_made_in_the_byte_order_of_the_target(self):
        for order, magic in [("LITTLE_ENDIAN", "20070920"), ("BIG_ENDIAN", "20090720")]:
            include = self.place / "order.cmake"
            include.write_text(f"set(CMAKE_CXX_BYTE_ORDER {order})\n")
            done = self.configure_step(f"-DCMAKE_PROJECT_ii_ascii_util_INCLUDE={include}",
                                       "-DCMAKE_CXX_COMPILER_FORCED=OFF")
            self.assertEqual(done.returncode, 0, done.stderr)
            subprocess.run(["cmake", "--build", self.place / "build", "--target", "test_locales"], check=True,
                           stdout=subprocess.DEVNULL)
            made = next(self.place.glob("build/tests/**/tr_TR.ISO-8859-9/LC_CTYPE"))
            self.assertEqual(made.read_bytes()[:4].hex(), magic)
            shutil.rmtree(self.place / "build")


if __name__ == "__main__":
    unittest.main()
