"""What ./dev prints, runs and refuses."""

import json
import unittest

from sandbox import CALL_LOG, REPOSITORY, SandboxTest


class Refusals(SandboxTest):
    def assert_refused(self, expected, *words, **changes):
        process = self.dev(*words, **changes)
        self.assertEqual((process.out, process.err, process.returncode), ("", f"./dev: {expected}\n", 2))
        self.assertEqual(self.sandbox.called("cmake"), [])

    def test_unknown_verb(self):
        self.assert_refused("no verb is called 'biuld' (./dev help lists them)", "biuld")

    def test_no_verb(self):
        self.assert_refused("say what to do: ./dev help lists the verbs")

    def test_unknown_option(self):
        self.assert_refused("no option is called '--nativ' (./dev help lists them)", "--nativ", "test")

    def test_unknown_preset(self):
        self.assert_refused(
            "no preset is called 'fast' (there are: release, dev, asan, tsan, fuzz, coverage, bench, tidy, windows)", "build", "fast"
        )

    def test_filter_without_preset(self):
        self.assert_refused(
            "no preset is called 'tst_Dpi' (there are: release, dev, asan, tsan, fuzz, coverage, bench, tidy, windows); "
            "to filter, name the preset first: ./dev test release 'tst_Dpi'",
            "test",
            "tst_Dpi",
        )

    def test_presets_that_only_native_builds_use_are_not_offered(self):
        self.assert_refused(
            "no preset is called 'native-release' (there are: release, dev, asan, tsan, fuzz, coverage, bench, tidy, windows)",
            "build",
            "native-release",
        )

    def test_presets_that_need_the_toolbox(self):
        for verb in ("build", "test"):
            for preset in ("tsan", "fuzz", "coverage", "bench", "tidy", "windows"):
                with self.subTest(verb=verb, preset=preset):
                    hint = f"; to filter, name the preset first: ./dev test release '{preset}'" if verb == "test" else ""
                    self.assert_refused(
                        f"no preset is called '{preset}' (there are: release, dev, asan (native)){hint}",
                        "--native",
                        verb,
                        preset,
                    )

    def test_surplus_arguments(self):
        self.assert_refused("build takes one PRESET at most", "build", "release", "asan")
        self.assert_refused("test takes one PRESET and one FILTER at most", "test", "release", "a", "b")
        self.assert_refused("shell takes no arguments", "shell", "bash")
        self.assert_refused("format takes no arguments", "format", "device")
        self.assert_refused("coverage takes no arguments", "coverage", "device")
        self.assert_refused("package takes no argument but --twice", "package", "release")
        self.assert_refused("valgrind takes one FILTER at most", "valgrind", "tst_Dpi", "tst_Buttons")
        self.assert_refused("bench takes no argument but quick", "bench", "slow")
        self.assert_refused("bench takes no argument but quick", "bench", "quick", "quick")
        self.assert_refused("fuzz takes one number of SECONDS at most", "fuzz", "1", "2")
        self.assert_refused("fuzz takes one number of SECONDS at most", "fuzz", "readers", "1", "2")

    def test_no_number_of_seconds(self):
        for word in ("0", "-1", "1.5", "1s", "1000000", "reader", ""):
            for words in (("fuzz", word), ("fuzz", "readers", word)):
                with self.subTest(words=words):
                    sentence = f"'{word}' is no number of seconds; write a whole one from 1 to 999999"
                    self.assert_refused(sentence, *words)

    def test_readers_need_the_toolbox(self):
        self.assert_refused(
            "fuzz readers needs the toolbox, which has clang with libFuzzer", "--native", "fuzz", "readers"
        )

    def test_coverage_needs_the_toolbox(self):
        self.assert_refused(
            "coverage needs the toolbox, which has gcovr and the compiler whose counts it reads", "--native", "coverage"
        )

    def test_valgrind_needs_the_toolbox(self):
        self.assert_refused(
            "valgrind needs the toolbox, which has valgrind and a Qt that it knows", "--native", "valgrind"
        )

    def test_measuring_needs_the_toolbox(self):
        self.assert_refused("bench needs the toolbox, which has Google Benchmark and valgrind", "--native", "bench")

    def test_exec_without_command(self):
        self.assert_refused("exec needs a COMMAND", "exec")

    def test_unknown_check(self):
        self.assert_refused(
            "no check is called 'spelling' (there are: format tidy clazy shell python)", "lint", "spelling"
        )

    def test_packages_need_the_toolbox(self):
        self.assert_refused("package needs the toolbox, which has the Qt that we ship with", "--native", "package")

    def test_checks_of_sources_need_the_toolbox(self):
        sentence = "{} needs the toolbox, which has clang's tools in the version that the sources are checked with"
        self.assert_refused(sentence.format("lint"), "--native", "lint")
        self.assert_refused(sentence.format("format"), "--native", "format")


class DryRun(SandboxTest):
    def setUp(self):
        super().setUp()
        self.dev("exec", "true")
        self.sandbox.calls.unlink()

    def assert_prints(self, expected, *words):
        process = self.dev("--dry-run", *words)
        self.assertEqual((process.out.splitlines(), process.err, process.returncode), (expected, "", 0))
        self.assertEqual(self.sandbox.called("cmake") + self.sandbox.called("ctest"), [])

    def test_build(self):
        self.assert_prints(["$ cmake --preset release", "$ cmake --build --preset release"], "build")
        self.assert_prints(["$ cmake --preset asan", "$ cmake --build --preset asan"], "build", "asan")

    def test_native_build_has_its_own_folder(self):
        self.assert_prints(
            ["$ cmake --preset native-dev", "$ cmake --build --preset native-dev"], "--native", "build", "dev"
        )

    def test_run_passes_arguments_on(self):
        self.assert_prints(
            [
                "$ cmake --preset release",
                "$ cmake --build --preset release",
                "$ build/release/kvx session --plugin 'a b.so'",
            ],
            "run",
            "--plugin",
            "a b.so",
        )

    def test_test(self):
        report = f"'{self.sandbox.checkout}/build/dev/ctest.xml'".replace("checkout's", "checkout'\\''s")
        self.assert_prints(
            [
                "$ cmake --preset dev",
                "$ cmake --build --preset dev",
                "$ cmake -E rm -rf build/dev/test-results",
                "$ cmake -E make_directory build/dev/test-results",
                f"$ ctest --preset dev --output-junit {report}",
                "$ tools/check-test-count build/dev",
            ],
            "test",
            "dev",
        )

    def test_filtered_test_counts_nothing(self):
        self.assert_prints(
            [
                "$ cmake --preset release",
                "$ cmake --build --preset release",
                "$ ctest --preset release -R '^tst_Dpi$'",
            ],
            "test",
            "release",
            "^tst_Dpi$",
        )

    def test_fuzz(self):
        model = ["$ cmake --preset release", "$ cmake --build --preset release --target tst_Model"]
        program = "build/release/tests/model/tst_Model libraryAgreesWithTheModel"
        self.assert_prints([*model, f"$ env KVX_MODEL_SECONDS=60 {program}"], "fuzz")
        self.assert_prints([*model, f"$ env KVX_MODEL_SECONDS=3600 {program}"], "fuzz", "3600")
        readers = ["$ cmake --preset fuzz", "$ cmake --build --preset fuzz --target fuzz_programs"]
        self.assert_prints([*readers, "$ tools/fuzz-readers"], "fuzz", "readers")
        self.assert_prints([*readers, "$ tools/fuzz-readers 300"], "fuzz", "readers", "300")

    def test_coverage(self):
        timelines = f"KVX_TIMELINE_FOLDER={self.sandbox.checkout}/build/coverage/timelines".replace("'", "'\\''")
        self.assert_prints(
            [
                "$ cmake --preset coverage",
                "$ cmake --build --preset coverage --target feature_tests",
                "$ find build/coverage/plugin -name '*.gcda' -delete",
                "$ cmake -E rm -rf build/coverage/timelines build/coverage/coverage",
                "$ cmake -E make_directory build/coverage/timelines build/coverage/test-results",
                f"$ env '{timelines}' ctest --preset coverage -L '^feature$'",
                "$ tools/code-coverage build/coverage",
                "$ tools/contract-coverage build/coverage/timelines",
            ],
            "coverage",
        )

    def test_valgrind(self):
        build = ["$ cmake --preset release", "$ cmake --build --preset release"]
        self.assert_prints([*build, "$ tools/valgrind-tests build/release"], "valgrind")
        self.assert_prints([*build, "$ tools/valgrind-tests build/release '^tst_D'"], "valgrind", "^tst_D")

    def test_thread_sanitizer_has_a_qt_of_its_own(self):
        self.assert_prints(
            [
                "$ tools/tsan-qt-build",
                "$ cmake --preset tsan -DCMAKE_PREFIX_PATH=FOLDER",
                "$ cmake --build --preset tsan",
                "$ ctest --preset tsan -R tst_Threads",
            ],
            "test",
            "tsan",
            "tst_Threads",
        )

    def test_bench(self):
        program = ["$ cmake --preset bench", "$ cmake --build --preset bench --target measure"]
        self.assert_prints([*program, "$ tools/bench"], "bench")
        self.assert_prints([*program, "$ tools/bench quick"], "bench", "quick")

    def test_exec_and_shell(self):
        self.assert_prints(["$ echo 'it'\\''s' ''"], "exec", "echo", "it's", "")
        self.assert_prints(["$ env 'PS1=(kvx toolbox) \\w\\$ ' bash --norc"], "shell")

    def test_format(self):
        self.assert_prints(["$ tools/format"], "format")

    def test_lint(self):
        self.assert_prints(
            [
                "$ cmake --preset tidy",
                "$ cmake --build --preset tidy --target autogen",
                "$ tools/lint-format",
                "$ tools/lint-tidy",
                "$ tools/lint-clazy",
                "$ tools/lint-shell",
                "$ tools/lint-python",
            ],
            "lint",
        )
        self.assert_prints(["$ tools/lint-shell"], "lint", "shell")


class Commands(SandboxTest):
    def test_help_names_every_verb(self):
        process = self.dev("help")
        self.assertEqual((process.err, process.returncode), ("", 0))
        self.assertEqual(self.dev("--help").out, process.out)
        verbs = ("run", "test", "build", "package", "fuzz", "coverage", "valgrind", "bench", "mutate")
        for verb in (*verbs, "exec", "shell", "lint", "format", "help"):
            self.assertRegex(process.out, rf"(?m)^  {verb}\b")

    def test_exec_keeps_words_output_and_exit_code(self):
        process = self.dev("exec", "bash", "-c", 'printf "%s|" "$PWD" "$@"; exit 7', "bash", "a  b", "", "*")
        self.assertEqual(process.out, f"{self.sandbox.checkout}|a  b||*|")
        self.assertEqual(process.returncode, 7)

    def test_stdout_belongs_to_the_command(self):
        process = self.dev("exec", "echo", "alone")
        self.assertEqual(process.out, "alone\n")
        self.assertEqual(process.err.splitlines()[-1], "$ echo alone")

    def test_run_leaves_stdout_to_the_session(self):
        kvx = self.sandbox.checkout / "build" / "release" / "kvx"
        kvx.parent.mkdir(parents=True)
        kvx.write_text('#!/bin/sh\necho "played: $*"\n', encoding="utf-8")
        kvx.chmod(0o755)
        self.sandbox.fake("cmake", "echo noise\n")
        process = self.dev("run", "--json")
        self.assertEqual((process.out, process.returncode), ("played: session --json\n", 0))
        self.assertIn("noise", process.err)

    def test_shell_keeps_exit_code(self):
        self.assertEqual(self.dev("shell").returncode, 0)

    def test_inside_the_toolbox_commands_run_directly(self):
        process = self.dev("exec", "echo", "inside", KVX_IN_TOOLBOX="1")
        self.assertEqual((process.out, process.err), ("inside\n", "$ echo inside\n"))
        self.assertEqual(self.sandbox.called("bwrap"), [])


class WindowsTest(SandboxTest):
    """Its libraries are made by tools/windows-libraries, whose place a script takes here."""

    def setUp(self):
        super().setUp()
        self.script_answers("/cache/windows/new")
        self.build = self.sandbox.checkout / "build" / "windows"

    def script_answers(self, answer, code=0):
        script = self.sandbox.checkout / "tools" / "windows-libraries"
        script.write_text(
            f"#!/bin/bash\n{CALL_LOG}echo working >&2\nprintf '%s' '{answer}'\nexit {code}\n", encoding="utf-8"
        )

    def configured_with(self, folder):
        self.build.mkdir(parents=True)
        (self.build / "CMakeCache.txt").write_text(
            f"//What we ship\nCMAKE_BUILD_TYPE:STRING=Release\nKVX_WINDOWS_LIBRARIES:UNINITIALIZED={folder}\n",
            encoding="utf-8",
        )

    def configuring_words(self):
        """Of the one call of cmake that configures the preset."""
        calls = [call.split() for call in self.sandbox.called("cmake") if "--build" not in call]
        self.assertEqual(len(calls), 1, calls)
        self.assertIn("windows", calls[0])
        return calls[0]


class Windows(WindowsTest):
    def test_dry_run_builds_no_libraries(self):
        process = self.dev("--dry-run", "build", "windows")
        self.assertEqual((process.err, process.returncode), ("", 0))
        self.assertEqual(
            process.out.splitlines()[-3:],
            [
                "$ tools/windows-libraries",
                "$ cmake --preset windows -DKVX_WINDOWS_LIBRARIES=FOLDER",
                "$ cmake --build --preset windows",
            ],
        )
        self.assertEqual(self.sandbox.called("windows-libraries") + self.sandbox.called("cmake"), [])

    def test_dry_run_does_not_claim_other_libraries(self):
        self.configured_with("/cache/windows/new")
        process = self.dev("--dry-run", "build", "windows")
        self.assertNotIn("--fresh", process.out)

    def test_libraries_are_built_first_and_reach_cmake(self):
        process = self.dev("build", "windows")
        self.assertEqual((process.out, process.returncode), ("", 0), process.err)
        self.assertIn("working", process.err.splitlines())
        self.assertIn("-DKVX_WINDOWS_LIBRARIES=/cache/windows/new", self.configuring_words())
        programs = [call.split()[0] for call in self.sandbox.called()]
        self.assertEqual(programs.count("windows-libraries"), 1)
        self.assertLess(programs.index("windows-libraries"), programs.index("cmake"))
        self.assertEqual(self.sandbox.called("cmake")[-1], "cmake --build --preset windows")

    def test_first_build_has_no_cache_to_forget(self):
        self.dev("build", "windows")
        self.assertNotIn("--fresh", self.configuring_words())

    def test_cache_of_the_same_libraries_is_kept(self):
        self.configured_with("/cache/windows/new")
        self.dev("build", "windows")
        self.assertNotIn("--fresh", self.configuring_words())

    def test_cache_of_other_libraries_is_forgotten(self):
        self.configured_with("/cache/windows/old")
        self.dev("build", "windows")
        self.assertIn("--fresh", self.configuring_words())
        self.assertIn("-DKVX_WINDOWS_LIBRARIES=/cache/windows/new", self.configuring_words())

    def test_other_presets_need_no_libraries_for_windows(self):
        self.assertEqual(self.dev("build").returncode, 0)
        self.assertEqual(self.sandbox.called("windows-libraries"), [])

    def test_reason_of_failed_libraries_is_one_line(self):
        reason = "Qt for Windows, good==1, could not be fetched (ERROR: no network)"
        for answer, said in {reason: reason, "": "tools/windows-libraries failed"}.items():
            with self.subTest(answer=answer):
                self.script_answers(answer, 3)
                process = self.dev("build", "windows")
                lines = process.err.splitlines()
                self.assertEqual([line for line in lines if line.startswith("./dev: ")][-1], f"./dev: {said}")
                self.assertEqual(lines[-1], f"./dev: {said}")
                self.assertEqual((process.out, process.returncode), ("", 1))
                self.assertEqual(self.sandbox.called("cmake"), [])

    def test_without_a_toolbox_it_is_refused(self):
        process = self.dev("build", "windows", BWRAP_FAILS="no namespaces")
        self.assertEqual(
            process.err.splitlines()[-1],
            "./dev: no preset is called 'windows' (there are: release, dev, asan (native))",
        )
        self.assertEqual((process.returncode, self.sandbox.called("cmake")), (2, []))


class ThreadSanitizer(SandboxTest):
    """Its Qt is made by tools/tsan-qt-build, whose place a script takes here."""

    def test_its_qt_is_built_first_and_reaches_cmake(self):
        script = self.sandbox.checkout / "tools" / "tsan-qt-build"
        script.write_text(f"#!/bin/bash\n{CALL_LOG}echo /cache/tsan-qt/new\n", encoding="utf-8")
        process = self.dev("build", "tsan")
        self.assertEqual((process.out, process.returncode), ("", 0), process.err)
        self.assertEqual(
            self.sandbox.called("tsan-qt-build") + self.sandbox.called("cmake"),
            [
                "tsan-qt-build ",
                "cmake --preset tsan -DCMAKE_PREFIX_PATH=/cache/tsan-qt/new",
                "cmake --build --preset tsan",
            ],
        )


class WindowsTests(WindowsTest):
    def test_programs_of_this_system_are_built_before_they_are_compared_with(self):
        self.dev("test", "windows", "tst_Dpi")
        built = [call.split()[3] for call in self.sandbox.called("cmake --build --preset")]
        self.assertEqual(built, ["release", "windows"])
        self.assertEqual(self.sandbox.called("ctest"), ["ctest --preset windows -R tst_Dpi"])

    def test_all_are_counted(self):
        process = self.dev("--dry-run", "test", "windows")
        self.assertEqual(process.out.splitlines()[-1], "$ tools/check-test-count build/windows")


class Failures(SandboxTest):
    def last_line(self, *words, **changes):
        process = self.dev(*words, **changes)
        return process.err.splitlines()[-1], process.returncode

    def test_command(self):
        self.assertEqual(
            self.last_line("exec", "bash", "-c", "exit 9"),
            ("./dev: failed (exit code 9); to repeat just this: ./dev exec bash -c 'exit 9'", 9),
        )

    def test_configuring(self):
        self.assertEqual(
            self.last_line("build", "dev", FAILING="cmake --preset"),
            ("./dev: failed (exit code 1); to repeat just this: ./dev exec cmake --preset dev", 1),
        )
        self.assertEqual(self.sandbox.called("cmake --build"), [])

    def test_native_building(self):
        self.assertEqual(
            self.last_line("--native", "run", FAILING="cmake --build"),
            (
                "./dev: failed (exit code 1); to repeat just this: "
                "./dev --native exec cmake --build --preset native-release",
                1,
            ),
        )

    def test_tests_are_named_by_a_filter(self):
        log = self.sandbox.base / "failed.log"
        log.write_text("3:tst_Dpi\n12:odd.name+\n", encoding="utf-8")
        self.assertEqual(
            self.last_line(
                "test",
                FAILING="ctest",
                FAILING_CODE="8",
                FAILED_LOG=str(log),
                FAILED_LOG_FOLDER=str(self.sandbox.checkout / "build/release/Testing/Temporary"),
            ),
            (
                "./dev: failed (exit code 8); to repeat just this: "
                "./dev test release '^(tst_Dpi|odd\\.name\\+)$'",
                8,
            ),
        )

    def test_valgrind(self):
        script = self.sandbox.checkout / "tools" / "valgrind-tests"
        script.write_text("#!/bin/sh\nexit 1\n", encoding="utf-8")
        self.assertEqual(
            self.last_line("valgrind", "tst_Dpi"),
            ("./dev: failed (exit code 1); to repeat just this: ./dev valgrind tst_Dpi", 1),
        )

    def test_count_of_tests(self):
        self.assertEqual(
            self.last_line("test"),
            ("./dev: failed (exit code 2); to repeat just this: ./dev exec tools/check-test-count build/release", 2),
        )

    def test_lint_runs_all_checks_and_names_those_that_failed(self):
        for name, code in {"format": 1, "tidy": 0, "clazy": 0, "shell": 2, "python": 0}.items():
            script = self.sandbox.checkout / "tools" / f"lint-{name}"
            script.write_text(f"#!/bin/sh\necho ran {name}\nexit {code}\n", encoding="utf-8")
        process = self.dev("lint")
        self.assertEqual(process.out, "".join(f"ran {name}\n" for name in ("format", "tidy", "clazy", "shell", "python")))
        self.assertEqual(
            process.err.splitlines()[-1],
            "./dev: failed (exit code 1); to repeat just this: ./dev lint format shell",
        )


class Coverage(SandboxTest):
    """What judges the counts and the timelines are scripts of the checkout, whose places others take here."""

    def setUp(self):
        super().setUp()
        (self.sandbox.checkout / "build" / "coverage" / "plugin").mkdir(parents=True)
        self.stale = self.sandbox.checkout / "build" / "coverage" / "plugin" / "Thing.cpp.gcda"
        self.stale.touch()
        self.judge("code", 0)
        self.judge("contract", 0)

    def judge(self, name, code):
        script = self.sandbox.checkout / "tools" / f"{name}-coverage"
        script.write_text(f"#!/bin/bash\n{CALL_LOG}echo {name} table\nexit {code}\n", encoding="utf-8")

    def test_tables_stand_alone_on_stdout(self):
        self.sandbox.fake("ctest", "echo noise\n")
        process = self.dev("coverage")
        self.assertEqual((process.out, process.returncode), ("code table\ncontract table\n", 0), process.err)
        self.assertIn("noise", process.err)

    def test_counts_of_earlier_runs_are_forgotten(self):
        self.dev("coverage")
        self.assertFalse(self.stale.exists())

    def test_both_are_judged_and_either_fails(self):
        for codes in ((1, 0), (0, 1), (2, 1)):
            with self.subTest(codes=codes):
                self.judge("code", codes[0])
                self.judge("contract", codes[1])
                process = self.dev("coverage")
                self.assertEqual((process.out, process.returncode), ("code table\ncontract table\n", 1))
                self.assertEqual(
                    process.err.splitlines()[-1],
                    "./dev: failed (exit code 1); to repeat just this: ./dev coverage",
                )

    def test_nothing_is_judged_after_a_failed_test(self):
        process = self.dev("coverage", FAILING="ctest")
        self.assertEqual((process.out, process.returncode), ("", 1))
        self.assertEqual(self.sandbox.called("code-coverage") + self.sandbox.called("contract-coverage"), [])

    def test_without_a_toolbox_it_is_refused(self):
        process = self.dev("coverage", BWRAP_FAILS="no namespaces")
        self.assertEqual(
            process.err.splitlines()[-1],
            "./dev: coverage needs the toolbox, which has gcovr and the compiler whose counts it reads",
        )
        self.assertEqual((process.returncode, self.sandbox.called("cmake")), (2, []))


class Presets(unittest.TestCase):
    def test_same_word_configures_builds_and_tests(self):
        presets = json.loads((REPOSITORY / "CMakePresets.json").read_text(encoding="utf-8"))

        def names(kind):
            return [preset["name"] for preset in presets[kind] if not preset.get("hidden")]

        own = ["release", "dev", "asan", "tsan", "fuzz", "coverage", "bench", "tidy", "windows", "windows-msvc"]
        native = ["native-release", "native-dev", "native-asan"]
        for kind in ("configurePresets", "buildPresets", "testPresets"):
            self.assertEqual(names(kind), own + native)
