"""tools/check-test-count: no test goes missing unnoticed."""

from sandbox import ToolTest

EXPECTED = "# counts\nscript 4\ntst_Dpi 3\n"
CASES = ("initTestCase", "rangeIsKept(low)", "cleanupTestCase")


class CheckTestCount(ToolTest):
    tool = "check-test-count"

    def setUp(self):
        super().setUp()
        self.copy_tool()
        self.folder = self.base / "native-asan"
        self.results = self.folder / "test-results" / "tst_Dpi.xml"
        self.ran()
        self.cases()
        self.expect()

    def expect(self, more="", text=EXPECTED):
        self.expected = self.write("tests/expected-counts.txt", text + more)

    def ran(self, more="", script="...\nRan 4 tests in 0.1s\n\nOK", status="run"):
        self.write(
            "native-asan/ctest.xml",
            f'<testsuite><testcase name="tst_Dpi" status="run"/>{more}<testcase name="script" status="{status}">'
            f"<properties/><system-out>{script}</system-out></testcase></testsuite>",
        )

    def cases(self, *names, inside=""):
        text = "".join(f'<testcase name="{name}">{inside}</testcase>' for name in names or CASES)
        self.write("native-asan/test-results/tst_Dpi.xml", f"<testsuite>{text}</testsuite>")

    def leave_out(self, text):
        self.write("native-asan/left-out-tests.txt", text)

    def check(self, *options):
        return self.run_tool(self.folder, *options)

    def assert_fails(self, *lines):
        self.assert_ends(self.check(), 1, *lines)

    def assert_differs(self, line):
        advice = f"if the change is meant, write the new numbers: tools/check-test-count {self.folder} --write"
        self.assert_fails(line, advice)

    def assert_damaged(self, part):
        self.assert_refused(part, self.folder)
        self.assert_refused(part, self.folder, "--write")

    def test_as_expected(self):
        self.assert_ends(self.check(), 0, out="2 tests with 7 test cases ran, as expected\n")

    def test_differences(self):
        for text, line in {
            "script 5\ntst_Dpi 3\n": "script: expected 5, ran 4",
            "script 4\ntst_Dpi 2\n": "tst_Dpi: expected 2, ran 3",
            f"{EXPECTED}gone 1\n": "gone: expected 1, but it did not run",
            f"{EXPECTED}tst_Gone 9\n": "tst_Gone: expected 9, but it did not run",
            "script 4\n": "tst_Dpi: ran 3, but is not expected",
        }.items():
            with self.subTest(line):
                self.expect(text=text)
                self.assert_differs(line)

    def test_script_that_does_not_say_its_number_counts_as_one(self):
        self.ran(script="all is well")
        self.assert_differs("script: expected 4, ran 1")

    def test_nothing_but_what_qt_adds_is_no_test(self):
        self.cases("initTestCase", "cleanupTestCase")
        self.assert_fails("tst_Dpi: it ran no test case")
        self.write("native-asan/test-results/tst_Dpi.xml", "<testsuite/>")
        self.assert_fails("tst_Dpi: it ran no test case")
        self.cases()
        self.ran(script="Ran 0 tests in 0.0s\n\nOK")
        self.assert_fails("script: it ran no test case")

    def test_skips_and_failures(self):
        for outcome in ("skipped", "failure", "error"):
            self.cases("one", inside=f"<{outcome}/>")
            self.assert_fails(f"tst_Dpi: one has the outcome '{outcome}'")
        before = self.content()
        self.assertEqual((self.check("--write").returncode, self.content()), (1, before))

    def test_programs_and_results_belong_together(self):
        other = self.write("native-asan/test-results/tst_Old.xml", "<testsuite/>")
        self.assert_fails(f"tst_Old: {other} belongs to no test that ran")
        other.unlink()
        self.results.unlink()
        self.assert_fails(f"tst_Dpi: it wrote no {self.results}")

    def test_program_that_ctest_did_not_run(self):
        self.ran(status="disabled")
        self.assert_fails("script: ctest says 'disabled' instead of running it to its end")

    def test_nothing_ran(self):
        self.write("native-asan/ctest.xml", "<testsuite/>")
        self.results.unlink()
        self.assert_fails("no test ran at all")

    def test_damaged_files(self):
        self.results.write_text("<testsuite>", encoding="utf-8")
        self.assert_damaged(f"{self.results} cannot be read (no element found: line 1, column 11)")
        (self.folder / "ctest.xml").unlink()
        self.assert_damaged("ctest.xml is missing; run all tests of that build first: ./dev test PRESET")

    def test_damaged_list(self):
        for line in ("tst_Dpi three", "tst_Dpi", "a 1 sometimes asan", "a 1 only"):
            self.expect(text=f"# fine\n{line}\n")
            self.assert_damaged(f"{self.expected}:2: '{line}' is not NAME COUNT [only|without BUILD...]")
        self.expect(text="tst_Dpi 3\ntst_Dpi 4\n")
        self.assert_damaged(f"{self.expected}:2: tst_Dpi is there twice")

    def test_left_out_as_the_list_says(self):
        for builds in ("only windows", "without asan", "without tsan native", "without native-asan asan"):
            with self.subTest(builds):
                self.expect(f"tst_Unix 5 {builds}\n")
                self.leave_out("tst_Unix reads ELF (no such files here)\n")
                said = "2 tests with 7 test cases ran, as expected\nleft out: tst_Unix (reads ELF (no such files here))\n"
                self.assert_ends(self.check(), 0, out=said)
                self.leave_out("")
                self.assert_differs("tst_Unix: expected 5, but it did not run")

    def test_left_out_otherwise(self):
        self.leave_out("tst_Unix no ELF\n")
        for builds in ("", "only asan", "only native windows", "without tsan"):
            with self.subTest(builds):
                self.expect(f"tst_Unix 5 {builds}".rstrip() + "\n")
                self.assert_differs("tst_Unix: left out (no ELF), but expected 5 in this build")
        self.expect()
        self.assert_differs("tst_Unix: left out (no ELF), but expected 0 in this build")

    def test_runs_though_it_is_left_out(self):
        self.leave_out("script no shell\n")
        self.assert_differs("script: ran 4, though this build leaves it out")
        self.leave_out("")
        self.expect(text="script 4 only windows\ntst_Dpi 3\n")
        self.assert_differs("script: ran 4, though this build leaves it out")

    def test_write(self):
        """Keeps the builds, and the number of what is left out here; drops what is gone everywhere."""
        self.expect(text="# old\ngone 9\ntst_Dpi 7 without windows\ntst_Unix 5 without asan\n")
        self.leave_out("tst_Unix no ELF\n")
        process = self.check("--write")
        self.assert_ends(process, 0, out=f"{self.expected}: wrote 2 tests, 7 test cases\n")
        comment, *lines = self.expected.read_text(encoding="utf-8").splitlines()
        self.assertIn("tools/check-test-count", comment)
        self.assertEqual(lines, ["script 4", "tst_Dpi 3 without windows", "tst_Unix 5 without asan"])
        self.assertEqual(self.check().returncode, 0)
        self.expected.unlink()
        self.assert_refused("expected-counts.txt is missing; make it with --write", self.folder)
