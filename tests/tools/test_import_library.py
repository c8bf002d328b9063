"""tools/import-library: what a program can link with the library that it makes. Compiler and linker are the real ones."""

import os
import shutil
import subprocess

import pefile

from sandbox import ToolTest

EXPORTS = """
namespace std { struct Text; }
template <typename Key> struct QMap;
__declspec(dllexport) void plain() {}
__declspec(dllexport) void listed(std::Text *) {}
__declspec(dllexport) void unlisted(std::Text *) {}
__declspec(dllexport) void mapped(QMap<int> *) {}
"""
LISTED = "?listed@@YAXPEAUText@std@@@Z"
ALIASES = f"# four words of comment\n\n?alias@@YAXXZ {LISTED}\n?another@@YAXXZ ?ofAnotherDll@@YAXXZ\n"


class ImportLibrary(ToolTest):
    tool = "import-library"

    def setUp(self):
        super().setUp()
        self.assertEqual(self.link("names", EXPORTS), "")
        self.write("aliases.txt", ALIASES)

    def run_here(self, *command):
        return subprocess.run(command, cwd=self.base, capture_output=True, text=True, check=False)

    def link(self, name, source, *libraries):
        """Makes a DLL from the source; returns what the linker says."""
        self.write(f"{name}.cpp", source)
        compiler = ["clang-cl-19", "--target=x86_64-pc-windows-msvc", "/nologo", "/c", f"{name}.cpp"]
        compiled = self.run_here(*compiler, f"/Fo{name}.obj")
        self.assertEqual(compiled.returncode, 0, compiled.stderr)
        linker = ["lld-link-19", "/machine:x64", "/dll", "/noentry", "/nodefaultlib", "/implib:linkers.lib"]
        return self.run_here(*linker, f"/out:{name}.dll", f"{name}.obj", *libraries).stderr

    def link_calls(self, *functions):
        declarations = "namespace std { struct Text; }" + "".join(f"void {function};" for function in functions)
        calls = "".join(f"{function.partition('(')[0]}({'0' if 'Text' in function else ''});" for function in functions)
        return self.link("caller", f"{declarations} __declspec(dllexport) void call() {{ {calls} }}", "names.lib")

    def test_functions_that_can_be_linked(self):
        # The file's name is not the DLL's own.
        shutil.move(self.base / "names.dll", self.base / "renamed.dll")
        self.assert_ends(self.run_tool("--aliases", "aliases.txt", "renamed.dll", "."), 0)
        self.assertFalse((self.base / "renamed.lib").exists())
        self.assertEqual(self.link_calls("plain()", "alias()", "listed(std::Text *)"), "")
        with pefile.PE(str(self.base / "caller.dll")) as caller:
            imports = {table.dll: {entry.name for entry in table.imports} for table in caller.DIRECTORY_ENTRY_IMPORT}
        self.assertEqual(imports, {b"names.dll": {b"?plain@@YAXXZ", LISTED.encode()}})
        for function in ("unlisted(std::Text *)", "another()"):
            self.assertIn("undefined symbol", self.link_calls(function))

    def test_without_aliases(self):
        self.assertEqual(self.run_tool("names.dll", ".").returncode, 0)
        for function in ("listed(std::Text *)", "alias()"):
            self.assertIn("undefined symbol", self.link_calls(function))

    def test_as_many_functions_as_qt_has(self):
        names = [f"function{number}()" for number in range(12_000)]
        self.assertEqual(self.link("names", "".join(f"__declspec(dllexport) void {name} {{}}\n" for name in names)), "")
        self.assert_ends(self.run_tool("names.dll", "."), 0)
        self.assertEqual(self.link_calls(*names), "")

    def test_failure_is_one_line(self):
        self.write("odd.txt", "one two three\n")
        self.assertEqual(self.link("silent", "int unseen;"), "")
        (self.base / "names.lib").mkdir()
        (self.base / "python3").symlink_to(shutil.which("python3"))
        for words, code, line in (
            (["odd.txt", "."], 2, "odd.txt is no DLL that exports anything"),
            (["silent.dll", "."], 2, "silent.dll is no DLL that exports anything"),
            (["missing.dll", "."], 2, "missing.dll is no DLL that exports anything"),
            (["names.dll", "missing"], 2, "missing is no folder"),
            (["--aliases", "missing", "names.dll", "."], 2, "missing cannot be read"),
            (["--aliases", "names.dll", "names.dll", "."], 2, "names.dll cannot be read"),
            (["--aliases", "odd.txt", "names.dll", "."], 2, "each line of odd.txt has two names"),
            (["names.dll", "."], 1, "llvm-lib-19 could not write names.lib (exit code 1)"),
            (["names.dll", "."], 1, "names.lib could not be written ([Errno 2] No such file"),
        ):
            with self.subTest(line=line):
                path = str(self.base) if "No such file" in line else os.environ["PATH"]
                self.assert_refused(f"import-library: {line}", *words, code=code, PATH=path)
