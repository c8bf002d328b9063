"""Packs a build, unpacks the package elsewhere and runs what is in it.

The arguments: --cmake CMAKE --cpack CPACK --ctest CTEST --build FOLDER --name NAME
               [--window yes] [--runner PROGRAM --runtime FOLDER --qt FOLDER] -- CONFIGURE_OPTION...

The build is in FOLDER and its package is called NAME; --window says that it has the window. For Windows with the program
that runs its programs, Microsoft's C++ runtime and Qt. The options configure a project as the build was.
"""

import argparse
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCES = HERE.parent.parent
SECONDS = 1_700_000_000  # some time, in place of the sources' own


def arguments():
    parser = argparse.ArgumentParser()
    for name in ("cmake", "cpack", "ctest", "build", "name"):
        parser.add_argument(f"--{name}", required=True)
    for name in ("window", "runner", "runtime", "qt"):
        parser.add_argument(f"--{name}", default="")
    parser.add_argument("options", nargs="+")
    return parser.parse_args()


ARGUMENTS = arguments()
IS_WINDOWS = "windows" in ARGUMENTS.name
LIBRARY = "com.orvane.KVX.Plugin.LogicalDevice.RV418" + (".dll" if IS_WINDOWS else ".so")


def program(name):
    return name + ".exe" if IS_WINDOWS else name


def attempt(*command, **options):
    # A Windows program that is not kvx writes in Windows' code page.
    options |= {"capture_output": True, "encoding": "utf-8", "errors": "replace"}
    return subprocess.run(command, check=False, **options)


def run(*command, **options):
    result = attempt(*command, **options)
    if result.returncode:
        raise AssertionError(f"{command} ends with exit code {result.returncode}:\n{result.stdout}{result.stderr}")
    return result.stdout


def runner(*dll_folders):
    """What runs a program, with only these folders to look for DLLs in."""
    if not ARGUMENTS.runner:
        return []
    folders = [word for folder in dll_folders for word in ("--dlls", folder)]
    return [ARGUMENTS.runner, "--runtime", ARGUMENTS.runtime, *folders]


def pack(folder):
    """The archives by their names without suffix, made in the folder."""
    run(
        ARGUMENTS.cpack, "--config", Path(ARGUMENTS.build, "CPackConfig.cmake"), "-B", folder,
        cwd=ARGUMENTS.build, env=dict(os.environ, SOURCE_DATE_EPOCH=str(SECONDS)),
    )
    archives = [path for path in Path(folder).iterdir() if path.name.endswith((".zip", ".tar.gz"))]
    return {path.name.removesuffix(".zip").removesuffix(".tar.gz"): path for path in archives}


class UnpackedPackage(unittest.TestCase):
    """Has the archives, and the folder where they were unpacked."""

    @classmethod
    def setUpClass(cls):
        # Wine's server may still write into its folder when the test ends.
        scratch = tempfile.TemporaryDirectory(prefix="kvx-package-", ignore_cleanup_errors=True)
        cls.addClassCleanup(scratch.cleanup)
        cls.scratch = Path(scratch.name)
        # With a blank and a letter beyond ASCII, as users' folders have them.
        cls.folder = cls.scratch / "Müller's folder"
        (cls.scratch / "packed").mkdir()
        cls.archives = pack(cls.scratch / "packed")
        cls.folder.mkdir()
        for archive in cls.archives.values():
            run(ARGUMENTS.cmake, "-E", "tar", "xf", archive, cwd=cls.folder)
        cls.unpacked = cls.folder / ARGUMENTS.name
