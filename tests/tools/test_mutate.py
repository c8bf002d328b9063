"""What tools/mutate changes, what counts as killed, and what it refuses."""

import contextlib
import importlib.machinery
import importlib.util
import io
import subprocess
import sys
from pathlib import Path

from sandbox import REPOSITORY, ToolTest

TOOL = REPOSITORY / "tools" / "mutate"

SOURCE = """#include "Thing.h"

int Thing::answer(int limit) const
{
    // A comment with == and 5 stays.
    if (limit == 5 && m_isOpen) {  // so does this
        log() << "too much";
        m_count = 0;
        // And this.
        close();
    }
    return m_count - 1;
}
"""
CONDITION = "if (limit == 5 && m_isOpen) {"
CHANGES = (
    f"{CONDITION}  =>  if (limit != 5 && m_isOpen) {{",
    f"{CONDITION}  =>  if (limit == 5 || m_isOpen) {{",
    f"{CONDITION}  =>  if (limit == 6 && m_isOpen) {{",
    f"{CONDITION}  =>  if (true) {{",
    f"{CONDITION}  =>  if (false) {{",
    'log() << "too much";  =>  log() << "too much~";',
    "m_count = 0;  =>  m_count = 1;",
    "return m_count - 1;  =>  return m_count + 1;",
    "return m_count - 1;  =>  return m_count - 2;",
    'remove  log() << "too much";',
    "remove  m_count = 0;",
    "remove  close();",
    'swap  log() << "too much";  <->  m_count = 0;',
    "swap  m_count = 0;  <->  close();",
)
LINE = "plugin/Thing.cpp: change 0\n"


def load():
    """The tool as a module of its own, whose names a test may change."""
    sys.path.insert(0, str(TOOL.parent))
    loader = importlib.machinery.SourceFileLoader("mutate", str(TOOL))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
    loader.exec_module(module)
    sys.path.pop(0)
    return module


class Mutate(ToolTest):
    tool = "mutate"

    def setUp(self):
        super().setUp()
        self.module = load()

    def test_changes(self):
        mutants = list(self.module.mutants_of(self.write("Thing.cpp", SOURCE)))
        self.assertEqual(sorted(description for _, description, _ in mutants), sorted(CHANGES))
        texts = [text for _, _, text in mutants]
        self.assertEqual(len({SOURCE, *texts}), len(texts) + 1)
        for text in texts:
            self.assertTrue(text.startswith('#include "Thing.h"\n'))
            self.assertIn("// A comment with == and 5 stays.\n", text)
            self.assertIn("        // And this.\n", text)
        lines = {description: number for number, description, _ in mutants}
        self.assertEqual(lines["remove  close();"], 10)

    def test_statements_of_different_blocks_do_not_change_places(self):
        for code in ("    one();\n    }\n    two();\n", "    one();\n        two();\n", "    one();\n    return 2;\n"):
            mutants = self.module.mutants_of(self.write("Thing.cpp", code))
            self.assertEqual([text for _, text, _ in mutants if text.startswith("swap")], [])

    def killer(self, nearest, kvx=0, **codes):
        """What kills a mutant where programs end with these codes, and which of them ran, with which library."""
        for name, code in {"kvx": kvx, **codes}.items():
            folder = {"kvx": "", "tst_Model": "tests/model/", "tst_Timeline": "tests/simulator/"}.get(name, "tests/features/")
            script = f"#!/bin/sh\necho ${{0##*/}} $KVX_PLUGIN_FILE $* >> {self.base}/ran\nexit {code}\n"
            self.write(f"{folder}{name}", script, 0o755)
        workshop = self.module.Workshop.__new__(self.module.Workshop)
        workshop.build = Path("mutant")
        workshop.kvx = self.module.kvx_of(self.base)
        workshop.programs = self.module.test_programs(self.base)
        found = workshop.killer(nearest)
        return found, [line.split() for line in (self.base / "ran").read_text(encoding="utf-8").splitlines()]

    def test_scenarios_are_first_and_the_model_is_last(self):
        found, ran = self.killer("Settings", tst_Dpi=0, tst_Settings=0, tst_Model=0, tst_Timeline=0)
        library = f"mutant/{self.module.PLUGIN_FILE}"
        self.assertEqual(found, (None, False))
        self.assertEqual(ran[0][:5], ["kvx", library, "check", library, "settings"])
        self.assertEqual(ran[1:], [[name, library] for name in ("tst_Settings", "tst_Dpi", "tst_Model")])

    def test_the_first_that_fails_is_the_last_to_run(self):
        found, ran = self.killer("Dpi", tst_Dpi=0, tst_Settings=3, tst_Model=1)
        self.assertEqual((found, [name for name, *_ in ran]), (("tst_Settings", False), ["kvx", "tst_Dpi", "tst_Settings"]))

    def test_check_without_an_answer_kills_nothing(self):
        """2 is a library that cannot be loaded: the unchanged product passed with the same words."""
        for code in (1, 2):
            self.assertEqual(self.killer("Dpi", kvx=code, tst_Dpi=0)[0], ("kvx", False))
        with self.assertRaisesRegex(self.module.BadInput, "kvx check could not run all scenarios; run .*/kvx check"):
            self.killer("Dpi", kvx=3, tst_Dpi=0)

    def test_all_scenarios_are_run(self):
        for path in (REPOSITORY / "plugin").glob("*.cpp"):
            folders = self.module.scenarios_for(path.stem.split("_")[-1])
            self.assertEqual(sorted(folders), sorted(entry.stem for entry in (REPOSITORY / "contract").iterdir()))
        for nearest, folder in (("ActiveDpiSlot", "active-slot"), ("Dpi", "dpi-range"), ("Lifecycle", "life-cycle")):
            self.assertEqual(self.module.scenarios_for(nearest)[0], folder)

    def test_outcome_of_a_program(self):
        """What comes after the first failure is not waited for."""
        for text, outcome, limit in (
            ("echo 'PASS   : tst_Thing::works()'", "survived", 90),
            ("exit 1", "killed", 90),
            ("kill -SEGV $$", "killed", 90),
            ("echo 'FAIL!  : tst_Thing::works() no'; exec sleep 1000", "killed", 90),
            ("echo 'pass       log/one'; echo 'fail       log/two'; exec sleep 1000", "killed", 90),
            ("echo 'crash      log/one'; exec sleep 1000", "killed", 90),
            ("echo 'timeout    log/one'; exec sleep 1000", "hangs", 90),
            ("exec sleep 1000", "hangs", 0.2),
        ):
            with self.subTest(text):
                self.module.HANGS_AFTER = limit
                program = self.write("tst_Thing", f"#!/bin/sh\n{text}\n", 0o755)
                self.assertEqual(self.module.outcome_of([program], {}), outcome)

    def test_report(self):
        """An explanation of a file that was not changed is no concern; each survivor needs a line of its own."""
        stale = f"explains what does not survive: {LINE}"
        for outcomes, explained, code, counts, complaint in (
            (["killed", "hangs", "invalid", "killed"], "", 0, "2 killed, 1 hang, 1 do not compile, 0 explained, 0", ""),
            (["survived"], "", 1, "0 killed, 0 hang, 0 do not compile, 0 explained, 1", ""),
            (["killed", "survived"], f"# Why.\n{LINE}", 0, "1 killed, 0 hang, 0 do not compile, 1 explained, 0", ""),
            (["survived", "survived"], LINE, 1, "0 killed, 0 hang, 0 do not compile, 1 explained, 1", ""),
            (["survived", "survived"], 2 * LINE, 0, "0 killed, 0 hang, 0 do not compile, 2 explained, 0", ""),
            (["survived", "killed"], 2 * LINE, 1, "1 killed, 0 hang, 0 do not compile, 1 explained, 0", stale),
            (["killed"], LINE, 1, "1 killed, 0 hang, 0 do not compile, 0 explained, 0", stale),
            (["killed"], "plugin/Other.cpp: change 0\n", 0, "1 killed, 0 hang, 0 do not compile, 0 explained, 0", ""),
        ):
            with self.subTest(outcomes=outcomes, explained=explained):
                self.module.EXPLAINED = self.write("explained.txt", explained)
                mutants = [self.module.Mutant(Path("plugin/Thing.cpp"), 1, "change 0", "")] * len(outcomes)
                said, complained = io.StringIO(), io.StringIO()
                with contextlib.redirect_stdout(said), contextlib.redirect_stderr(complained):
                    self.assertEqual(self.module.report(mutants, outcomes, {"plugin/Thing.cpp"}), code)
                self.assertEqual(said.getvalue(), f"{len(outcomes)} mutants: {counts} survived\n")
                self.assertTrue(complained.getvalue().endswith(complaint))
                self.assertEqual(complained.getvalue() == "", complaint == "")

    def test_explanations_are_of_mutants_that_are_made(self):
        self.module.check_explanations()
        known = self.module.EXPLAINED.read_text(encoding="utf-8")
        self.module.EXPLAINED = self.write("explained.txt", known + "plugin/Gone.cpp: remove  gone();\n")
        with self.assertRaisesRegex(self.module.BadInput, r"not made any more, remove it: plugin/Gone.cpp: remove  gone"):
            self.module.check_explanations()

    def test_list_of_a_file(self):
        listed = self.run_tool("--list", REPOSITORY / "plugin/LogicalDevice_DpiButton.cpp")
        self.assertEqual((listed.stderr, listed.returncode), ("", 0))
        self.assertIn("remove  setDpiButtonIdChangePending(isAccepted);", listed.stdout)
        # It may be cut short.
        process = subprocess.run(f"'{TOOL}' --list | head -n 1", shell=True, capture_output=True, text=True, check=False)
        self.assertEqual((process.stdout.count("\n"), process.stderr), (1, ""))

    def test_refusals(self):
        for name in ("README.md", str(REPOSITORY / "plugin/OwnLibrary_win.cpp")):
            self.assert_refused(f'"{name}" is no file of the product that is changed; name files in plugin/', name)
        self.assert_refused("--jobs is 0; one at a time is the least", "--jobs", "0")
        self.assert_refused("--fast", "--fast")
        self.assert_refused("there is no kvx in ", "--build", "/nowhere")
        self.write("build/kvx", mode=0o755)
        self.assert_refused("there are no test programs in ", "--build", self.base / "build")
