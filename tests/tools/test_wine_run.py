"""tools/wine-run: exit codes, arguments, deadlines, and Wine's own folder.

A fake stands in for Wine: it makes its folder, and runs "Windows programs" with a shell.
"""

import os
import shutil
import signal
import sys
import time
from pathlib import Path

from sandbox import LIMIT, SandboxTest

# Tried one after the other, in seconds, until one comes after all that a program has to do before.
DEADLINES = (1, 4, 16, 64)

FAKE_WINE = r"""
case $1 in
    --version)
        printf '%s\n' "${FAKE_VERSION:-wine-10.0 (Debian 10.0~repack-6)}"
        exit "${VERSION_CODE:-0}"
        ;;
    wineboot)
        mkdir -p "$WINEPREFIX/drive_c/windows" && mkdir "$WINEPREFIX/drive_c/windows/${SYSTEM:-system32}" || exit 9
        if [[ -n ${WINEBOOT_GATE:-} ]]; then
            read -r _ <"$WINEBOOT_GATE"
        fi
        [[ -n ${NO_REGISTRY:-} ]] || touch "$WINEPREFIX/system.reg"
        exit "${WINEBOOT_CODE:-0}"
        ;;
    *) exec sh "$@" ;;
esac
"""

# The real one writes the registry when it ends.
FAKE_WINESERVER = r"""
[[ "$*" != --wait ]] || touch "$WINEPREFIX/written"
exit "${WINESERVER_CODE:-0}"
"""

# Note the number of the process before it sleeps for good, deaf to polite signals, away from the test's pipes.
SLEEP = 'trap "" HUP INT TERM; echo $$ >{name}; exec sleep 1000'


def is_gone(process):
    try:
        stat = Path(f"/proc/{process}/stat").read_text(encoding="utf-8")
    except (FileNotFoundError, ProcessLookupError):
        return True
    # An ended process whose end nobody has asked for yet.
    return stat.rpartition(")")[2].split()[0] in ("Z", "X")


class WineRunTest(SandboxTest):
    def setUp(self):
        super().setUp()
        self.sandbox.fake("wine", FAKE_WINE)
        self.sandbox.fake("wineserver", FAKE_WINESERVER)
        self.prefixes = self.sandbox.cache / "wine"
        self.prefix = self.prefixes / "wine-10.0"

    def program(self, text, name="a program.exe"):
        path = self.sandbox.base / name
        path.write_text(text + "\n", encoding="utf-8")
        return str(path)

    def start(self, *words, **changes):
        return self.sandbox.start_script("tools/wine-run", *words, **changes)

    def wine_run(self, *words, **changes):
        return self.sandbox.run_script("tools/wine-run", *words, **changes)

    def left(self):
        return sorted(entry.name for entry in self.prefixes.iterdir() if entry.suffix != ".lock")

    def eventually(self, condition, message):
        end = time.monotonic() + LIMIT
        while not condition():
            self.assertLess(time.monotonic(), end, message)
            time.sleep(0.02)

    def assert_one_line(self, process, code, *parts):
        self.assertEqual((process.out, process.returncode), ("", code), process.err)
        self.assertEqual(len(process.err.splitlines()), 1, process.err)
        for part in ("wine-run: ", *parts):
            self.assertIn(part, process.err)


class Programs(WineRunTest):
    def test_exit_code_is_handed_on(self):
        program = self.program('exit "$1"')
        for code in (0, 1, 3, 124, 255):
            process = self.wine_run(program, str(code))
            self.assertEqual((process.out, process.err, process.returncode), ("", "", code))

    def test_signal_becomes_what_a_shell_makes_of_it(self):
        self.assertEqual(self.wine_run(self.program("kill -KILL $$")).returncode, 128 + signal.SIGKILL)

    def test_output_is_handed_on(self):
        process = self.wine_run(self.program("echo out; echo err >&2"))
        self.assertEqual((process.out, process.err), ("out\n", "err\n"))

    def test_arguments_are_unchanged(self):
        program = self.program('printf "<%s>" "$@"', "Prögramm's ☃.exe")
        words = [" a  b ", "", "it's", '"quoted"', "back\\slash\\", "Ünïcödé ☃", "*", "$HOME", "-1", "--", "two\nlines\n"]
        process = self.wine_run(program, *words)
        self.assertEqual(process.out, "".join(f"<{word}>" for word in words))

    def test_options_after_the_program_are_its_own(self):
        program = self.program('printf "<%s>" "$@"')
        for words in (
            ["--deadline", "1", "--dlls", "x", "--runtime", "y"],
            ["--show=file", "--help"],
            ["--unknown", "-h"],
            ["--", "--deadline", "1"],
        ):
            with self.subTest(words=words):
                process = self.wine_run("--deadline", "1000", program, *words)
                self.assertEqual((process.out, process.err), ("".join(f"<{word}>" for word in words), ""))
                self.assertEqual(self.wine_run(program, *words).out, process.out)

    def test_runs_where_it_was_called(self):
        self.assertEqual(self.wine_run(self.program("pwd")).out, f"{self.sandbox.base}\n")

    def test_has_wines_folder_and_no_screen(self):
        program = self.program('echo "$WINEPREFIX|${DISPLAY-none}|$WINEDEBUG"')
        self.assertEqual(self.wine_run(program, DISPLAY=":0").out, f"{self.prefix}|none|-all\n")
        self.assertEqual(self.wine_run(program, WINEDEBUG="+relay").out, f"{self.prefix}|none|+relay\n")

    def test_dlls_are_named_as_windows_does(self):
        program = self.program('printf "%s" "$WINEPATH"')
        base = str(self.sandbox.base).replace("/", "\\")
        process = self.wine_run("--dlls", str(self.sandbox.base / "Qt's bin"), "--dlls", "x/../relative", program)
        self.assertEqual(process.out, f"Z:{base}\\Qt's bin;Z:{base}\\relative")
        self.assertEqual(self.wine_run(program).out, "")


class Prefix(WineRunTest):
    def setUp(self):
        super().setUp()
        self.greeter = self.program("echo hello")

    def boots(self):
        return self.sandbox.called("wine wineboot")

    def greet(self, **changes):
        process = self.wine_run(self.greeter, **changes)
        self.assertEqual((process.out, process.err, process.returncode), ("hello\n", "", 0))

    def start_up_to_gate(self):
        """A call that stands in the middle of making the folder, and the gate that holds it there."""
        gate = self.sandbox.gate()
        process = self.start(self.greeter, WINEBOOT_GATE=str(gate))
        gate.wait_for(process)
        return process, gate

    def assert_whole(self, prefix):
        """Made to the end, and that waited for."""
        self.assertEqual(sorted(entry.name for entry in prefix.iterdir()), ["drive_c", "system.reg", "written"])

    def test_is_made_once(self):
        self.greet()
        self.greet()
        self.assertEqual((len(self.boots()), self.left()), (1, ["wine-10.0"]))
        self.assert_whole(self.prefix)

    def test_another_version_has_its_own(self):
        self.greet()
        self.greet(FAKE_VERSION="wine-11.2")
        self.assertEqual((len(self.boots()), self.left()), (2, ["wine-10.0", "wine-11.2"]))
        self.assert_whole(self.prefixes / "wine-11.2")

    def test_is_made_aside(self):
        process, gate = self.start_up_to_gate()
        self.assertFalse(self.prefix.exists())
        self.assertEqual(len(self.left()), 1)
        gate.open()
        self.sandbox.finish(process)
        self.assertEqual((process.out, process.err), ("hello\n", ""))
        self.assertEqual(self.left(), ["wine-10.0"])
        self.assert_whole(self.prefix)

    def test_killed_call_leaves_none_and_the_next_one_starts_clean(self):
        process, gate = self.start_up_to_gate()
        self.sandbox.kill(process)
        gate.close()
        self.assertFalse(self.prefix.exists())
        (stale,) = self.left()
        (self.prefixes / stale / "leftover").write_text("", encoding="utf-8")
        self.greet()
        self.assertEqual(self.left(), ["wine-10.0"])
        self.assert_whole(self.prefix)

    def is_waiting_for_a_lock(self, process):
        lines = Path("/proc/locks").read_text(encoding="utf-8").splitlines()
        return any(line.split()[1] == "->" and str(process.pid) in line.split() for line in lines)

    def test_two_calls_at_once_make_one(self):
        first, gate = self.start_up_to_gate()
        second = self.start(self.greeter)
        self.eventually(
            lambda: self.is_waiting_for_a_lock(second) or second.poll() is not None, "the second call does not wait"
        )
        gate.open()
        for process in (first, second):
            self.sandbox.finish(process)
            self.assertEqual((process.out, process.err), ("hello\n", ""))
        self.assertEqual((len(self.boots()), self.left()), (1, ["wine-10.0"]))

    def test_failure_is_one_line_and_leaves_nothing(self):
        for changes in ({"WINEBOOT_CODE": "3"}, {"NO_REGISTRY": "1"}, {"WINESERVER_CODE": "4"}):
            with self.subTest(changes=changes):
                process = self.wine_run(self.greeter, **changes)
                self.assert_one_line(process, 125, "Wine could not make its folder", str(self.prefix))
                self.assertEqual(self.left(), [])
        self.greet()

    def test_folder_that_is_not_done_at_the_deadline(self):
        gate = self.sandbox.gate()
        process = self.wine_run("--deadline", "1", self.greeter, WINEBOOT_GATE=str(gate))
        self.assertEqual((process.out, process.returncode), ("", 125))
        self.assertIn("Wine could not make its folder", process.err.splitlines()[-1])
        self.assertEqual(self.left(), [])


class Runtime(WineRunTest):
    def setUp(self):
        super().setUp()
        self.runtime = self.sandbox.base / "the runtime"
        self.runtime.mkdir()
        (self.runtime / "ORDER.txt").write_text("no DLL", encoding="utf-8")
        self.lister = self.program('cd "$WINEPREFIX/drive_c/windows/system32"; echo "$(echo *):$(cat *):$WINEDLLOVERRIDES"')

    def run_with(self, dlls, **changes):
        for file in self.runtime.glob("*.dll"):
            file.unlink()
        for name, content in dlls.items():
            (self.runtime / f"{name}.dll").write_text(content, encoding="utf-8")
        return self.wine_run("--runtime", str(self.runtime), self.lister, **changes)

    def test_each_content_is_installed_in_a_folder_of_its_own(self):
        overrides = "mscoree,mshtml,winemenubuilder.exe="
        contents = ({"a": "1", "b": "2"}, {"a": "1", "b": "3"}, {"a": "1", "c": "2"}, {"a": "1"})
        for number, dlls in enumerate((*contents, *contents)):
            process = self.run_with(dlls)
            said = f"{' '.join(f'{name}.dll' for name in dlls)}:{''.join(dlls.values())}:{overrides};{','.join(dlls)}=n\n"
            self.assertEqual((process.out, process.err, process.returncode), (said, "", 0))
            self.assertEqual(len(self.left()), min(number + 1, len(contents)))
        without = self.wine_run(self.program('echo "$WINEDLLOVERRIDES:$WINEPREFIX"'))
        self.assertEqual(without.out, f"{overrides}:{self.prefix}\n")

    def test_folder_without_the_whole_runtime_is_not_used(self):
        process = self.run_with({"a": "1"}, SYSTEM="another")
        self.assert_one_line(process, 125, "system32/a.dll")
        self.assertEqual(self.left(), [])

    def test_folder_without_dlls(self):
        self.assert_one_line(self.run_with({}), 125, f"{self.runtime} has no DLLs to install")
        self.assert_one_line(self.wine_run("--runtime", "missing", self.lister), 125, "missing has no DLLs to install")
        self.assertEqual(self.sandbox.called("wine"), [])


class Refusals(WineRunTest):
    def test_missing_program(self):
        for missing in (self.sandbox.base / "build" / "kvx.exe", self.sandbox.base):
            process = self.wine_run(str(missing))
            self.assert_one_line(process, 2, f"{missing} is not there", "./dev build windows")
        self.assertEqual(self.sandbox.called("wine"), [])

    def test_bad_usage(self):
        program = self.program("echo ran")
        for words, part in {
            (): "program",
            ("--deadline", "soon", program): "soon",
            ("--deadline", "-1", program): "-1",
            ("--deadline", "0", program): "0",
            ("--deadline", "nan", program): "nan",
            ("--unknown", program): "--unknown",
            ("--show",): "--show",
            ("--runtime",): "--runtime",
        }.items():
            with self.subTest(words=words):
                process = self.wine_run(*words)
                self.assertEqual((process.out, process.returncode), ("", 2), process.err)
                self.assertIn(part, process.err.splitlines()[-1].lower())
                self.assertNotIn("Traceback", process.err)
        self.assertEqual(self.sandbox.called("wine"), [])

    def test_help(self):
        process = self.wine_run("--help")
        self.assertEqual((process.err, process.returncode), ("", 0))
        for option in ("--runtime", "--dlls", "--deadline", "--show"):
            self.assertIn(option, process.out)

    def test_wine_is_not_installed(self):
        folder = self.sandbox.base / "no wine"
        folder.mkdir()
        (folder / "python3").symlink_to(sys.executable)
        process = self.wine_run(self.program("echo ran"), PATH=str(folder))
        self.assert_one_line(process, 125, "wine is not installed here", "toolbox")

    def test_wine_that_does_not_work(self):
        process = self.wine_run(self.program("echo ran"), VERSION_CODE="6")
        self.assert_one_line(process, 125, "exit code 6")

    def test_wine_without_version(self):
        self.assert_one_line(self.wine_run(self.program("echo ran"), FAKE_VERSION=" "), 125, "version")

    def test_cache_that_cannot_be_written_to(self):
        self.sandbox.cache.write_text("", encoding="utf-8")
        self.assert_one_line(self.wine_run(self.program("echo ran")), 125, str(self.sandbox.cache))


class Show(WineRunTest):
    def setUp(self):
        super().setUp()
        self.file = self.sandbox.base / "the output.txt"

    def test_file_is_printed_at_the_end(self):
        program = self.program('printf "Gr\\303\\274n\\r\\nend\\r\\n" >"$1"; echo first; exit 3')
        process = self.wine_run("--show", str(self.file), program, str(self.file))
        self.assertEqual((process.out, process.err, process.returncode), ("first\nGrün\nend\n", "", 3))

    def test_bytes_that_are_no_text(self):
        program = self.program('printf "a\\377b\\n" >"$1"')
        process = self.wine_run("--show", str(self.file), program, str(self.file))
        self.assertEqual((process.out, process.err, process.returncode), ("a\N{REPLACEMENT CHARACTER}b\n", "", 0))

    def test_program_that_wrote_none(self):
        process = self.wine_run("--show", str(self.file), self.program("exit 3"))
        self.assertEqual((process.out, process.returncode), ("", 3))
        self.assertEqual(process.err, f"wine-run: the program wrote no {self.file}\n")

    def test_what_lives_on_does_not_hold_the_output(self):
        # As Wine's server, which the first program starts.
        process = self.wine_run(self.program("sleep 1000 & echo $!"))
        os.kill(int(process.out), signal.SIGKILL)
        self.assertEqual((process.err, process.returncode), ("", 0))

    def test_old_file_is_not_shown(self):
        self.file.write_text("of an earlier run\n", encoding="utf-8")
        process = self.wine_run("--show", str(self.file), self.program("exit 0"))
        self.assertEqual((process.out, process.err), ("", f"wine-run: the program wrote no {self.file}\n"))
        self.assertEqual(process.returncode, 125)

    def test_file_is_shown_after_the_deadline(self):
        written = self.program('echo "so far" >"$1"; exec sleep 1000')
        for deadline in DEADLINES:
            process = self.wine_run("--deadline", str(deadline), "--show", str(self.file), written, str(self.file))
            self.assertEqual(process.returncode, 124)
            if self.file.exists() and self.file.stat().st_size:
                break
        self.assertEqual(process.out, "so far\n")


class Deadline(WineRunTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.end_noted)
        self.notes = self.sandbox.base / "notes"
        self.notes.mkdir()

    def sleeper(self, name):
        """Words of a shell that note their process and sleep."""
        return f"sh -c '{SLEEP.format(name=f'notes/{name}')}' >/dev/null 2>&1"

    def noted(self):
        """The processes that noted their numbers, by name."""
        texts = {file.name: file.read_text(encoding="utf-8") for file in self.notes.iterdir()}
        return {name: int(text) for name, text in texts.items() if text.endswith("\n")}

    def end_noted(self):
        for process in self.noted().values():
            if not is_gone(process):
                os.kill(process, signal.SIGKILL)

    def run_past_deadline(self, program, names):
        """Runs the program until a deadline that came after all of its processes had noted their numbers."""
        for deadline in DEADLINES:
            process = self.wine_run("--deadline", str(deadline), program)
            if sorted(self.noted()) == sorted(names):
                return process
            self.end_noted()
            shutil.rmtree(self.notes)
            self.notes.mkdir()
        return self.fail(f"{names} did not all come up: {process.err}")

    def assert_timed_out(self, process, program):
        self.assertEqual(process.returncode, 124)
        self.assertEqual(len(process.err.splitlines()), 1, process.err)
        self.assertRegex(process.err, r"^wine-run: ")
        for part in (program, " was not done after "):
            self.assertIn(part, process.err)

    def assert_ended(self, *names):
        noted = self.noted()
        for name in names:
            self.eventually(lambda: is_gone(noted[name]), f"{name} still runs")

    def test_ends_the_program_and_all_that_it_started(self):
        program = self.program(
            f"""
            {self.sleeper('child')} &
            setsid {self.sleeper('detached')} &
            ({self.sleeper('orphan')} &)
            trap '' HUP INT TERM
            echo $$ >notes/itself
            echo started
            while :; do sleep 1000; done
            """
        )
        names = ["child", "detached", "orphan", "itself"]
        process = self.run_past_deadline(program, names)
        self.assert_timed_out(process, program)
        self.assertEqual(process.out, "started\n")
        self.assert_ended(*names)

    def test_leaves_the_processes_of_another_call_alone(self):
        gate = self.sandbox.gate()
        other = self.start(self.program("read -r _ <gate; exit 5", "other.exe"))
        gate.wait_for(other)
        program = self.program(f"exec {self.sleeper('itself')}")
        self.assert_timed_out(self.run_past_deadline(program, ["itself"]), program)
        self.assert_ended("itself")
        self.assertIsNone(other.poll())
        gate.open()
        self.sandbox.finish(other)
        self.assertEqual((other.out, other.err, other.returncode), ("", "", 5))

    def test_leaves_the_server_alone(self):
        shutil.copy2("/bin/sleep", self.sandbox.fakes / "wineserver64")
        program = self.program(
            f"""
            wineserver64 1000 >/dev/null 2>&1 &
            echo $! >notes/server
            exec {self.sleeper('itself')}
            """
        )
        process = self.run_past_deadline(program, ["server", "itself"])
        self.assert_timed_out(process, program)
        self.assert_ended("itself")
        self.assertFalse(is_gone(self.noted()["server"]))

    def test_program_that_only_speaks_of_the_server_is_ended(self):
        gate = self.sandbox.gate()
        program = self.program('read -r _ <"$1"', "test of wineserver.exe")
        process = self.wine_run("--deadline", "1", program, str(gate), "wineserver64")
        self.assert_timed_out(process, program)

    def test_program_that_is_done_before(self):
        process = self.wine_run("--deadline", "1000", self.program("exit 4"))
        self.assertEqual((process.out, process.err, process.returncode), ("", "", 4))
