"""tools/code-coverage: what was not reached is told, and each reason that does not hold any more."""

import json
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

from sandbox import REPOSITORY

# Answers the first call with what was counted, and the second one by looking at what it is given.
FAKE_GCOVR = """#!/bin/bash
printf '%s\\n' "$*" >>"$BASE/calls"
[[ ! -e $BASE/failing ]] || { echo '(ERROR) no such gcov' >&2; exit 64; }
while (($#)); do
    case $1 in
        --json) cp "$BASE/counted.json" "$2" ;;
        --add-tracefile) cp "$2" "$BASE/judged.json" ;;
        --html-details) echo page >"$2" ;;
    esac
    shift
done
"""
SOURCE = """int Thing::answer(int limit)
{
    if (limit == 5)
        return twice();
    deviceDebug() << "text";
    return twice();
}
"""
LIST = """[[pattern]]
expression = 'deviceDebug'
reason = "The macro's."

[[files]]
file = "plugin/Thing_win.cpp"
reason = "Not here."
"""


def line(number, count, *branches):
    return {"line_number": number, "count": count, "branches": [{"count": branch} for branch in branches]}


class CodeCoverageTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = Path(os.path.realpath(folder.name))
        self.build = self.base / "build"
        self.write("plugin/Thing.cpp", SOURCE)
        self.write("plugin/Thing_win.cpp", SOURCE)
        self.write("tests/coverage/unreached.toml", LIST)
        self.write("build/plugin/objects/Thing.cpp.gcda", "")
        self.write("bin/gcovr", FAKE_GCOVR)
        (self.base / "bin" / "gcovr").chmod(0o755)
        (self.base / "plugin").mkdir()
        self.count(line(1, 2), line(3, 2, 1, 1), line(4, 1), line(5, 1, 1, 0), line(6, 1))

    def write(self, name, text):
        path = self.base / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def count(self, *lines):
        self.write("counted.json", json.dumps({"files": [{"file": "plugin/Thing.cpp", "lines": list(lines)}]}))

    def leave_out(self, kind, text, more=""):
        self.write(
            "tests/coverage/unreached.toml",
            f"{LIST}[[{kind}]]\nfile = \"plugin/Thing.cpp\"\ntexts = ['{text}']\n{more}reason = \"So it is.\"\n",
        )

    def judge(self, **changes):
        environment = os.environ | {"PATH": f"{self.base}/bin:/usr/bin:/bin", "BASE": str(self.base)} | changes
        return subprocess.run(
            [REPOSITORY / "tools" / "code-coverage", self.build, "--repository", self.base],
            capture_output=True,
            text=True,
            check=False,
            env=environment,
        )

    def assert_problems(self, *problems):
        process = self.judge()
        self.assertEqual(
            (process.stderr.splitlines(), process.returncode),
            ([f"code-coverage: {problem}" for problem in problems], 1 if problems else 0),
        )
        return process.stdout

    def assert_refused(self, sentence, **changes):
        process = self.judge(**changes)
        self.assertEqual((process.stderr, process.stdout, process.returncode), (f"code-coverage: {sentence}\n", "", 2))


class Counts(CodeCoverageTest):
    def test_all_reached(self):
        out = self.assert_problems()
        self.assertEqual(
            out.splitlines(),
            [
                "file                                          lines    of           branches    of",
                "plugin/Thing.cpp                                  5     5   100.0 %        2     2   100.0 %",
                "all                                               5     5   100.0 %        2     2   100.0 %",
                f"the same with the sources: {self.build}/coverage/index.html",
            ],
        )
        self.assertTrue((self.build / "coverage" / "index.html").exists())

    def test_page_shows_what_was_judged(self):
        self.assert_problems()
        judged = json.loads((self.base / "judged.json").read_text(encoding="utf-8"))
        self.assertEqual(judged["files"][0]["lines"][3], line(5, 1))

    def test_line(self):
        self.count(line(3, 2, 1, 1), line(4, 0), line(5, 1, 1, 0), line(6, 1))
        out = self.assert_problems("plugin/Thing.cpp:4: never reached: return twice();")
        self.assertIn("all                                               3     4    75.0 %        2     2   100.0 %", out)

    def test_branch(self):
        self.count(line(3, 2, 2, 0, 0), line(5, 1, 1, 0))
        self.assert_problems("plugin/Thing.cpp:3: 2 of 3 branches never taken: if (limit == 5)")

    def test_line_that_is_no_code(self):
        self.count(line(5, 1, 1, 0), line(7, 0) | {"gcovr/noncode": True})
        self.assertIn("     1     1   100.0 %", self.assert_problems())

    def test_source_that_nothing_counted(self):
        self.write("plugin/Other.cpp", SOURCE)
        self.assert_problems("plugin/Other.cpp: nothing of it was counted; is it part of the library?")


class LeftOut(CodeCoverageTest):
    def setUp(self):
        super().setUp()
        self.count(line(3, 2, 2, 0), line(4, 0), line(5, 1, 1, 0), line(6, 1))

    def assert_list_problem(self, problem, *others):
        self.assert_problems(f"tests/coverage/unreached.toml: {problem}", *others)

    def test_branches_and_lines(self):
        self.leave_out("branches", "if (limit == 5)")
        self.assert_problems("plugin/Thing.cpp:4: never reached: return twice();")
        self.leave_out("lines", "return twice();", "at = 1\n")
        self.assert_problems("plugin/Thing.cpp:3: 1 of 2 branches never taken: if (limit == 5)")

    def test_text_that_is_gone(self):
        self.count(line(5, 1, 1, 0))
        self.leave_out("lines", "return thrice();")
        self.assert_list_problem("plugin/Thing.cpp has no line 'return thrice();' any more")

    def test_text_that_stands_there_twice(self):
        self.count(line(5, 1, 1, 0))
        self.leave_out("lines", "return twice();")
        self.assert_list_problem("'return twice();' stands in plugin/Thing.cpp 2 times; say which with at = 1 and so on")
        self.leave_out("lines", "return twice();", "at = 3\n")
        self.assert_list_problem("plugin/Thing.cpp has no 'return twice();' number 3")

    def test_what_is_reached_after_all(self):
        self.count(line(3, 2, 1, 1), line(5, 1, 1, 0), line(6, 1))
        self.leave_out("branches", "if (limit == 5)")
        self.assert_list_problem("plugin/Thing.cpp:3: nothing is left to be reached in 'if (limit == 5)'")
        self.leave_out("lines", "return twice();", "at = 2\n")
        self.assert_list_problem("plugin/Thing.cpp:6: nothing is left to be reached in 'return twice();'")

    def test_pattern_that_matches_nothing(self):
        self.count(line(6, 1))
        self.assert_list_problem("no line that was counted matches 'deviceDebug'")

    def test_file_that_is_counted_or_gone(self):
        (self.base / "device" / "Thing_win.cpp").unlink()
        self.count(line(5, 1, 1, 0))
        self.assert_list_problem("plugin/Thing_win.cpp is counted, or is not there any more")


class BadInput(CodeCoverageTest):
    def test_nothing_was_run(self):
        (self.build / "plugin" / "objects" / "Thing.cpp.gcda").unlink()
        self.assert_refused(f"no run of the library was counted in {self.build}; run ./dev coverage")

    def test_list_that_is_none(self):
        path = self.base / "tests" / "coverage" / "unreached.toml"
        self.write("tests/coverage/unreached.toml", "[[line]]\n")
        self.assert_refused(f"{path}: there is no [[line]] (there are: lines, branches, pattern, files)")
        for text in ('[[files]]\nfile = "a"\n', '[[files]]\nfile = "a"\nreason = ""\n'):
            self.write("tests/coverage/unreached.toml", text)
            process = self.judge()
            self.assertIn("each [[files]] needs file, reason", process.stderr)
            self.assertEqual((process.stdout, process.returncode), ("", 2))
        self.write("tests/coverage/unreached.toml", "[[files]\n")
        self.assertEqual(self.judge().returncode, 2)
        self.write("tests/coverage/unreached.toml", LIST.replace("'deviceDebug'", "'('"))
        self.assertIn("'(' is no regular expression", self.judge().stderr)

    def test_gcovr_is_missing(self):
        (self.base / "bin" / "gcovr").unlink()
        (self.base / "bin" / "python3").symlink_to("/usr/bin/python3")
        self.assert_refused(
            "gcovr cannot be run (No such file or directory); it is in the toolbox: ./dev coverage",
            PATH=str(self.base / "bin") + ":" + str(self.linked("env")),
        )

    def linked(self, name):
        folder = self.base / "only"
        folder.mkdir()
        (folder / name).symlink_to(f"/usr/bin/{name}")
        return folder

    def test_gcovr_fails(self):
        self.write("failing", "")
        process = self.judge()
        self.assertIn("gcovr failed: (ERROR) no such gcov; repeat it: gcovr --root", process.stderr)
        self.assertEqual((len(process.stderr.splitlines()), process.stdout, process.returncode), (1, "", 2))


if __name__ == "__main__":
    unittest.main()
