"""A throw-away checkout with the real ./dev and tools, on a machine whose programs are fakes.

The fakes stand first on PATH, so that no test needs a network, root's rights or much time: mmdebstrap makes a tiny
root, bwrap runs the command outside, cmake and ctest answer and exit as a test tells them to. All write down how
they were called.
"""

import errno
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]

# Generous: how long something that has to end, or to happen, may take on a busy machine, in seconds.
LIMIT = 120

CALL_LOG = 'printf "%s" "${0##*/}" >>"$CALLS"; printf " %s" "$@" >>"$CALLS"; printf "\\n" >>"$CALLS"\n'

# The folder is the word before the mirror, which is the last one; without root it is "-", and a tar is wanted.
FAKE_MMDEBSTRAP = r"""
words=("$@")
folder=${words[-2]}
if [[ -n ${MMDEBSTRAP_FAILS:-} ]]; then
    printf 'E: %s\n' "$MMDEBSTRAP_FAILS" >&2
    exit 1
fi
root=$folder
[[ $folder != - ]] || root=$(mktemp -d)
mkdir -p "$root/etc" "$root/usr/bin"
touch "$root/usr/bin/whole"
if [[ $folder == - ]]; then
    tar -c -C "$root" .
fi
"""

# Runs what follows "--", in the folder that --chdir names.
FAKE_BWRAP = r"""
if [[ -n ${BWRAP_FAILS:-} ]]; then
    printf 'bwrap: %s\n' "$BWRAP_FAILS" >&2
    exit 1
fi
while [[ $1 != -- ]]; do
    [[ $1 != --chdir ]] || cd "$2"
    shift
done
shift
exec "$@"
"""

# FAILING is a part of the command line that shall fail, with the output FAILING_SAYS; FAILED_LOG is then ctest's list
# of failed tests.
FAKE_TOOL = r"""
if [[ -n ${FAILING:-} && "${0##*/} $*" == *"$FAILING"* ]]; then
    printf '%b' "${FAILING_SAYS:-}" >&2
    if [[ -n ${FAILED_LOG:-} ]]; then
        mkdir -p "$FAILED_LOG_FOLDER"
        cp "$FAILED_LOG" "$FAILED_LOG_FOLDER/LastTestsFailed.log"
    fi
    exit "${FAILING_CODE:-1}"
fi
"""

# All packages are installed, in one version, but those in MISSING_PACKAGES.
FAKE_DPKG_QUERY = r"""
[[ " ${MISSING_PACKAGES:-} " != *" ${*: -1} "* ]] || exit 1
printf '%s' "${PACKAGE_VERSION:-installed}"
"""

FAKES = {
    "mmdebstrap": FAKE_MMDEBSTRAP,
    "bwrap": FAKE_BWRAP,
    "dpkg-query": FAKE_DPKG_QUERY,
    "id": 'printf "%s\\n" "${FAKE_UID:-0}"\n',
    "apt-get": FAKE_TOOL,
    "cmake": FAKE_TOOL,
    "ctest": FAKE_TOOL,
}


class Gate:
    """A named pipe. A fake that reads a line from it waits until the test opens the gate."""

    def __init__(self, path):
        self.path = path
        os.mkfifo(path)

    def wait_for(self, process):
        """Returns when a fake waits at the gate; the process is the one that starts it."""
        while True:
            try:
                self.writer = os.open(self.path, os.O_WRONLY | os.O_NONBLOCK)
                return
            except OSError as error:
                if error.errno != errno.ENXIO:
                    raise
            if process.poll() is not None:
                raise AssertionError(f"ended before it came to the gate: {process.communicate()}")
            time.sleep(0.01)

    def open(self):
        os.write(self.writer, b"go\n")
        self.close()

    def close(self):
        os.close(self.writer)

    def __str__(self):
        return str(self.path)


class FolderTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = Path(os.path.realpath(folder.name))

    def write(self, name, text="", mode=0o644):
        path = self.base / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)
        return path


class SandboxTest(FolderTest):
    """Runs a script of the checkout, which the class names, with its own fakes and variables.

    cache_folder is where, in the cache, the script puts what it makes.
    """

    tool = "dev"
    cache_folder = ""
    own_fakes = {}
    variables = {}

    def setUp(self):
        super().setUp()
        self.checkout = self.base / "a checkout's folder"
        self.cache = self.base / "the cache"
        self.folders = self.cache / self.cache_folder
        self.fakes = self.base / "fakes"
        self.calls = self.base / "calls"
        self.toolbox_mark = self.base / "kvx-toolbox"
        self.started = []
        self.addCleanup(self.end_started)
        for folder in ("tools", "cmake"):
            shutil.copytree(REPOSITORY / folder, self.checkout / folder)
        shutil.copy2(REPOSITORY / "dev", self.checkout)
        # The test itself may run in the toolbox.
        self.replace("tools/common.sh", "toolboxMark=/", f"toolboxMark={self.base}/")
        for name, body in (FAKES | self.own_fakes).items():
            self.fake(name, body)

    def replace(self, file, old, new):
        """Replaces a text that is once in a file of the checkout."""
        path = self.checkout / file
        text = path.read_text(encoding="utf-8")
        self.assertEqual(text.count(old), 1)
        path.write_text(text.replace(old, new), encoding="utf-8")

    def append(self, file, text="# another\n"):
        with (self.checkout / file).open("a", encoding="utf-8") as end:
            end.write(text)

    def script(self, path, body):
        """A script in the checkout, or in the place of one."""
        self.write(self.checkout / path, f"#!/bin/bash\n{CALL_LOG}{body}", 0o755)

    def fake(self, name, body):
        self.script(self.fakes / name, body)

    def start(self, *words, **changes):
        """Starts the script, in a process group of its own, with changes to its environment."""
        environment = {
            "PATH": f"{self.fakes}:/usr/bin:/bin",
            "HOME": str(self.base),
            "LANG": "C.UTF-8",
            "KVX_CACHE_DIR": str(self.cache),
            "KVX_DEBIAN_MIRROR": "file:/no/mirror",
            "CALLS": str(self.calls),
        } | self.variables | changes
        process = subprocess.Popen(
            [self.checkout / self.tool, *words],
            cwd=self.base,
            env={name: value for name, value in environment.items() if value is not None},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            encoding="utf-8",
            start_new_session=True,
            # A test that was started in the background would pass on that Ctrl-C is ignored.
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
        )
        self.started.append(process)
        return process

    def run_tool(self, *words, **changes):
        return self.finish(self.start(*words, **changes))

    def finish(self, process):
        """Waits for the end of the process; what it wrote is then its 'out' and 'err'."""
        try:
            process.out, process.err = process.communicate(timeout=LIMIT)
        except subprocess.TimeoutExpired:
            self.fail(f"still running after {LIMIT} s: {process.args} {self.kill(process)}")
        return process

    def gate(self):
        return Gate(self.base / "gate")

    def kill(self, process, number=signal.SIGKILL):
        """Sends the signal to the process and to all in its group, and waits for their end."""
        os.killpg(process.pid, number)
        return process.communicate()

    def end_started(self):
        """What a failed test left running."""
        for process in self.started:
            if process.poll() is None:
                self.kill(process)

    def called(self, program=""):
        lines = self.calls.read_text(encoding="utf-8").splitlines() if self.calls.exists() else []
        return [line for line in lines if line.startswith(program)]

    def toolbox(self):
        """The folder of the toolbox that the checkout wants now."""
        key = subprocess.run([self.checkout / "tools/toolbox-key"], stdout=subprocess.PIPE, text=True, check=True)
        return self.cache / "toolbox" / key.stdout.strip()

    def left(self):
        """What is in the cache's folder, except locks and logs."""
        return sorted(entry for entry in self.folders.iterdir() if entry.suffix not in (".lock", ".log"))


class ToolTest(FolderTest):
    """Runs one of the tools, which the class names, on files in a folder of its own."""

    tool = ""
    repository = REPOSITORY

    def copy_tool(self):
        """From then on its repository is the test's folder."""
        self.repository = self.base
        (self.base / "tools").mkdir()
        for name in (self.tool, "common.py"):
            shutil.copy(REPOSITORY / "tools" / name, self.base / "tools")

    def run_tool(self, *words, **variables):
        # Not those of the ./dev that runs this test.
        own = {name: value for name, value in os.environ.items() if not name.startswith("KVX_")}
        return subprocess.run(
            [self.repository / "tools" / self.tool, *words],
            cwd=self.base,
            env=own | {"PYTHONDONTWRITEBYTECODE": "1"} | variables,
            capture_output=True,
            text=True,
            check=False,
        )

    def assert_ends(self, process, code, *lines, out=""):
        """With these lines of complaint, and that output."""
        self.assertEqual(
            (process.stderr.splitlines(), process.stdout, process.returncode),
            ([f"{self.tool}: {line}" for line in lines], out, code),
        )

    def content(self):
        files = (path for path in self.base.rglob("*") if not path.is_symlink())
        return {path: path.is_file() and path.read_bytes() for path in files}

    def assert_refused(self, part, *words, code=2, **variables):
        """In one line, and nothing is written."""
        before = self.content()
        process = self.run_tool(*words, **variables)
        self.assertEqual((process.stdout, process.returncode, process.stderr.count("\n")), ("", code, 1), process.stderr)
        self.assertTrue(process.stderr.startswith(f"{self.tool}: "), process.stderr)
        self.assertIn(part, process.stderr)
        self.assertEqual(self.content(), before)
