"""tools/fuzz-readers: how it runs the programs of libFuzzer and what it makes of what they say. They are fakes here."""

from sandbox import ToolTest

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


class FuzzReaders(ToolTest):
    tool = "fuzz-readers"

    def program(self, name, behaviour):
        return self.write(f"build/tests/fuzz/fuzz_{name}", FAKE + behaviour, 0o755)

    def add_readers(self, **behaviours):
        for name, behaviour in behaviours.items():
            self.write(f"corpus/{name}/seed", "x")
            self.program(name, behaviour)

    def fuzz(self, *words):
        return self.run_tool("--build", self.base / "build", "--corpus", self.base / "corpus", *words)

    def words_of_call(self, name):
        return (self.base / f"build/tests/fuzz/fuzz_{name}.call").read_text(encoding="utf-8").splitlines()

    def assert_bad(self, part, *words):
        self.assert_refused(part, "--build", "build", "--corpus", "corpus", *words)

    def test_every_reader_gets_an_equal_share(self):
        self.add_readers(Words=WELL, Bytes=WELL)
        for words, share in ((["11"], 5), ([], 30)):
            process = self.fuzz(*words)
            self.assertEqual((process.stderr, process.returncode), ("", 0))
            rows = [line.split() for line in process.stdout.splitlines()]
            self.assertEqual(rows[0], ["reader", "executions", "seconds", "edges", "features"])
            self.assertEqual([row[:2] + row[3:] for row in rows[1:]], [[n, "4321", "70", "81"] for n in ("Bytes", "Words")])
            for name in ("Bytes", "Words"):
                self.assertIn(f"-max_total_time={share}", self.words_of_call(name))

    def test_new_inputs_go_to_the_build_folder(self):
        self.add_readers(Words=WELL)
        self.fuzz("3")
        folders = [word for word in self.words_of_call("Words") if not word.startswith("-")]
        self.assertEqual(folders, [f"{self.base}/build/fuzz/corpus/Words", f"{self.base}/corpus/Words"])
        self.assertTrue((self.base / "build/fuzz/corpus/Words").is_dir())
        self.assertEqual([path.name for path in (self.base / "corpus/Words").iterdir()], ["seed"])

    def test_a_finding_is_named_and_the_others_still_run(self):
        self.add_readers(Bytes=FINDING, Words=WELL)
        process = self.fuzz("4")
        self.assertEqual((process.returncode, len(process.stderr.splitlines())), (1, 1))
        for part in ("Bytes: /findings/crash-1 breaks it", "a defect means no metadata", "fuzz_Bytes /findings/crash-1"):
            self.assertIn(part, process.stderr)
        self.assertEqual([line.split()[1] for line in process.stdout.splitlines()[1:]], ["12", "4321"])

    def test_programs_that_do_not_work(self):
        log = self.base / "build/fuzz/logs/Words.txt"
        for behaviour, line in {
            "echo no such library; exit 127\n": f"the program ended with exit code 127 and named no input; see {log}",
            "echo no such library; exit 0\n": f"the program did not say how much it ran; see {log}",
        }.items():
            self.setUp()
            log = self.base / "build/fuzz/logs/Words.txt"
            self.add_readers(Words=behaviour)
            process = self.fuzz("4")
            self.assertEqual((process.returncode, process.stderr.count("\n")), (1, 1))
            self.assertIn(line.rpartition("; see")[0], process.stderr)
            self.assertIn(str(log), process.stderr)
            self.assertEqual(log.read_text(encoding="utf-8"), "no such library\n")

    def test_bad_usage(self):
        self.assert_bad("holds no corpus")
        self.add_readers(Words=WELL, Bytes=WELL)
        for word in ("0", "-1", "1.5", "ten", "", "1e3", "1234567", "٣"):
            with self.subTest(word=word):
                self.assert_bad("" if word.startswith("-") else "seconds", "--", word)
        self.assert_bad("too few", "1")
        self.assert_bad("unrecognized", "10", "20")
        self.assert_bad("--nothing", "--nothing")
        self.program("Words", "").unlink()
        self.assert_bad("./dev build fuzz")
