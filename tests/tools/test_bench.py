"""tools/bench, plot-bench and write-performance-page: what they make of figures. The measuring programs are fakes."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

TOOLS = Path(__file__).resolve().parents[2] / "tools"

ROWS = """
heap_at_most = 1.2
registry_at_most = 1.2
[[row]]
operation = "quick work"
floor_is = "less work"
measured = "work/product"
floor = "work/floor"
judged = "time"
at_most = 1.5
allocations = 0
[[row]]
operation = "steady work"
floor_is = "less work"
measured = "work/product"
floor = "work/floor"
judged = "instructions"
at_most = 1.2
[[row]]
operation = "told only"
floor_is = "less work"
measured = "work/product"
floor = "work/floor"
judged = "time"
"""
SUBJECTS = ["work/product", "work/floor", "registry-0/product", "registry-10/product", "registry-100/product"]


def figures():
    """What the programs say of a library that meets all targets."""
    return {
        "times": {"work/product": [14, 13, 19], "work/floor": [10, 11, 10],
                  "registry-0/product": [100], "registry-10/product": [700], "registry-100/product": [6100]},
        "instructions": {"work/product": 115, "work/floor": 100,
                         "registry-0/product": 1000, "registry-10/product": 7000, "registry-100/product": 61000},
        "allocations": dict.fromkeys(SUBJECTS, 0),
        "heap": {"device": 110, "blocks": 3, "parts": {"body": 60, "text": 20}, "qt": 20},
    }


class BenchTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)
        self.rows = self.scratch / "rows.toml"
        self.rows.write_text(ROWS, encoding="utf-8")
        self.figures = figures()

    def fake(self, name, text):
        program = self.scratch / name
        program.write_text(f"#!{sys.executable} -B\nimport json, sys\nfrom pathlib import Path\n{text}", encoding="utf-8")
        program.chmod(0o755)
        return program

    def make_programs(self):
        """Two fakes: the measuring program, and valgrind, which writes one dump for each subject."""
        exact = {"allocations": self.figures["allocations"], "heap": self.figures["heap"]}
        runs = [
            {"run_type": "iteration", "run_name": f"{name}/process_time", "cpu_time": time}
            for name, times in self.figures["times"].items()
            for time in times
        ]
        runs.append({"run_type": "aggregate", "run_name": "work/product", "cpu_time": 0.1})
        self.fake("measure", f"""
words = " ".join(sys.argv[1:])
open({str(self.scratch / "calls")!r}, "a").write(words + "\\n")
if words == "--exact":
    print({json.dumps(exact)!r})
else:
    out = [word for word in sys.argv if word.startswith("--benchmark_out=")][0].split("=")[1]
    Path(out).write_text({json.dumps({"benchmarks": runs})!r})
""")
        # The costs of callees are not a function's own, and one dump, at the program's end, belongs to no subject.
        dump = "desc: Trigger: Client Request: {} 10\\nsummary: 1\\nfn=(1) a\\n0 {}\\ncalls=5 0\\n0 999999\\n+3 {}\\n* 4\\n"
        self.fake("valgrind", f"""
out = [word for word in sys.argv if word.startswith("--callgrind-out-file=")][0].split("=")[1]
for number, (name, count) in enumerate({self.figures["instructions"]!r}.items()):
    Path(out + "." + str(number)).write_text("{dump}".format(name, 10 * count - 10, 6))
Path(out).write_text("desc: Trigger: Program termination\\n0 5\\n")
""")

    def bench(self, *words):
        self.make_programs()
        return self.run_tool("bench", "--program", self.scratch / "measure", "--rows", self.rows,
                             "--folder", self.scratch / "out", *words)

    def run_tool(self, name, *words):
        environment = dict(os.environ, PATH=f"{self.scratch}:{os.environ['PATH']}")
        return subprocess.run([sys.executable, "-B", TOOLS / name, *words], capture_output=True, text=True, check=False,
                              env=environment)

    def results(self):
        return json.loads((self.scratch / "out" / "bench.json").read_text(encoding="utf-8"))


class Judging(BenchTest):
    def assert_missed(self, sentence, *words):
        process = self.bench(*words)
        self.assertEqual((process.stderr, process.returncode), (f"bench: {sentence}\n", 1))
        return process

    def test_all_met(self):
        process = self.bench()
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        row = self.results()["rows"][0]
        self.assertEqual((row["time"], row["floor_time"], row["time_ratio"]), (13, 10, 1.3))
        self.assertEqual((row["instructions"], row["floor_instructions"]), (115, 100))
        self.assertEqual(row["instructions_ratio"], 1.15)
        lines = process.stdout.splitlines()
        self.assertEqual(lines[1].split(), "quick work 13.0 ns 10.0 ns 1.30 1.15 1.5t 0".split())
        self.assertNotIn("missed", process.stdout)

    def test_time(self):
        self.figures["times"]["work/product"] = [15.2, 16]
        process = self.assert_missed("quick work: 1.52 times its floor in time, at most 1.5")
        self.assertRegex(process.stdout, r"(?m)^quick work .*  missed$")

    def test_quick_judges_no_time(self):
        self.figures["times"]["work/product"] = [99]
        process = self.bench("quick")
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        self.assertIn("--benchmark_repetitions=1 ", (self.scratch / "calls").read_text(encoding="utf-8"))
        self.assertTrue(self.results()["is_quick"])

    def test_instructions(self):
        self.figures["instructions"]["work/product"] = 121
        for words in ((), ("quick",)):
            with self.subTest(words=words):
                self.assert_missed("steady work: 1.21 times its floor in instructions, at most 1.2", *words)

    def test_allocations(self):
        self.figures["allocations"]["work/product"] = 1
        self.assert_missed("quick work: 1 allocations a call, at most 0", "quick")

    def test_heap(self):
        self.figures["heap"]["device"] = 121
        self.assert_missed("heap for one started device: 1.21 times its parts, at most 1.2", "quick")

    def test_registry(self):
        self.figures["instructions"]["registry-100/product"] = 1000 + 200 * 361
        self.assert_missed("registering devices: a signal costs up to 1.20 times as much, at most 1.2", "quick")

    def test_registry_in_which_more_cost_less(self):
        self.figures["instructions"]["registry-10/product"] = 900
        self.assert_missed("a signal costs -5.0 instructions: more devices take less than fewer", "quick")

    def test_subject_that_is_not_measured(self):
        del self.figures["instructions"]["work/floor"]
        self.assert_missed("work/floor has no count of instructions; benchmarks/rows.toml and the program differ")
        self.assertFalse((self.scratch / "out").exists())

    def test_program_that_fails(self):
        self.make_programs()
        program = self.fake("broken", 'print("no library", file=sys.stderr)\nsys.exit(3)\n')
        process = self.run_tool("bench", "--program", program, "--rows", self.rows)
        self.assertEqual(process.returncode, 1)
        self.assertEqual(process.stderr, f"bench: {program} --exact ended with exit code 3: no library\n")


class Refusals(BenchTest):
    def assert_refused(self, part, *words):
        process = self.bench(*words)
        self.assertEqual((process.stdout, process.returncode, len(process.stderr.splitlines())), ("", 2, 1))
        self.assertIn(part, process.stderr)
        self.assertFalse((self.scratch / "out").exists())

    def test_words(self):
        self.assert_refused("invalid choice: 'slow'", "slow")
        self.assert_refused("build it first: ./dev build bench", "--program", self.scratch / "none")
        self.assert_refused("cannot be read", "--rows", self.scratch / "none")

    def test_rows(self):
        for text, part in {
            "row = ": "is no TOML",
            "": "names no row",
            ROWS.replace("heap_at_most = 1.2", ""): "no heap_at_most",
            ROWS.replace('judged = "instructions"', 'judged = "weight"'): "is judged by 'weight'",
            ROWS.replace("\nat_most =", "\nat_mots =", 1): "has 'at_mots' (there are: allocations, at_most",
            ROWS.replace('floor = "work/floor"', "", 1): "the row 'quick work' has no floor",
        }.items():
            with self.subTest(part=part):
                self.rows.write_text(text, encoding="utf-8")
                self.assert_refused(part)


class Pages(BenchTest):
    def write(self):
        self.page = self.scratch / "docs"
        self.page.mkdir(exist_ok=True)
        # The share of a core is told of these two.
        rows = self.results()
        for row, name in zip(rows["rows"], ("mouse-unchanged/product", "mouse-button/product")):
            row["measured"] = name
        source = self.scratch / "named.json"
        source.write_text(json.dumps(rows), encoding="utf-8")
        return self.run_tool("write-performance-page", source, self.page)

    def test_page_and_plot(self):
        self.figures["instructions"]["work/product"] = 130
        self.bench()
        process = self.write()
        self.assertEqual((process.stderr, process.returncode), ("", 0))
        page = (self.page / "performance.md").read_text(encoding="utf-8")
        self.assertIn("| quick work | less work | 13.0 | 10.0 | **1.30** | 130 | 1.30 | 1.5 | 0 |", page)
        self.assertIn("| steady work | less work | 13.0 | 10.0 | 1.30 | 130 | **1.30** | 1.2 **missed** | 0 |", page)
        self.assertIn("takes 13.0 ns: 0.0104 % of one core", page)
        plot = ElementTree.parse(self.page / "performance.svg")
        rectangles = plot.findall(".//{http://www.w3.org/2000/svg}rect")
        self.assertEqual([each.get("class") for each in rectangles], ["met", "missed", "met", "met"])

    def test_quick_figures_make_no_page(self):
        self.bench("quick")
        process = self.write()
        self.assertEqual((process.returncode, len(process.stderr.splitlines())), (2, 1))
        self.assertIn("quick run", process.stderr)
        self.assertEqual(list(self.page.iterdir()), [])

    def test_refusals(self):
        source = self.scratch / "bench.json"
        source.write_text("{}", encoding="utf-8")
        plot = self.scratch / "plot.svg"
        for words in (["plot-bench"], ["plot-bench", source, plot], ["plot-bench", self.scratch / "none", plot],
                      ["write-performance-page"], ["write-performance-page", source, self.scratch]):
            with self.subTest(words=words):
                process = self.run_tool(*words)
                self.assertEqual((process.stdout, process.returncode, len(process.stderr.splitlines())), ("", 2, 1))
                self.assertFalse(plot.exists())


if __name__ == "__main__":
    unittest.main()
