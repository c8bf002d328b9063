"""What tools/write-examples-page refuses. What it writes is compared with kvx by tst_KvxRun."""

from sandbox import REPOSITORY, ToolTest

PAGE = REPOSITORY / "docs" / "examples.md"


class WriteExamplesPage(ToolTest):
    tool = "write-examples-page"

    def test_nothing_is_written(self):
        before = PAGE.read_bytes()
        self.assert_refused("give the path of a built kvx")
        self.assert_refused("give the path of a built kvx", "/nowhere/kvx")
        self.assertEqual(self.run_tool("/bin/false").returncode, 1)
        self.assertEqual(PAGE.read_bytes(), before)
