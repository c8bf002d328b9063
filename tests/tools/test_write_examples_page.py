"""What tools/write-examples-page refuses. What it writes is compared with kvx by tst_KvxRun."""

import subprocess
import sys
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "write-examples-page"
PAGE = TOOL.parent.parent / "docs" / "examples.md"


class Usage(unittest.TestCase):
    def assert_refused(self, code, *words):
        before = PAGE.read_bytes()
        process = subprocess.run([sys.executable, "-B", TOOL, *words], capture_output=True, text=True, check=False)
        self.assertEqual(process.returncode, code)
        self.assertTrue(process.stderr.startswith("write-examples-page: "), process.stderr)
        self.assertEqual(PAGE.read_bytes(), before)

    def test_no_program(self):
        self.assert_refused(2)

    def test_missing_program(self):
        self.assert_refused(2, "/nowhere/kvx")

    def test_program_that_fails(self):
        self.assert_refused(1, "/bin/false")


if __name__ == "__main__":
    unittest.main()
