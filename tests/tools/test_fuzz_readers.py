"""tools/fuzz-readers: how it runs the programs of libFuzzer and what it makes of what they say. They are fakes here."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "fuzz-readers"

# Writes down how it was called.
FAKE = '#!/bin/sh\nprintf "%s\\n" "$@" >"$0.call"\n'
WELL = """cat <<'END'
#2\tINITED cov: 5 ft: 6 corp: 1/1b
#4096\tNEW    cov: 70 ft: 81 corp: 2/3b
stat::number_of_executed_units: 4321
END
"""
FINDING = """cat <<'END'
#2\tINITED cov: 5 ft: 6 corp: 1/1b
broken: a defect means no metadata
==7== ERROR: libFuzzer: deadly signal
Test unit written to /findings/crash-1
stat::number_of_executed_units: 12
END
exit 77
"""


class FuzzReaders(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)
        self.corpus = self.scratch / "corpus"
        self.build = self.scratch / "build"
        self.programs = self.build / "tests" / "fuzz"
        self.programs.mkdir(parents=True)
        self.corpus.mkdir()

    def add_reader(self, name, behaviour=WELL):
        (self.corpus / name).mkdir()
        (self.corpus / name / "seed").write_bytes(b"x")
        program = self.programs / f"fuzz_{name}"
        program.write_text(FAKE + behaviour, encoding="utf-8")
        program.chmod(0o755)

    def run_tool(self, *words):
        return subprocess.run(
            [sys.executable, "-B", TOOL, "--build", self.build, "--corpus", self.corpus, *words],
            capture_output=True,
            text=True,
            check=False,
        )

    def words_of_call(self, name):
        return (self.programs / f"fuzz_{name}.call").read_text(encoding="utf-8").splitlines()

    def assert_refused(self, part, *words):
        before = sorted(self.scratch.rglob("*"))
        process = self.run_tool(*words)
        self.assertEqual((process.stdout, process.returncode, len(process.stderr.splitlines())), ("", 2, 1))
        self.assertIn(part, process.stderr)
        self.assertEqual(sorted(self.scratch.rglob("*")), before)

    def test_every_reader_gets_an_equal_share(self):
        self.add_reader("Words")
        self.add_reader("Bytes")
        process = self.run_tool("11")
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        rows = [line.split() for line in process.stdout.splitlines()]
        self.assertEqual(rows[0], ["reader", "executions", "seconds", "edges", "features"])
        self.assertEqual([row[0] for row in rows[1:]], ["Bytes", "Words"])
        for row in rows[1:]:
            self.assertEqual([row[1], row[3], row[4]], ["4321", "70", "81"])
        for name in ("Bytes", "Words"):
            self.assertIn("-max_total_time=5", self.words_of_call(name))

    def test_the_share_of_the_default_time(self):
        self.add_reader("Words")
        self.assertEqual(self.run_tool().returncode, 0)
        self.assertIn("-max_total_time=60", self.words_of_call("Words"))

    def test_new_inputs_go_to_the_build_folder(self):
        self.add_reader("Words")
        self.run_tool("3")
        folders = [word for word in self.words_of_call("Words") if not word.startswith("-")]
        self.assertEqual(folders, [str(self.build / "fuzz/corpus/Words"), str(self.corpus / "Words")])
        self.assertTrue((self.build / "fuzz/corpus/Words").is_dir())
        self.assertEqual([path.name for path in (self.corpus / "Words").iterdir()], ["seed"])

    def test_a_finding_is_named_and_the_others_still_run(self):
        self.add_reader("Bytes", FINDING)
        self.add_reader("Words")
        process = self.run_tool("4")
        self.assertEqual((process.returncode, len(process.stderr.splitlines())), (1, 1))
        for part in ("Bytes: /findings/crash-1 breaks it", "a defect means no metadata", "fuzz_Bytes /findings/crash-1"):
            self.assertIn(part, process.stderr)
        self.assertEqual([line.split()[1] for line in process.stdout.splitlines()[1:]], ["12", "4321"])

    def test_a_program_that_fails_without_an_input(self):
        self.add_reader("Words", "echo no such library; exit 127\n")
        process = self.run_tool("4")
        self.assertEqual(process.returncode, 1)
        self.assertIn("exit code 127", process.stderr)
        log = self.build / "fuzz/logs/Words.txt"
        self.assertIn(str(log), process.stderr)
        self.assertEqual(log.read_text(encoding="utf-8"), "no such library\n")

    def test_a_program_that_runs_nothing(self):
        self.add_reader("Words", "exit 0\n")
        process = self.run_tool("4")
        self.assertEqual(process.returncode, 1)
        self.assertIn("did not say how much it ran", process.stderr)

    def test_bad_usage(self):
        self.add_reader("Words")
        self.add_reader("Bytes")
        for word in ("0", "-1", "1.5", "ten", "", "1e3", "1234567", "٣"):
            with self.subTest(word=word):
                self.assert_refused("seconds" if not word.startswith("-") else "", "--", word)
        self.assert_refused("too few", "1")
        self.assert_refused("unrecognized", "10", "20")
        self.assert_refused("--nothing", "--nothing")

    def test_a_program_that_was_not_built(self):
        self.add_reader("Words")
        (self.programs / "fuzz_Words").unlink()
        self.assert_refused("./dev build fuzz")

    def test_no_corpus(self):
        self.assert_refused("holds no corpus")


if __name__ == "__main__":
    unittest.main()
