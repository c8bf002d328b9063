"""tools/check-test-count: no test goes missing unnoticed."""

import subprocess
import tempfile
import unittest
from pathlib import Path

from sandbox import REPOSITORY


class CheckTestCountTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name) / "a build"
        self.expected = Path(folder.name) / "expected.txt"
        (self.folder / "test-results").mkdir(parents=True)
        self.write_ctest("tst_Dpi", "dev_script")
        self.write_results("tst_Dpi", ["initTestCase", "rangeIsKept(low)", "cleanupTestCase"])
        self.expected.write_text("# counts\ndev_script 1\ntst_Dpi 3\n", encoding="utf-8")

    def write_ctest(self, *names, **statuses):
        tests = {name: "run" for name in names} | statuses
        cases = "".join(f'<testcase name="{name}" status="{status}"/>' for name, status in tests.items())
        (self.folder / "ctest.xml").write_text(f"<testsuite>{cases}</testsuite>", encoding="utf-8")

    def write_results(self, name, cases, inside=""):
        text = "".join(f'<testcase name="{case}">{inside}</testcase>' for case in cases)
        (self.folder / "test-results" / f"{name}.xml").write_text(f"<testsuite>{text}</testsuite>", encoding="utf-8")

    def check(self, *options):
        return subprocess.run(
            [REPOSITORY / "tools" / "check-test-count", self.folder, "--expected", self.expected, *options],
            capture_output=True,
            text=True,
            check=False,
        )

    def assert_says(self, code, *lines):
        process = self.check()
        self.assertEqual(
            (process.stderr.splitlines(), process.stdout, process.returncode),
            ([f"check-test-count: {line}" for line in lines], "", code),
        )

    def remedy(self):
        return f"if the change is meant, write the new numbers: tools/check-test-count {self.folder} --write"


class Counts(CheckTestCountTest):
    def test_as_expected(self):
        process = self.check()
        self.assertEqual(
            (process.stdout, process.stderr, process.returncode),
            ("2 tests with 4 test cases ran, as expected\n", "", 0),
        )

    def test_fewer_cases(self):
        self.write_results("tst_Dpi", ["initTestCase", "cleanupTestCase"])
        self.assert_says(1, "tst_Dpi: expected 3, ran 2", self.remedy())

    def test_vanished_programs(self):
        self.expected.write_text("dev_script 1\ngone 1\ntst_Dpi 3\ntst_Gone 9\n", encoding="utf-8")
        self.assert_says(
            1, "gone: expected 1, but it did not run", "tst_Gone: expected 9, but it did not run", self.remedy()
        )

    def test_new_program(self):
        self.expected.write_text("dev_script 1\n", encoding="utf-8")
        self.assert_says(1, "tst_Dpi: ran 3, but is not expected", self.remedy())

    def test_program_without_results(self):
        (self.folder / "test-results" / "tst_Dpi.xml").unlink()
        self.assert_says(1, f"tst_Dpi: it wrote no {self.folder}/test-results/tst_Dpi.xml")

    def test_results_without_program(self):
        self.write_results("tst_Old", ["initTestCase"])
        self.assert_says(1, f"tst_Old: {self.folder}/test-results/tst_Old.xml belongs to no test that ran")

    def test_skips_and_failures(self):
        for outcome in ("skipped", "failure", "error"):
            self.write_results("tst_Dpi", ["one"], f"<{outcome}/>")
            self.assert_says(1, f"tst_Dpi: one has the outcome '{outcome}'")

    def test_program_that_ctest_did_not_run(self):
        self.write_ctest("tst_Dpi", dev_script="disabled")
        self.assert_says(1, "dev_script: ctest says 'disabled' instead of running it to its end")

    def test_empty_results(self):
        self.write_results("tst_Dpi", [])
        self.assert_says(1, "tst_Dpi: its results hold no test case")

    def test_nothing_ran(self):
        self.write_ctest()
        (self.folder / "test-results" / "tst_Dpi.xml").unlink()
        self.assert_says(1, "no test ran at all")

    def test_missing_run(self):
        (self.folder / "ctest.xml").unlink()
        self.assert_says(
            2, f"{self.folder}/ctest.xml is missing; run all tests of that build first: ./dev test PRESET"
        )

    def test_damaged_results(self):
        file = self.folder / "test-results" / "tst_Dpi.xml"
        file.write_text("<testsuite>", encoding="utf-8")
        self.assert_says(2, f"{file} cannot be read (no element found: line 1, column 11)")

    def test_damaged_expectation(self):
        self.expected.write_text("# fine\ntst_Dpi three\n", encoding="utf-8")
        self.assert_says(2, f"{self.expected}:2: expected a test's name and a number, not 'tst_Dpi three'")
        self.expected.write_text("tst_Dpi 3\ntst_Dpi 4\n", encoding="utf-8")
        self.assert_says(2, f"{self.expected}:2: tst_Dpi stands there twice")

    def test_write_keeps_the_comment(self):
        self.write_results("tst_Dpi", ["one"])
        self.assertEqual(self.check("--write").returncode, 0)
        self.assertEqual(self.expected.read_text(encoding="utf-8"), "# counts\ndev_script 1\ntst_Dpi 1\n")
        self.assertEqual(self.check().returncode, 0)

    def test_write_refuses_a_run_with_skips(self):
        self.write_results("tst_Dpi", ["one"], "<skipped/>")
        before = self.expected.read_text(encoding="utf-8")
        self.assertEqual(self.check("--write").returncode, 1)
        self.assertEqual(self.expected.read_text(encoding="utf-8"), before)


class LeftOut(CheckTestCountTest):
    """FOLDER/left-out-tests.txt: a build says which tests it does not have, and why."""

    def setUp(self):
        super().setUp()
        self.expected.write_text("# counts\ndev_script 1\ntst_Dpi 3\ntst_Unix 5\n", encoding="utf-8")
        self.leave_out("tst_Unix reads ELF (no such files here)")

    def leave_out(self, *lines):
        self.list = self.folder / "left-out-tests.txt"
        self.list.write_text("".join(f"{line}\n" for line in lines), encoding="utf-8")

    def test_is_no_failure_and_is_told_with_the_reason(self):
        process = self.check()
        self.assertEqual(
            (process.stdout.splitlines(), process.stderr, process.returncode),
            (
                [
                    "2 tests with 4 test cases ran, as expected",
                    "left out: tst_Unix (reads ELF (no such files here))",
                ],
                "",
                0,
            ),
        )

    def test_empty_list_leaves_out_nothing(self):
        self.leave_out()
        self.assert_says(1, "tst_Unix: expected 5, but it did not run", self.remedy())

    def test_another_test_may_not_be_missing(self):
        self.expected.write_text("dev_script 1\ngone 1\ntst_Dpi 3\ntst_Unix 5\n", encoding="utf-8")
        self.assert_says(1, "gone: expected 1, but it did not run", self.remedy())

    def test_that_ran(self):
        self.leave_out("tst_Unix no ELF", "dev_script no shell")
        self.assert_says(1, "dev_script: ran, though it is to be left out (no shell)", self.remedy())

    def test_that_no_build_is_expected_to_run(self):
        self.leave_out("tst_Unix no ELF", "tst_Misspelt no ELF")
        self.assert_says(1, "tst_Misspelt: left out here, and expected nowhere", self.remedy())

    def test_without_reason(self):
        for line in ("tst_Unix", "tst_Unix ", "tst_Unix   "):
            with self.subTest(line=line):
                self.leave_out(line)
                self.assert_says(2, f"{self.list}: '{line}' names no reason")

    def test_write_keeps_its_number(self):
        self.write_results("tst_Dpi", ["one"])
        process = self.check("--write")
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        self.assertEqual(self.expected.read_text(encoding="utf-8"), "# counts\ndev_script 1\ntst_Dpi 1\ntst_Unix 5\n")
        self.assertEqual(self.check().returncode, 0)

    def test_write_drops_what_is_gone_everywhere(self):
        self.expected.write_text("# counts\ngone 9\ntst_Unix 5\n", encoding="utf-8")
        self.assertEqual(self.check("--write").returncode, 0)
        self.assertEqual(self.expected.read_text(encoding="utf-8"), "# counts\ndev_script 1\ntst_Dpi 3\ntst_Unix 5\n")

    def test_write_changes_nothing_when_a_reason_is_missing(self):
        self.leave_out("tst_Unix")
        before = self.expected.read_text(encoding="utf-8")
        self.assertEqual(self.check("--write").returncode, 2)
        self.assertEqual(self.expected.read_text(encoding="utf-8"), before)
