"""tools/bench: what it makes of figures. The measuring program and valgrind are fakes."""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "bench"
ROWS = """
"work" = { instructions = 110, allocations = 2 }
"heap" = { blocks = 3, bytes = 40 }
"""
PAGE = "before\n<!-- table -->\nold\n<!-- end -->\nafter\n"
ADVICE = ("bench: make it cheaper; if the cost is justified, run ./dev bench --write-budgets and commit the new "
          "budgets with the reason\n")
# The costs of callees are not a function's own.
DUMP = "desc: Trigger: Client Request: {} 10\nsummary: 1\nfn=(1) a\n0 {}\ncalls=5 0\n0 999999\n+3 4\n* 6\n"


class BenchTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)
        self.tool = self.scratch / "tools" / "bench"
        self.rows = self.file("benchmarks/rows.toml", ROWS)
        self.page = self.file("docs/performance.md", PAGE)
        self.file("tools/bench", "")
        shutil.copy(TOOL, self.tool)
        self.costs = {
            "work": {"allocations": 2.004, "time": 13},
            "work/floor": {"allocations": 0, "time": 10.5},
            "heap": {"blocks": 3, "bytes": 40},
        }
        self.instructions = {"work": 110, "work/floor": 88}

    def file(self, name, text):
        path = self.scratch / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def fake(self, name, text):
        program = self.file(name, f"#!{sys.executable} -B\nimport sys\nfrom pathlib import Path\n{text}")
        program.chmod(0o755)

    def bench(self, *words):
        entries = [{"name": name, **costs} for name, costs in self.costs.items()]
        self.fake("build/release/benchmarks/measure", f"print({json.dumps(entries)!r})")
        dumps = [DUMP.format(name, 10 * count - 10) for name, count in self.instructions.items()]
        # One dump, at the program's end, belongs to no operation.
        self.fake("valgrind", f"""
out = [word for word in sys.argv if word.startswith("--callgrind-out-file=")][0].split("=")[1]
for number, dump in enumerate({[*dumps, "desc: Trigger: Program termination"]!r}):
    Path(out + "." + str(number)).write_text(dump)
""")
        return self.run_tool(*words)

    def run_tool(self, *words):
        environment = dict(os.environ, PATH=f"{self.scratch}:{os.environ['PATH']}")
        return subprocess.run([sys.executable, "-B", self.tool, *words], capture_output=True, text=True, check=False,
                              env=environment)

    def assert_failed(self, code, text, *words):
        process = self.bench(*words)
        self.assertEqual((process.stderr, process.returncode), (text, code))
        self.assertEqual(self.rows.read_text(encoding="utf-8"), self.text)
        self.assertEqual(self.page.read_text(encoding="utf-8"), PAGE)
        return process


class Comparing(BenchTest):
    text = ROWS

    def assert_over(self, text):
        process = self.assert_failed(1, f"bench: {text}\n{ADVICE}")
        self.assertIn("\nwork  ", process.stdout)

    def test_within_budget(self):
        process = self.bench()
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        lines = [" ".join(line.split()) for line in process.stdout.splitlines()]
        self.assertEqual(lines[1:], ["work 110 110 88 1.25 2 2 13.0 10.5", "heap 3 3 40 40"])

    def test_instructions(self):
        self.instructions["work"] = 1111
        self.assert_over("work: 1,111 instructions, budget 110")

    def test_allocations(self):
        self.costs["work"]["allocations"] = 3
        self.assert_over("work: 3 allocations, budget 2")

    def test_heap(self):
        self.costs["heap"] = {"blocks": 4, "bytes": 41}
        self.assert_over("heap: 4 blocks, budget 3\nbench: heap: 41 bytes, budget 40")

    def test_times_and_floors_decide_nothing(self):
        self.costs["work"]["time"] = 1e9
        self.instructions["work/floor"] = 11
        self.assertEqual(self.bench().returncode, 0)


class NotMeasured(BenchTest):
    text = ROWS

    def assert_differ(self, name):
        self.assert_failed(
            1,
            f"bench: '{name}' does not have the same costs in {self.rows} as in "
            f"{self.scratch}/build/release/benchmarks/measure; write budgets: ./dev bench --write-budgets\n",
        )

    def test_operation_without_budget(self):
        self.costs["more"] = {"blocks": 1, "bytes": 2}
        self.assert_differ("more")

    def test_budget_without_operation(self):
        del self.costs["work"]
        self.assert_differ("work")

    def test_other_cost(self):
        self.costs["heap"] = {"blocks": 3}
        self.assert_differ("heap")

    def test_operation_that_is_not_counted(self):
        del self.instructions["work"]
        for words in ((), ("--write-budgets",)):
            self.assert_failed(1, "bench: callgrind counted nothing for 'work'; build again: ./dev bench\n", *words)

    def test_program_that_fails(self):
        self.bench()
        self.fake("build/release/benchmarks/measure", 'print("no library", file=sys.stderr)\nsys.exit(3)\n')
        process = self.run_tool()
        program = self.scratch / "build/release/benchmarks/measure"
        self.assertEqual(process.stderr, f"bench: {program} ended with exit code 3: no library\n")
        self.assertEqual(process.returncode, 1)
        program.unlink()
        process = self.run_tool()
        sentence = f"bench: {program} does not run (No such file or directory); ./dev bench builds it\n"
        self.assertEqual(process.stderr, sentence)
        self.assertEqual(process.returncode, 1)


class Writing(BenchTest):
    def test_budgets_and_page(self):
        self.rows.unlink()
        process = self.bench("--write-budgets")
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        rows = self.rows.read_text(encoding="utf-8").splitlines()
        self.assertEqual(
            rows[-2:], ['"work" = { instructions = 115, allocations = 2 }', '"heap" = { blocks = 3, bytes = 42 }']
        )
        page = self.page.read_text(encoding="utf-8").splitlines()
        self.assertEqual((page[:2], page[-2:]), (["before", "<!-- table -->"], ["<!-- end -->", "after"]))
        self.assertIn("| work | 110 | 115 | 88 | 1.25 | 2 | 2 |", page)
        self.assertNotIn("old", page)
        self.assertEqual(self.bench().returncode, 0)
        self.instructions["work"] = 116
        self.assertEqual(self.bench().returncode, 1)


class Refusals(BenchTest):
    text = ROWS

    def test_words(self):
        self.assert_failed(2, "bench: 'quick' is not understood; say nothing, or --write-budgets\n", "quick")

    def test_rows(self):
        for self.text in ("work = ", "work = 5", 'work = { instructions = "5" }'):
            self.rows.write_text(self.text, encoding="utf-8")
            process = self.bench()
            self.assertRegex(process.stderr, r"^bench: .*rows.toml cannot be read \(.*\); write it: ./dev bench .*\n$")
            self.assertEqual((process.stdout, process.returncode), ("", 2))

    def test_page_without_a_place_for_the_table(self):
        self.page.write_text("no table\n", encoding="utf-8")
        process = self.bench("--write-budgets")
        self.assertEqual((process.stdout, process.returncode, len(process.stderr.splitlines())), ("", 2, 1))
        self.assertIn("needs one line '<!-- table -->'", process.stderr)
        self.assertEqual(self.rows.read_text(encoding="utf-8"), ROWS)


if __name__ == "__main__":
    unittest.main()
