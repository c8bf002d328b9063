"""tools/pack-folder: the same files make the same bytes."""

import os
import tarfile
import zipfile

from sandbox import ToolTest

TIME = 1700000000
MODES = {"package/b": 0o644, "package/bin/run": 0o755, "package/Ω": 0o644}


class PackFolder(ToolTest):
    tool = "pack-folder"

    def folder(self, place, names, seconds):
        """A folder "package" with the files, made in the order of the names."""
        for name in names:
            path = self.write(f"{place}/package/{name}", f"content of {name}", 0o700 if name == "bin/run" else 0o600)
            os.utime(path, (seconds, seconds))
        return self.base / place / "package"

    def packed(self, folder, archive, **variables):
        self.assert_ends(self.run_tool(folder, archive, **variables), 0)
        return (self.base / archive).read_bytes()

    def test_order_times_and_permissions_do_not_count(self):
        names = ["README.md", "bin/run", "a folder/Ω.txt"]
        first = self.folder("first", names, 1_000_000_000)
        second = self.folder("second", names[::-1], 1_500_000_000)
        (second / "README.md").chmod(0o644)
        for suffix in (".zip", ".tar.gz"):
            self.assertEqual(self.packed(first, f"1{suffix}"), self.packed(second, f"2{suffix}"))

    def test_entries(self):
        """Sorted, with this time, and with no permissions but to run; the test of the package reads the rest."""
        folder = self.folder("x", ["bin/run", "b", "Ω"], 0)
        for archive in ("x.zip", "x.tar.gz"):
            self.packed(folder, archive, SOURCE_DATE_EPOCH=str(TIME))
        with zipfile.ZipFile(self.base / "x.zip") as packed:
            entries = [(entry.filename, entry.date_time, entry.external_attr >> 16) for entry in packed.infolist()]
        time = (2023, 11, 14, 22, 13, 20)
        self.assertEqual(entries, [(name, time, 0o100000 | mode) for name, mode in MODES.items()])
        with tarfile.open(self.base / "x.tar.gz") as packed:
            entries = [(entry.name, entry.mtime, entry.mode) for entry in packed.getmembers()]
        self.assertEqual(entries, [(name, TIME, mode) for name, mode in MODES.items()])
        # Before the first time that a ZIP can hold.
        self.assertEqual(self.packed(folder, "x.zip", SOURCE_DATE_EPOCH="0"), self.packed(folder, "x.zip"))

    def test_refusals(self):
        folder = self.folder("x", ["a", "b"], 0)
        self.assert_refused("is neither a .zip nor a .tar.gz", folder, "x.rar")
        self.assert_refused("holds no file to pack", "nowhere", "x.zip")
        self.assert_refused("no number of seconds", folder, "x.zip", SOURCE_DATE_EPOCH="today")
        self.assert_refused("cannot be made", folder, "no folder/x.zip")
        self.packed(folder, "x.zip")
        # A name that looks like a file and cannot be opened: it is read after others were packed.
        (folder / "c").symlink_to("/proc/self/mem")
        self.assert_refused("cannot be made", folder, "x.zip")
