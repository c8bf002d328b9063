"""tools/windows-libraries: from packages for Python with a tiny Qt to the folder that programs are linked to.

pip and unpack-qt-wheel are the real ones. The DLLs hold a version and nothing else.
"""

import hashlib
import os
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

from sandbox import FAKE_TOOL, REPOSITORY
from test_build_once import BuildOnceTest

HEADERS = Path(f"/usr/include/{os.uname().machine}-linux-gnu/qt6/QtCore/qconfig.h")
VERSION = re.search(r'QT_VERSION_STR "(.*)"', HEADERS.read_text(encoding="utf-8"))[1]
QT = [f"Qt6{name}.dll" for name in ("Core", "Gui", "Svg", "Test", "Widgets")]
PLUGINS = ["iconengines/qsvgicon.dll", "imageformats/qsvg.dll", "platforms/qoffscreen.dll", "platforms/qwindows.dll",
           "styles/qmodernwindowsstyle.dll"]
RUNTIME = ["msvcp140.dll", "msvcp140_1.dll", "msvcp140_2.dll", "vcruntime140.dll", "vcruntime140_1.dll"]

FAKE_APT_GET = FAKE_TOOL + r"""
if [[ " $* " == *" source "* ]]; then
    mkdir -p llvm/{libcxx,compiler-rt/lib/builtins,clang}/src rapidcheck
    touch llvm/{libcxx,compiler-rt/lib/builtins,clang}/src/a.cpp rapidcheck/CMakeLists.txt
    tar -cJf llvm-19.orig.tar.xz llvm
    tar -czf rapidcheck_1.orig.tar.gz -C rapidcheck .
fi
"""

FAKES = {
    "python3": f'{FAKE_TOOL}exec {sys.executable} "$@"\n',
    "apt-get": FAKE_APT_GET,
    "cmake": FAKE_TOOL + "[[ $1 != --install ]] || find llvm rapidcheck -type f >made/lib/sources\n",
    "cp": f'{FAKE_TOOL}exec {shutil.which("cp")} "$@"\n',
    "tar": f'{FAKE_TOOL}exec {shutil.which("tar")} "$@"\n',
    "import-library": FAKE_TOOL + 'touch "$4/$(basename "$3" .dll).lib"\n',
}

# Features of Qt that its headers for Windows have or have not.
FEATURES = {
    "QtCore/qtcore-config.h": ("clock_monotonic -1", "glib -1", "inotify -1", "cpp_winrt 1"),
    "QtGui/qtgui-config.h": ("egl -1", "fontconfig -1", "wayland -1", "xcb -1", "xcb_glx_plugin -1", "dynamicgl 1"),
}


def make_dll(folder, version):
    (folder / "version.rc").write_text(f"1 VERSIONINFO\nFILEVERSION {version.replace('.', ',')},0\nBEGIN\nEND\n", "utf-8")
    for command in (
        ["llvm-rc-19", "/FO", "version.res", "version.rc"],
        ["lld-link-19", "/machine:x64", "/dll", "/noentry", "/out:version.dll", "version.res"],
    ):
        subprocess.run(command, cwd=folder, check=True)
    return (folder / "version.dll").read_bytes()


def files_in(folder):
    return sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file())


class WindowsLibraries(BuildOnceTest):
    tool = "tools/windows-libraries"
    cache_folder = "windows"
    own_fakes = FAKES

    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            cls.dll, cls.other_dll = (make_dll(Path(folder), version) for version in (VERSION, "6.0.1"))

    def setUp(self):
        super().setUp()
        self.wheels = self.base / "wheels"
        self.wheels.mkdir()
        self.variables = {"PIP_NO_INDEX": "1", "PIP_FIND_LINKS": str(self.wheels)}
        shutil.copytree(REPOSITORY / "windows", self.checkout / "windows")
        shutil.copy(self.fakes / "import-library", self.checkout / "tools")
        self.good = self.wheel("good", self.dll, RUNTIME)
        self.list(self.good)

    def wheel(self, name, qt, runtime=()):
        """Makes a package for Python; returns its line for the list."""
        with zipfile.ZipFile(self.wheels / f"{name}-1-py3-none-win_amd64.whl", "w") as archive:
            archive.writestr(f"{name}-1.dist-info/METADATA", f"Metadata-Version: 2.1\nName: {name}\nVersion: 1\n")
            archive.writestr(f"{name}-1.dist-info/WHEEL", "Wheel-Version: 1.0\nTag: py3-none-win_amd64\n")
            archive.writestr(f"{name}-1.dist-info/LICENSE", "free")
            for file in [*([*QT, "Qt6Other.dll"] if qt else []), *runtime]:
                archive.writestr(f"qt/bin/{file}", qt)
            for file in [*PLUGINS, "platforms/qother.dll"]:
                archive.writestr(f"qt/plugins/{file}", "plugin")
        return self.line(name)

    def line(self, name):
        content = (self.wheels / f"{name}-1-py3-none-win_amd64.whl").read_bytes()
        return f"{name}==1 --hash=sha256:{hashlib.sha256(content).hexdigest()}"

    def list(self, *lines):
        self.write(self.checkout / "windows/qt-wheels.txt", "\n".join(("# why", "", *lines)) + "\n")

    def test_holds_what_programs_are_linked_to_and_run_with(self):
        self.list(self.wheel("no_runtime", self.dll), "# another", self.wheel("other", self.other_dll, RUNTIME))
        folder = self.assert_provided(self.run_tool())
        self.assertEqual(sorted(self.folders.iterdir()), [folder, folder.with_suffix(".lock")])
        linked = ["kernel32", "ucrtbase", "vcruntime140", "msvcp140", *(name.removesuffix(".dll") for name in QT)]
        qt = ["LICENSE", *(f"bin/{name}" for name in QT), *(f"plugins/{name}" for name in PLUGINS)]
        lib = sorted(["sources", *(f"{name}.lib" for name in linked)])
        made = {part.name: files_in(part) for part in folder.iterdir() if part.name != "include"}
        self.assertEqual(made, {"lib": lib, "microsoft-runtime": RUNTIME, f"qt-{VERSION}": qt, "qt-6.0.1": qt})
        headers = ["QtCore", "QtGui", "QtSvg", "QtTest", "QtWidgets"]
        self.assertEqual(sorted(part.name for part in (folder / "include").iterdir()), headers)
        self.assertNotIn("qt-6.0.1", " ".join(self.called("import-library")))
        sources = ["llvm/compiler-rt/lib/builtins/src/a.cpp", "llvm/libcxx/src/a.cpp", "rapidcheck/CMakeLists.txt"]
        self.assertEqual(sorted((folder / "lib/sources").read_text(encoding="utf-8").split()), sources)
        for file, features in FEATURES.items():
            defined = (folder / "include" / file).read_text(encoding="utf-8")
            for feature in features:
                self.assertIn(f"#define QT_FEATURE_{feature}\n", defined)

    def test_no_package_has_the_runtime(self):
        self.list(self.wheel("no_runtime", self.dll))
        self.assert_cannot(self.run_tool(), "no package in windows/qt-wheels.txt has microsoft-runtime")

    def test_another_file_makes_another_folder(self):
        folder = self.assert_provided(self.run_tool())
        windows = "CMakeLists.txt toolchain.cmake qt-wheels.txt standard-names.txt include/stdlib.h runtime/TypeInfo.cpp"
        windows += " include/QtGui/qwindowdefs_win.h"
        files = [f"windows/{name}" for name in windows.split()] + ["windows/Qt6/Qt6Config.cmake"]
        files += ["tools/common.py", "tools/import-library", "tools/unpack-qt-wheel", "cmake/KvxWarnings.cmake"]
        for number, file in enumerate(files, start=1):
            with self.subTest(file=file):
                self.append(file)
                # The log that stays is named after the folder.
                self.assertEqual(self.run_tool(FAILING=" -m pip ").returncode, 3)
                self.assertEqual(len(list(self.folders.glob("*.log"))), number)
        self.assertEqual(self.left(), [folder])

    def test_package_that_cannot_be_fetched_or_used(self):
        (self.wheels / "letter-1-py3-none-win_amd64.whl").write_text("Dear reader", encoding="utf-8")
        changed = self.wheel("changed", self.dll)
        self.wheel("changed", self.other_dll)
        no_network = {"PIP_NO_INDEX": None, "PIP_FIND_LINKS": None, "PIP_INDEX_URL": "http://127.0.0.1:1/"}
        for line, step, part, variables in (
            (self.good, "fetched", "ERROR: Could not find a version that satisfies the requirement good==1", no_network),
            (changed, "fetched", "ERROR: THESE PACKAGES DO NOT MATCH THE HASHES", {}),
            ("good==1", "fetched", "ERROR: Hashes are required", {}),
            (self.line("letter"), "fetched", "ERROR: ", {}),
            (self.wheel("empty", ""), "unpacked", "ERROR: empty-1-py3-none-win_amd64.whl cannot be unpacked: it has no "
             "Qt6Core.dll", {}),
            (self.wheel("text", "MZ"), "unpacked", "its Qt6Core.dll is no DLL with a version", {}),
        ):
            with self.subTest(line=line):
                shutil.rmtree(self.folders, ignore_errors=True)
                self.list(line, self.good)
                process = self.run_tool(**variables)
                why = next(line for line in self.log().read_text(encoding="utf-8").splitlines() if "ERROR: " in line)
                self.assertIn(part, why)
                self.assert_fails(process, f"Qt for Windows, {line.split()[0]}, could not be {step}", why)

    def test_first_package_has_the_version_of_the_headers(self):
        for lines, found in {(self.wheel("other", self.other_dll), self.good): "6.0.1", (): "missing"}.items():
            self.list(*lines)
            self.assert_cannot(
                self.run_tool(),
                f"the headers of Qt are {VERSION} and Qt6Core.dll is {found}: "
                "name a package with the headers' version first in windows/qt-wheels.txt",
            )
            self.assertEqual(self.left(), [])

    def test_disk_is_full(self):
        built = "libc++, RapidCheck and the runtime could not be built"
        why = "write: No space left on device"
        for failing, step in {
            " -m pip ": "Qt for Windows, good==1, could not be fetched",
            "unpack-qt-wheel": "Qt for Windows, good==1, could not be unpacked",
            "cp -R": "the headers of Qt could not be copied",
            "kernel32.dll": "the import libraries could not be made",
            " source ": "the source of installed installed could not be fetched",
            "tar -xf": "the sources of libc++ and RapidCheck could not be unpacked",
            "cmake -S": built,
            "cmake --build": built,
            "cmake --install": built,
        }.items():
            with self.subTest(failing=failing):
                self.assert_fails(self.run_tool(FAILING=failing, FAILING_SAYS=f"error: odd\n{why}\n"), step, why)
                self.assertIn(failing, self.called()[-1])
