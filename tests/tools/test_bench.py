"""tools/bench: what it makes of figures. The measuring program and valgrind are fakes."""

import json
import os
import sys

from sandbox import ToolTest

ROWS = """
"work" = { instructions = 110, allocations = 2 }
"heap" = { blocks = 3, bytes = 40 }
"""
PAGE = "before\n<!-- table -->\nold\n<!-- end -->\nafter\n"
ADVICE = ("make it cheaper; if the cost is justified, run ./dev bench --write-budgets and commit the new budgets with the "
          "reason")
# The costs of callees are not a function's own.
DUMP = "desc: Trigger: Client Request: {} 10\nsummary: 1\nfn=(1) a\n0 {}\ncalls=5 0\n0 999999\n+3 4\n* 6\n"
# One dump, at the program's end, belongs to no operation.
FAKE_VALGRIND = """
out = [word for word in sys.argv if word.startswith("--callgrind-out-file=")][0].split("=")[1]
for number, dump in enumerate({!r}):
    Path(out + "." + str(number)).write_text(dump)
"""
PROGRAM = "build/release/benchmarks/measure"


class Bench(ToolTest):
    tool = "bench"

    def setUp(self):
        super().setUp()
        self.copy_tool()
        self.rows = self.write("benchmarks/rows.toml", ROWS)
        self.page = self.write("docs/performance.md", PAGE)
        self.costs = {
            "work": {"allocations": 2.004, "time": 13},
            "work/floor": {"allocations": 0, "time": 10.5},
            "heap": {"blocks": 3, "bytes": 40},
        }
        self.instructions = {"work": 110, "work/floor": 88}

    def fake(self, name, text):
        return self.write(name, f"#!{sys.executable} -B\nimport sys\nfrom pathlib import Path\n{text}", 0o755)

    def make_fakes(self):
        entries = [{"name": name, **costs} for name, costs in self.costs.items()]
        self.fake(PROGRAM, f"print({json.dumps(entries)!r})")
        dumps = [DUMP.format(name, 10 * count - 10) for name, count in self.instructions.items()]
        self.fake("valgrind", FAKE_VALGRIND.format([*dumps, "desc: Trigger: Program termination"]))

    def run_tool(self, *words, **variables):
        return super().run_tool(*words, PATH=f"{self.base}:{os.environ['PATH']}", **variables)

    def bench(self, *words):
        self.make_fakes()
        return self.run_tool(*words)

    def assert_over(self, *problems):
        process = self.bench()
        self.assert_ends(process, 1, *problems, ADVICE, out=process.stdout)
        self.assertIn("\nwork  ", process.stdout)

    def assert_not_measured(self, sentence, *words):
        before = self.content()
        self.assert_ends(self.run_tool(*words), 1, sentence)
        self.assertEqual(self.content(), before)

    def test_within_budget(self):
        process = self.bench()
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        lines = [" ".join(line.split()) for line in process.stdout.splitlines()]
        self.assertEqual(lines[1:], ["work 110 110 88 1.25 2 2 13.0 10.5", "heap 3 3 40 40"])

    def test_over_budget(self):
        self.instructions["work"] = 1111
        self.assert_over("work: 1,111 instructions, budget 110")
        self.costs["work"]["allocations"] = 3
        self.costs["heap"] = {"blocks": 4, "bytes": 41}
        self.assert_over("work: 1,111 instructions, budget 110", "work: 3 allocations, budget 2",
                         "heap: 4 blocks, budget 3", "heap: 41 bytes, budget 40")

    def test_times_and_floors_decide_nothing(self):
        self.costs["work"]["time"] = 1e9
        self.instructions["work/floor"] = 11
        self.assertEqual(self.bench().returncode, 0)

    def test_budgets_are_of_what_is_measured(self):
        work, heap = self.costs["work"], self.costs["heap"]
        for name, costs in (("more", {"more": {"blocks": 1, "bytes": 2}, "work": work, "heap": heap}),
                            ("work", {"heap": heap}), ("heap", {"work": work, "heap": {"blocks": 3}})):
            self.costs = costs
            self.make_fakes()
            self.assert_not_measured(
                f"'{name}' does not have the same costs in {self.rows} as in {self.base / PROGRAM}; "
                "write budgets: ./dev bench --write-budgets"
            )

    def test_operation_that_is_not_counted(self):
        del self.instructions["work"]
        self.make_fakes()
        for words in ([], ["--write-budgets"]):
            self.assert_not_measured("callgrind counted nothing for 'work'; build again: ./dev bench", *words)

    def test_program_that_fails(self):
        program = self.fake(PROGRAM, 'print("no library", file=sys.stderr)\nsys.exit(3)\n')
        self.assert_not_measured(f"{program} ended with exit code 3: no library")
        program.unlink()
        self.assert_not_measured(f"{program} does not run (No such file or directory); ./dev bench builds it")

    def test_written_budgets_and_page(self):
        self.rows.unlink()
        process = self.bench("--write-budgets")
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        rows = self.rows.read_text(encoding="utf-8").splitlines()
        written = ['"work" = { instructions = 115, allocations = 2 }', '"heap" = { blocks = 3, bytes = 42 }']
        self.assertEqual(rows[-2:], written)
        page = self.page.read_text(encoding="utf-8").splitlines()
        self.assertEqual((page[:2], page[-2:]), (["before", "<!-- table -->"], ["<!-- end -->", "after"]))
        self.assertIn("| work | 110 | 115 | 88 | 1.25 | 2 | 2 |", page)
        self.assertNotIn("old", page)
        self.assertEqual(self.bench().returncode, 0)
        self.instructions["work"] = 116
        self.assertEqual(self.bench().returncode, 1)

    def test_refusals(self):
        self.make_fakes()
        self.assert_refused("unrecognized arguments: quick; see --help", "quick")
        for text in ("work = ", "work = 5", 'work = { instructions = "5" }'):
            self.write("benchmarks/rows.toml", text)
            self.assert_refused("rows.toml cannot be read (")
            self.assert_refused("); write it: ./dev bench --write-budgets")
        self.write("docs/performance.md", "no table\n")
        self.assert_refused("needs one line '<!-- table -->'", "--write-budgets")
