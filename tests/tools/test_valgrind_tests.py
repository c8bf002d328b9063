"""tools/valgrind-tests: which programs it runs, how, and what it makes of what they say. ctest and valgrind are fakes."""

import json

from sandbox import SandboxTest

# Ends and prints as the file beside the program tells it to.
FAKE_VALGRIND = r"""
for word in "$@"; do
    [[ $word != */tst_* ]] || program=$word
done
printf 'rounds %s, operations %s\n' "${KVX_LIFECYCLE_ROUNDS:-all}" "${KVX_MODEL_OPERATIONS:-all}"
[[ ! -e $program.says ]] || cat "$program.says"
exit "$(cat "$program.code" 2>/dev/null || echo 0)"
"""

LEAK = "==7== 1,024 bytes in 1 blocks are definitely lost in loss record 9 of 9"
WRITE = "==7== Invalid write of size 4\n==7==    at 0x1: LogicalDevice::start() (LogicalDevice_Lifecycle.cpp:12)"


class ValgrindTests(SandboxTest):
    def setUp(self):
        super().setUp()
        self.folder = self.sandbox.base / "build" / "release"
        self.folder.mkdir(parents=True)
        (self.folder / "CTestTestfile.cmake").write_text("", encoding="utf-8")
        self.sandbox.fake("valgrind", FAKE_VALGRIND)
        self.add_tests("tst_Dpi", "tst_Threads", "tst_Model", "tst_LibraryLifecycle", "abi_exported_symbols")

    def add_tests(self, *names):
        tests = [{"name": name, "command": [str(self.folder / name), "-o", "x"]} for name in names]
        listing = self.sandbox.base / "tests.json"
        listing.write_text(json.dumps({"tests": tests}), encoding="utf-8")
        self.sandbox.fake("ctest", f'cat "{listing}"\n')

    def says(self, program, text, code):
        (self.folder / f"{program}.says").write_text(text + "\n", encoding="utf-8")
        (self.folder / f"{program}.code").write_text(str(code), encoding="utf-8")

    def run_tool(self, *words):
        return self.sandbox.run_script("tools/valgrind-tests", *words)

    def rows(self, process):
        """What was said of each program, by its name."""
        return {line.split()[0]: line.split(" s  ", 1)[1] for line in process.out.splitlines() if " s  " in line}

    def test_all_programs_run_and_nothing_else(self):
        process = self.run_tool(str(self.folder))
        self.assertEqual((process.returncode, process.err), (0, ""))
        self.assertEqual(sorted(self.rows(process)), ["tst_Dpi", "tst_LibraryLifecycle", "tst_Model", "tst_Threads"])
        self.assertRegex(process.out.splitlines()[-1], r"^4 of 4 programs clean, \d+ s$")

    def test_filter(self):
        process = self.run_tool(str(self.folder), "Dpi|Threads")
        self.assertEqual(self.rows(process), {"tst_Dpi": "clean", "tst_Threads": "clean"})

    def test_leaks_and_errors_are_looked_for(self):
        self.run_tool(str(self.folder), "Dpi")
        (call,) = self.sandbox.called("valgrind")
        for word in ("--leak-check=full", "--error-exitcode=99", "--errors-for-leak-kinds=definite,possible"):
            self.assertIn(word, call.split())

    def test_slow_programs_do_less_and_say_so(self):
        rows = self.rows(self.run_tool(str(self.folder)))
        self.assertEqual(rows["tst_Model"], "clean, KVX_MODEL_OPERATIONS=2000")
        self.assertEqual(rows["tst_LibraryLifecycle"], "clean, KVX_LIFECYCLE_ROUNDS=20")
        logs = self.folder / "valgrind"
        self.assertIn("rounds all, operations 2000", (logs / "tst_Model.log").read_text(encoding="utf-8"))
        self.assertIn("rounds 20, operations all", (logs / "tst_LibraryLifecycle.log").read_text(encoding="utf-8"))

    def test_program_that_counts_allocations_is_left_out_with_a_reason(self):
        self.add_tests("tst_Dpi", "tst_LifecycleMemory")
        process = self.run_tool(str(self.folder))
        self.assertRegex(process.out, r"(?m)^tst_LifecycleMemory +left out: valgrind takes the place")
        self.assertEqual([call.split("/")[-1] for call in self.sandbox.called("valgrind")], ["tst_Dpi"])
        process = self.run_tool(str(self.folder), "Memory")
        self.assertEqual(process.returncode, 2)
        self.assertIn("'Memory' matches none but what is left out", process.err)

    def test_suppressions_are_ours(self):
        self.run_tool(str(self.folder), "Dpi")
        (call,) = self.sandbox.called("valgrind")
        self.assertIn(f"--suppressions={self.sandbox.checkout}/tests/faults/valgrind-suppressions.txt", call)

    def test_finding_is_named(self):
        for text, sign in ((LEAK, "definitely lost"), (WRITE, "Invalid write of size 4")):
            with self.subTest(sign=sign):
                self.says("tst_Dpi", text, 99)
                process = self.run_tool(str(self.folder))
                self.assertEqual(process.returncode, 1)
                self.assertIn(sign, self.rows(process)["tst_Dpi"])
                self.assertIn(str(self.folder / "valgrind" / "tst_Dpi.log"), self.rows(process)["tst_Dpi"])
                self.assertRegex(process.out.splitlines()[-1], r"^3 of 4 programs clean")

    def test_failed_test_is_named(self):
        self.says("tst_Dpi", "FAIL!  : tst_Dpi::range() Compared values are not the same", 1)
        process = self.run_tool(str(self.folder), "Dpi")
        self.assertEqual(process.returncode, 1)
        self.assertIn("NOT CLEAN: FAIL!  : tst_Dpi::range()", process.out)

    def test_program_that_is_not_built(self):
        listing = self.sandbox.base / "tests.json"
        listing.write_text(json.dumps({"tests": [{"name": "tst_Dpi"}]}), encoding="utf-8")
        process = self.run_tool(str(self.folder))
        self.assertEqual(
            (process.err, process.returncode),
            ("valgrind-tests: tst_Dpi is not built; build it first: ./dev build release\n", 2),
        )

    def test_tests_that_cannot_be_listed(self):
        self.sandbox.fake("ctest", "exit 1\n")
        process = self.run_tool(str(self.folder))
        self.assertEqual(process.returncode, 2)
        self.assertRegex(process.err, r"^valgrind-tests: ctest cannot list the tests of .*; build it anew: .*\n$")

    def test_program_that_cannot_run(self):
        self.says("tst_Dpi", "valgrind: cannot find it", 127)
        process = self.run_tool(str(self.folder), "Dpi")
        self.assertIn("NOT CLEAN: exit code 127", process.out)

    def test_refusals(self):
        for words, sentence in {
            (str(self.folder), "Nothing"): "no test program's name matches 'Nothing' (they begin with tst_)",
            (str(self.folder), "("): "'(' is no regular expression",
            (str(self.sandbox.base / "release"),): "holds no tests; build it first: ./dev build release",
        }.items():
            with self.subTest(words=words):
                process = self.run_tool(*words)
                self.assertEqual((process.out, process.returncode, len(process.err.splitlines())), ("", 2, 1))
                self.assertIn(sentence, process.err)
        self.assertEqual(self.sandbox.called("valgrind"), [])
