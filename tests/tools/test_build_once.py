"""tools/build-once.sh: what a script builds with it is made once, whole or not at all.

The script is tools/tsan-qt-build. The fakes make a Qt that is one file, which holds the version of its source.
"""

import re
import shutil
import signal
from pathlib import Path

from sandbox import FAKE_TOOL, SandboxTest

# QT_SOURCE is the version of the source package; the binary package was built a second time from it.
FAKE_DPKG_QUERY = r"""
[[ -z ${NOT_INSTALLED:-} ]] || { echo "dpkg-query: no packages found" >&2; exit 1; }
if [[ $* == *source:Version* ]]; then
    printf 'qt6-base=%s' "${QT_SOURCE:-6.8.2-9}"
else
    printf '%s\n' "$@" "${QT_SOURCE:-6.8.2-9}+b1" "${COMPILER:-14.2.0-6}"
fi
"""

# With progress as Ninja reports it.
FAKE_CMAKE = r"""
case $1 in
    --build)
        for ((done = 0; done <= 100; done += 5)); do
            printf -v percent '%3i%%' "$done"
            printf '%sBuilding CXX object corelib.cpp.obj\nnote: 50%% of it\n' "${NINJA_STATUS//'%p'/"$percent"}"
            if ((done == 50)) && [[ -n ${BUILD_GATE:-} ]]; then
                read -r _ <"$BUILD_GATE"
            fi
        done
        cp source/version "$2/built"
        ;;
    --install)
        mkdir -p "$DESTDIR/made"
        cp "$2/built" "$DESTDIR/made/version"
        ;;
    *) mkdir build ;;
esac
"""

FAKES = {
    "dpkg-query": FAKE_DPKG_QUERY,
    # Only the version that it is asked for gets fetched.
    "apt-get": FAKE_TOOL + """[[ " $* " != *" source "* ]] || printf '%s' "${*: -1}" >qt6-base.dsc\n""",
    "dpkg-source": FAKE_TOOL + 'mkdir "${*: -1}"\ncp ./*.dsc "${*: -1}/version"\n',
    "cmake": FAKE_CMAKE + FAKE_TOOL,
}


class BuildOnceTest(SandboxTest):
    def log(self):
        (log,) = self.folders.glob("*.log")
        return log

    def assert_provided(self, process):
        """It printed the folder alone; returns that."""
        self.assertEqual(process.returncode, 0, process.out + process.err)
        folder = self.folders / process.out.rstrip("\n")
        self.assertEqual(process.out, f"{folder}\n")
        self.assertIn(folder, self.left())
        return folder

    def assert_cannot(self, process, sentence):
        self.assertEqual((process.out, process.returncode), (f"{sentence}\n", 3), process.err)

    def assert_fails(self, process, step, why):
        """The sentence names the step, why it failed and the log; nothing half made is left."""
        self.assert_cannot(process, f"{step} ({why}; all output: {self.log()})")
        self.assertEqual(self.left(), [])

    def start_up_to_gate(self, **changes):
        """A call that is in the middle, and the gate that holds it there."""
        gate = self.gate()
        process = self.start(BUILD_GATE=str(gate), **changes)
        gate.wait_for(process)
        return process, gate


class QtBuild(BuildOnceTest):
    tool = "tools/tsan-qt-build"
    cache_folder = "tsan-qt"
    own_fakes = FAKES

    def builds(self):
        return len(self.called("cmake --build"))

    def assert_built(self, process, version="6.8.2-9"):
        folder = self.assert_provided(process)
        (file,) = folder.iterdir()
        self.assertEqual((file.name, file.read_text(encoding="utf-8")), ("version", f"qt6-base={version}"))
        return folder

    def test_makes_the_folder_and_nothing_else(self):
        before = sorted(self.checkout.rglob("*"))
        process = self.run_tool()
        folder = self.assert_built(process)
        self.assertEqual(sorted(self.folders.iterdir()), [folder, folder.with_suffix(".lock")])
        self.assertEqual(sorted(self.checkout.rglob("*")), before)
        self.assertIn("-DFEATURE_sanitize_thread=ON", self.called("cmake -S")[0].split())
        progress = re.findall(r"(?m)^tsan-qt-build: .*?(\d+) %", process.err)
        self.assertEqual(progress, [f"{tenth}0" for tenth in range(1, 11)])

    def test_another_input_makes_another_folder(self):
        """What was built from the old one is neither used nor touched. With the same input nothing is built."""
        folders = [self.assert_built(self.run_tool())]
        for changes, version in (({"COMPILER": "14.3.0-1"}, "6.8.2-9"), ({"QT_SOURCE": "6.8.3-1"}, "6.8.3-1")):
            folders.append(self.assert_built(self.run_tool(**changes), version))
        for change in (
            ("tools/tsan-qt-build", "-DFEATURE_icu=OFF", "-DFEATURE_icu=ON"),
            ("tools/tsan-qt-build", "dpkg-source --no-check", "dpkg-source -q --no-check"),
            ("tools/build-once.sh", "apt source --download-only", "apt source -q --download-only"),
        ):
            self.replace(*change)
            folders.append(self.assert_built(self.run_tool()))
        self.assertEqual((self.left(), self.builds()), (sorted(set(folders)), len(folders)))
        for file in ("dev", "tools/tsan-qt-build", "tools/build-once.sh"):
            self.append(file)
        process = self.run_tool()
        self.assertEqual((self.assert_built(process), process.err, self.builds()), (folders[-1], "", len(folders)))

    def test_step_and_reason_of_a_failure_are_one_sentence(self):
        fetched = "the source of qt6-base=6.8.2-9 could not be fetched"
        unpacked = "the source of qt6-base=6.8.2-9 could not be unpacked"
        built = "Qt for ThreadSanitizer could not be built"
        network = "E: Temporary failure resolving 'mirror'"
        space = "write: No space left on device"
        memory = "g++: fatal error: Killed signal terminated program cc1plus"
        for failing, output, step, why in (
            (" update", f"Reading package lists...\nW: Nothing of note\n{network}\nE: Some more", fetched, network),
            (" source ", f"Reading package lists...\n{network}", fetched, network),
            ("dpkg-source", f"tar: qt: {space}", unpacked, f"tar: qt: {space}"),
            ("cmake -S", "-- Checking\nCMake Error at a:3:\n  No compiler", built, "CMake Error at a:3:"),
            ("cmake --build", "FAILED: a.obj\n/usr/bin/g++ a\na.cpp:7:3: error: odd", built, "a.cpp:7:3: error: odd"),
            ("cmake --build", "FAILED: a.obj\nmoc ended oddly\nninja: stopped", built, "FAILED: a.obj"),
            ("cmake --build", f"a.cpp: error: odd\nld: {space}", built, f"ld: {space}"),
            ("cmake --build", f"a.cpp: error: odd\n{memory}", built, memory),
            ("cmake --install", f"CMake Error: cannot copy: {space}", built, f"CMake Error: cannot copy: {space}"),
            ("cmake --install", "tool: ERROR: odd\nlast", built, "tool: ERROR: odd"),
            ("cmake --install", "first\nlast\n", built, "last"),
            (" update", "", fetched, "no reason given"),
        ):
            with self.subTest(failing=failing, output=output):
                self.assert_fails(self.run_tool(FAILING=failing, FAILING_SAYS=f"{output}\n"), step, why)
                self.assertIn(failing, self.called()[-1])
                self.assertIn(output, self.log().read_text(encoding="utf-8"))
        folder = self.assert_built(self.run_tool())
        self.assertEqual(self.left(), [folder])

        folder.rename(self.base / "another folder")
        folder.with_suffix(".log").symlink_to("/dev/full")
        self.assert_fails(self.run_tool(FAILING="cmake -S"), built, "No space left on device")

    def test_outside_of_the_toolbox(self):
        reason = "the package qt6-base-dev is not installed here; the toolbox has it: ./dev build tsan"
        self.assert_cannot(self.run_tool(NOT_INSTALLED="1"), reason)
        self.assertEqual(self.called("apt-get") + self.called("cmake"), [])

    def test_cannot_be_written_to(self):
        """A file is where a folder has to be, and the other way round: root may write into any folder."""
        folder = self.assert_built(self.run_tool())
        not_writable = f"Qt for ThreadSanitizer cannot be built: {self.folders} cannot be written to"
        shutil.rmtree(self.cache)
        for path, create, sentence, builds in (
            (self.cache, Path.touch, not_writable, 1),
            (self.folders, Path.touch, not_writable, 1),
            (folder.with_suffix(".lock"), Path.mkdir, not_writable, 1),
            (folder.with_suffix(".building"), Path.touch, not_writable, 1),
            (folder, Path.touch, f"Qt for ThreadSanitizer was built and could not be put into {folder}", 2),
        ):
            with self.subTest(path=path):
                path.parent.mkdir(parents=True, exist_ok=True)
                create(path)
                self.assert_cannot(self.run_tool(), sentence)
                self.assertEqual((self.builds(), path.exists()), (builds, path.suffix != ".building"))
                path.rmdir() if path.is_dir() else path.unlink(missing_ok=True)

    def test_killed_build_is_not_taken_for_whole(self):
        process, gate = self.start_up_to_gate()
        self.kill(process)
        gate.close()
        (building,) = self.left()
        (building / "leftover").write_text("", encoding="utf-8")
        folder = self.assert_provided(self.run_tool())
        self.assertEqual((folder, self.left()), (building.with_suffix(""), [folder]))

    def test_terminated_build_removes_what_it_made(self):
        process, gate = self.start_up_to_gate()
        out, _ = self.kill(process, signal.SIGTERM)
        gate.close()
        self.assertNotEqual(process.returncode, 0)
        self.assertEqual((out, self.left()), ("", []))

    def test_leftovers_of_another_version_are_removed_when_their_builder_is_dead(self):
        process, gate = self.start_up_to_gate(QT_SOURCE="6.8.1-1")
        (stale,) = self.left()
        second = self.assert_built(self.run_tool())
        self.assertTrue(stale.exists(), "its builder still lives")
        self.kill(process)
        gate.close()
        third = self.assert_built(self.run_tool(QT_SOURCE="6.8.3-1"), "6.8.3-1")
        self.assertEqual(self.left(), sorted([second, third]))

    def start_two(self, **changes):
        """The second waits until the first, which the changes are for, is through the gate and done."""
        first, gate = self.start_up_to_gate(**changes)
        second = self.start()
        self.assertIn("waiting for another build", second.stderr.readline())
        self.assertIsNone(second.poll())
        gate.open()
        return self.finish(first), self.finish(second)

    def test_two_calls_at_once_make_one_build(self):
        first, second = self.start_two()
        self.assertEqual((self.assert_built(first), self.builds()), (self.assert_built(second), 1))

    def test_waiting_call_builds_when_the_first_one_failed(self):
        first, second = self.start_two(FAILING="cmake --build")
        self.assertEqual((first.returncode, self.builds()), (3, 2))
        folder = self.assert_built(second)
        self.assertEqual(self.left(), [folder])
