#!/usr/bin/env python3
"""Builds two projects against the installed tree and one with the sources in its own tree, and runs them; configures a
fourth, for which the package is optional.

Inputs, from the environment: STAGE (the installed tree), WORK (a directory to work in), PROJECT (our sources), CALLER (the
caller of docs/interface.md), CXX, PROVIDER (another provider of the platform), HAS_TOOLS (1 when programs are installed).
"""
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

STAGE = pathlib.Path(os.environ["STAGE"])
WORK = pathlib.Path(os.environ["WORK"])
PROJECT = pathlib.Path(os.environ["PROJECT"])
CALLER = os.environ["CALLER"]
HERE = pathlib.Path(__file__).resolve().parent
HAS_TOOLS = os.environ["HAS_TOOLS"] == "1"

TEXT_OUTPUT = ["ab c", "mixed", "-5", "a/b~", "100%25", "plain"]


def run(*command, **options):
    """The completed process; output and errors together."""
    return subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          **options)


def fresh(name):
    directory = WORK / name
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    return directory


def one(pattern, below=STAGE):
    """The one file below the directory that the pattern names."""
    found = list(below.glob(pattern))
    assert len(found) == 1, f"{pattern}: {found}"
    return found[0]


def pkg_config(*words, below=STAGE):
    path = one("**/ii_ascii_util.pc", below).parent
    done = run("pkg-config", *words, env={**os.environ, "PKG_CONFIG_PATH": str(path)})
    assert done.returncode == 0, done.stdout
    return done.stdout.strip()


class Consumer(unittest.TestCase):
    def must(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def configure(self, source, build, *options):
        return run("cmake", "-G", "Ninja", "-S", source, "-B", build, f"-DCMAKE_CXX_COMPILER={os.environ['CXX']}", *options)

    def call_through_host(self, bundle_host, caller):
        """What the caller prints when the host loads it after the bundle that the sample file names."""
        directory = fresh("run")
        svc_conf = directory / "svc.conf"
        sample = one("**/ii_ascii_util/svc.conf").read_text()
        svc_conf.write_text(f'{sample}dynamic caller Service_Object * {caller}:_make_caller() ""\n')
        (directory / "config").mkdir()
        return self.must(bundle_host, "--config-dir", directory / "config", "--svc-conf", svc_conf, "call", "ToUpper", "abc")


class CMakePackage(Consumer):
    def options(self):
        return [f"-DCMAKE_PREFIX_PATH={STAGE}", f"-DCALLER={CALLER}", f"-DWITH_TOOLS={HAS_TOOLS}"]

    def test_project_builds_and_runs(self):
        build = fresh("cmake_package")
        done = self.configure(HERE / "cmake_package", build, *self.options())
        self.assertEqual(done.returncode, 0, done.stdout)
        self.must("cmake", "--build", build)
        self.assertEqual(self.must(build / "text").splitlines(), TEXT_OUTPUT)
        if HAS_TOOLS:
            bundle_host = pathlib.Path((build / "bundle_host.path").read_text())
            self.assertEqual(bundle_host, STAGE / "bin/bundle_host")
            output = self.call_through_host(bundle_host, build / "libcaller.so")
            self.assertIn("LINK DOWN", output.splitlines())
            self.assertIn("ABC", output.splitlines()[-1])

    def test_another_major_version_is_refused(self):
        done = self.configure(HERE / "cmake_package", fresh("version"), *self.options(), "-DWANTED_VERSION=2.0")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn('compatible with requested version "2.0"', " ".join(done.stdout.split()))

    def test_missing_tools_are_named_with_their_package(self):
        stage = fresh("no_tools") / "stage"
        shutil.copytree(STAGE, stage, symlinks=True)
        for export in stage.glob("**/ii_ascii_util-tools*.cmake"):
            export.unlink()
        done = self.configure(HERE / "cmake_package", fresh("no_tools_build"), f"-DCMAKE_PREFIX_PATH={stage}",
                              f"-DCALLER={CALLER}", "-DWITH_TOOLS=ON")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("install the Debian package ii-ascii-util-tools", " ".join(done.stdout.split()))


class Optional(Consumer):
    def found(self, *options, environment=None):
        """The output of the project for which the package is optional."""
        done = run("cmake", "-G", "Ninja", "-S", HERE / "optional", "-B", fresh("optional"), f"-DCMAKE_PREFIX_PATH={STAGE}",
                   f"-DCMAKE_CXX_COMPILER={os.environ['CXX']}", *options, env={**os.environ, **(environment or {})})
        self.assertEqual(done.returncode, 0, done.stdout)
        return re.findall(r"^-- ((?:found|not found|target):.*?)\s*$", done.stdout, re.MULTILINE)


class Version(Optional):
    def found_version(self, wanted):
        return bool(re.match("found: 1", self.found(f"-DWANTED_VERSION={wanted}")[0]))

    def test_the_same_or_an_older_version_of_the_same_major_one_is_compatible(self):
        self.assertTrue(self.found_version("1.0.0"))
        self.assertTrue(self.found_version("1"))

    def test_a_newer_version_than_the_installed_one_is_refused(self):
        self.assertFalse(self.found_version("1.99"))

    def test_another_major_version_is_refused_whether_older_or_newer(self):
        self.assertFalse(self.found_version("0.9"))
        self.assertFalse(self.found_version("2.0"))


class Ace(Optional):
    """The messages for a consumer without a usable ACE. pkg-config searches only a directory of the test."""

    MESSAGE = "ACE 7.0 or newer is missing: install the Debian package libace-dev"

    def ace(self, version):
        directory = fresh("pkgconfig")
        if version:
            (directory / "ACE.pc").write_text(f"Name: ACE\nDescription: ACE\nVersion: {version}\nLibs: -lACE\n")
        return {"PKG_CONFIG_LIBDIR": str(directory), "PKG_CONFIG_PATH": ""}

    def test_without_ace_the_package_is_not_found_and_defines_nothing(self):
        self.assertEqual(self.found(environment=self.ace(None)), [f"not found: {self.MESSAGE}"])

    def test_with_an_old_ace_the_package_is_not_found_and_defines_nothing(self):
        self.assertEqual(self.found(environment=self.ace("6.5.12")), [f"not found: {self.MESSAGE}"])

    def test_with_ace_7_the_package_is_found(self):
        self.assertEqual(self.found(environment=self.ace("7.0.8"))[-1], "target: defined")

    def test_pkg_config_refuses_the_headers_without_ace_7(self):
        own = str(one("**/ii_ascii_util.pc").parent)
        for version in [None, "6.5.12"]:
            environment = {**os.environ, **self.ace(version), "PKG_CONFIG_PATH": own}
            done = run("pkg-config", "--cflags", "ii_ascii_util-headers", env=environment)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn("ACE", done.stdout)

    def test_pkg_config_adds_what_ace_needs_to_the_flags_of_the_headers(self):
        self.assertIn("-lACE", pkg_config("--libs", "ii_ascii_util-headers").split())


class PkgConfig(Consumer):
    def test_project_builds_and_runs(self):
        build = fresh("pkg_config")
        environment = {**os.environ, "PKG_CONFIG_PATH": str(one("**/ii_ascii_util.pc").parent)}
        self.must("make", "-C", build, "-f", HERE / "pkg_config/Makefile", f"SOURCES={HERE}", f"CALLER={CALLER}",
                  env=environment)
        self.assertEqual(self.must(build / "text").splitlines(), TEXT_OUTPUT)
        if HAS_TOOLS:
            output = self.call_through_host(STAGE / "bin/bundle_host", build / "libcaller.so")
            self.assertIn("LINK DOWN", output.splitlines())

    @unittest.skipUnless(HAS_TOOLS, "the host is not installed")
    def test_commands_of_the_page_work_unchanged(self):
        page = (PROJECT / "docs/interface.md").read_text()
        commands = re.search(r"^```sh\n(.*?)^```", page, re.MULTILINE | re.DOTALL).group(1)
        directory = fresh("page")
        shutil.copy(CALLER, directory / "caller.cpp")
        environment = {**os.environ, "PATH": f"{STAGE}/bin:{os.environ['PATH']}",
                       "PKG_CONFIG_PATH": str(one("**/ii_ascii_util.pc").parent)}
        done = subprocess.run(["bash", "-euc", commands], cwd=directory, env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout.splitlines(), ["LINK DOWN", "result: LINK DOWN"])

    def test_files_follow_a_tree_that_is_moved(self):
        stage = fresh("moved") / "elsewhere"
        shutil.copytree(STAGE, stage, symlinks=True)
        libdir = pathlib.Path(pkg_config("--variable=libdir", "ii_ascii_util", below=stage)).resolve()
        self.assertTrue((libdir / "libii_ascii_util.so").is_file())
        self.assertTrue(libdir.is_relative_to(stage))

    def test_absolute_directories_survive(self):
        # Outside of the project: CMake refuses installed headers inside it.
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        root = pathlib.Path(place.name).resolve()
        done = self.configure(PROJECT, root / "build", f"-DCMAKE_INSTALL_PREFIX={root}/prefix",
                              f"-DCMAKE_INSTALL_LIBDIR={root}/here/lib", f"-DCMAKE_INSTALL_INCLUDEDIR={root}/there/include",
                              f"-DASCII_UTIL_FRAMEWORK={os.environ['PROVIDER']}", "-DASCII_UTIL_BUILD_TESTS=OFF",
                              "-DASCII_UTIL_BUILD_TOOLS=OFF", "-DASCII_UTIL_BUILD_EXAMPLES=OFF")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.must("cmake", "--install", root / "build", "--component", "development")
        self.assertEqual(pkg_config("--cflags", "ii_ascii_util", below=root / "here"),
                         f"-I{root}/there/include/ii_ascii_util")
        self.assertEqual(pkg_config("--libs", "ii_ascii_util", below=root / "here"),
                         f"-L{root}/here/lib -Wl,-rpath-link,{root}/here/lib -lii_ascii_util")
        self.assertTrue((root / "there/include/ii_ascii_util/ascii_util/text_functions.h").is_file())


class Subdirectory(Consumer):
    def test_project_builds_and_runs_with_a_platform_of_its_own(self):
        build = fresh("subdirectory")
        done = self.configure(HERE / "subdirectory", build, f"-DII_ASCII_UTIL={PROJECT}")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.must("cmake", "--build", build, "--target", "text", "own_platform")
        self.assertEqual(self.must(build / "text").splitlines(), TEXT_OUTPUT)


class InstalledTree(Consumer):
    def test_every_header_compiles_from_where_it_is_installed(self):
        include = STAGE / "include/ii_ascii_util"
        headers = sorted(header.relative_to(include) for header in include.glob("*/*.h"))
        self.assertGreaterEqual(len(headers), 12)
        source = fresh("headers") / "all.cpp"
        source.write_text("".join(f'#include "{header}"\n' for header in headers))
        self.must(os.environ["CXX"], "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", f"-I{include}", source)

    def test_sample_svc_conf_names_the_installed_bundle(self):
        directive = one("**/ii_ascii_util/svc.conf").read_text().splitlines()[-1]
        bundle = re.fullmatch(r'dynamic ii_ascii_util Service_Object \* (.*):_make_ii_ascii_util\(\) ""', directive)
        self.assertEqual(pathlib.Path(bundle.group(1)), one("**/libii_ascii_util.so"))

    def test_no_installed_file_names_the_build_directory(self):
        # The sample svc.conf contains the installation's path on purpose.
        files = [path for path in STAGE.glob("**/*") if path.is_file() and path.name != "svc.conf"]
        self.assertGreater(len(files), 20)
        for path in files:
            self.assertNotIn(str(PROJECT).encode(), path.read_bytes(), path)


if __name__ == "__main__":
    unittest.main()
