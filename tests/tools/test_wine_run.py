"""tools/wine-run: exit codes, arguments, deadlines, and Wine's own folder.

A fake replaces Wine: it makes its folder, and runs "Windows programs" with a shell.
"""

import os
import shutil
import signal
import time
from pathlib import Path

from sandbox import LIMIT, SandboxTest

FAKE_WINE = r"""
case $1 in
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
    tool = "tools/wine-run"
    cache_folder = "wine"
    own_fakes = {"wine": FAKE_WINE, "wineserver": FAKE_WINESERVER}

    def program(self, text, name="a program.exe"):
        return str(self.write(name, text + "\n"))

    def eventually(self, condition, message):
        end = time.monotonic() + LIMIT
        while not condition():
            self.assertLess(time.monotonic(), end, message)
            time.sleep(0.02)

    def assert_ends(self, process, out, err="", code=0):
        self.assertEqual((process.out, process.err, process.returncode), (out, err, code))

    def assert_one_line(self, process, code, *parts):
        self.assertEqual((process.out, process.returncode), ("", code), process.err)
        self.assertEqual(len(process.err.splitlines()), 1, process.err)
        for part in ("wine-run: ", *parts):
            self.assertIn(part, process.err)


class Programs(WineRunTest):
    def test_output_and_exit_code_are_handed_on(self):
        program = self.program('echo out; echo err >&2; exit "$1"')
        for code in (0, 1, 3, 124, 255):
            self.assert_ends(self.run_tool(program, str(code)), "out\n", "err\n", code)
        # A signal becomes what a shell makes of it.
        self.assertEqual(self.run_tool(self.program("kill -KILL $$")).returncode, 128 + signal.SIGKILL)

    def test_arguments_are_unchanged(self):
        """Options after the program are its own."""
        program = self.program('printf "<%s>" "$@"', "Prögramm's ☃.exe")
        for words in (
            [" a  b ", "", "it's", '"quoted"', "back\\slash\\", "Ünïcödé ☃", "*", "$HOME", "-1", "--", "two\nlines\n"],
            ["--deadline", "1", "--show=file", "--unknown", "-h", "--d"],
            ["--", "--deadline", "1"],
        ):
            with self.subTest(words=words):
                out = "".join(f"<{word}>" for word in words)
                self.assert_ends(self.run_tool("--deadline", "1000", program, *words), out)
                self.assert_ends(self.run_tool(program, *words), out)

    def test_environment(self):
        """Where it was called, in Wine's folder, without a screen, with DLLs named as Windows does."""
        program = self.program('echo "$PWD|$WINEPREFIX|${DISPLAY-none}|$WINEDEBUG"; printf "%s" "$WINEPATH"')
        base = str(self.base).replace("/", "\\")
        self.run_tool(program)
        start = f"{self.base}|{self.left()[0]}|none"
        self.assert_ends(self.run_tool(program, DISPLAY=":0"), f"{start}|-all\n")
        dlls = ["--dlls", str(self.base / "Qt's bin"), "--dlls", "x/../relative"]
        process = self.run_tool(*dlls, program, WINEDEBUG="+relay")
        self.assert_ends(process, f"{start}|+relay\nZ:{base}\\Qt's bin;Z:{base}\\relative")

    def test_variables_of_qt(self):
        program = self.program('printf "%s" "$WINEQT_QPA_PLATFORM"')
        self.assert_ends(self.run_tool(program, QT_QPA_PLATFORM="offscreen"), "offscreen")


class Prefix(WineRunTest):
    """Two calls at once, and what a killed one leaves, are the same for all that is built once: test_build_once."""

    def setUp(self):
        super().setUp()
        self.greeter = self.program("echo hello")

    def test_is_made_once_for_each_version(self):
        for version, count in (("10.0", 1), ("10.0", 1), ("11.2", 2), ("10.0", 2)):
            self.assert_ends(self.run_tool(self.greeter, PACKAGE_VERSION=version), "hello\n")
            self.assertEqual((len(self.called("wine wineboot")), len(self.left())), (count, count))
            for prefix in self.left():
                # Made to the end, and that waited for.
                entries = sorted(entry.name for entry in prefix.iterdir())
                self.assertEqual(entries, ["drive_c", "system.reg", "written"])

    def test_failure_is_one_line_and_leaves_nothing(self):
        gate = self.gate()
        for words, part, changes in (
            ([], "(no reason given; ", {"WINEBOOT_CODE": "3"}),
            ([], "system.reg': No such file or directory; ", {"NO_REGISTRY": "1"}),
            ([], "(no reason given; ", {"WINESERVER_CODE": "4"}),
            (["--deadline", "1"], "(timeout: sending signal TERM to ", {"WINEBOOT_GATE": str(gate)}),
        ):
            with self.subTest(changes=changes):
                process = self.run_tool(*words, self.greeter, **changes)
                self.assert_one_line(process, 125, "wine-run: Wine could not make its folder (", part)
                self.assertEqual(self.left(), [])
                self.assertIn("wineserver --kill", self.called()[-1])


class Runtime(WineRunTest):
    def setUp(self):
        super().setUp()
        self.runtime = self.base / "the runtime"
        self.write("the runtime/ORDER.txt", "no DLL")
        self.lister = self.program('cd "$WINEPREFIX/drive_c/windows/system32"; echo "$(echo *):$(cat *):$WINEDLLOVERRIDES"')

    def run_with(self, dlls, **changes):
        for file in self.runtime.glob("*.dll"):
            file.unlink()
        for name, content in dlls.items():
            self.write(f"the runtime/{name}.dll", content)
        return self.run_tool("--runtime", str(self.runtime), self.lister, **changes)

    def test_each_content_is_installed_in_a_folder_of_its_own(self):
        overrides = "mscoree,mshtml,winemenubuilder.exe="
        contents = ({"a": "1", "b": "2"}, {"a": "1", "b": "3"}, {"a": "1", "c": "2"}, {"a": "1"})
        for number, dlls in enumerate((*contents, *contents)):
            said = f"{' '.join(f'{name}.dll' for name in dlls)}:{''.join(dlls.values())}:{overrides};{','.join(dlls)}=n\n"
            self.assert_ends(self.run_with(dlls), said)
            self.assertEqual(len(self.left()), min(number + 1, len(contents)))
        self.assert_ends(self.run_tool(self.program('echo "$WINEDLLOVERRIDES"')), f"{overrides}\n")
        self.assertEqual(len(self.left()), len(contents) + 1)

    def test_folder_without_the_whole_runtime_is_not_used(self):
        self.assert_one_line(self.run_with({"a": "1"}, SYSTEM="another"), 125, "the DLLs of ", "could not be installed", "/system32/'")
        self.assertEqual(self.left(), [])

    def test_folder_without_dlls(self):
        self.assert_one_line(self.run_with({}), 125, f"{self.runtime} has no DLLs to install")
        self.assert_one_line(self.run_tool("--runtime", "missing", self.lister), 125, "missing has no DLLs to install")
        self.assertEqual(self.called("wine"), [])


class Refusals(WineRunTest):
    def test_bad_usage(self):
        program = self.program("echo ran")
        missing = str(self.base / "build" / "kvx.exe")
        for words, part in {
            (missing,): f"{missing} is not there; build it first: ./dev build windows",
            (str(self.base),): "is not there",
            (): "program",
            ("--deadline", "soon", program): "--deadline: invalid int value: 'soon'",
            ("--unknown", program): "--unknown",
        }.items():
            with self.subTest(words=words):
                self.assert_one_line(self.run_tool(*words), 2, part)
        self.assertEqual(self.called("wine"), [])

    def test_wine_cannot_be_used(self):
        program = self.program("echo ran")
        process = self.run_tool(program, MISSING_PACKAGES="wine")
        self.assert_one_line(process, 125, "the package wine is not installed here; the toolbox has it: ./dev exec tools/wine-run")
        self.cache.write_text("", encoding="utf-8")
        self.assert_one_line(self.run_tool(program), 125, str(self.cache))


class Show(WineRunTest):
    def setUp(self):
        super().setUp()
        self.file = self.base / "the output.txt"

    def show(self, text):
        return self.run_tool("--show", str(self.file), self.program(text), str(self.file))

    def test_file_is_printed_at_the_end(self):
        process = self.show('printf "Gr\\303\\274n\\r\\nend\\r\\n" >"$1"; echo first; exit 3')
        self.assert_ends(process, "first\nGrün\nend\n", "", 3)
        # Bytes that are no text.
        self.assert_ends(self.show('printf "a\\377b\\n" >"$1"'), "a\N{REPLACEMENT CHARACTER}b\n")

    def test_program_that_wrote_none(self):
        """A file of an earlier run is not shown."""
        for code, own in ((125, 0), (3, 3)):
            self.file.write_text("of an earlier run\n", encoding="utf-8")
            self.assert_ends(self.show(f"exit {own}"), "", f"wine-run: the program wrote no {self.file}\n", code)

    def test_what_lives_on_does_not_hold_the_output(self):
        # As Wine's server, which the first program starts.
        process = self.run_tool(self.program("sleep 1000 & echo $!"))
        os.kill(int(process.out), signal.SIGKILL)
        self.assertEqual((process.err, process.returncode), ("", 0))


class Ending(WineRunTest):
    """What ends all that a program started: the deadline, and Ctrl-C, which comes when a test wants it."""

    def setUp(self):
        super().setUp()
        self.addCleanup(self.end_noted)
        self.notes = self.base / "notes"
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

    def interrupt(self, *words, names):
        """Runs the program until all of its processes have noted their numbers."""
        process = self.start(*words)
        self.eventually(lambda: sorted(self.noted()) == sorted(names), f"{names} did not all come up")
        os.kill(process.pid, signal.SIGINT)
        return self.finish(process)

    def assert_ended(self, *names):
        for name in names:
            self.eventually(lambda: is_gone(self.noted()[name]), f"{name} still runs")

    def test_ends_the_program_and_all_that_it_started(self):
        shown = self.base / "shown"
        program = self.program(
            f"""
            {self.sleeper('child')} &
            setsid {self.sleeper('detached')} &
            ({self.sleeper('orphan')} &)
            trap '' HUP INT TERM
            echo started
            echo "so far" >shown
            echo $$ >notes/itself
            while :; do sleep 1000; done
            """
        )
        names = ["child", "detached", "orphan", "itself"]
        self.assert_ends(self.interrupt("--show", str(shown), program, names=names), "started\nso far\n", "", 130)
        self.assert_ended(*names)

    def test_leaves_the_processes_of_another_call_alone(self):
        gate = self.gate()
        other = self.start(self.program("read -r _ <gate; exit 5", "other.exe"))
        gate.wait_for(other)
        self.interrupt(self.program(f"exec {self.sleeper('itself')}"), names=["itself"])
        self.assert_ended("itself")
        self.assertIsNone(other.poll())
        gate.open()
        self.assert_ends(self.finish(other), "", "", 5)

    def test_leaves_the_server_alone(self):
        shutil.copy2("/bin/sleep", self.fakes / "wineserver64")
        program = self.program(
            f"""
            wineserver64 1000 >/dev/null 2>&1 &
            echo $! >notes/server
            exec {self.sleeper('itself')}
            """
        )
        self.interrupt(program, names=["server", "itself"])
        self.assert_ended("itself")
        self.assertFalse(is_gone(self.noted()["server"]))

    def test_deadline(self):
        """A program that only speaks of the server is ended, too."""
        gate = self.gate()
        program = self.program(f"({self.sleeper('child')} &)\nread -r _ <\"$1\"", "test of wineserver.exe")
        process = self.run_tool("--deadline", "1", program, str(gate), "wineserver64")
        self.assert_one_line(process, 124, program, " was not done after 1 s; ended it with ")
        self.assert_ended(*self.noted())
