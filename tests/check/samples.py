"""The sample reports, as the command that the test was called with writes them."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SAMPLE_COMMAND = sys.argv[1:]

VERDICTS = {
    "identity/type": "pass",
    "entry-points/windows": "skipped",
    "dpi-button/refused": "waived",
    "report-rate/refused": "fail",
    "log/hostile": "fail",
    "session": "fail",
    "log/texts": "fail",
    "settings/capability": "crash",
    "threads/getters": "timeout",
    "registry/wrong": "kit error",
}


class ReportTest(unittest.TestCase):
    """A test of reports, which are written to a folder of its own."""

    suffix = ""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="kvx-reports-")
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)

    def write(self, sample, file, **options):
        # From within the folder: a path has another form on another system.
        command = [*SAMPLE_COMMAND, sample, file]
        return subprocess.run(
            command, cwd=self.folder, capture_output=True, text=True, check=False, encoding="utf-8", **options
        )

    def report(self, sample):
        """The path of the report."""
        file = f"{sample}.{self.suffix}"
        result = self.write(sample, file)
        self.assertEqual((result.stderr, result.returncode), ("", 0))
        return self.folder / file

    def assert_all_or_nothing(self):
        """A file that cannot be written is named, with the reason; nothing is left in its folder."""
        (self.folder / f"taken.{self.suffix}").mkdir()
        for file in (f"nowhere/report.{self.suffix}", f"taken.{self.suffix}"):
            result = self.write("broken", file)
            self.assertRegex(result.stderr, rf"^{file} cannot be written: .+\n$")
            self.assertEqual(result.returncode, 1)
        self.assertEqual([path.name for path in self.folder.rglob("*")], [f"taken.{self.suffix}"])
