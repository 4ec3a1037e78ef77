#!/usr/bin/env python3
"""Checks the Debian packages, installs them into an empty root and uses them from there; compares the bill of materials
with the libraries that are really linked.

Inputs, from the environment: PACKAGES (where the packages are), ROOT (an empty directory to install into), BUILD (the build
directory), BINARIES (our files, separated by ":"), CALLER (the caller of docs/interface.md), CXX.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PACKAGES = pathlib.Path(os.environ["PACKAGES"])
ROOT = pathlib.Path(os.environ["ROOT"])
PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ["BUILD"])
BINARIES = [pathlib.Path(path) for path in os.environ["BINARIES"].split(":")]
NAMES = ["libii-ascii-util", "libii-ascii-util-dev", "ii-ascii-util-tools"]


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False, **options)
    assert done.returncode == 0, f"{command}: {done.stdout}"
    return done.stdout


def package_file(name):
    found = list(PACKAGES.glob(f"{name}_*.deb"))
    assert len(found) == 1, found
    return found[0]


def field(name, what):
    return run("dpkg-deb", "--field", package_file(name), what).strip()


def depends(name):
    """Package names that the package depends on."""
    return {entry.split()[0] for entry in field(name, "Depends").split(", ")}


def files(name):
    """Everything in the package that is not a directory, by absolute path."""
    listing = run("dpkg-deb", "--contents", package_file(name)).splitlines()
    return {line.split()[5].removeprefix(".") for line in listing if not line.startswith("d")}


def control(name):
    """The fields of the package's own description."""
    text = run("dpkg-deb", "--field", package_file(name))
    return dict(re.findall(r"^([\w-]+): (.*)$", text, re.MULTILINE))


def elf_files():
    """Every library and program of the packages, where it is installed."""
    found = [f"{ROOT}{path}" for name in NAMES for path in files(name)
             if path.endswith(".so") or path.startswith("/usr/bin/")]
    assert len(found) >= 4, found
    return found


def source_of(package):
    return run("dpkg-query", "--show", "--showformat=${source:Package}", package)


def owners(paths):
    """The packages that own the files. With a merged /usr the database may list a file without the prefix /usr."""
    candidates = {name: path for path in paths for name in [path, path.removeprefix("/usr"), f"/usr{path}"]}
    # The exit code is ignored: it reports failure when any candidate is unknown, and most are.
    done = subprocess.run(["dpkg-query", "--search", *candidates], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=False)
    found = {}
    for line in done.stdout.splitlines():
        package, _, path = line.partition(": ")
        if path in candidates:
            found[candidates[path]] = package.split(",")[0].split(":")[0]
    assert set(found) == set(paths), f"these belong to no package: {set(paths) - set(found)}"
    return set(found.values())


class Metadata(unittest.TestCase):
    def test_three_packages_are_made_and_their_debug_symbols(self):
        made = {path.name.split("_")[0] for path in PACKAGES.glob("*.deb")}
        self.assertEqual(made, {*NAMES, "libii-ascii-util-dbgsym", "ii-ascii-util-tools-dbgsym"})

    def test_dependencies_are_computed_from_what_is_linked(self):
        # ACE's package carries its version in its name.
        needed = re.search(r"\[(libACE-[^]]+)\]", run("readelf", "--dynamic", BINARIES[0])).group(1)
        ace = owners([re.search(rf"{re.escape(needed)} => (\S+)", run("ldd", BINARIES[0])).group(1)])
        system = {"libc6", "libgcc-s1", "libstdc++6"} | ace
        self.assertEqual(depends("libii-ascii-util"), system)
        self.assertEqual(depends("ii-ascii-util-tools"), system | {"libii-ascii-util", "libedit2"})
        self.assertEqual(depends("libii-ascii-util-dev"), {"libii-ascii-util", "libace-dev", "pkgconf"})

    def test_sister_packages_are_wanted_in_the_same_version(self):
        version = field("libii-ascii-util", "Version")
        for name in NAMES[1:]:
            self.assertIn(f"libii-ascii-util (= {version})", field(name, "Depends"))

    def test_version_is_that_of_the_project_and_its_changelog(self):
        version = re.search(r"^project\(ii_ascii_util VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text(), re.MULTILINE)
        newest = re.search(r"^## (\S+) - ", (PROJECT / "CHANGELOG.md").read_text(), re.MULTILINE)
        for name in NAMES:
            self.assertEqual([control(name)["Version"]] * 2, [version.group(1), newest.group(1)])

    def test_libraries_can_be_installed_for_several_architectures(self):
        self.assertEqual([control(name).get("Multi-Arch") for name in NAMES], ["same", "same", None])

    def test_everything_belongs_to_root(self):
        for name in NAMES:
            for line in run("dpkg-deb", "--contents", package_file(name)).splitlines():
                self.assertEqual(line.split()[1], "root/root", line)

    @unittest.skipUnless(shutil.which("lintian"), "lintian is not installed")
    def test_lintian_finds_nothing_wrong(self):
        output = run("lintian", "--display-info", "--fail-on", "error,warning", *PACKAGES.glob("*.changes"))
        self.assertNotIn("hardening", output)


class Layout(unittest.TestCase):
    def test_files_are_where_debian_expects_them(self):
        triplet = run("gcc", "-print-multiarch").strip()
        self.assertLessEqual({
            f"/usr/lib/{triplet}/libii_ascii_util.so",
            f"/usr/lib/{triplet}/libbundle_host.so",
            f"/usr/lib/{triplet}/ii_ascii_util/svc.conf",
            f"/usr/lib/{triplet}/ii_ascii_util/ii_ascii_util.cdx.json",
        }, files("libii-ascii-util"))
        self.assertLessEqual({
            "/usr/include/ii_ascii_util/ascii_util/ascii_util_interface.h",
            "/usr/include/ii_ascii_util/framework/service_interface.h",
            f"/usr/lib/{triplet}/cmake/ii_ascii_util/ii_ascii_utilConfig.cmake",
            f"/usr/lib/{triplet}/pkgconfig/ii_ascii_util.pc",
            "/usr/share/doc/libii-ascii-util-dev/interface.md",
        }, files("libii-ascii-util-dev"))
        self.assertLessEqual({
            "/usr/bin/bundle_host",
            "/usr/bin/almcfg",
            "/usr/share/man/man1/bundle_host.1.gz",
            "/usr/share/man/man1/almcfg.1.gz",
            "/usr/share/bash-completion/completions/almcfg",
            "/usr/share/bash-completion/completions/bundle_host",
        }, files("ii-ascii-util-tools"))
        for name in NAMES:
            self.assertLessEqual({f"/usr/share/doc/{name}/copyright", f"/usr/share/doc/{name}/changelog.gz"}, files(name))

    def test_no_file_is_in_two_packages(self):
        runtime, development, tools = map(files, NAMES)
        self.assertEqual((runtime & development) | (runtime & tools) | (development & tools), set())

    def test_no_binary_has_a_run_path(self):
        for path in elf_files():
            self.assertNotRegex(run("readelf", "--dynamic", path), r"RPATH|RUNPATH")

    def test_every_binary_is_hardened(self):
        for path in elf_files():
            dynamic = run("readelf", "--dynamic", "--program-headers", "--dyn-syms", "--wide", path)
            for mark in ["BIND_NOW", "GNU_RELRO", "__stack_chk_fail"]:
                self.assertIn(mark, dynamic, path)
        fortified = [path for path in elf_files() if "_chk@" in run("nm", "-D", path).replace("__stack_chk_fail@", "")]
        self.assertTrue(fortified, "no binary calls a checked function of the C library")

    def test_files_for_all_architectures_name_none(self):
        triplet = run("gcc", "-print-multiarch").strip()
        for name in NAMES:
            for path in files(name):
                if path.startswith("/usr/share/"):
                    self.assertNotIn(triplet.encode(), pathlib.Path(f"{ROOT}{path}").read_bytes(), path)

    def test_pkg_config_names_no_directory_that_compilers_search_anyway(self):
        where = {**os.environ, "PKG_CONFIG_PATH": str(next(ROOT.glob("usr/lib/*/pkgconfig")))}
        self.assertEqual(run("pkg-config", "--libs", "ii_ascii_util", env=where).strip(), "-lii_ascii_util")
        self.assertEqual(run("pkg-config", "--cflags", "ii_ascii_util", env=where).strip(), "-I/usr/include/ii_ascii_util")


class CleanRoot(unittest.TestCase):
    """The installed packages alone, without anything from the source or build tree."""

    @classmethod
    def setUpClass(cls):
        libraries = next(ROOT.glob("usr/lib/*/libii_ascii_util.so")).parent
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": str(libraries), "LIBRARY_PATH": str(libraries),
                           "PKG_CONFIG_PATH": str(libraries / "pkgconfig")}
        cls.work = ROOT / "home"
        (cls.work / "config/ii_asciiagent_bundle").mkdir(parents=True, exist_ok=True)
        (cls.work / "config/ii_asciiagent_bundle/AlarmConfig.csv").write_text("RNC/BSC\tLOF\tLINK\t7\t42\n")

    def flags(self, package):
        """The output of pkg-config for the root with the packages."""
        words = run("pkg-config", "--cflags", "--libs", package, env=self.environment).split()
        return [word.replace("-I/usr/include/ii_ascii_util", f"-I{ROOT}/usr/include/ii_ascii_util") for word in words]

    def host(self, *words):
        return run(ROOT / "usr/bin/bundle_host", "--config-dir", "config", *words, cwd=self.work, env=self.environment)

    def svc_conf(self, more=""):
        """The packaged sample, with its paths changed to the root."""
        sample = next(ROOT.glob("usr/lib/*/ii_ascii_util/svc.conf")).read_text()
        self.assertIn("* /usr/lib/", sample)
        path = self.work / "svc.conf"
        path.write_text(sample.replace("* /usr/lib/", f"* {ROOT}/usr/lib/") + more)
        return path

    def test_host_loads_the_installed_bundle_and_calls_it(self):
        output = self.host("--svc-conf", self.svc_conf(), "call", "GetAlmCfgValue", "BSC", "LOF", "LINK", "7")
        self.assertRegex(output, r"(?m)\b42$")

    def test_caller_written_from_the_page_runs_in_the_host(self):
        flags = self.flags("ii_ascii_util-headers")
        library = self.work / "libcaller.so"
        run(os.environ["CXX"], "-std=c++17", "-shared", "-fPIC", os.environ["CALLER"], "-o", library, *flags)
        output = self.host("--svc-conf", self.svc_conf(f'dynamic caller Service_Object * {library}:_make_caller() ""\n'),
                           "call", "ToUpper", "abc")
        self.assertIn("LINK DOWN", output.splitlines())

    def test_text_functions_link_by_pkg_config(self):
        flags = self.flags("ii_ascii_util")
        program = self.work / "text"
        source = PROJECT / "tests/consumers/text.cpp"
        run(os.environ["CXX"], "-std=c++17", source, "-o", program, *flags, env=self.environment)
        self.assertEqual(run(program, env=self.environment).splitlines()[0], "ab c")

    def test_manual_pages_format_without_a_complaint(self):
        pages = list(ROOT.glob("usr/share/man/man1/*.1.gz"))
        self.assertGreaterEqual(len(pages), 2)
        for page in pages:
            source = run("zcat", page)
            # groff reports a request that does not exist.
            self.assertEqual(run("groff", "-man", "-Tutf8", "-ww", "-z", input=source), "")


@unittest.skipUnless(os.geteuid() == 0, "only root can install packages")
class Upgrade(unittest.TestCase):
    def dpkg(self, *words):
        run("dpkg", f"--root={self.root}", "--force-depends", "--no-triggers", *words)

    def installed(self):
        return {path for path in self.root.glob("usr/**/*") if not path.is_dir()}

    def test_packages_upgrade_and_leave_nothing_when_purged(self):
        with tempfile.TemporaryDirectory() as place:
            self.root = pathlib.Path(place) / "root"
            for directory in ["updates", "info", "triggers"]:
                (self.root / "var/lib/dpkg" / directory).mkdir(parents=True)
            (self.root / "var/lib/dpkg/status").touch()
            (self.root / "var/log").mkdir()
            older = [self.older(name, pathlib.Path(place)) for name in NAMES]
            self.dpkg("--install", *older)
            self.assertIn("old", {path.name for path in self.installed()})
            self.dpkg("--install", *map(package_file, NAMES))
            expected = {self.root / path.lstrip("/") for name in NAMES for path in files(name)}
            self.assertEqual(self.installed(), expected)
            self.dpkg("--purge", *NAMES)
            self.assertEqual(self.installed(), set())

    def older(self, name, place):
        """The package as version 0.1, with a file that the newer one no longer has."""
        tree = place / name
        run("dpkg-deb", "--raw-extract", package_file(name), tree)
        control_file = tree / "DEBIAN/control"
        version = control(name)["Version"]
        control_file.write_text(control_file.read_text().replace(version, "0.1"))
        (tree / "DEBIAN/md5sums").unlink()
        (tree / "usr/share/doc" / name / "old").touch()
        output = place / f"{name}.deb"
        run("dpkg-deb", "--root-owner-group", "--build", tree, output)
        return output


class Bill(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.bill = json.loads((BUILD / "ii_ascii_util.cdx.json").read_text())
        cls.names = {component["name"]: component for component in cls.bill["components"]}
        cls.linked = {name for name, component in cls.names.items()
                      if any(entry["name"] == "linked:soname" for entry in component["properties"])}

    def test_is_a_cyclonedx_document_whose_references_hold(self):
        self.assertEqual((self.bill["bomFormat"], self.bill["specVersion"]), ("CycloneDX", "1.5"))
        self.assertRegex(self.bill["serialNumber"], r"^urn:uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")
        root = self.bill["metadata"]["component"]
        known = [component["bom-ref"] for component in [root, *root["components"], *self.bill["components"]]]
        self.assertEqual(len(known), len(set(known)))
        self.assertEqual(sorted(entry["ref"] for entry in self.bill["dependencies"]), sorted(known))
        for entry in self.bill["dependencies"]:
            self.assertLessEqual(set(entry["dependsOn"]), set(known))

    def test_lists_our_files(self):
        parts = {part["name"] for part in self.bill["metadata"]["component"]["components"]}
        self.assertEqual(parts, {binary.name for binary in BINARIES})

    def test_lists_exactly_the_packages_that_the_dynamic_linker_loads(self):
        ours = {binary.name for binary in BINARIES}
        loaded = set()
        for binary in BINARIES:
            for name, path in re.findall(r"^\s*(\S+)(?: => (\S+))? \(0x", run("ldd", binary), re.MULTILINE):
                # The kernel's own object is not a file, so no package owns it.
                if name not in ours and (path or name).startswith("/"):
                    loaded.add(path or name)
        self.assertEqual(self.linked, owners(loaded))

    def test_versions_are_those_of_the_installed_packages(self):
        for name, component in self.names.items():
            self.assertEqual(component["version"], run("dpkg-query", "--show", "--showformat=${Version}", name))
            escaped = [text.replace("+", "%2B").replace(":", "%3A") for text in [name, component["version"]]]
            self.assertEqual(component["purl"].split("?")[0], f"pkg:deb/debian/{'@'.join(escaped)}")

    def test_agrees_with_the_computed_package_dependencies(self):
        named = depends("libii-ascii-util") | depends("ii-ascii-util-tools")
        self.assertLessEqual(named - set(NAMES), self.linked)

    @unittest.skipUnless((BUILD / "build.ninja").exists(), "only ninja keeps the compiler's lists")
    def test_every_header_that_was_compiled_in_is_of_a_listed_source(self):
        """From the compiler's lists of the headers it read. The kernel's headers contain no code."""
        objects = run("ninja", "-C", BUILD, "-t", "deps")
        ours = [block for block in objects.split("\n\n") if re.match(r"(?:ninja: .*\n)?(src|host|tools)/", block)]
        headers = {line.strip() for block in ours for line in block.splitlines() if line.startswith("    /usr/")}
        self.assertGreater(len(headers), 100)
        # Clang's own headers contain definitions only. Clang also lists headers that are only tested with
        # __has_include, as the standard library does for TBB; if that header had been read, those it includes
        # would be listed as well.
        headers = {header for header in headers if "/lib/clang/" not in header} - {"/usr/include/tbb/tbb.h"}
        # One header for each directory is enough: below these depths packages do not share directories.
        one_each = {str(pathlib.Path(header).parent): header for header in sorted(headers)}
        sources = {source_of(package) for package in owners(one_each.values())}
        self.assertLessEqual(sources - {"linux"}, {source_of(name) for name in self.names})

    def test_is_the_one_in_the_package(self):
        packaged = json.loads(next(ROOT.glob("usr/lib/*/ii_ascii_util/ii_ascii_util.cdx.json")).read_text())
        self.assertEqual(packaged["components"], self.bill["components"])


if __name__ == "__main__":
    unittest.main()
