#!/usr/bin/env python3
"""Builds the bundle alone, on a given provider of the platform, in two directories.

  build_twice.py SOURCE WORK PROVIDER CXX

SOURCE is the project, WORK an empty or old directory to work in, PROVIDER a library with the platform's symbols, CXX the
compiler. Leaves WORK/one/build and WORK/another/place/build, each built from a copy of the sources of its own.
"""
import os
import pathlib
import shutil
import subprocess
import sys

# Enough for the bundle: with another provider it needs neither the host nor the tools.
PARTS = ["CMakeLists.txt", "cmake", "framework", "include", "src"]


def copy_sources(source, to):
    for part in PARTS:
        if (source / part).is_dir():
            shutil.copytree(source / part, to / part)
        else:
            shutil.copy2(source / part, to / part)


# With debug information, which contains the most paths.
def start_build(place, provider, compiler):
    configure = [
        "cmake", "-G", "Ninja", "-S", str(place / "source"), "-B", str(place / "build"), "--log-level=WARNING",
        f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_BUILD_TYPE=RelWithDebInfo", f"-DASCII_UTIL_FRAMEWORK={provider}",
        "-DASCII_UTIL_BUILD_TESTS=OFF", "-DASCII_UTIL_BUILD_TOOLS=OFF", "-DASCII_UTIL_BUILD_EXAMPLES=OFF"]
    subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
    return subprocess.Popen(["cmake", "--build", str(place / "build"), "--target", "ii_ascii_util", "-j", "1"],
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def main():
    source, work, provider, compiler = sys.argv[1:]
    # A compiler cache could use one directory's object in the other and so hide a difference.
    for name in ["CMAKE_CXX_COMPILER_LAUNCHER", "CMAKE_C_COMPILER_LAUNCHER"]:
        os.environ.pop(name, None)
    os.environ["CCACHE_DISABLE"] = "1"

    work = pathlib.Path(work)
    shutil.rmtree(work, ignore_errors=True)
    builds = []
    for place in [work / "one", work / "another" / "place"]:
        (place / "source").mkdir(parents=True)
        copy_sources(pathlib.Path(source), place / "source")
        builds.append(start_build(place, provider, compiler))
    failed = False
    for build in builds:
        output, _ = build.communicate()
        if build.returncode != 0:
            failed = True
            print(output)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
