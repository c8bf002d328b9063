"""tools/pack-folder: the same files make the same bytes."""

import os
import subprocess
import tarfile
import tempfile
import unittest
import zipfile
from pathlib import Path

from sandbox import REPOSITORY


class PackFolder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.scratch = Path(scratch.name)

    def folder(self, place, names, seconds):
        """A folder "package" with the files, made in the order of the names."""
        folder = self.scratch / place / "package"
        for name in names:
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(f"content of {name}", encoding="utf-8")
            path.chmod(0o700 if name == "bin/run" else 0o600)
            os.utime(path, (seconds, seconds))
        return folder

    def pack(self, folder, archive, **environment):
        return subprocess.run(
            [REPOSITORY / "tools" / "pack-folder", folder, archive],
            capture_output=True,
            text=True,
            check=False,
            env={"PATH": os.environ["PATH"], **environment},
        )

    def packed(self, folder, archive, **environment):
        process = self.pack(folder, archive, **environment)
        self.assertEqual((process.stdout, process.stderr, process.returncode), ("", "", 0))
        return archive.read_bytes()

    def assert_refused(self, part, folder, archive, **environment):
        before = sorted(self.scratch.rglob("*"))
        process = self.pack(folder, archive, **environment)
        self.assertEqual((process.stdout, process.returncode, len(process.stderr.splitlines())), ("", 2, 1))
        self.assertIn(part, process.stderr)
        self.assertEqual(sorted(self.scratch.rglob("*")), before)

    def test_order_times_and_permissions_do_not_count(self):
        names = ["README.md", "bin/run", "a folder/Ω.txt"]
        first = self.folder("first", names, 1_000_000_000)
        second = self.folder("second", names[::-1], 1_500_000_000)
        (second / "README.md").chmod(0o644)
        for suffix in (".zip", ".tar.gz"):
            archives = [self.scratch / f"{place}{suffix}" for place in ("first", "second")]
            same = [self.packed(folder, archive) for folder, archive in zip((first, second), archives, strict=True)]
            self.assertEqual(same[0], same[1])

    def test_content_counts(self):
        first = self.folder("first", ["a"], 1_000_000_000)
        before = self.packed(first, self.scratch / "x.zip")
        (first / "a").write_text("content of b", encoding="utf-8")
        self.assertNotEqual(self.packed(first, self.scratch / "x.zip"), before)

    def test_zip(self):
        self.packed(self.folder("x", ["bin/run", "b", "Ω"], 0), self.scratch / "x.zip", SOURCE_DATE_EPOCH="1700000000")
        with zipfile.ZipFile(self.scratch / "x.zip") as packed:
            self.assertIsNone(packed.testzip())
            entries = [(entry.filename, entry.date_time, entry.external_attr >> 16) for entry in packed.infolist()]
            self.assertEqual(packed.read("package/b"), b"content of b")
        time = (2023, 11, 14, 22, 13, 20)
        self.assertEqual(
            entries,
            [("package/b", time, 0o100644), ("package/bin/run", time, 0o100755), ("package/Ω", time, 0o100644)],
        )

    def test_tar(self):
        folder = self.folder("x", ["bin/run", "b", "Ω"], 0)
        content = self.packed(folder, self.scratch / "x.tar.gz", SOURCE_DATE_EPOCH="1700000000")
        self.assertEqual(content[4:8], bytes(4), "gzip's own time of packing")
        with tarfile.open(self.scratch / "x.tar.gz") as packed:
            entries = [(entry.name, entry.mtime, entry.mode, entry.uid, entry.uname) for entry in packed.getmembers()]
            self.assertEqual(packed.extractfile("package/b").read(), b"content of b")
        owner = (0, "")
        self.assertEqual(
            entries,
            [
                ("package/b", 1700000000, 0o644, *owner),
                ("package/bin/run", 1700000000, 0o755, *owner),
                ("package/Ω", 1700000000, 0o644, *owner),
            ],
        )

    def test_time_before_zip_knows_any(self):
        folder = self.folder("x", ["a"], 0)
        early = self.packed(folder, self.scratch / "x.zip", SOURCE_DATE_EPOCH="0")
        self.assertEqual(self.packed(folder, self.scratch / "x.zip"), early)

    def test_refusals(self):
        folder = self.folder("x", ["a"], 0)
        self.assert_refused("is neither a .zip nor a .tar.gz", folder, self.scratch / "x.rar")
        self.assert_refused("holds no file to pack", self.scratch / "nowhere", self.scratch / "x.zip")
        self.assert_refused("no number of seconds", folder, self.scratch / "x.zip", SOURCE_DATE_EPOCH="today")
        self.assert_refused("cannot be made", folder, self.scratch / "no folder" / "x.zip")

    def test_failure_leaves_the_old_archive(self):
        folder = self.folder("x", ["a", "b"], 0)
        archive = self.scratch / "x.zip"
        before = self.packed(folder, archive)
        # A name that looks like a file and cannot be opened: it is read after others were packed.
        (folder / "c").symlink_to("/proc/self/mem")
        self.assert_refused("cannot be made", folder, archive)
        self.assertEqual(archive.read_bytes(), before)


if __name__ == "__main__":
    unittest.main()
