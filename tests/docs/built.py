"""For tests of the pages: says in one sentence what to build when a program that a test runs is missing."""
import pathlib


def missing(*files):
    """The sentence; empty when all files exist."""
    absent = [str(file) for file in files if not pathlib.Path(file).exists()]
    if not absent:
        return ""
    build = next((folder for folder in pathlib.Path(absent[0]).parents if (folder / "CMakeCache.txt").exists()), "BUILD-DIRECTORY")
    return f"not built: {', '.join(absent)}; run: cmake --build {build}"
