"""What tools/mutate changes, and what it refuses."""

import contextlib
import importlib.machinery
import importlib.util
import io
import shlex
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
TOOL = REPOSITORY / "tools" / "mutate"

SOURCE = """#include "Thing.h"

int Thing::answer(int limit) const
{
    // A comment with == and 5 stays.
    if (limit == 5 && m_isOpen) {
        log() << "too much";
        m_count = 0;
        close();
    }
    return m_count - 1;
}
"""


def load():
    loader = importlib.machinery.SourceFileLoader("mutate", str(TOOL))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
    loader.exec_module(module)
    return module


class Mutants(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = Path(folder.name) / "Thing.cpp"
        self.path.write_text(SOURCE)
        self.mutants = list(load().mutants_of(self.path))

    def descriptions(self):
        return [description for _, description, _ in self.mutants]

    def test_every_kind_of_change_is_made(self):
        condition = "if (limit == 5 && m_isOpen) {"
        for expected in (
            f"{condition}  =>  if (limit != 5 && m_isOpen) {{",
            f"{condition}  =>  if (limit == 5 || m_isOpen) {{",
            f"{condition}  =>  if (limit == 6 && m_isOpen) {{",
            f"{condition}  =>  if (true) {{",
            f"{condition}  =>  if (false) {{",
            'log() << "too much";  =>  log() << "too much~";',
            "m_count = 0;  =>  m_count = 1;",
            "remove  close();",
            'remove  log() << "too much";',
            "swap  m_count = 0;  <->  close();",
            "return m_count - 1;  =>  return m_count + 1;",
        ):
            self.assertIn(expected, self.descriptions())

    def test_swaps_that_nobody_sees_are_not_made(self):
        unseen = load().change_places_unseen
        self.assertTrue(unseen("m_a = 1;", "m_b = rate;"))
        self.assertTrue(unseen('deviceDebug() << "a";', "m_a = rate;"))
        self.assertFalse(unseen('deviceDebug() << "a" << m_a;', "m_a = rate;"))
        self.assertFalse(unseen('deviceDebug() << "a";', 'deviceDebug() << "b";'))
        self.assertFalse(unseen("m_a = 1;", "close();"))

    def test_comments_and_includes_stay(self):
        for _, _, text in self.mutants:
            self.assertIn("// A comment with == and 5 stays.\n", text)
            self.assertTrue(text.startswith('#include "Thing.h"\n'))

    def test_each_mutant_differs_from_the_source_and_from_the_others(self):
        texts = [text for _, _, text in self.mutants]
        self.assertNotIn(SOURCE, texts)
        self.assertEqual(len(texts), len(set(texts)))

    def test_line_numbers_are_those_of_the_source(self):
        lines = {description: number for number, description, _ in self.mutants}
        self.assertEqual(lines["remove  close();"], 9)


class Judges(unittest.TestCase):
    """Test programs that write their name into a file and end as told."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = Path(folder.name)
        self.tool = load()

    def add(self, name, code):
        path = self.build / "tests" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        script = f"#!/bin/sh\necho ${{0##*/}} $KVX_PLUGIN_FILE >> {self.build}/ran\nexit {code}\n"
        path.write_text(script, encoding="utf-8")
        path.chmod(0o755)

    def killer(self, nearest):
        workshop = self.tool.Workshop.__new__(self.tool.Workshop)
        workshop.build = Path("mutant")
        workshop.programs = self.tool.test_programs(self.build)
        found = workshop.killer(nearest)
        return found, [line.split() for line in (self.build / "ran").read_text(encoding="utf-8").splitlines()]

    def test_the_nearest_is_asked_first_and_the_model_last(self):
        for name in ("features/tst_Dpi", "features/tst_Settings", "model/tst_Model", "simulator/tst_Timeline"):
            self.add(name, 0)
        found, ran = self.killer("Settings")
        library = f"mutant/{self.tool.PLUGIN_FILE}"
        self.assertEqual(found, (None, False))
        self.assertEqual(ran, [[name, library] for name in ("tst_Settings", "tst_Dpi", "tst_Model")])

    def test_the_first_that_fails_is_the_last_to_run(self):
        self.add("features/tst_Dpi", 0)
        self.add("features/tst_Settings", 3)
        self.add("model/tst_Model", 1)
        found, ran = self.killer("Dpi")
        self.assertEqual(found, ("tst_Settings", False))
        self.assertEqual([name for name, _ in ran], ["tst_Dpi", "tst_Settings"])


class Outcomes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.program = Path(folder.name) / "tst_Thing"
        self.tool = load()

    def outcome(self, text):
        self.program.write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
        self.program.chmod(0o755)
        return self.tool.outcome_of(self.program, {})

    def test_exit_code(self):
        self.assertEqual(self.outcome("echo 'PASS   : tst_Thing::works()'"), "survived")
        self.assertEqual(self.outcome("exit 1"), "killed")
        self.assertEqual(self.outcome("kill -SEGV $$"), "killed")

    def test_first_failure_is_enough(self):
        # Whatever comes after it is not waited for.
        self.assertEqual(self.outcome("echo 'FAIL!  : tst_Thing::works() no'; exec sleep 1000"), "killed")

    def test_what_hangs(self):
        self.tool.HANGS_AFTER = 0.2
        self.assertEqual(self.outcome("exec sleep 1000"), "hangs")


class Report(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tool = load()
        self.tool.EXPLAINED = Path(folder.name) / "explained.txt"

    def report(self, outcomes, explained="", same=False):
        self.tool.EXPLAINED.write_text(explained, encoding="utf-8")
        file = Path("plugin/Thing.cpp")
        mutants = [self.tool.Mutant(file, line, f"change {0 if same else line}", "") for line in range(len(outcomes))]
        said, complained = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(said), contextlib.redirect_stderr(complained):
            code = self.tool.report(mutants, outcomes, {str(file)})
        return code, said.getvalue(), complained.getvalue()

    def test_every_outcome_is_counted(self):
        self.assertEqual(
            self.report(["killed", "hangs", "invalid", "killed"]),
            (0, "4 mutants: 2 killed, 1 hang, 1 do not compile, 0 explained, 0 survived\n", ""),
        )

    def test_survivor(self):
        self.assertEqual(
            self.report(["survived"]), (1, "1 mutants: 0 killed, 0 hang, 0 do not compile, 0 explained, 1 survived\n", "")
        )

    def test_explained_survivor(self):
        self.assertEqual(
            self.report(["killed", "survived"], "# Nobody sees it.\ndevice/Thing.cpp: change 1\n"),
            (0, "2 mutants: 1 killed, 0 hang, 0 do not compile, 1 explained, 0 survived\n", ""),
        )

    def test_each_survivor_needs_a_line(self):
        line = "plugin/Thing.cpp: change 0\n"
        survived = ["survived", "survived"]
        self.assertEqual(self.report(survived, line, same=True)[0], 1)
        self.assertEqual(self.report(survived, 2 * line, same=True)[0], 0)
        self.assertEqual(self.report(["survived", "killed"], 2 * line, same=True)[0], 1)

    def test_explanation_of_what_is_killed(self):
        code, _, complaint = self.report(["killed"], "plugin/Thing.cpp: change 0\n")
        self.assertEqual(
            (code, complaint), (1, "mutate: explained.txt explains what does not survive: plugin/Thing.cpp: change 0\n")
        )

    def test_explanations_of_files_that_were_not_changed_stay(self):
        self.assertEqual(self.report(["killed"], "plugin/Other.cpp: change 0\n")[0], 0)


class Usage(unittest.TestCase):
    def run_tool(self, *words):
        return subprocess.run(
            [sys.executable, "-B", TOOL, *words], capture_output=True, text=True, cwd=REPOSITORY, check=False
        )

    def test_lists_the_mutants_of_a_file(self):
        process = self.run_tool("--list", "plugin/LogicalDevice_DpiButton.cpp")
        self.assertEqual(process.returncode, 0)
        self.assertIn("remove  setDpiButtonIdChangePending(isAccepted);", process.stdout)

    def test_refuses_a_file_that_is_none_of_the_product(self):
        process = self.run_tool("README.md")
        self.assertEqual(process.returncode, 2)
        self.assertEqual(
            process.stderr, 'mutate: "README.md" is no file of the product; name files in plugin/\n'
        )

    def test_list_may_be_cut_short(self):
        command = f"{shlex.quote(sys.executable)} -B {shlex.quote(str(TOOL))} --list | head -n 1"
        process = subprocess.run(command, shell=True, capture_output=True, text=True, check=False)
        self.assertEqual((len(process.stdout.splitlines()), process.stderr), (1, ""))

    def test_refuses_no_jobs(self):
        process = self.run_tool("--jobs", "0")
        self.assertEqual((process.returncode, process.stderr), (2, "mutate: --jobs is 0; one at a time is the least\n"))

    def test_refuses_an_unknown_option(self):
        self.assertEqual(self.run_tool("--fast").returncode, 2)


if __name__ == "__main__":
    unittest.main()
