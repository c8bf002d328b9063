"""tools/windows-qt-build: Qt for Windows is made once, whole or not at all.

The fakes make a Qt that is one file, which holds the version of the source that it was made from.
"""

import re
import signal

from sandbox import SandboxTest

# QT_SOURCE is the version of the source package; the binary package was built a second time from it.
FAKE_DPKG_QUERY = r"""
[[ -z ${NOT_INSTALLED:-} ]] || { echo "dpkg-query: no packages found" >&2; exit 1; }
for word in "$@"; do
    case $word in
        *source:Version*) source=yes ;;
        -*) ;;
        qt6-base-dev)
            version=${QT_SOURCE:-6.8.2+dfsg-9}
            [[ -n ${source:-} ]] || version+=+b1
            printf '%s' "$version"
            ;;
        *) printf '%s\t%s\n' "$word" "${COMPILER:-14.2.0-6}" ;;
    esac
done
"""

# Only the version that it is asked for gets fetched.
FAKE_APT_GET = r"""
words=" $* "
if [[ -n ${APT_FAILS:-} && $words == *" ${APT_FAILS_AT:-update} "* ]]; then
    printf 'Reading package lists...\nW: Nothing of note\nE: %s\nE: Some more\n' "$APT_FAILS" >&2
    exit 100
fi
if [[ $words == *" source "* ]]; then
    version=${*: -1}
    printf '%s' "${version#qt6-base=}" >"qt6-base.dsc"
fi
"""

FAKE_DPKG_SOURCE = r"""
folder=${*: -1}
mkdir "$folder"
cp ./*.dsc "$folder/version"
"""

# As Ninja says it: first which step failed, then why.
FAKE_CMAKE = r"""
case $1 in
    --build)
        for ((done = 0; done <= 100; done += 7)); do
            printf -v percent '%3i%%' "$done"
            printf '%sBuilding CXX object corelib.cpp.obj\n' "${NINJA_STATUS//'%p'/"$percent"}"
            echo 'note: 50% of it'
            if ((done == 49)) && [[ -n ${BUILD_GATE:-} ]]; then
                read -r _ <"$BUILD_GATE"
            fi
            if ((done == 49)) && [[ -n ${BUILD_FAILS:-} ]]; then
                printf 'FAILED: corelib.cpp.obj \n/usr/bin/g++ -o corelib.cpp.obj\n%b\n' "$BUILD_FAILS"
                echo 'ninja: build stopped: subcommand failed.'
                exit 1
            fi
        done
        printf '%sLinking\n' "${NINJA_STATUS//'%p'/100%}"
        mv "$2/version" "$2/built"
        ;;
    --install)
        [[ -z ${INSTALL_FAILS:-} ]] || { mkdir -p "$DESTDIR$(<"$2/prefix")/lib"; echo "$INSTALL_FAILS"; exit 1; }
        mkdir -p "$DESTDIR$(<"$2/prefix")"
        cp "$2/built" "$DESTDIR$(<"$2/prefix")/version"
        ;;
    *)
        for word in "$@"; do
            case $word in
                -DCMAKE_INSTALL_PREFIX=*) prefix=${word#*=} ;;
            esac
        done
        [[ -z ${CONFIGURE_FAILS:-} ]] || { printf '%b\n' "$CONFIGURE_FAILS"; exit 1; }
        mkdir build
        printf '%s' "$prefix" >build/prefix
        cp source/version build/
        ;;
esac
"""


class WindowsQtTest(SandboxTest):
    def setUp(self):
        super().setUp()
        for name, body in {
            "dpkg-query": FAKE_DPKG_QUERY,
            "apt-get": FAKE_APT_GET,
            "dpkg-source": FAKE_DPKG_SOURCE,
            "cmake": FAKE_CMAKE,
        }.items():
            self.sandbox.fake(name, body)
        self.folders = self.sandbox.cache / "windows-qt"

    def start(self, **changes):
        return self.sandbox.start_script("tools/windows-qt-build", **changes)

    def qt_build(self, **changes):
        return self.sandbox.run_script("tools/windows-qt-build", **changes)

    def builds(self):
        return len(self.sandbox.called("cmake --build"))

    def left(self):
        """What lies in the cache, but for the locks and logs."""
        return [entry for entry in sorted(self.folders.iterdir()) if entry.suffix not in (".lock", ".log")]

    def assert_built(self, process, version="6.8.2+dfsg-9"):
        self.assertEqual(process.returncode, 0, process.out + process.err)
        self.assertEqual(len(process.out.splitlines()), 1, process.out)
        self.assertTrue(process.out.endswith("\n"))
        folder = self.folders / process.out.rstrip("\n")
        self.assertEqual((folder.parent, folder.suffix), (self.folders, ""))
        self.assertEqual((folder / "version").read_text(encoding="utf-8"), version)
        return folder

    def assert_cannot(self, process, *parts):
        """It said why, in one line, and left nothing half made."""
        self.assertEqual(process.returncode, 3, process.out + process.err)
        self.assertEqual(len(process.out.splitlines()), 1, process.out)
        for part in parts:
            self.assertIn(part, process.out)


class Making(WindowsQtTest):
    def test_makes_the_folder_and_prints_it_alone(self):
        folder = self.assert_built(self.qt_build())
        self.assertEqual(self.left(), [folder])
        self.assertEqual(sorted(entry.name for entry in folder.iterdir()), ["version"])

    def test_log_of_a_good_build_is_not_kept(self):
        self.assert_built(self.qt_build())
        self.assertEqual(list(self.folders.glob("*.log")), [])

    def test_second_call_builds_nothing(self):
        first = self.assert_built(self.qt_build())
        self.sandbox.calls.unlink()
        process = self.qt_build(APT_FAILS="no network", BUILD_FAILS="broken")
        self.assertEqual(self.assert_built(process), first)
        self.assertEqual(self.sandbox.called("cmake") + self.sandbox.called("apt-get"), [])
        self.assertEqual(process.err, "")

    def test_asks_for_the_source_of_the_installed_qt(self):
        self.assert_built(self.qt_build(QT_SOURCE="6.8.9-1"), "6.8.9-1")
        asked = [call for call in self.sandbox.called("apt-get") if "source" in call.split()]
        self.assertEqual([call.split()[-1] for call in asked], ["qt6-base=6.8.9-1"])

    def test_does_not_write_into_the_checkout(self):
        before = sorted(self.sandbox.checkout.rglob("*"))
        self.assert_built(self.qt_build())
        self.assertEqual(sorted(self.sandbox.checkout.rglob("*")), before)

    def test_tells_every_tenth_once(self):
        process = self.qt_build()
        said = re.findall(r"(?m)^windows-qt-build: .*?(\d+) %", process.err)
        self.assertEqual(said, [f"{tenth}0" for tenth in range(1, 11)])


class Keys(WindowsQtTest):
    """Another input makes another folder: what was built from the old one is neither used nor touched."""

    def assert_makes_another(self, version="6.8.2+dfsg-9", **changes):
        folder = self.assert_built(self.qt_build(**changes), version)
        self.assertNotEqual(folder, self.first)
        self.assertEqual((self.builds(), self.left()), (2, sorted([self.first, folder])))
        self.assertEqual((self.first / "version").read_text(encoding="utf-8"), "6.8.2+dfsg-9")

    def setUp(self):
        super().setUp()
        self.first = self.assert_built(self.qt_build())

    def append(self, file):
        with (self.sandbox.checkout / file).open("a", encoding="utf-8") as script:
            script.write("# another option\n")

    def test_version_of_qt(self):
        self.assert_makes_another("6.8.3-1", QT_SOURCE="6.8.3-1")

    def test_compiler(self):
        self.assert_makes_another(COMPILER="14.3.0-1")

    def test_recipe(self):
        script = self.sandbox.checkout / "tools/windows-qt-build"
        text = script.read_text(encoding="utf-8")
        self.assertEqual(text.count("-DFEATURE_icu=OFF"), 1)
        script.write_text(text.replace("-DFEATURE_icu=OFF", "-DFEATURE_icu=ON"), encoding="utf-8")
        self.assert_makes_another()

    def test_how_the_source_is_fetched(self):
        script = self.sandbox.checkout / "tools/qt-build.sh"
        text = script.read_text(encoding="utf-8")
        self.assertEqual(text.count("dpkg-source --no-check"), 1)
        script.write_text(text.replace("dpkg-source --no-check", "dpkg-source -q --no-check"), encoding="utf-8")
        self.assert_makes_another()

    def test_settings_of_the_compiler(self):
        self.append("cmake/WindowsCompiler.cmake")
        self.assert_makes_another()

    def test_nothing_else(self):
        self.append("dev")
        self.append("tools/windows-qt-build")
        self.append("tools/qt-build.sh")
        self.assertEqual(self.assert_built(self.qt_build()), self.first)
        self.assertEqual(self.builds(), 1)


class Failing(WindowsQtTest):
    def assert_fails_and_recovers(self, *parts, **changes):
        process = self.qt_build(**changes)
        self.assert_cannot(process, *parts)
        self.assertEqual(self.left(), [])
        folder = self.assert_built(self.qt_build())
        self.assertEqual(self.left(), [folder])

    def test_no_network(self):
        for step in ("update", "source"):
            with self.subTest(step=step):
                self.sandbox.calls.unlink(missing_ok=True)
                process = self.qt_build(APT_FAILS="Temporary failure resolving 'mirror'", APT_FAILS_AT=step)
                (log,) = self.folders.glob("*.log")
                self.assert_cannot(process, "6.8.2+dfsg-9", "E: Temporary failure resolving 'mirror'", str(log))
                self.assertEqual((self.left(), self.sandbox.called("cmake")), ([], []))
        self.assert_built(self.qt_build())

    def test_log_of_a_failed_build_stays_and_is_named(self):
        process = self.qt_build(BUILD_FAILS="corelib.cpp:7:3: error: no such thing")
        (log,) = self.folders.glob("*.log")
        self.assert_cannot(process, str(log))
        self.assertIn("ninja: build stopped", log.read_text(encoding="utf-8"))

    def test_compiler_names_the_error(self):
        self.assert_fails_and_recovers(
            "corelib.cpp:7:3: error: no such thing", BUILD_FAILS="corelib.cpp:7:3: error: no such thing"
        )

    def test_step_is_named_that_failed_without_a_known_error(self):
        self.assert_fails_and_recovers("FAILED: corelib.cpp.obj", BUILD_FAILS="moc ended oddly")

    def test_half_of_a_build_is_not_installed(self):
        self.assert_cannot(self.qt_build(BUILD_FAILS="corelib.cpp:7:3: error: no such thing"))
        self.assertEqual(self.sandbox.called("cmake --install"), [])

    def test_disk_is_full_while_compiling(self):
        reason = "fatal error: error writing to /tmp/cc.s: No space left on device"
        self.assert_fails_and_recovers(reason, BUILD_FAILS=f"corelib.cpp: In function:\\n{reason}")

    def test_disk_is_full_while_linking(self):
        reason = "/usr/bin/ld: final link failed: No space left on device"
        self.assert_fails_and_recovers(reason, BUILD_FAILS=f"{reason}\\ncollect2: error: ld returned 1 exit status")

    def test_disk_is_full_while_unpacking(self):
        self.sandbox.fake("dpkg-source", "echo 'tar: qt: Cannot write: No space left on device'\nexit 2\n")
        self.assert_cannot(self.qt_build(), "No space left on device")
        self.assertEqual((self.left(), self.sandbox.called("cmake")), ([], []))

    def test_disk_is_full_while_installing(self):
        reason = "CMake Error: cannot copy: No space left on device"
        self.assert_fails_and_recovers(reason, INSTALL_FAILS=reason)

    def test_memory_is_full(self):
        reason = "g++: fatal error: Killed signal terminated program cc1plus"
        self.assert_fails_and_recovers(reason, BUILD_FAILS=reason)

    def test_cannot_be_configured(self):
        self.assert_fails_and_recovers(
            "CMake Error at CMakeLists.txt:3 (message):",
            CONFIGURE_FAILS="-- Checking\\nCMake Error at CMakeLists.txt:3 (message):\\n  No compiler",
        )
        self.assertEqual(self.builds(), 1)

    def test_outside_of_the_toolbox(self):
        process = self.qt_build(NOT_INSTALLED="1")
        self.assert_cannot(process, "toolbox")
        self.assertEqual(self.sandbox.called("apt-get") + self.sandbox.called("cmake"), [])


class NotWritable(WindowsQtTest):
    """A file stands where a folder has to be, and the other way round: root may write into any folder."""

    def assert_says_so(self):
        process = self.qt_build()
        self.assert_cannot(process, str(self.folders))
        self.assertEqual(self.sandbox.called("cmake"), [])

    def folder_of_earlier_build(self):
        folder = self.assert_built(self.qt_build())
        (folder / "version").unlink()
        folder.rmdir()
        folder.with_suffix(".lock").unlink()
        self.sandbox.calls.unlink()
        return folder

    def test_cache(self):
        self.sandbox.cache.write_text("", encoding="utf-8")
        self.assert_says_so()

    def test_folder_in_the_cache(self):
        self.sandbox.cache.mkdir()
        self.folders.write_text("", encoding="utf-8")
        self.assert_says_so()

    def test_lock(self):
        self.folder_of_earlier_build().with_suffix(".lock").mkdir()
        self.assert_says_so()

    def test_folder_of_the_build(self):
        self.folder_of_earlier_build().with_suffix(".building").write_text("", encoding="utf-8")
        self.assert_says_so()

    def test_finished_folder(self):
        folder = self.folder_of_earlier_build()
        folder.write_text("in the way", encoding="utf-8")
        self.assert_cannot(self.qt_build(), str(folder))
        self.assertEqual(self.left(), [folder])
        self.assertEqual(folder.read_text(encoding="utf-8"), "in the way")


class Interrupted(WindowsQtTest):
    def start_up_to_gate(self, **changes):
        """A call that stands in the middle of building, and the gate that holds it there."""
        gate = self.sandbox.gate()
        process = self.start(BUILD_GATE=str(gate), **changes)
        gate.wait_for(process)
        return process, gate

    def building(self):
        return sorted(self.folders.glob("*.building"))

    def test_killed_build_is_not_taken_for_whole(self):
        process, gate = self.start_up_to_gate()
        self.sandbox.kill(process)
        gate.close()
        (building,) = self.building()
        self.assertEqual(self.left(), [building])
        (building / "leftover").write_text("", encoding="utf-8")

        folder = self.assert_built(self.qt_build())
        self.assertEqual(folder, building.with_suffix(""))
        self.assertEqual(self.left(), [folder])

    def test_terminated_build_removes_what_it_made(self):
        process, gate = self.start_up_to_gate()
        out, _ = self.sandbox.kill(process, signal.SIGTERM)
        gate.close()
        self.assertNotIn(str(self.folders), out)
        self.assertNotEqual(process.returncode, 0)
        self.assertEqual(self.left(), [])

    def test_leftovers_of_another_version_are_removed_when_their_builder_is_dead(self):
        process, gate = self.start_up_to_gate(QT_SOURCE="6.8.1-1")
        (stale,) = self.building()
        second = self.assert_built(self.qt_build())
        self.assertTrue(stale.exists(), "its builder still lives")
        self.sandbox.kill(process)
        gate.close()

        third = self.assert_built(self.qt_build(QT_SOURCE="6.8.3-1"), "6.8.3-1")
        self.assertEqual(self.left(), sorted([second, third]))

    def test_two_calls_at_once_make_one_build(self):
        first, gate = self.start_up_to_gate()
        second = self.start()
        line = second.stderr.readline()
        self.assertIn("waiting for another build", line)
        self.assertIsNone(second.poll())
        gate.open()
        for process in (first, second):
            self.sandbox.finish(process)
        self.assertEqual(self.assert_built(first), self.assert_built(second))
        self.assertEqual(self.builds(), 1)

    def test_waiting_call_builds_when_the_first_one_failed(self):
        first, gate = self.start_up_to_gate(BUILD_FAILS="corelib.cpp:7:3: error: no such thing")
        second = self.start()
        self.assertIn("waiting for another build", second.stderr.readline())
        gate.open()
        for process in (first, second):
            self.sandbox.finish(process)
        self.assert_cannot(first, "no such thing")
        self.assertEqual(self.left(), [self.assert_built(second)])


class ForThreadSanitizer(WindowsQtTest):
    """tools/tsan-qt-build is the same but for what it builds and where."""

    def test_both_are_made_beside_each_other(self):
        process = self.sandbox.run_script("tools/tsan-qt-build")
        self.assertEqual(process.returncode, 0, process.out + process.err)
        folder = self.sandbox.cache / "tsan-qt" / process.out.rstrip("\n")
        self.assertEqual((folder / "version").read_text(encoding="utf-8"), "6.8.2+dfsg-9")
        self.assertEqual(folder.parent, self.sandbox.cache / "tsan-qt")
        self.assertEqual(len([call for call in self.sandbox.called("cmake") if "sanitize_thread=ON" in call]), 1)
        self.assert_built(self.qt_build())
        self.assertEqual(self.builds(), 2)

    def test_failure_names_it(self):
        process = self.sandbox.run_script("tools/tsan-qt-build", BUILD_FAILS="corelib.cpp:7:3: error: no such thing")
        self.assert_cannot(process, "Qt for ThreadSanitizer", "no such thing")
        self.assertEqual(self.builds(), 1)
