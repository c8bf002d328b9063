"""What ./dev prints, runs and refuses."""

import json
import shlex
import unittest

from sandbox import REPOSITORY, SandboxTest

PRESETS = "release, dev, asan, tsan, fuzz, coverage, tidy, windows"
NO_PRESET = f"no preset is called '{{}}' (there are: {PRESETS})"
HINT = "; to filter, name the preset first: ./dev test release '{}'"
NATIVE = "no preset is called '{}' (there are: release, dev, asan (native))"
NO_SECONDS = "'{}' is no number of seconds; write a whole one from 1 to 999999"
NO_DISPLAY = "no display: neither DISPLAY nor WAYLAND_DISPLAY is set; call this in a desktop session, or over ssh -X"
CLANG = "clang's tools in the version that the sources are checked with"

REFUSALS = {
    "biuld": "no verb is called 'biuld' (./dev help lists them)",
    "": "say what to do: ./dev help lists the verbs",
    "--nativ test": "no option is called '--nativ' (./dev help lists them)",
    "build fast": NO_PRESET.format("fast"),
    "test tst_Dpi": NO_PRESET.format("tst_Dpi") + HINT.format("tst_Dpi"),
    "build release asan": "build takes one PRESET at most",
    "test release a b": "test takes one PRESET and one FILTER at most",
    "shell bash": "shell takes no arguments",
    "format device": "format takes no arguments",
    "coverage device": "coverage takes no arguments",
    "package release": "package takes no argument but --twice",
    "valgrind tst_Dpi tst_Buttons": "valgrind takes one FILTER at most",
    "bench quick": "bench takes no argument but --write-budgets",
    "bench --write-budgets quick": "bench takes no argument but --write-budgets",
    "screenshots dark": "screenshots takes no arguments",
    "fuzz 1 2": "fuzz takes one number of SECONDS at most",
    "fuzz readers 1 2": "fuzz takes one number of SECONDS at most",
    "exec": "exec needs a COMMAND",
    "workbench": NO_DISPLAY,
    "--native workbench a.kvx": NO_DISPLAY,
    "lint spelling": "no check is called 'spelling' (there are: format tidy clazy shell python)",
    "--native fuzz readers": "fuzz readers needs the toolbox, which has clang with libFuzzer",
    "--native coverage": "coverage needs the toolbox, which has gcovr and the compiler whose counts it reads",
    "--native valgrind": "valgrind needs the toolbox, which has valgrind and a Qt that it knows",
    "--native bench": "bench needs the toolbox, which has valgrind and the compiler that the budgets are for",
    "--native screenshots": "screenshots needs the toolbox, which has the fonts of the pictures",
    "--native package": "package needs the toolbox, which has the Qt that we ship with",
    "--native lint": f"lint needs the toolbox, which has {CLANG}",
    "--native format": f"format needs the toolbox, which has {CLANG}",
}
for word in ("0", "-1", "1.5", "1s", "1000000", "reader", "''"):
    REFUSALS[f"fuzz {word}"] = REFUSALS[f"fuzz readers {word}"] = NO_SECONDS.format(word.strip("'"))
for preset in ("tsan", "fuzz", "coverage", "tidy", "windows"):
    REFUSALS[f"--native build {preset}"] = NATIVE.format(preset)
    REFUSALS[f"--native test {preset}"] = NATIVE.format(preset) + HINT.format(preset)


class Refusals(SandboxTest):
    def assert_refused(self, expected, *words, **changes):
        process = self.run_tool(*words, **changes)
        self.assertEqual((process.out, process.err, process.returncode), ("", f"./dev: {expected}\n", 2))
        self.assertEqual(self.called("cmake"), [])

    def test_words(self):
        for line, sentence in REFUSALS.items():
            with self.subTest(line):
                self.assert_refused(sentence, *shlex.split(line))

    def test_variables_that_change_what_tests_do(self):
        variables = "MODEL_OPERATIONS MODEL_SECONDS LIFECYCLE_ROUNDS PLUGIN_FILE TIMELINE_FOLDER"
        for name in [*(f"KVX_{word}" for word in variables.split()), "RC_PARAMS"]:
            for line in ("test", "--native test", "coverage", "valgrind", "mutate"):
                with self.subTest(name=name, line=line):
                    sentence = f"{name} is set and would change what the tests do; unset it"
                    self.assert_refused(sentence, *line.split(), **{name: ""})
                    self.assertEqual(self.run_tool("--dry-run", "exec", "true", **{name: "1"}).returncode, 0)

    def test_without_a_toolbox(self):
        """Known only after it was tried."""
        for line, sentence in {
            "build windows": NATIVE.format("windows"),
            "coverage": REFUSALS["--native coverage"],
        }.items():
            process = self.run_tool(*line.split(), BWRAP_FAILS="no namespaces")
            self.assertEqual((process.err.splitlines()[-1], process.returncode), (f"./dev: {sentence}", 2))
            self.assertEqual(self.called("cmake"), [])


def configure_and_build(preset, *options):
    return [f"cmake --preset {preset}", " ".join(["cmake --build --preset", preset, *options])]


MODEL = configure_and_build("release", "--target tst_Model")
MODEL_PROGRAM = "build/release/tests/model/tst_Model libraryAgreesWithTheModel"
FUZZ = [
    "cmake --build --preset fuzz --target fuzz_programs",
    "ctest --preset fuzz -C Fuzz -L '^fuzz$'",
    "grep -ahE '^[0-9]+/[0-9]+ Testing: |DONE ' build/fuzz/Testing/Temporary/LastTest.log",
]
MEASURE = configure_and_build("release", "--target measure")
MEMCHECK = "ctest --test-dir build/release -C MemCheck -T memcheck -L '^memcheck$'"
GCOVR = "gcovr --object-directory build/coverage/plugin build/coverage/plugin --json build/coverage/coverage/counts.json --txt"
GCOVR_LIMITS = (
    "gcovr --add-tracefile build/coverage/coverage/counts.json --txt-metric branch --txt "
    "--html-details build/coverage/coverage/index.html --fail-under-line 100 --fail-under-branch 100"
)
DRY_RUNS = {
    "build": configure_and_build("release"),
    "build asan": configure_and_build("asan"),
    "--native build dev": configure_and_build("native-dev"),
    "run --plugin 'a b.so'": [*configure_and_build("release"), "build/release/kvx session --plugin 'a b.so'"],
    "workbench 'a b.kvx'": [
        *configure_and_build("release", "--target workbench_window"),
        "build/release/kvx-workbench 'a b.kvx'",
    ],
    "test dev": [
        *configure_and_build("dev"),
        "cmake -E rm -rf build/dev/test-results",
        "cmake -E make_directory build/dev/test-results",
        "ctest --preset dev --output-junit '{checkout}/build/dev/ctest.xml'",
        "tools/check-test-count build/dev",
    ],
    "test release ^tst_Dpi$": [*configure_and_build("release"), "ctest --preset release -R '^tst_Dpi$'"],
    "test tsan tst_Threads": [
        "tools/tsan-qt-build",
        "cmake --preset tsan -DCMAKE_PREFIX_PATH=FOLDER",
        "cmake --build --preset tsan",
        "ctest --preset tsan -R tst_Threads",
    ],
    # The timelines on both systems are compared.
    "test windows ^tst_Dpi$": [
        *configure_and_build("release", "--target workbench_cli rv418_plugin"),
        "tools/windows-libraries",
        "cmake --preset windows -DKVX_WINDOWS_LIBRARIES=FOLDER",
        "cmake --build --preset windows",
        "ctest --preset windows -R '^tst_Dpi$'",
    ],
    "fuzz": [*MODEL, f"env KVX_MODEL_SECONDS=60 {MODEL_PROGRAM}"],
    "fuzz 3600": [*MODEL, f"env KVX_MODEL_SECONDS=3600 {MODEL_PROGRAM}"],
    "fuzz readers": ["cmake --preset fuzz -DKVX_FUZZ_SECONDS=60", *FUZZ],
    "fuzz readers 300": ["cmake --preset fuzz -DKVX_FUZZ_SECONDS=300", *FUZZ],
    "coverage": [
        *configure_and_build("coverage", "--target feature_tests"),
        "find build/coverage/plugin -name '*.gcda' -delete",
        "cmake -E rm -rf build/coverage/coverage",
        "cmake -E make_directory build/coverage/test-results build/coverage/coverage",
        "ctest --preset coverage -L '^feature$'",
        GCOVR,
        GCOVR_LIMITS,
        "tools/contract-coverage build/coverage/contract-timelines",
    ],
    "valgrind": [*configure_and_build("release"), f"{MEMCHECK} --no-tests=error --output-on-failure -j2"],
    "valgrind ^tst_D": [
        *configure_and_build("release"),
        f"{MEMCHECK} -R '^tst_D' --no-tests=error --output-on-failure -j2",
    ],
    "bench": [*MEASURE, "tools/bench"],
    "bench --write-budgets": [*MEASURE, "tools/bench --write-budgets"],
    "mutate a.cpp": [*configure_and_build("release"), "tools/mutate --build build/release a.cpp"],
    "screenshots": [
        *configure_and_build("release", "--target take_screenshots"),
        "env QT_QPA_PLATFORM=offscreen build/release/tests/window/take_screenshots docs/pictures",
    ],
    'exec echo "it\'s" ""': ["echo 'it'\\''s' ''"],
    "shell": ["env 'PS1=(kvx toolbox) \\w\\$ ' bash --norc"],
    "format": ["tools/lint rewrite"],
    "lint": [
        "cmake --preset tidy",
        "cmake --build --preset tidy --target autogen",
        *(f"tools/lint {name}" for name in ("format", "tidy", "clazy", "shell", "python")),
    ],
    "lint shell": ["tools/lint shell"],
}


class DryRun(SandboxTest):
    def test_prints_what_would_run(self):
        self.run_tool("exec", "true")
        self.calls.unlink()
        checkout = str(self.checkout).replace("'", "'\\''")
        for line, commands in DRY_RUNS.items():
            with self.subTest(line):
                process = self.run_tool("--dry-run", *shlex.split(line), DISPLAY=":0")
                expected = "".join(f"$ {command}\n" for command in commands).replace("{checkout}", checkout)
                self.assertEqual((process.out, process.err, process.returncode), (expected, "", 0))
        self.assertEqual([call for call in self.called() if not call.startswith(("bwrap", "id", "dpkg"))], [])


class Commands(SandboxTest):
    def test_help_names_every_verb(self):
        process = self.run_tool("help")
        self.assertEqual((process.err, process.returncode), ("", 0))
        self.assertEqual(self.run_tool("--help").out, process.out)
        verbs = {line.split()[0] for line in DRY_RUNS if not line.startswith("-")} | {"package", "help"}
        for verb in verbs:
            self.assertRegex(process.out, rf"(?m)^  {verb}\b")

    def test_exec_keeps_words_output_and_exit_code(self):
        process = self.run_tool("exec", "bash", "-c", 'printf "%s|" "$PWD" "$@"; exit 7', "bash", "a  b", "", "*")
        self.assertEqual((process.out, process.returncode), (f"{self.checkout}|a  b||*|", 7))

    def test_run_leaves_stdout_to_the_session(self):
        self.script("build/release/kvx", 'echo "played: $*"\n')
        self.fake("cmake", "echo noise\n")
        process = self.run_tool("run", "--json")
        self.assertEqual((process.out, process.returncode), ("played: session --json\n", 0))
        self.assertIn("noise", process.err)

    def test_workbench_opens_on_the_users_display(self):
        window = 'printf "%s " "$DISPLAY$WAYLAND_DISPLAY" "$@"\nexit 3\n'
        for preset, native in ("release", []), ("native-release", ["--native"]):
            self.script(f"build/{preset}/kvx-workbench", window)
            for display in {"DISPLAY": ":9"}, {"WAYLAND_DISPLAY": "wayland-9"}:
                with self.subTest(preset=preset, display=display):
                    process = self.run_tool(*native, "workbench", "a b.kvx", **display)
                    self.assertEqual((process.out, process.returncode), (f"{display.popitem()[1]} a b.kvx ", 3))
                    repeat = shlex.join(["./dev", *native, "workbench", "a b.kvx"])
                    self.assertEqual(process.err.splitlines()[-1].partition("just this: ")[2], repeat)
        entered = [call.partition(" -- ")[2] for call in self.called("bwrap") if " DISPLAY :9 " in call]
        self.assertEqual(entered, ["build/release/kvx-workbench a b.kvx"])

    def test_inside_the_toolbox_commands_run_directly(self):
        self.toolbox_mark.mkdir()
        process = self.run_tool("exec", "echo", "inside")
        self.assertEqual((process.out, process.err), ("inside\n", "$ echo inside\n"))
        self.assertEqual(self.called("bwrap"), [])


class Libraries(SandboxTest):
    """What a preset needs is made by a script, whose place another takes here."""

    def setUp(self):
        super().setUp()
        self.script_answers("/cache/windows/new")

    def script_answers(self, answer, code=0):
        self.script("tools/windows-libraries", f"echo working >&2\nprintf '%s' '{answer}'\nexit {code}\n")

    def configured_with(self, folder):
        text = f"//What we ship\nCMAKE_BUILD_TYPE:STRING=Release\nKVX_WINDOWS_LIBRARIES:UNINITIALIZED={folder}\n"
        self.write(self.checkout / "build/windows/CMakeCache.txt", text)

    def test_libraries_are_built_first_and_reach_cmake(self):
        """Another build's cache of CMake is forgotten."""
        self.script("tools/tsan-qt-build", "echo /cache/tsan-qt/new\n")
        process = self.run_tool("build", "tsan")
        self.assertEqual((process.out, process.returncode), ("", 0), process.err)
        commands = ["cmake --preset tsan -DCMAKE_PREFIX_PATH=/cache/tsan-qt/new", "cmake --build --preset tsan"]
        self.assertEqual(self.called(("tsan", "cmake")), ["tsan-qt-build ", *commands])
        for cached, fresh in ((None, ""), ("/cache/windows/new", ""), ("/cache/windows/old", "--fresh ")):
            with self.subTest(cached=cached):
                if cached:
                    self.configured_with(cached)
                self.calls.unlink(missing_ok=True)
                process = self.run_tool("build", "windows")
                self.assertEqual((process.out, process.returncode), ("", 0), process.err)
                self.assertIn("working", process.err.splitlines())
                configured = f"cmake {fresh}--preset windows -DKVX_WINDOWS_LIBRARIES=/cache/windows/new"
                commands = ["windows-libraries ", configured, "cmake --build --preset windows"]
                self.assertEqual(self.called(("windows", "cmake")), commands)

    def test_dry_run_does_not_claim_other_libraries(self):
        self.configured_with("/cache/windows/new")
        self.assertNotIn("--fresh", self.run_tool("--dry-run", "build", "windows").out)

    def test_reason_of_failed_libraries_is_one_line(self):
        reason = "Qt for Windows, good==1, could not be fetched (ERROR: no network)"
        for answer, said in {reason: reason, "": "tools/windows-libraries failed"}.items():
            with self.subTest(answer=answer):
                self.script_answers(answer, 3)
                process = self.run_tool("build", "windows")
                self.assertEqual(process.err.splitlines()[-1], f"./dev: {said}")
                self.assertEqual((process.out, process.returncode), ("", 1))
                self.assertEqual(self.called("cmake"), [])


class Failures(SandboxTest):
    """The last line says how to repeat just what failed."""

    def assert_fails(self, line, code, repeat, **changes):
        process = self.run_tool(*shlex.split(line), **changes)
        expected = f"./dev: failed (exit code {code}); to repeat just this: ./dev {repeat}"
        self.assertEqual((process.err.splitlines()[-1], process.returncode), (expected, code))
        return process

    def test_what_is_repeated(self):
        build = "--native exec cmake --build --preset native-release"
        for line, code, repeat, failing in (
            ("exec bash -c 'exit 9'", 9, "exec bash -c 'exit 9'", ""),
            ("build dev", 1, "exec cmake --preset dev", "cmake --preset"),
            ("--native run", 1, build, "cmake --build"),
            ("valgrind tst_Dpi", 16, "valgrind tst_Dpi", "memcheck"),
            ("fuzz readers 9", 8, "fuzz readers 9", "ctest"),
            ("test", 2, "exec tools/check-test-count build/release", ""),
        ):
            with self.subTest(line):
                self.assert_fails(line, code, repeat, FAILING=failing, FAILING_CODE=str(code))
                self.assertIn(failing, self.called()[-1])

    def test_tests_are_named_by_a_filter(self):
        log = self.write("failed.log", "3:tst_Dpi\n12:odd.name+\n")
        self.assert_fails(
            "test", 8, "test release '^(tst_Dpi|odd\\.name\\+)$'", FAILING="ctest", FAILING_CODE="8",
            FAILED_LOG=str(log), FAILED_LOG_FOLDER=str(self.checkout / "build/release/Testing/Temporary"),
        )

    def test_lint_runs_all_checks_and_names_those_that_failed(self):
        self.script("tools/lint", "echo ran $1\n[[ $1 != format && $1 != shell ]] || exit 2\n")
        process = self.assert_fails("lint", 1, "lint format shell")
        self.assertEqual(process.out, "".join(f"ran {name}\n" for name in ("format", "tidy", "clazy", "shell", "python")))


class Coverage(SandboxTest):
    def setUp(self):
        super().setUp()
        self.stale = self.write(self.checkout / "build/coverage/plugin/Thing.cpp.gcda")
        self.judge(0, 0)

    def judge(self, code, contract):
        self.fake("gcovr", f'echo code table\n[[ "$*" != *--fail-under-branch* ]] || exit {code}\n')
        self.script("tools/contract-coverage", f"echo contract table\nexit {contract}\n")

    def test_tables_stand_alone_and_counts_of_earlier_runs_are_forgotten(self):
        self.fake("ctest", "echo noise\n")
        process = self.run_tool("coverage")
        self.assertEqual((process.out, process.returncode), ("code table\ncode table\ncontract table\n", 0), process.err)
        self.assertIn("noise", process.err)
        self.assertFalse(self.stale.exists())

    def test_both_are_judged_and_either_fails(self):
        for codes in ((4, 0), (0, 1), (2, 1)):
            with self.subTest(codes=codes):
                self.judge(*codes)
                process = self.run_tool("coverage")
                self.assertEqual((process.out, process.returncode), ("code table\ncode table\ncontract table\n", 1))
                self.assertRegex(process.err, r"failed \(exit code 1\); to repeat just this: ./dev coverage\n$")

    def test_nothing_is_judged_after_a_failed_test(self):
        process = self.run_tool("coverage", FAILING="ctest")
        self.assertEqual((process.out, process.returncode), ("", 1))
        self.assertEqual(self.called("gcovr") + self.called("contract-coverage"), [])


class Presets(unittest.TestCase):
    def test_same_word_configures_builds_and_tests(self):
        presets = json.loads((REPOSITORY / "CMakePresets.json").read_text(encoding="utf-8"))
        expected = [*PRESETS.split(", "), "windows-msvc", "native-release", "native-dev", "native-asan"]
        for kind in ("configurePresets", "buildPresets", "testPresets"):
            self.assertEqual([preset["name"] for preset in presets[kind] if not preset.get("hidden")], expected)
